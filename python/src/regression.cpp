// The units Regress and RegModels from Python: linear, nonlinear, logistic and ridge regression,
// regression statistics, analysis of variance, and the predefined models. A model and its derivative
// are either the bound RegModels routines, recognised and run in C++ without the interpreter lock, or
// any Python callables, called back with the lock held.

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "binding.h"

namespace statkit::python {

namespace {

using namespace Regress;
using namespace RegModels;

/// A model routine of RegModels as Python holds it (RegModels.LineEval, PowerEval, ExpEval).
struct ModelRoutine {
  TRegressFun fun = nullptr;
};
/// A derivative routine (RegModels.LineDeriv, PowerDeriv, ExpDeriv, Regress.NumericDerive) or None.
struct DeriveRoutine {
  TDeriveProc proc = nullptr;
};

struct NamedModel {
  const char* unit;
  const char* name;
  TRegressFun fun;
};
struct NamedDerive {
  const char* unit;
  const char* name;
  TDeriveProc proc;
};
constexpr NamedModel kModels[] = {{"RegModels", "LineEval", LineEval},
                                  {"RegModels", "PowerEval", PowerEval},
                                  {"RegModels", "ExpEval", ExpEval}};
constexpr NamedDerive kDerives[] = {{"RegModels", "LineDeriv", LineDeriv},
                                    {"RegModels", "PowerDeriv", PowerDeriv},
                                    {"RegModels", "ExpDeriv", ExpDeriv},
                                    {"Regress", "NumericDerive", NumericDerive}};

// The routine bound as statkit.<unit>.<name> when src is that very object (identity, not name: a
// Python function that merely shares the name is a Python callable like any other).
template <class Entry, std::size_t N>
const Entry* Recognised(py::handle src, const Entry (&table)[N]) {
  if (!PyCFunction_Check(src.ptr())) return nullptr;
  const py::module_ top = py::module_::import("statkit._statkit");
  for (const Entry& e : table)
    if (src.is(top.attr(e.unit).attr(e.name))) return &e;
  return nullptr;
}

}  // namespace

}  // namespace statkit::python

namespace pybind11::detail {

template <>
struct type_caster<statkit::python::ModelRoutine> {
  PYBIND11_TYPE_CASTER(statkit::python::ModelRoutine,
                       const_name("Callable[[numpy.ndarray[numpy.float64], float], float]"));
  bool load(handle src, bool) {
    const auto* e = statkit::python::Recognised(src, statkit::python::kModels);
    if (e != nullptr) value.fun = e->fun;
    return e != nullptr;
  }
};

template <>
struct type_caster<statkit::python::DeriveRoutine> {
  PYBIND11_TYPE_CASTER(statkit::python::DeriveRoutine,
                       const_name("Optional[Callable[..., numpy.ndarray[numpy.float64]]]"));
  bool load(handle src, bool) {
    if (src.is_none()) return true;
    const auto* e = statkit::python::Recognised(src, statkit::python::kDerives);
    if (e != nullptr) value.proc = e->proc;
    return e != nullptr;
  }
};

}  // namespace pybind11::detail

namespace statkit::python {

namespace {

// The named tuple types of the regression statistics and of the one-way table, made by BindLinear
// and BindAnova (the module keeps them alive).
py::handle gRegStats;
py::handle gANOVA1;

using Pars = std::span<const double>;

// Python callables called from inside the library. The library's protected block turns any exception
// into an EArrayError with its prefix; a Python exception reaches it as a std::runtime_error
// "Type: message" (no traceback), and the original is kept so that Run can raise statkit.EArrayError
// with the library's message from it (__cause__). Where the library adds no prefix (NumericDerive), the
// original exception passes as itself, and so does one that is not an Exception (KeyboardInterrupt).
class Callbacks {
public:
  template <class F>
  decltype(auto) Call(F&& f) {
    try {
      return std::forward<F>(f)();
    } catch (py::error_already_set& e) {
      if (!raised_) raised_.emplace(e);
      throw std::runtime_error(py::str(e.type().attr("__name__")).cast<std::string>() + ": " +
                               py::str(e.value()).cast<std::string>());
    }
  }

