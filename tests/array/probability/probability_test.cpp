// Probability functions: 40-digit references into the far tails, the values
// outside the support and at its edges, NaN at invalid parameters, discrete
// inverses on the steps of their distribution functions, and the vector forms.

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "statkit/Array.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit {
namespace {

using test::kEps;
using Pars = std::vector<double>;
using Fn = std::function<double(const Pars&, double)>;

int I(double v) { return static_cast<int>(v); }

// Adapters by parameter types: d double, i int; the parameters come after the argument.
template <double (*F)(double, double, double)> double dd(const Pars& p, double x) { return F(x, p[0], p[1]); }
template <double (*F)(double, double)> double d(const Pars& p, double x) { return F(x, p[0]); }
template <double (*F)(double, int)> double i(const Pars& p, double x) { return F(x, I(p[0])); }
template <double (*F)(double, int, int)> double ii(const Pars& p, double x) { return F(x, I(p[0]), I(p[1])); }
template <double (*F)(double, int, double)> double id(const Pars& p, double x) { return F(x, I(p[0]), p[1]); }
#define FN(f, adapter) {#f, adapter<f>}

// Every scalar function by its fixture name.
const std::map<std::string, Fn>& Functions() {
  static const std::map<std::string, Fn> fns = {
      FN(NormalCDF, dd), FN(NormalCDFc, dd), FN(NormalPDF, dd), FN(NormalCDFInv, dd),
      FN(StudentCDF, i), FN(StudentCDFc, i), FN(StudentPDF, i), FN(StudentCDFInv, i),
      FN(ChiSquareCDF, i), FN(ChiSquareCDFc, i), FN(ChiSquarePDF, i), FN(ChiSquareCDFInv, i),
      FN(FCDF, ii), FN(FCDFc, ii), FN(FPDF, ii), FN(FCDFInv, ii),
      FN(GammaCDF, dd), FN(GammaCDFc, dd), FN(GammaPDF, dd), FN(GammaCDFInv, dd),
      FN(BetaCDF, dd), FN(BetaPDF, dd), FN(BetaCDFInv, dd),
      FN(WeibullCDF, dd), FN(WeibullPDF, dd), FN(WeibullCDFInv, dd),
      FN(ExpCDF, d), FN(ExpPDF, d), FN(ExpCDFInv, d),
      FN(RayleighCDF, d), FN(RayleighPDF, d), FN(RayleighCDFInv, d),
      FN(BinomCDF, id), FN(BinomCDFc, id), FN(BinomPDF, id),
      FN(PoissonCDF, d), FN(PoissonCDFc, d), FN(PoissonPDF, d), FN(PoissonCDFInv, d),
      FN(NegBinomCDF, id), FN(NegBinomCDFc, id), FN(NegBinomPDF, id), FN(NegBinomCDFInv, id),
      {"ErfInv", [](const Pars&, double x) { return ErfInv(x); }},
  };
  return fns;
}

// Relative error against a reference exact to the last bit; below the normal range
// the spacing of the doubles is absolute, so is the tolerance there.
double Deviation(double actual, double expected) {
  if (actual == expected || (std::isnan(actual) && std::isnan(expected))) return 0.0;
  if (std::isnan(actual) || std::isnan(expected)) return INF;
  if (std::fabs(expected) < DBL_MIN) return std::fabs(actual - expected) <= 1e-300 ? 0.0 : INF;
  return std::fabs(actual - expected) / std::fabs(expected);
}

TEST(ProbabilityReference, MatchesFortyDigitValuesToOneInTenToThe13) {
  std::map<std::string, double> worst;
  int compared = 0;
  for (const auto& r : test::LoadFixture("probability.txt")) {
    const std::string& name = r.Str("fn");
    auto fn = Functions().find(name);
    ASSERT_NE(fn, Functions().end()) << name;
    Pars par = r.Has("par") ? r.Nums("par") : Pars{};
    std::vector<double> xs = r.Nums("x"), ys = r.Nums("y");
    // The vector form of the normal distribution function runs on glibc's vector erfc.
    TVec vec;
    if (name == "NormalCDF") NormalCDF(TVec(xs), par[0], par[1], vec);
    for (std::size_t i = 0; i < xs.size(); ++i, ++compared) {
      if (name == "NormalCDF") {
        EXPECT_LE(Deviation(vec[I(i)], ys[i]), 1e-13) << "vector NormalCDF x " << xs[i];
      }
      double got = fn->second(par, xs[i]);
      double dev = Deviation(got, ys[i]);
      worst[name] = std::max(worst[name], dev);
      // Discrete inverses are whole numbers: exact. Everything else to 1e-13 (450 eps).
      bool discrete = name == "PoissonCDFInv" || name == "NegBinomCDFInv";
      double tol = discrete ? 0.0 : 1e-13;
      EXPECT_LE(dev, tol) << name << " par " << testing::PrintToString(par) << " x " << xs[i] << " got " << got
                          << " want " << ys[i];
    }
  }
  EXPECT_GT(compared, 5000);
  for (const auto& [name, dev] : worst) std::printf("  worst %-16s %.2e (%.0f eps)\n", name.c_str(), dev, dev / kEps);
}

TEST(Probability, InvalidParametersGiveNaN) {
  const std::vector<std::function<double()>> calls = {
      [] { return NormalCDF(0, 0, 0); },       [] { return NormalCDF(0, 0, -1); },
      [] { return NormalPDF(0, INF, 1); },     [] { return NormalCDFInv(0.5, 0, NAN); },
      [] { return NormalCDFInv(1.5, 0, 1); },  [] { return NormalCDFInv(-0.0001, 0, 1); },
      [] { return StudentCDF(1, 0); },         [] { return StudentCDFc(1, -3); },
      [] { return StudentCDFInv(NAN, 5); },    [] { return ChiSquareCDF(1, 0); },
      [] { return ChiSquarePDF(1, -1); },      [] { return ChiSquareCDFInv(2, 3); },
      [] { return FCDF(1, 0, 3); },            [] { return FCDFc(1, 3, 0); },
      [] { return FCDFInv(0.5, 2, -1); },      [] { return GammaCDF(1, 0, 1); },
      [] { return GammaPDF(1, 1, -2); },       [] { return GammaCDFInv(0.5, NAN, 1); },
      [] { return BetaCDF(0.5, 0, 1); },       [] { return BetaPDF(0.5, 1, INF); },
      [] { return BetaCDFInv(-1, 2, 2); },     [] { return WeibullCDF(1, -1, 2); },
      [] { return WeibullPDF(1, 1, 0); },      [] { return WeibullCDFInv(0.5, 0, 1); },
      [] { return ExpCDF(1, 0); },             [] { return ExpPDF(1, -1); },
      [] { return RayleighCDF(1, 0); },        [] { return RayleighCDFInv(2, 1); },
      [] { return BinomCDF(1, -1, 0.5); },     [] { return BinomCDF(1, 5, 1.5); },
      [] { return BinomPDF(1, 5, NAN); },      [] { return PoissonCDF(1, -1); },
      [] { return PoissonPDF(1, INF); },       [] { return PoissonCDFInv(0.5, -1); },
      [] { return NegBinomCDF(1, 0, 0.5); },   [] { return NegBinomPDF(1, 2, 0); },
      [] { return NegBinomCDFInv(0.5, 3, 1.1); }, [] { return ErfInv(1.0000001); },
      [] { return NormalCDF(NAN, 0, 1); },     [] { return GammaCDF(NAN, 2, 1); },
      [] { return BinomCDF(NAN, 3, 0.5); },
  };
  for (std::size_t i = 0; i < calls.size(); ++i) EXPECT_TRUE(std::isnan(calls[i]())) << "call " << i;
}

TEST(Probability, DistributionFunctionsAndDensitiesAtAndBeyondTheSupportEdges) {
  struct Case {
    const char* what;
    double got, want;
  } cases[] = {
      {"NormalCDF -inf", NormalCDF(-INF, 0, 1), 0},   {"NormalCDF +inf", NormalCDF(INF, 3, 2), 1},
      {"NormalCDFc -inf", NormalCDFc(-INF, 0, 1), 1}, {"StudentCDF -inf", StudentCDF(-INF, 3), 0},
      {"StudentCDF +inf", StudentCDF(INF, 1), 1},     {"StudentCDFc +inf", StudentCDFc(INF, 7), 0},
      {"ChiSquareCDF <0", ChiSquareCDF(-1, 3), 0},    {"ChiSquareCDFc <0", ChiSquareCDFc(-1, 3), 1},
      {"ChiSquareCDF +inf", ChiSquareCDF(INF, 3), 1}, {"FCDF 0", FCDF(0, 2, 3), 0},
      {"FCDF -inf", FCDF(-INF, 2, 3), 0},             {"FCDFc +inf", FCDFc(INF, 2, 3), 0},
      {"GammaCDF -inf", GammaCDF(-INF, 2, 3), 0},     {"GammaCDFc +inf", GammaCDFc(INF, 2, 3), 0},
      {"BetaCDF <0", BetaCDF(-0.5, 2, 3), 0},         {"BetaCDF >1", BetaCDF(1.5, 2, 3), 1},
      {"BetaCDF +inf", BetaCDF(INF, 2, 3), 1},        {"WeibullCDF <0", WeibullCDF(-2, 1, 2), 0},
      {"WeibullCDF +inf", WeibullCDF(INF, 1, 2), 1},  {"ExpCDF -inf", ExpCDF(-INF, 2), 0},
      {"ExpCDF +inf", ExpCDF(INF, 2), 1},             {"RayleighCDF +inf", RayleighCDF(INF, 2), 1},
      {"BinomCDF <0", BinomCDF(-0.5, 4, 0.3), 0},     {"BinomCDF >=N", BinomCDF(4.5, 4, 0.3), 1},
      {"BinomCDFc +inf", BinomCDFc(INF, 4, 0.3), 0},  {"PoissonCDF -inf", PoissonCDF(-INF, 3), 0},
      {"PoissonCDF +inf", PoissonCDF(INF, 3), 1},     {"PoissonCDFc -1", PoissonCDFc(-1, 3), 1},
      {"NegBinomCDF +inf", NegBinomCDF(INF, 2, 0.4), 1}, {"NegBinomCDFc <0", NegBinomCDFc(-3, 2, 0.4), 1},
      // Between whole numbers the discrete distribution functions keep their value at the floor.
      {"BinomCDF 7.999", BinomCDF(7.999, 30, 0.37) - BinomCDF(7, 30, 0.37), 0},
      {"BinomCDF 2.25", BinomCDF(2.25, 30, 0.37) - BinomCDF(2, 30, 0.37), 0},
      {"BinomCDFc 29.5", BinomCDFc(29.5, 30, 0.37) - BinomCDFc(29, 30, 0.37), 0},
      {"BinomCDFc 0.5", BinomCDFc(0.5, 30, 0.37) - BinomCDFc(0, 30, 0.37), 0},
      // Degenerate laws at the boundary of their parameters put all mass on one point.
      {"BinomCDF P=0", BinomCDF(0, 7, 0), 1},         {"BinomCDF P=1", BinomCDF(6, 7, 1), 0},
      {"BinomCDF N=0", BinomCDF(0, 0, 0.5), 1},       {"PoissonCDF mean 0", PoissonCDF(0, 0), 1},
      {"NegBinomCDF P=1", NegBinomCDF(0, 3, 1), 1},   {"PoissonCDFInv mean 0", PoissonCDFInv(0.9, 0), 0},
      // The inverses at p = 0 and 1 give the ends of the support.
      {"NormalCDFInv 0", NormalCDFInv(0, 1, 2), -INF}, {"StudentCDFInv 1", StudentCDFInv(1, 4), INF},
      {"ChiSquareCDFInv 0", ChiSquareCDFInv(0, 4), 0}, {"FCDFInv 1", FCDFInv(1, 2, 5), INF},
      {"GammaCDFInv 1", GammaCDFInv(1, 2, 5), INF},    {"BetaCDFInv 1", BetaCDFInv(1, 2, 5), 1},
      {"BetaCDFInv 0", BetaCDFInv(0, 2, 5), 0},        {"WeibullCDFInv 1", WeibullCDFInv(1, 2, 5), INF},
      {"ExpCDFInv 1", ExpCDFInv(1, 2), INF},           {"PoissonCDFInv 1", PoissonCDFInv(1, 2.5), INF},
      {"PoissonCDFInv 0", PoissonCDFInv(0, 2.5), 0},   {"NegBinomCDFInv 1", NegBinomCDFInv(1, 2, 0.5), INF},
      {"ErfInv 1", ErfInv(1), INF},                    {"ErfInv -1", ErfInv(-1), -INF},
      // The density's limit at the edge of the support: +inf, a constant or 0 by the exponent there.
      {"GammaPDF A<1", GammaPDF(0, 0.5, 2), INF},   {"GammaPDF A=1", GammaPDF(0, 1, 4), 0.25},
      {"GammaPDF A>1", GammaPDF(0, 1.5, 2), 0},     {"GammaPDF x<0", GammaPDF(-1, 0.5, 2), 0},
      {"ChiSquarePDF 1", ChiSquarePDF(0, 1), INF},  {"ChiSquarePDF 2", ChiSquarePDF(0, 2), 0.5},
      {"ChiSquarePDF 3", ChiSquarePDF(0, 3), 0},    {"FPDF 1", FPDF(0, 1, 5), INF},
      {"FPDF 2", FPDF(0, 2, 5), 1},                 {"FPDF 3", FPDF(0, 3, 5), 0},
      {"BetaPDF 0 A<1", BetaPDF(0, 0.5, 3), INF},   {"BetaPDF 0 A=1", BetaPDF(0, 1, 3), 3},
      {"BetaPDF 0 A>1", BetaPDF(0, 2, 3), 0},       {"BetaPDF 1 B<1", BetaPDF(1, 3, 0.5), INF},
      {"BetaPDF 1 B=1", BetaPDF(1, 3, 1), 3},       {"BetaPDF 1 B>1", BetaPDF(1, 3, 2), 0},
      {"BetaPDF uniform", BetaPDF(1, 1, 1), 1},     {"BetaPDF outside", BetaPDF(1.01, 0.5, 0.5), 0},
      {"WeibullPDF B<1", WeibullPDF(0, 2, 0.5), INF}, {"WeibullPDF B=1", WeibullPDF(0, 2, 1), 2},
      {"WeibullPDF B>1", WeibullPDF(0, 2, 3), 0},   {"ExpPDF 0", ExpPDF(0, 4), 0.25},
      {"ExpPDF <0", ExpPDF(-1, 4), 0},              {"RayleighPDF 0", RayleighPDF(0, 2), 0},
      {"NormalPDF inf", NormalPDF(-INF, 0, 1), 0},  {"StudentPDF inf", StudentPDF(INF, 2), 0},
      {"BinomPDF fractional", BinomPDF(2.5, 5, 0.5), 0}, {"PoissonPDF fractional", PoissonPDF(1.5, 2), 0},
      {"NegBinomPDF <0", NegBinomPDF(-1, 2, 0.5), 0}, {"PoissonPDF mean 0", PoissonPDF(0, 0), 1},
  };
  for (const auto& c : cases) EXPECT_EQ(c.got, c.want) << c.what;
}

// p exactly on a step, CDF(k) as computed: the smallest k with CDF(k) >= p is k
// itself, one bit above it is k + 1, one bit below it stays k (or less).
TEST(Probability, DiscreteInversesOnTheStepsOfTheirDistributionFunctions) {
  struct Law {
    const char* name;
    std::function<double(double)> cdf, inv;
    double kmax;
  } laws[] = {
      {"Poisson 3.5", [](double k) { return PoissonCDF(k, 3.5); }, [](double p) { return PoissonCDFInv(p, 3.5); }, 25},
      {"Poisson 1e5", [](double k) { return PoissonCDF(k, 1e5); }, [](double p) { return PoissonCDFInv(p, 1e5); }, 0},
      {"NegBinom 4 0.3", [](double k) { return NegBinomCDF(k, 4, 0.3); },
       [](double p) { return NegBinomCDFInv(p, 4, 0.3); }, 60},
      {"NegBinom 200 0.9", [](double k) { return NegBinomCDF(k, 200, 0.9); },
       [](double p) { return NegBinomCDFInv(p, 200, 0.9); }, 60},
  };
  for (const auto& law : laws) {
    std::vector<double> ks;
    for (double k = 0; k <= law.kmax; ++k) ks.push_back(k);
    if (law.kmax == 0) ks = {99000, 99700, 100000, 100300, 101000};
    for (double k : ks) {
      double p = law.cdf(k);
      if (p >= 1.0) break;
      EXPECT_EQ(law.inv(p), k) << law.name << " k " << k;
      EXPECT_EQ(law.inv(std::nextafter(p, 1.0)), k + 1) << law.name << " k " << k;
      EXPECT_LE(law.inv(std::nextafter(p, 0.0)), k) << law.name << " k " << k;
    }
  }
}

TEST(Probability, VectorFormsMatchTheScalarFormsAndRefuseComplexData) {
  TMtx x{{-38.5, -5, 0.25}, {1e-300, 3, INF}};
  struct Form {
    const char* name;
    std::function<void(const TDenseKalpa&, TDenseKalpa&)> vec;
    std::function<double(double)> scalar;
  } forms[] = {
      {"NormalCDF shifted", [](auto& s, auto& d) { NormalCDF(s, 0.5, 2, d); }, [](double v) { return NormalCDF(v, 0.5, 2); }},
      {"NormalCDF standard", [](auto& s, auto& d) { NormalCDF(s, 0, 1, d); }, [](double v) { return NormalCDF(v, 0, 1); }},
      {"NormalCDFInv", [](auto& s, auto& d) { NormalCDFInv(s, 1, 2, d); }, [](double v) { return NormalCDFInv(v, 1, 2); }},
      {"GammaCDF", [](auto& s, auto& d) { GammaCDF(s, 2, 3, d); }, [](double v) { return GammaCDF(v, 2, 3); }},
      {"GammaPDF", [](auto& s, auto& d) { GammaPDF(s, 0.5, 3, d); }, [](double v) { return GammaPDF(v, 0.5, 3); }},
      {"BetaCDF", [](auto& s, auto& d) { BetaCDF(s, 2, 3, d); }, [](double v) { return BetaCDF(v, 2, 3); }},
      {"BetaPDF", [](auto& s, auto& d) { BetaPDF(s, 2, 3, d); }, [](double v) { return BetaPDF(v, 2, 3); }},
      {"WeibullCDF", [](auto& s, auto& d) { WeibullCDF(s, 2, 3, d); }, [](double v) { return WeibullCDF(v, 2, 3); }},
      {"WeibullPDF", [](auto& s, auto& d) { WeibullPDF(s, 2, 3, d); }, [](double v) { return WeibullPDF(v, 2, 3); }},
      {"ExpCDF", [](auto& s, auto& d) { ExpCDF(s, 2, d); }, [](double v) { return ExpCDF(v, 2); }},
      {"RayleighCDF", [](auto& s, auto& d) { RayleighCDF(s, 2, d); }, [](double v) { return RayleighCDF(v, 2); }},
  };
  TVec z;
  z.Size(2, true);
  for (const auto& f : forms) {
    TVec dst;  // sized by the call, like X
    EXPECT_RAISES(f.vec(z, dst), "Complex data not supported") << f.name;
    f.vec(x, dst);
    ASSERT_EQ(dst.Length(), x.Length()) << f.name;
    TMtx inPlace = x;  // Dst the same object as X
    f.vec(inPlace, inPlace);
    for (int i = 0; i < x.Length(); ++i) {
      // The normal's vector erfc and the scalar one may differ in the last bit.
      double want = f.scalar(x.data()[i]), tol = std::string(f.name).starts_with("NormalCDF ") ? 2 * kEps : 0.0;
      EXPECT_LE(Deviation(dst[i], want), tol) << f.name << " " << i;
      EXPECT_LE(Deviation(inPlace.data()[i], want), tol) << f.name << " " << i;
    }
  }
  // A destination that overlaps its source shifted by one reads every input first.
  TVec buf{-1, 0, 1, 2, 3};
  TVec src, dst;
  src.SetSubRange(buf, 0, 4);
  dst.SetSubRange(buf, 1, 4);
  NormalCDF(src, 0, 1, dst);
  for (int i = 0; i < 4; ++i) EXPECT_LE(Deviation(buf[i + 1], NormalCDF(i - 1.0, 0, 1)), 2 * kEps) << i;

  TVec nu1{1, 5, 2.5, 0}, nu2{7, 10, 3, 4}, q;
  FCDFInv(0.9, nu1, nu2, q);
  ASSERT_EQ(q.Length(), 4);
  EXPECT_EQ(q[0], FCDFInv(0.9, 1, 7));
  EXPECT_EQ(q[1], FCDFInv(0.9, 5, 10));
  EXPECT_TRUE(std::isnan(q[2]) && std::isnan(q[3]));  // not a whole number; not positive
  EXPECT_RAISES(FCDFInv(0.5, z, z, q), "Complex data not supported");
  EXPECT_RAISES(FCDFInv(0.5, nu1, TVec{3}, q), "Size mismatch");
}

// Arguments far out, each once a hang, a wrong answer or a value outside [0, 1]: the
// answer known exactly (tol 0), to tol, or NaN where no double can hold it.
TEST(Probability, ExtremeArgumentsGiveKnownAnswersOrNaN) {
  const double p0 = 0.5 + 1.0 / (3.0 * std::sqrt(2e12 * 3.141592653589793));  // P(a, a), Temme
  struct Case {
    const char* what;
    double got, want, tol;
  } cases[] = {
      {"BetaCDF symmetric two-point limit", BetaCDF(0.5, 1e-300, 1e-300), 0.5, 0},
      {"BetaCDFInv 3/4 of the mass at 0", BetaCDFInv(0.25, 1e-300, 3e-300), 0, 0},
      {"BetaCDF two huge shapes", BetaCDF(0.5, 1e12, 1e12), NAN, 0},
      {"BetaCDFInv two huge shapes", BetaCDFInv(0.5, 1e300, 1e300), NAN, 0},
      // B X tends to a gamma law with shape A as B grows.
      {"BetaCDFInv huge B (Boost: no return)", BetaCDFInv(0.625, 2.8125, DBL_MAX) * DBL_MAX / GammaCDFInv(0.625, 2.8125, 1), 1, 1e-14},
      {"BetaCDFInv huge B (Boost: NaN)", BetaCDFInv(0.5, 30, 1e300) * 1e300 / GammaCDFInv(0.5, 30, 1), 1, 1e-14},
      {"BetaCDF tiny A, x subnormal", BetaCDF(4.94e-324, 1e-300, 1e10), 1, 0},
      {"BetaCDF tiny B, x near 1", BetaCDF(0.999, 30, 1e-300), 0, 0},
      {"BinomPDF subnormal P", BinomPDF(1, 1, 4.94e-324), 4.94e-324, 0},
      {"BinomPDF 1 - 1e-300 to the 30th", BinomPDF(0, 30, 1e-300), 1, 0},
      {"PoissonPDF subnormal mean", PoissonPDF(30, 4.94e-324), 0, 0},
      {"NegBinomCDF gamma limit", NegBinomCDF(1e300, 2, 0.5), 1, 0},
      {"PoissonCDFInv median of a whole mean", PoissonCDFInv(0.5, 1e15), 1e15, 0},
      {"PoissonCDFInv mean 1e300 (Boost: no return)", PoissonCDFInv(0.5, 1e300), NAN, 0},
      {"NegBinomCDFInv median near 7e299", NegBinomCDFInv(0.5, 1, 1e-300), NAN, 0},
      {"GammaCDF P(a, a) at 1e12 (Boost: 0.34)", GammaCDF(1e12, 1e12, 1), p0, 1e-11},
      {"FCDF symmetry at 1", FCDF(1, 1000000000, 1000000000), 0.5, 1e-14},
  };
  for (const auto& c : cases) {
    if (std::isnan(c.want)) EXPECT_TRUE(std::isnan(c.got)) << c.what << " got " << c.got;
    else EXPECT_LE(std::fabs(c.got - c.want), c.tol) << c.what << " got " << c.got;
  }
}

// No hidden state: the same calls from four threads at once give the serial results.
TEST(Probability, ConcurrentCallsAgreeWithSerialOnes) {
  auto work = [] {
    double s = 0;
    for (int i = 1; i < 200; ++i) {
      double p = i / 200.0;
      s += FCDFInv(p, 3, 1000000) + BetaCDFInv(p, 0.5, 40) + StudentCDF(-p * 10, 1000000) + PoissonCDFInv(p, 1e4);
    }
    return s;
  };
  double serial = work();
  std::vector<double> got(4);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) threads.emplace_back([&, t] { got[t] = work(); });
  for (auto& th : threads) th.join();
  for (double g : got) EXPECT_EQ(g, serial);
}

}  // namespace
}  // namespace statkit
