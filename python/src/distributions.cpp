// The distribution moments, random variates and fits of the unit Statistics
// from Python. Each family has one shape, so one template per family binds all
// of its members, taking their parameter lists from the C++ declarations.

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include "binding.h"

namespace statkit::python {

using namespace Statistics;

namespace {

const char* DocOf(const char* name, int overload = 0) {
  return Doc(("Statistics::" + std::string(name)).c_str(), overload);
}

// Parameter K of the function F.
template <class Fn>
struct Params;
template <class... A>
struct Params<void (*)(A...)> {
  template <std::size_t K>
  using At = std::tuple_element_t<K, std::tuple<A...>>;
};
template <auto F, std::size_t K>
using ParamAt = typename Params<decltype(F)>::template At<K>;

// --- moments: F(parameters..., Mean, Variance) ----------------------------------

template <auto F, std::size_t... I>
auto MeanVariance(py::handle type, std::index_sequence<I...>) {
  return [type](ParamAt<F, I>... p) {
    double Mean = 0.0, Variance = 0.0;
    Unlocked([&] { F(p..., Mean, Variance); });
    return type(Mean, Variance);
  };
}

/// Binds the moments F of a law whose parameters are named \p params.
template <auto F, class... Names>
void DefMoments(py::module_& m, py::handle type, const char* name, Names... params) {
  m.def(name, MeanVariance<F>(type, std::make_index_sequence<sizeof...(Names)>()), py::arg(params)...,
        DocOf(name));
}

// --- random variates: F(parameters..., Results) ----------------------------------

/// The shape of the variates: n for a vector, (rows, cols) for a matrix.
using VariateShape = std::variant<int, std::pair<int, int>>;

template <auto F, std::size_t... I>
auto Variates(std::index_sequence<I...>) {
  return [](ParamAt<F, I>... p, const VariateShape& Shape) {
    if (const int* n = std::get_if<int>(&Shape)) {
      TVec r;
      Unlocked([&] {
        r.Size(*n);
        F(p..., r);
      });
      return VecOut(std::move(r));
    }
    const std::pair<int, int> dims = std::get<1>(Shape);
    TMtx r;
    Unlocked([&] {
      r.Size(dims.first, dims.second);
      F(p..., r);
    });
    return MtxOut(std::move(r));
  };
}

template <auto F, class... Names>
void DefVariates(py::module_& m, const char* name, Names... params) {
  m.def(name, Variates<F>(std::make_index_sequence<sizeof...(Names)>()), py::arg(params)..., py::arg("Shape"),
        DocOf(name));
}

// --- fits ------------------------------------------------------------------------

/// The short form fit(X, estimate) and the long form fit(X, estimate, ConfInt, Alpha)
/// of a one-parameter law; the long form returns \p withInterval (estimate, ConfInt).
template <class T>
void DefFits(py::module_& m, py::handle withInterval, const char* name, void (*fit)(const TVec&, T&),
             void (*fitInterval)(const TVec&, T&, double*, double)) {
  m.def(
      name,
      [fit](const InArray& X) {
        const TVec x = VecIn(X);
        T estimate{};
        Unlocked([&] { fit(x, estimate); });
        return estimate;
      },
      py::arg("X"), DocOf(name, 0));
  m.def(
      name,
      [fitInterval, withInterval](const InArray& X, double Alpha) {
        const TVec x = VecIn(X);
        T estimate{};
        double ci[2] = {0.0, 0.0};
        Unlocked([&] { fitInterval(x, estimate, ci, Alpha); });
        return withInterval(estimate, Interval(ci));
      },
      py::arg("X"), py::arg("Alpha"), DocOf(name, 1));
}

/// The result types of a two-parameter fit: the estimates, and the estimates with their intervals.
struct PairTypes {
  py::handle estimates, withIntervals;
};

// One keyword name per setting; E stays out of deduction, so an overloaded fit
// resolves to the declaration that matches E exactly.
template <class>
using Name = const char*;

/// The short form fit(X, e1, e2, E...) and the long form fit(X, e1, e2, ConfInt1, ConfInt2, E..., Alpha)
/// of a two-parameter law; E are the optimiser's settings (named \p settings), if any.

template <class... E>
void DefFits(py::module_& m, PairTypes types, const char* name,
             void (*fit)(const TVec&, double&, double&, std::type_identity_t<E>...),
             void (*fitIntervals)(const TVec&, double&, double&, double*, double*, std::type_identity_t<E>...,
                                  double),
             Name<E>... settings) {
  m.def(
      name,
      [fit, types](const InArray& X, E... e) {
        const TVec x = VecIn(X);
        double e1 = 0.0, e2 = 0.0;
        Unlocked([&] { fit(x, e1, e2, e...); });
        return types.estimates(e1, e2);
      },
      py::arg("X"), py::arg(settings)..., DocOf(name, 0));
  m.def(
      name,
      [fitIntervals, types](const InArray& X, E... e, double Alpha) {
        const TVec x = VecIn(X);
        double e1 = 0.0, e2 = 0.0, ci1[2] = {0.0, 0.0}, ci2[2] = {0.0, 0.0};
        Unlocked([&] { fitIntervals(x, e1, e2, ci1, ci2, e..., Alpha); });
        return types.withIntervals(e1, e2, Interval(ci1), Interval(ci2));
      },
      py::arg("X"), py::arg(settings)..., py::arg("Alpha"), DocOf(name, 1));
}

void BindBinomFits(py::module_& m) {
  const py::handle limits = ResultType(m, "TBinomFitResult", "P PLow PHigh",
                                       "Success probabilities with their lower and upper limits.");
  // The scalar n first: pybind11 tries overloads in order, and a number would
  // otherwise be taken for a one-element array.
  m.def(
      "BinomFit",
      [](const InArray& X, double n) {
        const TVec x = VecIn(X);
        TVec P;
        Unlocked([&] { BinomFit(x, n, P); });
        return VecOut(std::move(P));
      },
      py::arg("X"), py::arg("n"), DocOf("BinomFit", 0));
  m.def(
      "BinomFit",
      [](const InArray& X, const InArray& n) {
        const TVec x = VecIn(X), trials = VecIn(n);
        TVec P;
        Unlocked([&] { BinomFit(x, trials, P); });
        return VecOut(std::move(P));
      },
      py::arg("X"), py::arg("n"), DocOf("BinomFit", 1));
  m.def(
      "BinomFit",
      [limits](const InArray& X, double n, double Alpha) {
        const TVec x = VecIn(X);
        TVec P, PLow, PHigh;
        Unlocked([&] { BinomFit(x, n, P, PLow, PHigh, Alpha); });
        return limits(VecOut(std::move(P)), VecOut(std::move(PLow)), VecOut(std::move(PHigh)));
      },
      py::arg("X"), py::arg("n"), py::arg("Alpha"), DocOf("BinomFit", 2));
}

void BindMoments(py::module_& m) {
  const py::handle t = ResultType(m, "TMeanVariance", "Mean Variance", "A law's mean and variance.");
  DefMoments<MVBeta>(m, t, "MVBeta", "a", "b");
  DefMoments<MVBinom>(m, t, "MVBinom", "n", "p");
  DefMoments<MVCauchy>(m, t, "MVCauchy", "m", "b");
  DefMoments<MVChiSquare>(m, t, "MVChiSquare", "nu");
  DefMoments<MVExponent>(m, t, "MVExponent", "mu");
  DefMoments<MVF>(m, t, "MVF", "nu1", "nu2");
  DefMoments<MVGamma>(m, t, "MVGamma", "a", "b");
  DefMoments<MVGeometric>(m, t, "MVGeometric", "p");
  DefMoments<MVHypGeometric>(m, t, "MVHypGeometric", "M", "K", "N");
  DefMoments<MVMaxwell>(m, t, "MVMaxwell", "a");
  DefMoments<MVNegBinom>(m, t, "MVNegBinom", "r", "p");
  DefMoments<MVNormal>(m, t, "MVNormal", "mu", "sigma");
  DefMoments<MVPareto>(m, t, "MVPareto", "a", "b");
  DefMoments<MVPoisson>(m, t, "MVPoisson", "lambda_");  // lambda is a Python keyword
  DefMoments<MVRayleigh>(m, t, "MVRayleigh", "b");
  DefMoments<MVStudent>(m, t, "MVStudent", "v");
  DefMoments<MVUniform>(m, t, "MVUniform", "a", "b");
  DefMoments<MVUniformD>(m, t, "MVUniformD", "N");
  DefMoments<MVWeibull>(m, t, "MVWeibull", "a", "b");
}

void BindVariates(py::module_& m) {
  DefVariates<RandomBeta>(m, "RandomBeta", "A", "B");
  DefVariates<RandomBinom>(m, "RandomBinom", "n", "p");
  DefVariates<RandomCauchy>(m, "RandomCauchy", "m", "b");
  DefVariates<RandomChiSquare>(m, "RandomChiSquare", "nu");
  DefVariates<RandomExponent>(m, "RandomExponent", "mu");
  DefVariates<RandomF>(m, "RandomF", "ANu1", "ANu2");
  DefVariates<RandomGamma>(m, "RandomGamma", "A", "B");
  DefVariates<RandomGeometric>(m, "RandomGeometric", "p");
  DefVariates<RandomHypGeometric>(m, "RandomHypGeometric", "M", "K", "N");
  DefVariates<RandomLaplace>(m, "RandomLaplace", "m", "b");
  DefVariates<RandomLogNormal>(m, "RandomLogNormal", "mu", "sigma");
  DefVariates<RandomNegBinom>(m, "RandomNegBinom", "r", "p");
  DefVariates<RandomNormal>(m, "RandomNormal", "mu", "sigma");
  DefVariates<RandomPoisson>(m, "RandomPoisson", "lambda_");
  DefVariates<RandomRayleigh>(m, "RandomRayleigh", "b");
  DefVariates<RandomStudent>(m, "RandomStudent", "v");
  DefVariates<RandomTriangular>(m, "RandomTriangular", "a", "b", "c");
  DefVariates<RandomUniform>(m, "RandomUniform", "a", "b");
  DefVariates<RandomUniformD>(m, "RandomUniformD", "N");
  DefVariates<RandomWeibull>(m, "RandomWeibull", "a", "b");
}

void BindFits(py::module_& m) {
  const PairTypes ab{ResultType(m, "TFitAB", "a b", "The estimates a and b."),
                     ResultType(m, "TFitABIntervals", "a b ConfIntA ConfIntB",
                                "The estimates a and b with their intervals (lower, upper).")};
  const PairTypes muSigma{ResultType(m, "TFitMuSigma", "mu sigma", "The estimates mu and sigma."),
                          ResultType(m, "TFitMuSigmaIntervals", "mu sigma ConfIntMu ConfIntSigma",
                                     "The estimates mu and sigma with their intervals (lower, upper).")};
  const auto interval = [&m](const char* name, const char* fields) {
    return ResultType(m, name, fields, "The estimate with its interval (lower, upper).");
  };
  DefFits<int, double>(m, ab, "BetaFit", BetaFit, BetaFit, "MaxIter", "Tolerance");
  BindBinomFits(m);
  DefFits(m, interval("TExponentFitInterval", "mu ConfInt"), "ExponentFit", ExponentFit, ExponentFit);
  DefFits<int, double>(m, ab, "GammaFit", GammaFit, GammaFit, "MaxIter", "Tolerance");
  DefFits(m, interval("TGeometricFitInterval", "p ConfInt"), "GeometricFit", GeometricFit, GeometricFit);
  DefFits(m, muSigma, "LogNormalFit", LogNormalFit, LogNormalFit);
  DefFits(m, muSigma, "NormalFit", NormalFit, NormalFit);
  DefFits(m, interval("TPoissonFitInterval", "lambda_ ConfInt"), "PoissonFit", PoissonFit, PoissonFit);
  DefFits(m, interval("TRayleighFitInterval", "b ConfInt"), "RayleighFit", RayleighFit, RayleighFit);
  DefFits(m, interval("TUniformDFitInterval", "N ConfInt"), "UniformDFit", UniformDFit, UniformDFit);
  DefFits(m, ab, "UniformFit", UniformFit, UniformFit);
  DefFits<int, double>(m, ab, "WeibullFit", WeibullFit, WeibullFit, "MaxIter", "Tolerance");
}

}  // namespace

void BindDistributions(py::module_& m) {
  BindMoments(m);
  BindVariates(m);
  BindFits(m);
}

}  // namespace statkit::python
