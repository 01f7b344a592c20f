// The unit Statistics from Python: descriptive statistics, percentiles and
// histograms, covariance, the hypothesis tests, factorial designs and principal
// components, one registration function per family.

#include <type_traits>

#include "binding.h"

namespace statkit::python {
namespace {
using VecArg = ShapedArray<1>;
using MtxArg = ShapedArray<2>;
}  // namespace
}  // namespace statkit::python

namespace statkit::python {

using namespace Statistics;

namespace {

// A test's decision, significance and interval, as the tests write them.
struct TestOutcome {
  THypothesisResult hRes = hrNan;
  double Signif = 0.0;
  double ConfInt[2] = {0.0, 0.0};
};

// Runs the test \p f (which fills a TestOutcome) without the lock; the result
// as \p Type, (hRes, Signif, ConfInt).
template <class F>
py::object WithInterval(py::handle Type, F&& f) {
  TestOutcome r;
  Unlocked([&] { f(r); });
  return Type(HypothesisResult(r.hRes), r.Signif, Interval(r.ConfInt));
}

// As WithInterval for a test that has no interval: (hRes, Signif).
template <class F>
py::object Decision(py::handle Type, F&& f) {
  TestOutcome r;
  Unlocked([&] { f(r); });
  return Type(HypothesisResult(r.hRes), r.Signif);
}

// A vector or a matrix over the caller's array, by the C++ type wanted.
template <class T>
T ArrayIn(const InArray& a) {
  if constexpr (std::is_same_v<T, TMtx>) return MtxIn(a);
  else return VecIn(a);
}
py::array ArrayOut(TVec&& v) { return VecOut(std::move(v)); }
py::array ArrayOut(TMtx&& m) { return MtxOut(std::move(m)); }

// The binding of an operation f(Src, Dst) of one array in and one array out.
template <class In, class Out>
auto OneToOne(void (*f)(const In&, Out&)) {
  return [f](const InArray& Src) {
    const In x = ArrayIn<In>(Src);
    Out r;
    Unlocked([&] { f(x, r); });
    return ArrayOut(std::move(r));
  };
}

// The binding of an operation f(Data) of one vector that returns a number.
auto OfVector(double (*f)(const TVec&)) {
  return [f](const InArray& Data) {
    const TVec x = VecIn(Data);
    return Unlocked([&] { return f(x); });
  };
}

void BindRanks(py::module_& m) {
  const py::handle Ranked = ResultType(m, "TTiedRanksResult", "Ranks TieSum", "Ranks and the tie sum.");
  m.def("Unique", OneToOne(&Unique), py::arg("Src"), Doc("Statistics::Unique"));
  m.def(
      "TiedRanks",
      [Ranked](const InArray& Data) {
        const TVec x = VecIn(Data);
        TVec ranks;
        double tieSum = 0.0;
        Unlocked([&] { TiedRanks(x, ranks, tieSum); });
        return Ranked(VecOut(std::move(ranks)), tieSum);
      },
      py::arg("Data"), Doc("Statistics::TiedRanks"));
}

void BindLocation(py::module_& m) {
  m.def(
      "MeanG",
      [](const InArray& Data) {
        const TVec x = VecIn(Data);
        return Unlocked([&] { return MeanG(x); });
      },
      py::arg("Data"), Doc("Statistics::MeanG"));
  m.def("MeanH", OfVector(&MeanH), py::arg("Data"), Doc("Statistics::MeanH"));
  m.def(
      "MeanT",
      [](const InArray& Data, double Percent) {
        const TVec x = VecIn(Data);
        return Unlocked([&] { return MeanT(x, Percent); });
      },
      py::arg("Data"), py::arg("Percent"), Doc("Statistics::MeanT"));
  m.def(
      "Moment",
      [](const InArray& X, double Mean, int Order) {
        const TVec x = VecIn(X);
        return Unlocked([&] { return Moment(x, Mean, Order); });
      },
      py::arg("X"), py::arg("Mean"), py::arg("Order"), Doc("Statistics::Moment"));
  m.def("Range", OfVector(&Range), py::arg("X"), Doc("Statistics::Range"));
  m.def("RangeRows", OneToOne(&RangeRows), py::arg("Data"), Doc("Statistics::RangeRows"));
  m.def("RangeCols", OneToOne(&RangeCols), py::arg("Data"), Doc("Statistics::RangeCols"));
  m.def("StdRows", OneToOne(&StdRows), py::arg("Data"), Doc("Statistics::StdRows"));
  m.def("StdCols", OneToOne(&StdCols), py::arg("Data"), Doc("Statistics::StdCols"));
  m.def("ZScore", OneToOne(&ZScore), py::arg("Data"), Doc("Statistics::ZScore"));
}

void BindPercentiles(py::module_& m) {
  m.def(
      "Percentile",
      [](const InArray& X, double p, TPercentileMethod Method) {
        const TVec x = VecIn(X);
        return Unlocked([&] { return Percentile(x, p, Method); });
      },
      py::arg("X"), py::arg("p"), py::arg("Method"), Doc("Statistics::Percentile"));
  m.def(
      "InterQuartile",
      [](const InArray& X, TPercentileMethod Method) {
        const TVec x = VecIn(X);
        return Unlocked([&] { return InterQuartile(x, Method); });
      },
      py::arg("X"), py::arg("Method"), Doc("Statistics::InterQuartile"));
}

// Histograms over equal bins return the counts and the bins as THistResult;
// over the caller's centres, the counts alone.
void BindHistograms(py::module_& m) {
  const py::handle Hist =
      ResultType(m, "THistResult", "Results Bins", "Counts (or frequencies) and the bins.");
  auto counted = [Hist](TVec& results, TVec& bins) {
    return Hist(VecOut(std::move(results)), VecOut(std::move(bins)));
  };
  m.def(
      "Histogram",
      [counted](const InArray& Data, int NumBins, bool CenterBins, double Hi, double Lo) {
        const TVec x = VecIn(Data);
        TVec results, bins;
        Unlocked([&] { Histogram(x, NumBins, results, bins, CenterBins, Hi, Lo); });
        return counted(results, bins);
      },
      py::arg("Data"), py::arg("NumBins"), py::arg("CenterBins"), py::arg("Hi"), py::arg("Lo"),
      Doc("Statistics::Histogram", 0));
  m.def(
      "Histogram",
      [counted](const InArray& Data, int NumBins, bool CenterBins) {
        const TVec x = VecIn(Data);
        TVec results, bins;
        Unlocked([&] { Histogram(x, NumBins, results, bins, CenterBins); });
        return counted(results, bins);
      },
      py::arg("Data"), py::arg("NumBins"), py::arg("CenterBins"), Doc("Statistics::Histogram", 1));
  m.def(
      "Histogram",
      [](const InArray& Data, const InArray& Bins) {
        const TVec x = VecIn(Data), b = VecIn(Bins);
        TVec results;
        Unlocked([&] { Histogram(x, b, results); });
        return VecOut(std::move(results));
      },
      py::arg("Data"), py::arg("Bins"), Doc("Statistics::Histogram", 2));
  m.def(
      "CumulativeHist",
      [counted](const InArray& Data, int NumBins, bool CenterBins) {
        const TVec x = VecIn(Data);
        TVec results, bins;
        Unlocked([&] { CumulativeHist(x, NumBins, results, bins, CenterBins); });
        return counted(results, bins);
      },
      py::arg("Data"), py::arg("NumBins"), py::arg("CenterBins"), Doc("Statistics::CumulativeHist", 0));
  m.def(
      "CumulativeHist",
      [](const InArray& Data, const InArray& Bins) {
        const TVec x = VecIn(Data), b = VecIn(Bins);
        TVec results;
        Unlocked([&] { CumulativeHist(x, b, results); });
        return VecOut(std::move(results));
      },
      py::arg("Data"), py::arg("Bins"), Doc("Statistics::CumulativeHist", 1));
}

// The vector and matrix forms take the same arguments: the shape of X picks one.
void BindCovariance(py::module_& m) {
  m.def(
      "Covariance",
      [](const VecArg& X, bool Biased) {
        const TVec x = VecIn(X.array);
        double cov = 0.0;
        Unlocked([&] { Covariance(x, cov, Biased); });
        return cov;
      },
      py::arg("X"), py::arg("Biased"), Doc("Statistics::Covariance", 0));
  m.def(
      "Covariance",
      [](const VecArg& X, const VecArg& Y, bool Biased) {
        const TVec x = VecIn(X.array), y = VecIn(Y.array);
        TMtx r;
        Unlocked([&] { Covariance(x, y, r, Biased); });
        return MtxOut(std::move(r));
      },
      py::arg("X"), py::arg("Y"), py::arg("Biased"), Doc("Statistics::Covariance", 1));
  m.def(
      "Covariance",
      [](const MtxArg& X, bool Biased) {
        const TMtx x = MtxIn(X.array);
        TMtx r;
        Unlocked([&] { Covariance(x, r, Biased); });
        return MtxOut(std::move(r));
      },
      py::arg("X"), py::arg("Biased"), Doc("Statistics::Covariance", 2));
  m.def(
      "Covariance",
      [](const MtxArg& X, const MtxArg& Y, bool Biased) {
        const TMtx x = MtxIn(X.array), y = MtxIn(Y.array);
        TMtx r;
        Unlocked([&] { Covariance(x, y, r, Biased); });
        return MtxOut(std::move(r));
      },
      py::arg("X"), py::arg("Y"), py::arg("Biased"), Doc("Statistics::Covariance", 3));
  m.def(
      "CorrCoef",
      [](const VecArg& X, const VecArg& Y) {
        const TVec x = VecIn(X.array), y = VecIn(Y.array);
        TMtx r;
        Unlocked([&] { CorrCoef(x, y, r); });
        return MtxOut(std::move(r));
      },
      py::arg("X"), py::arg("Y"), Doc("Statistics::CorrCoef", 0));
  m.def("CorrCoef", OneToOne<TMtx, TMtx>(&CorrCoef), py::arg("X"), Doc("Statistics::CorrCoef", 1));
  m.def(
      "CorrCoef",
      [](const MtxArg& X, const MtxArg& Y) {
        const TMtx x = MtxIn(X.array), y = MtxIn(Y.array);
        TMtx r;
        Unlocked([&] { CorrCoef(x, y, r); });
        return MtxOut(std::move(r));
      },
      py::arg("X"), py::arg("Y"), Doc("Statistics::CorrCoef", 2));
}

// PACF's two C++ forms both take one vector, so Python cannot tell them apart:
// the module binds the complete one, whose Dst is the second form's result
// (from two values of Src on; below two it raises where the short form returns
// an empty vector).
void BindAutocorrelation(py::module_& m) {
  const py::handle Partial =
      ResultType(m, "TPACFResult", "Phi Dst ErrVar",
                 "AR coefficients, partial autocorrelations, prediction-error variances.");
  m.def(
      "AutoCov",
      [](const InArray& Src, int Lags) {
        const TVec x = VecIn(Src);
        TVec r;
        Unlocked([&] { AutoCov(x, r, Lags); });
        return VecOut(std::move(r));
      },
      py::arg("Src"), py::arg("Lags"), Doc("Statistics::AutoCov"));
  m.def(
      "ACF",
      [](const InArray& Src, int Lags) {
        const TVec x = VecIn(Src);
        TVec r;
        Unlocked([&] { ACF(x, r, Lags); });
        return VecOut(std::move(r));
      },
      py::arg("Src"), py::arg("Lags"), Doc("Statistics::ACF"));
  m.def(
      "PACF",
      [Partial](const InArray& Src) {
        const TVec x = VecIn(Src);
        TVec phi, dst, errVar;
        Unlocked([&] { PACF(x, phi, dst, errVar); });
        return Partial(VecOut(std::move(phi)), VecOut(std::move(dst)), VecOut(std::move(errVar)));
      },
      py::arg("Src"), Doc("Statistics::PACF", 0));
}

// SignTest writes no interval: it returns the decision alone.
void BindLocationTests(py::module_& m, py::handle Test, py::handle Decided) {
  m.def(
      "ZTest",
      [Test](const InArray& Data, double Mean, double Sigma, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return WithInterval(
            Test, [&](TestOutcome& r) { ZTest(x, Mean, Sigma, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
      },
      py::arg("Data"), py::arg("Mean"), py::arg("Sigma"), py::arg("hType") = htTwoTailed,
      py::arg("Alpha") = 0.05, Doc("Statistics::ZTest"));
  m.def(
      "tTest",
      [Test](const InArray& Data, double Mean, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return WithInterval(
            Test, [&](TestOutcome& r) { tTest(x, Mean, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
      },
      py::arg("Data"), py::arg("Mean"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::tTest", 0));
  m.def(
      "tTest",
      [Test](const InArray& Data1, const InArray& Data2, bool Paired, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data1), y = VecIn(Data2);
        return WithInterval(
            Test, [&](TestOutcome& r) { tTest(x, y, r.hRes, r.Signif, r.ConfInt, Paired, hType, Alpha); });
      },
      py::arg("Data1"), py::arg("Data2"), py::arg("Paired") = false, py::arg("hType") = htTwoTailed,
      py::arg("Alpha") = 0.05, Doc("Statistics::tTest", 1));
  m.def(
      "SignTest",
      [Decided](const InArray& Data, double Median, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return Decision(
            Decided, [&](TestOutcome& r) { SignTest(x, Median, r.hRes, r.Signif, nullptr, hType, Alpha); });
      },
      py::arg("Data"), py::arg("Median"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::SignTest", 0));
  m.def(
      "SignTest",
      [Decided](const InArray& Data1, const InArray& Data2, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data1), y = VecIn(Data2);
        return Decision(Decided,
                        [&](TestOutcome& r) { SignTest(x, y, r.hRes, r.Signif, nullptr, hType, Alpha); });
      },
      py::arg("Data1"), py::arg("Data2"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::SignTest", 1));
}

void BindVarianceTests(py::module_& m, py::handle Test) {
  const py::handle Components = ResultType(m, "TBarlettResult", "NumComp Signif",
                                           "Components to keep and the significance of each step.");
  m.def(
      "ChiSquareTest",
      [Test](const InArray& Data, double Sigma, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return WithInterval(Test, [&](TestOutcome& r) {
          ChiSquareTest(x, Sigma, r.hRes, r.Signif, r.ConfInt, hType, Alpha);
        });
      },
      py::arg("Data"), py::arg("Sigma"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::ChiSquareTest"));
  m.def(
      "FTest",
      [Test](const InArray& Data1, const InArray& Data2, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data1), y = VecIn(Data2);
        return WithInterval(Test,
                            [&](TestOutcome& r) { FTest(x, y, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
      },
      py::arg("Data1"), py::arg("Data2"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::FTest"));
  m.def(
      "BarlettTest",
      [Components](const InArray& Data, TPCAMode Mode, double Alpha) {
        const TMtx x = MtxIn(Data);
        int numComp = 0;
        TVec signif;
        Unlocked([&] { BarlettTest(x, numComp, signif, Mode, Alpha); });
        return Components(numComp, VecOut(std::move(signif)));
      },
      py::arg("Data"), py::arg("Mode"), py::arg("Alpha") = 0.05, Doc("Statistics::BarlettTest"));
}

void BindRankTests(py::module_& m, py::handle Test) {
  const py::handle Spearman =
      ResultType(m, "TSpearmanResult", "Rs hRes Signif ConfInt",
                 "Rank correlation, decision, significance and interval (lower, upper).");
  m.def(
      "WilcoxonSign",
      [Test](const InArray& Data, double Median, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return WithInterval(Test, [&](TestOutcome& r) {
          WilcoxonSign(x, Median, r.hRes, r.Signif, r.ConfInt, hType, Alpha);
        });
      },
      py::arg("Data"), py::arg("Median"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::WilcoxonSign", 0));
  m.def(
      "WilcoxonSign",
      [Test](const InArray& Data1, const InArray& Data2, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data1), y = VecIn(Data2);
        return WithInterval(
            Test, [&](TestOutcome& r) { WilcoxonSign(x, y, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
      },
      py::arg("Data1"), py::arg("Data2"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::WilcoxonSign", 1));
  m.def(
      "SpearmanRankCorr",
      [Spearman](const InArray& X, const InArray& Y, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(X), y = VecIn(Y);
        double rs = 0.0;
        TestOutcome r;
        Unlocked([&] { SpearmanRankCorr(x, y, rs, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
        return Spearman(rs, HypothesisResult(r.hRes), r.Signif, Interval(r.ConfInt));
      },
      py::arg("X"), py::arg("Y"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::SpearmanRankCorr"));
}

// Goodness-of-fit and normality tests: a decision without an interval. The
// fitted-law form of GOFChi2Test is registered first: a law (an enumeration)
// never converts to an array, while a list as Data could let the other form
// take the law for E. The chi-square and normality tests default to the right
// tail, their usual significance (a large statistic, or a small W, rejects);
// the Kolmogorov test to both sides.
void BindFitTests(py::module_& m, py::handle Decided) {
  m.def(
      "GOFChi2Test",
      [Decided](const InArray& Data, TTestDistribution Dist, int NumBins, THypothesisType hType,
                double Alpha) {
        const TVec x = VecIn(Data);
        return Decision(
            Decided, [&](TestOutcome& r) { GOFChi2Test(x, Dist, NumBins, r.hRes, r.Signif, hType, Alpha); });
      },
      py::arg("Data"), py::arg("Dist"), py::arg("NumBins"), py::arg("hType") = htRightTailed,
      py::arg("Alpha") = 0.05, Doc("Statistics::GOFChi2Test", 1));
  m.def(
      "GOFChi2Test",
      [Decided](const InArray& O, const InArray& E, int SampleSize, int DegFreedom, THypothesisType hType,
                double Alpha) {
        const TVec o = VecIn(O), e = VecIn(E);
        return Decision(Decided, [&](TestOutcome& r) {
          GOFChi2Test(o, e, SampleSize, DegFreedom, r.hRes, r.Signif, hType, Alpha);
        });
      },
      py::arg("O"), py::arg("E"), py::arg("SampleSize"), py::arg("DegFreedom"),
      py::arg("hType") = htRightTailed, py::arg("Alpha") = 0.05, Doc("Statistics::GOFChi2Test", 0));
  m.def(
      "GOFKolmogorov",
      [Decided](const InArray& Data, const OptArray& CDFx, const OptArray& CDFy, THypothesisType hType,
                double Alpha) {
        const TVec x = VecIn(Data);
        TVec cdfx, cdfy;
        const TVec *tableX = OptVecIn(CDFx, cdfx), *tableY = OptVecIn(CDFy, cdfy);
        return Decision(Decided, [&](TestOutcome& r) {
          GOFKolmogorov(x, r.hRes, r.Signif, tableX, tableY, hType, Alpha);
        });
      },
      py::arg("Data"), py::arg("CDFx") = py::none(), py::arg("CDFy") = py::none(),
      py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05, Doc("Statistics::GOFKolmogorov"));
  m.def(
      "ShapiroWilks",
      [Decided](const InArray& Data, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return Decision(Decided, [&](TestOutcome& r) { ShapiroWilks(x, r.hRes, r.Signif, hType, Alpha); });
      },
      py::arg("Data"), py::arg("hType") = htRightTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::ShapiroWilks"));
  m.def(
      "ShapiroFrancia",
      [Decided](const InArray& Data, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        return Decision(Decided, [&](TestOutcome& r) { ShapiroFrancia(x, r.hRes, r.Signif, hType, Alpha); });
      },
      py::arg("Data"), py::arg("hType") = htRightTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::ShapiroFrancia"));
}

void BindDesign(py::module_& m) {
  m.def(
      "FullFactDesign",
      [](int n, const OptArray& MulVec) {
        TVec mul;
        const TVec* pm = OptVecIn(MulVec, mul);
        TMtx r;
        Unlocked([&] { FullFactDesign(n, r, pm); });
        return MtxOut(std::move(r));
      },
      py::arg("n"), py::arg("MulVec") = py::none(), Doc("Statistics::FullFactDesign", 0));
  m.def(
      "FullFactDesign",
      [](const InArray& Levels) {
        const TVec levels = VecIn(Levels);
        TMtx r;
        Unlocked([&] { FullFactDesign(levels, r); });
        return MtxOut(std::move(r));
      },
      py::arg("Levels"), Doc("Statistics::FullFactDesign", 1));
}

void BindPrincipalComponents(py::module_& m) {
  const py::handle OfMatrix = ResultType(m, "TPCAResult", "PC Eigen VarPercent",
                                         "Directions (in columns), eigenvalues and percentages of variance.");
  const py::handle OfData = ResultType(m, "TPCAScoresResult", "PC Scores Eigen VarPercent",
                                       "Directions, scores, eigenvalues and percentages of variance.");
  m.def(
      "PCA",
      [OfMatrix](const InArray& CovMat) {
        const TMtx c = MtxIn(CovMat);
        TMtx pc;
        TVec eigen, varPercent;
        Unlocked([&] { PCA(c, pc, eigen, &varPercent); });
        return OfMatrix(MtxOut(std::move(pc)), VecOut(std::move(eigen)), VecOut(std::move(varPercent)));
      },
      py::arg("CovMat"), Doc("Statistics::PCA", 0));
  m.def(
      "PCA",
      [OfData](const InArray& Data, TPCAMode Mode) {
        const TMtx x = MtxIn(Data);
        TMtx pc, scores;
        TVec eigen, varPercent;
        Unlocked([&] { PCA(x, pc, scores, eigen, &varPercent, Mode); });
        return OfData(MtxOut(std::move(pc)), MtxOut(std::move(scores)), VecOut(std::move(eigen)),
                      VecOut(std::move(varPercent)));
      },
      py::arg("Data"), py::arg("Mode"), Doc("Statistics::PCA", 1));
  m.def(
      "PCAResiduals",
      [](const InArray& Data, int NumPC) {
        const TMtx x = MtxIn(Data);
        TMtx r;
        Unlocked([&] { PCAResiduals(x, NumPC, r); });
        return MtxOut(std::move(r));
      },
      py::arg("Data"), py::arg("NumPC"), Doc("Statistics::PCAResiduals"));
}

}  // namespace

void BindStatistics(py::module_& m) {
  const py::handle Test =
      ResultType(m, "TTestResult", "hRes Signif ConfInt",
                 "A test's decision, significance probability and interval (lower, upper).");
  const py::handle Decided =
      ResultType(m, "TTestDecision", "hRes Signif", "A test's decision and significance probability.");
  BindRanks(m);
  BindLocation(m);
  BindPercentiles(m);
  BindHistograms(m);
  BindCovariance(m);
  BindAutocorrelation(m);
  BindLocationTests(m, Test, Decided);
  BindVarianceTests(m, Test);
  BindRankTests(m, Test);
  BindFitTests(m, Decided);
  BindDesign(m);
  BindPrincipalComponents(m);
  BindDistributions(m);
}

}  // namespace statkit::python