  template <class F>
  decltype(auto) Run(F&& f) {
    try {
      return std::forward<F>(f)();
    } catch (const std::exception& e) {
      if (!raised_) throw;
      if (dynamic_cast<const EArrayError*>(&e) == nullptr || !raised_->matches(PyExc_Exception)) {
        raised_->restore();
        throw py::error_already_set();
      }
      const py::object type = py::module_::import("statkit._statkit").attr("EArrayError");
      py::raise_from(*raised_, type.ptr(), e.what());
      throw py::error_already_set();
    }
  }

private:
  std::optional<py::error_already_set> raised_;
};

// The coefficients as a new array: the library's own live only during the call.
py::array_t<double> CopyOf(Pars B) {
  return py::array_t<double>(static_cast<py::ssize_t>(B.size()), B.data());
}

// A Python model RegressFun(B, X) -> float. Python converts the result, so that a wrong one (None from
// a missing return) raises a Python TypeError that names it.
TRegressFunction PythonModel(const py::function& f, Callbacks& cb) {
  return [&f, &cb](Pars B, double X) {
    return cb.Call([&] {
      const double v = PyFloat_AsDouble(f(CopyOf(B), X).ptr());
      if (v == -1.0 && PyErr_Occurred() != nullptr) throw py::error_already_set();
      return v;
    });
  };
}

// A Python derivative DeriveProc(RegressFun, X, Y, B) -> len(B) values; RegressFun is the Python model.
TDeriveFunction PythonDerive(const std::optional<py::function>& d, const py::function& f, Callbacks& cb) {
  if (!d) return {};
  return [&d, &f, &cb](const TRegressFunction&, double X, double Y, Pars B, TVec& Grad) {
    cb.Call([&] {
      const InArray g((*d)(f, X, Y, CopyOf(B)));  // NumPy's own error for what it cannot convert
      if (g.ndim() != 1 || static_cast<std::size_t>(g.shape(0)) != B.size()) ERaise(msg::SizeMismatch);
      Grad.Size(static_cast<int>(B.size()));
      std::copy(g.data(), g.data() + B.size(), Grad.data());
    });
  };
}

std::string WithNote(const char* doc, const char* note) {
  return std::string(doc) + "\n\nFrom Python: " + note;
}

struct Fit {
  TVec B, YCalc;
  TMtx V;
};

void BindLinear(py::module_& m) {
  const py::handle FitType = ResultType(m, "TFitResult", "B YCalc V",
                                        "Coefficients, fitted values and the unscaled matrix V = (D'WD)^-1.");
  gRegStats = ResultType(m, "TRegStats", "ResidualVar R2 AdjustedR2 F SignifProb",
                        "The goodness of fit of a regression.");
  const py::handle TestType =
      ResultType(m, "TRegressTestResult", "V RegStats Residuals BStdErr",
                 "The coefficients' covariance, the statistics, residuals and standard errors.");
  auto fit = [FitType](Fit& r) {
    return FitType(VecOut(std::move(r.B)), VecOut(std::move(r.YCalc)), MtxOut(std::move(r.V)));
  };
  m.def(
      "LinRegress",
      [fit](const InArray& X, const InArray& Y, const OptArray& Weights) {
        const TVec x = VecIn(X), y = VecIn(Y);
        TVec w;
        const TVec* wp = OptVecIn(Weights, w);
        Fit r;
        Unlocked([&] { LinRegress(x, y, r.B, wp, &r.YCalc, &r.V); });
        return fit(r);
      },
      py::arg("X"), py::arg("Y"), py::arg("Weights") = py::none(), Doc("Regress::LinRegress"));
  m.def(
      "MulLinRegress",
      [fit](const InArray& y, const InArray& A, bool Constant) {
        const TVec yv = VecIn(y);
        const TMtx a = MtxIn(A);
        Fit r;
        Unlocked([&] { MulLinRegress(yv, a, r.B, Constant, &r.YCalc, &r.V); });
        return fit(r);
      },
      py::arg("y"), py::arg("A"), py::arg("Constant"), Doc("Regress::MulLinRegress", 0));
  m.def(
      "MulLinRegress",
      [fit](const InArray& Y, const InArray& A, const InArray& Weights, bool Constant) {
        const TVec yv = VecIn(Y), w = VecIn(Weights);
        const TMtx a = MtxIn(A);
        Fit r;
        Unlocked([&] { MulLinRegress(yv, a, r.B, w, Constant, &r.YCalc, &r.V); });
        return fit(r);
      },
      py::arg("Y"), py::arg("A"), py::arg("Weights"), py::arg("Constant"), Doc("Regress::MulLinRegress", 1));
  // Both C++ forms take the same inputs; the second's outputs contain the first's, so one function serves.
  m.def(
      "RegressTest",
      [TestType](const InArray& Y, const InArray& YCalc, const InArray& V, bool Constant,
                        const OptArray& Weights) {
        const TVec y = VecIn(Y), yc = VecIn(YCalc);
        TMtx v = OwnedMtx(V);
        TVec w, residuals, se;
        const TVec* wp = OptVecIn(Weights, w);
        TRegStats s{};
        Unlocked([&] { RegressTest(y, yc, v, s, residuals, se, Constant, wp); });
        return TestType(MtxOut(std::move(v)), RegStatsOut(s),
                        VecOut(std::move(residuals)), VecOut(std::move(se)));
      },
      py::arg("Y"), py::arg("YCalc"), py::arg("V"), py::arg("Constant"), py::arg("Weights") = py::none(),
      WithNote(Doc("Regress::RegressTest", 1),
               "one function for both forms; V is returned scaled (the argument is not changed).")
          .c_str());
}

template <std::size_t N>
py::array TableOut(const std::array<double, N>& t) {
  return py::array_t<double>(static_cast<py::ssize_t>(N), t.data());
}

void BindAnova(py::module_& m) {
  gANOVA1 = ResultType(m, "TANOVA1Result", "Table Signif",
                      "The one-way table (SS_B, SS_W, SS_T, df_B, df_W, df_T, MS_B, MS_W, F, critical F) "
                      "and the upper tail probability of F.");
  const py::handle Two =
      ResultType(m, "TANOVA2Result", "Table SignifRows SignifCols SignifInteract",
                 "The two-way table and the significances (SignifInteract NaN without replication).");
  m.def(
      "ANOVA1",
      [](const InArray& Data, double Alpha) {
        const TMtx d = MtxIn(Data);
        double signif = 0;
        const TANOVA1Table t = Unlocked([&] { return ANOVA1(d, signif, Alpha); });
        return ANOVA1Out(t, signif);
      },
      py::arg("Data"), py::arg("Alpha") = 0.05, Doc("Regress::ANOVA1", 0));
  m.def(
      "ANOVA1",
      [](const InArray& Data, const InArray& GroupIndex, double Alpha) {
        const TVec d = VecIn(Data), g = VecIn(GroupIndex);
        double signif = 0;
        const TANOVA1Table t = Unlocked([&] { return ANOVA1(d, g, signif, Alpha); });
        return ANOVA1Out(t, signif);
      },
      py::arg("Data"), py::arg("GroupIndex"), py::arg("Alpha") = 0.05, Doc("Regress::ANOVA1", 1));
  m.def(
      "ANOVA2",
      [Two](const InArray& Data, int Replications, double Alpha) {
        const TMtx d = MtxIn(Data);
        double rows = 0, cols = 0, interact = std::numeric_limits<double>::quiet_NaN();
        const TANOVA2Table t = Unlocked([&] { return ANOVA2(d, rows, cols, interact, Replications, Alpha); });
        return Two(TableOut(t), rows, cols, interact);
      },
      py::arg("Data"), py::arg("Replications"), py::arg("Alpha") = 0.05, Doc("Regress::ANOVA2"));
}

void BindNonlinear(py::module_& m) {
  const py::handle Result =
      ResultType(m, "TNLinResult", "Result B StopReason YCalc",
                 "The optimiser's result, the fitted coefficients, why it stopped, model values.");
  m.def(
      "NumericDerive",
      [](ModelRoutine RegressFun, double X, double Y, const InArray& B) {
        const TVec b = VecIn(B);
        TVec grad(b.Length());
        Unlocked([&] { NumericDerive(RegressFun.fun, X, Y, Pars(b.data(), b.Length()), grad); });
        return VecOut(std::move(grad));
      },
      py::arg("RegressFun"), py::arg("X"), py::arg("Y"), py::arg("B"),
      WithNote(Doc("Regress::NumericDerive", 0),
               "RegressFun is RegModels.LineEval, PowerEval or ExpEval; returns Grad (len(B) values).")
          .c_str());
  m.def(
      "NumericDerive",
      [](const py::function& RegressFun, double X, double Y, const InArray& B) {
        const TVec b = VecIn(B);
        TVec grad(b.Length());
        Callbacks cb;
        const TRegressFunction f = PythonModel(RegressFun, cb);
        cb.Run([&] { NumericDerive(f, X, Y, Pars(b.data(), b.Length()), grad); });
        return VecOut(std::move(grad));
      },
      py::arg("RegressFun"), py::arg("X"), py::arg("Y"), py::arg("B"),
      WithNote(Doc("Regress::NumericDerive", 1),
               "RegressFun(B, X) -> float, B a new array; an exception it raises passes through unchanged.")
          .c_str());
  m.def(
      "NLinRegress",
      [Result](const InArray& X, const InArray& Y, ModelRoutine RegressFun, DeriveRoutine DeriveProc,
               const InArray& B, TOptMethod Method, const OptArray& Weights, bool OptimizerFlag, int MaxIter,
               double Tol, double GradTol) {
        const TVec x = VecIn(X), y = VecIn(Y);
        TVec b = OwnedVec(B), w, ycalc;
        const TVec* wp = OptVecIn(Weights, w);
        TOptStopReason stop{};
        const int res = Unlocked([&] {
          return NLinRegress(x, y, RegressFun.fun, DeriveProc.proc, b, Method, stop, wp, &ycalc,
                             OptimizerFlag, MaxIter, Tol, GradTol);
        });
        return Result(res, VecOut(std::move(b)), stop, VecOut(std::move(ycalc)));
      },
      py::arg("X"), py::arg("Y"), py::arg("RegressFun"), py::arg("DeriveProc"), py::arg("B"),
      py::arg("Method"), py::arg("Weights"), py::arg("OptimizerFlag"), py::arg("MaxIter"), py::arg("Tol"),
      py::arg("GradTol"),
      WithNote(
          Doc("Regress::NLinRegress", 0),
          "RegressFun is RegModels.LineEval, PowerEval or ExpEval and DeriveProc RegModels.LineDeriv, "
          "PowerDeriv, ExpDeriv, Regress.NumericDerive or None: the fit runs in C++ without the "
          "interpreter lock. B holds the start values (not changed); returns (Result, B, StopReason, YCalc).")
          .c_str());
  m.def(
      "NLinRegress",
      [Result](const InArray& X, const InArray& Y, const py::function& RegressFun,
               const std::optional<py::function>& DeriveProc, const InArray& B, TOptMethod Method,
               const OptArray& Weights, bool OptimizerFlag, int MaxIter, double Tol, double GradTol) {
        const TVec x = VecIn(X), y = VecIn(Y);
        TVec b = OwnedVec(B), w, ycalc;
        const TVec* wp = OptVecIn(Weights, w);
        TOptStopReason stop{};
        Callbacks cb;
        const TRegressFunction f = PythonModel(RegressFun, cb);
        const TDeriveFunction d = PythonDerive(DeriveProc, RegressFun, cb);
        const int res = cb.Run([&] {
          return NLinRegress(x, y, f, d, b, Method, stop, wp, &ycalc, OptimizerFlag, MaxIter, Tol, GradTol);
        });
        return Result(res, VecOut(std::move(b)), stop, VecOut(std::move(ycalc)));
      },
      py::arg("X"), py::arg("Y"), py::arg("RegressFun"), py::arg("DeriveProc"), py::arg("B"),
      py::arg("Method"), py::arg("Weights"), py::arg("OptimizerFlag"), py::arg("MaxIter"), py::arg("Tol"),
      py::arg("GradTol"),
      WithNote(Doc("Regress::NLinRegress", 1),
               "RegressFun(B, X) -> float and DeriveProc(RegressFun, X, Y, B) -> len(B) values, or None for "
               "NumericDerive; B arrives as a new array. An exception either raises reaches the caller as "
               "statkit.EArrayError \"NLinRegress : <Type>: <message>\" whose __cause__ is the original "
               "(KeyboardInterrupt and SystemExit pass as themselves).")
          .c_str());
}

void BindLogisticRidge(py::module_& m) {
  const py::handle Binomial =
      ResultType(m, "TLogisticResult", "B YCalc BStdErr",
                 "Coefficients, fitted counts and standard errors (empty when no pass ran).");
  const py::handle Ordinal =
      ResultType(m, "TOrdinalLogisticResult", "Result B Theta BStdErr FMin StopReason",
                 "Marquardt's result, coefficients, cut-points, standard errors, -2 log L, "
                 "why Marquardt stopped.");
  m.def(
      "LogisticRegress",
      [Binomial](const InArray& y, const InArray& n, const OptArray& A, double Offset, double Tol) {
        const TVec yv = VecIn(y), nv = VecIn(n);
        TMtx a;
        if (A) a = MtxIn(*A);
        TVec b, ycalc, se;
        Unlocked([&] { LogisticRegress(yv, nv, b, A ? &a : nullptr, Offset, &ycalc, &se, Tol); });
        return Binomial(VecOut(std::move(b)), VecOut(std::move(ycalc)), VecOut(std::move(se)));
      },
      py::arg("y"), py::arg("n"), py::arg("A"), py::arg("Offset"), py::arg("Tol"),
      Doc("Regress::LogisticRegress", 0));
  m.def(
      "LogisticRegress",
      [Ordinal](const InArray& y, const InArray& A, const InArray& B, const InArray& Theta, int MaxIter,
                double Tol, bool InitEstimates) {
        const TVec yv = VecIn(y);
        const TMtx a = MtxIn(A);
        TVec b = OwnedVec(B), theta = OwnedVec(Theta), se;
        double fmin = 0;
        TOptStopReason stop{};
        const int res = Unlocked(
            [&] { return LogisticRegress(yv, a, b, theta, se, fmin, stop, MaxIter, Tol, InitEstimates); });
        return Ordinal(res, VecOut(std::move(b)), VecOut(std::move(theta)), VecOut(std::move(se)), fmin,
                       stop);
      },
      py::arg("y"), py::arg("A"), py::arg("B"), py::arg("Theta"), py::arg("MaxIter"), py::arg("Tol"),
      py::arg("InitEstimates"), Doc("Regress::LogisticRegress", 1));
  m.def(
      "RidgeRegress",
      [](const InArray& y, const InArray& A, double k) {
        const TVec yv = VecIn(y);
        const TMtx a = MtxIn(A);
        TVec b;
        Unlocked([&] { RidgeRegress(yv, a, k, b); });
        return VecOut(std::move(b));
      },
      py::arg("y"), py::arg("A"), py::arg("k"), Doc("Regress::RidgeRegress"));
}

// The line, power and exponential models share their four routines' shapes.
template <auto Eval1, auto EvalN, auto Deriv, auto FitFn>
void BindCurve(py::module_& m, const std::string& name) {
  const std::string unit = "RegModels::";
  const std::string eval = name + "Eval", deriv = name + "Deriv", fitName = name + "Fit";
  m.def(
      eval.c_str(),
      [](const InArray& B, double X) {
        const TVec b = VecIn(B);
        return Unlocked([&] { return Eval1(Pars(b.data(), b.Length()), X); });
      },
      py::arg("B"), py::arg("X"), Doc((unit + eval).c_str(), 0));
  m.def(
      eval.c_str(),
      [](const InArray& B, const InArray& X) {
        const TVec b = VecIn(B), x = VecIn(X);
        TVec y;
        Unlocked([&] { EvalN(Pars(b.data(), b.Length()), x, y); });
        return VecOut(std::move(y));
      },
      py::arg("B"), py::arg("X"), Doc((unit + eval).c_str(), 1));
  m.def(
      deriv.c_str(),
      [](const py::object&, double X, double Y, const InArray& B) {
        const TVec b = VecIn(B);
        TVec grad;
        Unlocked([&] { Deriv(nullptr, X, Y, Pars(b.data(), b.Length()), grad); });
        return VecOut(std::move(grad));
      },
      py::arg("RegressFun"), py::arg("X"), py::arg("Y"), py::arg("B"),
      WithNote(Doc((unit + deriv).c_str()), "RegressFun may be any object (unused); returns Grad.").c_str());
  m.def(
      fitName.c_str(),
      [](const InArray& X, const InArray& Y, const OptArray& Weights) {
        const TVec x = VecIn(X), y = VecIn(Y);
        TVec w, b;
        const TVec* wp = OptVecIn(Weights, w);
        Unlocked([&] { FitFn(b, x, y, wp); });
        return VecOut(std::move(b));
      },
      py::arg("X"), py::arg("Y"), py::arg("Weights") = py::none(),
      WithNote(Doc((unit + fitName).c_str()), "returns B (empty when the fit leaves it alone).").c_str());
}

}  // namespace

py::object ANOVA1Out(const Regress::TANOVA1Table& t, double Signif) { return gANOVA1(TableOut(t), Signif); }

py::object RegStatsOut(const Regress::TRegStats& s) {
  return gRegStats(s.ResidualVar, s.R2, s.AdjustedR2, s.F, s.SignifProb);
}

void BindRegress(py::module_& m) {
  BindLinear(m);
  BindAnova(m);
  BindNonlinear(m);
  BindLogisticRidge(m);
}

void BindRegModels(py::module_& m) {
  using Eval1 = double (*)(Pars, double);
  using EvalN = void (*)(Pars, const TVec&, TVec&);
  BindCurve<static_cast<Eval1>(LineEval), static_cast<EvalN>(LineEval), LineDeriv, LineFit>(m, "Line");
  BindCurve<static_cast<Eval1>(PowerEval), static_cast<EvalN>(PowerEval), PowerDeriv, PowerFit>(m, "Power");
  BindCurve<static_cast<Eval1>(ExpEval), static_cast<EvalN>(ExpEval), ExpDeriv, ExpFit>(m, "Exp");
  m.def(
      "MulLinEval",
      [](const InArray& B, const ShapedArray<1>& X, bool Constant) {
        const TVec b = VecIn(B), x = VecIn(X.array);
        return Unlocked([&] { return MulLinEval(Pars(b.data(), b.Length()), x, Constant); });
      },
      py::arg("B"), py::arg("X"), py::arg("Constant"), Doc("RegModels::MulLinEval", 0));
  m.def(
      "MulLinEval",
      [](const InArray& B, const ShapedArray<2>& A, bool Constant) {
        const TVec b = VecIn(B);
        const TMtx a = MtxIn(A.array);
        TVec y;
        Unlocked([&] { MulLinEval(Pars(b.data(), b.Length()), a, y, Constant); });
        return VecOut(std::move(y));
      },
      py::arg("B"), py::arg("A"), py::arg("Constant"), Doc("RegModels::MulLinEval", 1));
  m.def(
      "MulLinFit",
      [](const InArray& A, const InArray& Y, bool Constant, const OptArray& Weights) {
        const TMtx a = MtxIn(A);
        const TVec y = VecIn(Y);
        TVec w, b;
        const TVec* wp = OptVecIn(Weights, w);
        Unlocked([&] { MulLinFit(b, a, y, Constant, wp); });
        return VecOut(std::move(b));
      },
      py::arg("A"), py::arg("Y"), py::arg("Constant"), py::arg("Weights") = py::none(),
      WithNote(Doc("RegModels::MulLinFit"), "returns B.").c_str());
}

}  // namespace statkit::python
