// The mergeable summaries from Python: each summary is a class whose fields read as
// floats and NumPy arrays (copies), extended by Add and Merge (module functions under
// their C++ names) and pickled as plain floats and arrays, so it travels between
// processes (Dask's workers) and merges there.

#include <array>
#include <string>

#include "binding.h"

namespace statkit::python {

using namespace Summaries;

namespace {

py::array VecCopy(const TVec& v) { return VecOut(TVec(v)); }
py::array MtxCopy(const TMtx& m) { return MtxOut(TMtx(m)); }

void RequireState(const py::tuple& t, std::size_t size, const char* type) {
  if (t.size() != size) throw py::value_error(std::string("invalid pickled state of ") + type);
}

constexpr std::size_t kMomentFields = 8;

std::array<double, kMomentFields> MomentState(const TMoments& s) {
  return {s.N, s.Mean, s.MeanLow, s.M2, s.M3, s.M4, s.Min, s.Max};
}
TMoments MomentsFrom(const double* v) {
  TMoments s;
  s.N = v[0], s.Mean = v[1], s.MeanLow = v[2], s.M2 = v[3], s.M3 = v[4], s.M4 = v[5], s.Min = v[6], s.Max = v[7];
  return s;
}

void BindMoments(py::module_& m) {
  py::class_<TMoments>(m, "TMoments", "Count, mean, central sums of powers 2 to 4, minimum and maximum.")
      .def(py::init<>())
      .def_readonly("N", &TMoments::N, "number of values")
      .def_readonly("Mean", &TMoments::Mean, "their mean (rounded)")
      .def_readonly("MeanLow", &TMoments::MeanLow, "what Mean lacks: the mean is Mean + MeanLow")
      .def_readonly("M2", &TMoments::M2, "sum of (x - Mean)^2")
      .def_readonly("M3", &TMoments::M3, "sum of (x - Mean)^3")
      .def_readonly("M4", &TMoments::M4, "sum of (x - Mean)^4")
      .def_readonly("Min", &TMoments::Min, "smallest value (NaN once a NaN was added)")
      .def_readonly("Max", &TMoments::Max, "largest value (NaN once a NaN was added)")
      .def(py::pickle([](const TMoments& s) { return py::tuple(py::cast(MomentState(s))); },
                      [](const py::tuple& t) {
                        RequireState(t, kMomentFields, "TMoments");
                        const auto v = t.cast<std::array<double, kMomentFields>>();
                        return MomentsFrom(v.data());
                      }));
  m.def(
      "Add",
      [](TMoments& S, const InArray& X) {
        const TVec x = VecIn(X);
        Unlocked([&] { Add(S, x); });
      },
      py::arg("S"), py::arg("X"), Doc("Summaries::Add", 0));
  m.def(
      "Merge", [](TMoments& S, const TMoments& Other) { Merge(S, Other); }, py::arg("S"), py::arg("Other"),
      Doc("Summaries::Merge", 0));
  m.def(
      "Variance", [](const TMoments& S) { return Variance(S); }, py::arg("S"), Doc("Summaries::Variance"));
  m.def(
      "StdDev", [](const TMoments& S) { return StdDev(S); }, py::arg("S"), Doc("Summaries::StdDev"));
  m.def(
      "Skewness", [](const TMoments& S) { return Skewness(S); }, py::arg("S"), Doc("Summaries::Skewness"));
  m.def(
      "Kurtosis", [](const TMoments& S) { return Kurtosis(S); }, py::arg("S"), Doc("Summaries::Kurtosis"));
}

void BindCoMoments(py::module_& m) {
  py::class_<TCoMoments>(m, "TCoMoments", "Count, column means and centred cross-product sums of rows.")
      .def(py::init<>())
      .def_readonly("N", &TCoMoments::N, "number of rows")
      .def_property_readonly(
          "Mean", [](const TCoMoments& s) { return VecCopy(s.Mean); }, "column means")
      .def_property_readonly(
          "C", [](const TCoMoments& s) { return MtxCopy(s.C); },
          "C[j, k] = sum (x_j - Mean[j]) (x_k - Mean[k])")
      .def(py::pickle([](const TCoMoments& s) { return py::make_tuple(s.N, VecCopy(s.Mean), MtxCopy(s.C)); },
                      [](const py::tuple& t) {
                        RequireState(t, 3, "TCoMoments");
                        TCoMoments s;
                        s.N = t[0].cast<double>();
                        s.Mean = OwnedVec(t[1].cast<InArray>());
                        s.C = OwnedMtx(t[2].cast<InArray>());
                        return s;
                      }));
  m.def(
      "Add",
      [](TCoMoments& S, const InArray& X) {
        const TMtx x = MtxIn(X);
        Unlocked([&] { Add(S, x); });
      },
      py::arg("S"), py::arg("X"), Doc("Summaries::Add", 1));
  m.def(
      "Merge", [](TCoMoments& S, const TCoMoments& Other) { Unlocked([&] { Merge(S, Other); }); },
      py::arg("S"), py::arg("Other"), Doc("Summaries::Merge", 1));
  m.def(
      "Covariance",
      [](const TCoMoments& S, bool Biased) {
        TMtx dst;
        Unlocked([&] { Covariance(S, dst, Biased); });
        return MtxOut(std::move(dst));
      },
      py::arg("S"), py::arg("Biased"), Doc("Summaries::Covariance"));
}

void BindHistogram(py::module_& m) {
  py::class_<THistogram>(m, "THistogram", "Counts of values between fixed edges, below, above, and NaNs.")
      .def(py::init<>())
      .def_property_readonly(
          "Edges", [](const THistogram& h) { return VecCopy(h.Edges); }, "bin edges")
      .def_property_readonly(
          "Counts", [](const THistogram& h) { return VecCopy(h.Counts); }, "count per bin")
      .def_readonly("Below", &THistogram::Below, "values below Edges[0]")
      .def_readonly("Above", &THistogram::Above, "values above the last edge")
      .def_readonly("NaNs", &THistogram::NaNs, "NaN values")
      .def(py::pickle(
          [](const THistogram& h) {
            return py::make_tuple(VecCopy(h.Edges), VecCopy(h.Counts), h.Below, h.Above, h.NaNs);
          },
          [](const py::tuple& t) {
            RequireState(t, 5, "THistogram");
            THistogram h;
            h.Edges = OwnedVec(t[0].cast<InArray>());
            h.Counts = OwnedVec(t[1].cast<InArray>());
            h.Below = t[2].cast<double>(), h.Above = t[3].cast<double>(), h.NaNs = t[4].cast<double>();
            return h;
          }));
  m.def(
      "InitHistogram",
      [](const InArray& Edges) {
        const TVec e = VecIn(Edges);
        THistogram h;
        InitHistogram(h, e);
        return h;
      },
      py::arg("Edges"), Doc("Summaries::InitHistogram"));
  m.def(
      "Add",
      [](THistogram& H, const InArray& X) {
        const TVec x = VecIn(X);
        Unlocked([&] { Add(H, x); });
      },
      py::arg("H"), py::arg("X"), Doc("Summaries::Add", 2));
  m.def(
      "Merge", [](THistogram& H, const THistogram& Other) { Merge(H, Other); }, py::arg("H"),
      py::arg("Other"), Doc("Summaries::Merge", 2));
}

// The refinement record of a least-squares fit: its doubles in one array, in
// field order, for pickling.
constexpr std::size_t kResidualScalars = 8;

void BindResiduals(py::module_& m, py::handle Fit) {
  using R = TLeastSquaresResiduals;
  py::class_<R>(m, "TLeastSquaresResiduals",
                "Residual sums of the data of a least-squares summary against trial coefficients, in "
                "double-double: the second pass that refines the fit.")
      .def(py::init<>())
      .def_readonly("Constant", &R::Constant, "a column of ones stands before the columns of A")
      .def_property_readonly(
          "B", [](const R& s) { return VecCopy(s.B); }, "the trial coefficients")
      .def_readonly("N", &R::N, "number of rows added")
      .def_property_readonly(
          "G", [](const R& s) { return VecCopy(s.G); }, "D'r rounded to double")
      .def_property_readonly(
          "GLow", [](const R& s) { return VecCopy(s.GLow); }, "what G lacks")
      .def_readonly("SSE", &R::SSE, "r'r rounded to double")
      .def_readonly("SSELow", &R::SSELow, "what SSE lacks")
      .def(py::pickle(
          [](const R& s) {
            const std::array<double, kResidualScalars> v{s.N,       s.SSE,  s.SSELow, s.YCentre,
                                                         s.YSum,    s.YSumLow, s.YSS, s.YSSLow};
            return py::make_tuple(s.Constant, VecCopy(s.B), VecCopy(s.G), VecCopy(s.GLow), v);
          },
          [](const py::tuple& t) {
            RequireState(t, 5, "TLeastSquaresResiduals");
            R s;
            s.Constant = t[0].cast<bool>();
            s.B = OwnedVec(t[1].cast<InArray>());
            s.G = OwnedVec(t[2].cast<InArray>());
            s.GLow = OwnedVec(t[3].cast<InArray>());
            const auto v = t[4].cast<std::array<double, kResidualScalars>>();
            s.N = v[0], s.SSE = v[1], s.SSELow = v[2], s.YCentre = v[3];
            s.YSum = v[4], s.YSumLow = v[5], s.YSS = v[6], s.YSSLow = v[7];
            return s;
          }));
  m.def(
      "InitResiduals",
      [](const TLeastSquares& Fit, const InArray& B) {
        const TVec b = VecIn(B);
        R s;
        InitResiduals(s, Fit, b);
        return s;
      },
      py::arg("Fit"), py::arg("B"), Doc("Summaries::InitResiduals"));
  m.def(
      "Add",
      [](R& S, const InArray& y, const InArray& A) {
        const TVec yv = VecIn(y);
        const TMtx Am = MtxIn(A);
        Unlocked([&] { Add(S, yv, Am); });
      },
      py::arg("S"), py::arg("y"), py::arg("A"), Doc("Summaries::Add", 4));
  m.def(
      "Merge", [](R& S, const R& Other) { Merge(S, Other); }, py::arg("S"), py::arg("Other"),
      Doc("Summaries::Merge", 4));
  m.def(
      "LeastSquaresFit",
      [Fit](const TLeastSquares& S, const R& Residuals) {
        TVec B, BStdErr;
        TMtx V;
        TRegStats r{};
        Unlocked([&] { LeastSquaresFit(S, Residuals, B, BStdErr, r, &V); });
        return Fit(VecOut(std::move(B)), VecOut(std::move(BStdErr)),
                   RegStatsOut(r), MtxOut(std::move(V)));
      },
      py::arg("S"), py::arg("Residuals"), Doc("Summaries::LeastSquaresFit", 1));
}

void BindLeastSquares(py::module_& m) {
  const py::handle Fit = ResultType(m, "TLeastSquaresFit", "B BStdErr RegStats V",
                                    "Coefficients, their standard errors, the regression statistics and "
                                    "the coefficients' covariance matrix.");
  py::class_<TLeastSquares>(m, "TLeastSquares",
                            "A linear least-squares fit kept as the triangular QR factor of [D y] and the "
                            "moments of y.")
      .def(py::init([](bool Constant) {
             TLeastSquares s;
             s.Constant = Constant;
             return s;
           }),
           py::arg("Constant") = true, "An empty summary; Constant: a column of ones stands before A's.")
      .def_readonly("Constant", &TLeastSquares::Constant, "a column of ones stands before the columns of A")
      .def_readonly("Cols", &TLeastSquares::Cols, "columns of A")
      .def_property_readonly(
          "R", [](const TLeastSquares& s) { return MtxCopy(s.R); },
          "upper triangular factor of [D y] (about Shift)")
      .def_property_readonly(
          "RLow", [](const TLeastSquares& s) { return MtxCopy(s.RLow); },
          "what R lacks: the factor is R + RLow (empty means zero)")
      .def_property_readonly(
          "Shift", [](const TLeastSquares& s) { return VecCopy(s.Shift); },
          "with Constant: subtracted from [A y] before factoring")
      .def_readonly("Y", &TLeastSquares::Y, "moments of y")
      .def(py::pickle(
          [](const TLeastSquares& s) {
            return py::make_tuple(s.Constant, s.Cols, MtxCopy(s.R), MtxCopy(s.RLow), VecCopy(s.Shift),
                                  MomentState(s.Y));
          },
          [](const py::tuple& t) {
            RequireState(t, 6, "TLeastSquares");
            TLeastSquares s;
            s.Constant = t[0].cast<bool>();
            s.Cols = t[1].cast<int>();
            s.R = OwnedMtx(t[2].cast<InArray>());
            s.RLow = OwnedMtx(t[3].cast<InArray>());
            s.Shift = OwnedVec(t[4].cast<InArray>());
            s.Y = MomentsFrom(t[5].cast<std::array<double, kMomentFields>>().data());
            return s;
          }));
  m.def(
      "Add",
      [](TLeastSquares& S, const InArray& y, const InArray& A) {
        const TVec yv = VecIn(y);
        const TMtx Am = MtxIn(A);
        Unlocked([&] { Add(S, yv, Am); });
      },
      py::arg("S"), py::arg("y"), py::arg("A"), Doc("Summaries::Add", 3));
  m.def(
      "Merge", [](TLeastSquares& S, const TLeastSquares& Other) { Unlocked([&] { Merge(S, Other); }); },
      py::arg("S"), py::arg("Other"), Doc("Summaries::Merge", 3));
  m.def(
      "LeastSquaresFit",
      [Fit](const TLeastSquares& S) {
        TVec B, BStdErr;
        TMtx V;
        TRegStats r{};
        Unlocked([&] { LeastSquaresFit(S, B, BStdErr, r, &V); });
        return Fit(VecOut(std::move(B)), VecOut(std::move(BStdErr)),
                   RegStatsOut(r), MtxOut(std::move(V)));
      },
      py::arg("S"), Doc("Summaries::LeastSquaresFit"));
  BindResiduals(m, Fit);
}

void BindGroupMoments(py::module_& m) {
  py::class_<TGroupMoments>(m, "TGroupMoments", "Moments of the values of every group, numbered 0, 1, ...")
      .def(py::init<>())
      .def_readonly("Groups", &TGroupMoments::Groups, "Groups[g] summarises group g")
      .def(py::pickle(
          [](const TGroupMoments& s) {
            py::array_t<double> a(
                {static_cast<py::ssize_t>(s.Groups.size()), static_cast<py::ssize_t>(kMomentFields)});
            auto w = a.mutable_unchecked<2>();
            for (py::ssize_t g = 0; g < w.shape(0); ++g) {
              const auto v = MomentState(s.Groups[static_cast<std::size_t>(g)]);
              for (py::ssize_t j = 0; j < w.shape(1); ++j) w(g, j) = v[static_cast<std::size_t>(j)];
            }
            return py::make_tuple(a);
          },
          [](const py::tuple& t) {
            RequireState(t, 1, "TGroupMoments");
            const auto a = t[0].cast<InArray>();
            if (a.ndim() != 2 || a.shape(1) != static_cast<py::ssize_t>(kMomentFields))
              throw py::value_error("invalid pickled state of TGroupMoments");
            TGroupMoments s;
            for (py::ssize_t g = 0; g < a.shape(0); ++g) s.Groups.push_back(MomentsFrom(a.data(g, 0)));
            return s;
          }));
  m.def(
      "Add",
      [](TGroupMoments& S, const InArray& Data, const InArray& GroupIndex) {
        const TVec x = VecIn(Data), g = VecIn(GroupIndex);
        Unlocked([&] { Add(S, x, g); });
      },
      py::arg("S"), py::arg("Data"), py::arg("GroupIndex"), Doc("Summaries::Add", 5));
  m.def(
      "Merge", [](TGroupMoments& S, const TGroupMoments& Other) { Merge(S, Other); }, py::arg("S"),
      py::arg("Other"), Doc("Summaries::Merge", 5));
  m.def(
      "ANOVA1",
      [](const TGroupMoments& S, double Alpha) {
        double signif = 0.0;
        const TANOVA1Table t = Unlocked([&] { return ANOVA1(S, signif, Alpha); });
        return ANOVA1Out(t, signif);
      },
      py::arg("S"), py::arg("Alpha") = 0.05, Doc("Summaries::ANOVA1"));
}

}  // namespace

void BindSummaries(py::module_& m) {
  BindMoments(m);
  BindCoMoments(m);
  BindHistogram(m);
  BindLeastSquares(m);
  BindGroupMoments(m);
}

}  // namespace statkit::python
