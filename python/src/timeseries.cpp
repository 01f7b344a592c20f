// The unit StatTimeSerAnalysis from Python: smoothing, ARMA autocorrelations,
// the ARIMA likelihood, its fit, forecasts and simulation. Values that C++
// updates in place (start values in, estimates out) are taken as inputs and
// returned; the caller's arrays are never written.

#include "binding.h"

namespace statkit::python {

using namespace StatTimeSerAnalysis;

namespace {

// An owned copy of a NumPy vector, for C++ parameters that are read and then overwritten.
std::span<const double> Values(const TVec& v) { return {v.data(), static_cast<std::size_t>(v.Length())}; }

void BindSmoothing(py::module_& m) {
  const py::handle Single = ResultType(m, "TSingleExpSmoothResult", "Smooth Alpha MSE",
                                       "One-step forecasts, the fitted Alpha and their mean squared error.");
  const py::handle Double = ResultType(m, "TDoubleExpSmoothResult", "Smooth Alpha Beta",
                                       "One-step forecasts and the fitted level and trend constants.");
  const py::handle Triple =
      ResultType(m, "TTripleExpSmoothResult", "Smooth Alpha Beta Gamma",
                 "One-step forecasts and the fitted level, trend and season constants.");
  m.def(
      "SingleExpSmooth",
      [Single](const InArray& Data, double Alpha, int InitMethod) {
        const TVec x = VecIn(Data);
        TVec smooth;
        const double mse = Unlocked([&] { return SingleExpSmooth(x, smooth, Alpha, InitMethod); });
        return Single(VecOut(std::move(smooth)), Alpha, mse);
      },
      py::arg("Data"), py::arg("Alpha"), py::arg("InitMethod"), Doc("StatTimeSerAnalysis::SingleExpSmooth"));
  m.def(
      "DoubleExpSmooth",
      [Double](const InArray& Data, double Alpha, double Beta) {
        const TVec x = VecIn(Data);
        TVec smooth;
        Unlocked([&] { DoubleExpSmooth(x, smooth, Alpha, Beta); });
        return Double(VecOut(std::move(smooth)), Alpha, Beta);
      },
      py::arg("Data"), py::arg("Alpha"), py::arg("Beta"), Doc("StatTimeSerAnalysis::DoubleExpSmooth"));
  m.def(
      "TripleExpSmooth",
      [Triple](const InArray& Data, double Alpha, double Beta, double Gamma) {
        const TVec x = VecIn(Data);
        TVec smooth;
        Unlocked([&] { TripleExpSmooth(x, smooth, Alpha, Beta, Gamma); });
        return Triple(VecOut(std::move(smooth)), Alpha, Beta, Gamma);
      },
      py::arg("Data"), py::arg("Alpha"), py::arg("Beta"), py::arg("Gamma"),
      Doc("StatTimeSerAnalysis::TripleExpSmooth", 0));
  m.def(
      "TripleExpSmooth",
      [Triple](const InArray& Data, double Alpha, double Beta, double Gamma, int Period) {
        const TVec x = VecIn(Data);
        TVec smooth;
        Unlocked([&] { TripleExpSmooth(x, smooth, Alpha, Beta, Gamma, Period); });
        return Triple(VecOut(std::move(smooth)), Alpha, Beta, Gamma);
      },
      py::arg("Data"), py::arg("Alpha"), py::arg("Beta"), py::arg("Gamma"), py::arg("Period"),
      Doc("StatTimeSerAnalysis::TripleExpSmooth", 1));
}

void BindArmaModel(py::module_& m) {
  const py::handle Fit =
      ResultType(m, "TArimaMLEResult", "P T Aux Iterations",
                 "Fitted AR and MA coefficients, [sigma^2, mu, -2 log-likelihood, AIC, BIC, "
                 "standard errors of P, of T] and the optimiser's iteration count.");
  m.def(
      "ArmaAcf",
      [](const InArray& P, const InArray& T, int n, bool Normalize) {
        const TVec p = VecIn(P), t = VecIn(T);
        TVec acf;
        Unlocked([&] { ArmaAcf(p, t, n, acf, Normalize); });
        return VecOut(std::move(acf));
      },
      py::arg("P"), py::arg("T"), py::arg("n"), py::arg("Normalize"), Doc("StatTimeSerAnalysis::ArmaAcf"));
  m.def(
      "Invertability",
      [](const InArray& A) {
        const TVec a = VecIn(A);
        return Unlocked([&] { return Invertability(Values(a)); });
      },
      py::arg("A"), Doc("StatTimeSerAnalysis::Invertability"));
  // The objective's eight objects are the series and seven work objects: Python passes the
  // series, the work objects are made here.
  m.def(
      "ArimaLike",
      [](const InArray& Pars, const InArray& Consts, const InArray& Data) {
        const TVec pars = VecIn(Pars), consts = VecIn(Consts), x = VecIn(Data);
        return Unlocked([&] {
          TVec w, acf, ar, ma;
          TMtx r, b, z;
          TObject* const objects[8] = {const_cast<TVec*>(&x), &w, &acf, &ar, &ma, &r, &b, &z};
          return ArimaLike(Values(pars), Values(consts), objects);
        });
      },
      py::arg("Pars"), py::arg("Consts"), py::arg("Data"), Doc("StatTimeSerAnalysis::ArimaLike"));
  m.def(
      "ArimaMLE",
      [Fit](const InArray& Data, const InArray& P, const InArray& T, int d) {
        const TVec x = VecIn(Data);
        TVec p = OwnedVec(P), t = OwnedVec(T), aux;
        const int iterations = Unlocked([&] { return ArimaMLE(x, p, t, d, aux); });
        return Fit(VecOut(std::move(p)), VecOut(std::move(t)), VecOut(std::move(aux)), iterations);
      },
      py::arg("Data"), py::arg("P"), py::arg("T"), py::arg("d"), Doc("StatTimeSerAnalysis::ArimaMLE"));
}

void BindForecasting(py::module_& m) {
  const py::handle Forecast =
      ResultType(m, "TPredictArimaResult", "Forecast StdErr", "The forecasts and their standard errors.");
  m.def(
      "PredictArima",
      [Forecast](const InArray& Data, const InArray& P, const InArray& T, int d, int h) {
        const TVec x = VecIn(Data), p = VecIn(P), t = VecIn(T);
        TVec forecast, stdErr;
        Unlocked([&] { PredictArima(x, p, t, d, h, forecast, stdErr); });
        return Forecast(VecOut(std::move(forecast)), VecOut(std::move(stdErr)));
      },
      py::arg("Data"), py::arg("P"), py::arg("T"), py::arg("d"), py::arg("h"),
      Doc("StatTimeSerAnalysis::PredictArima"));
  m.def(
      "SimulateArma",
      [](const InArray& P, const InArray& T, int n) {
        const TVec p = VecIn(P), t = VecIn(T);
        TVec series;
        Unlocked([&] { SimulateArma(p, t, n, series); });
        return VecOut(std::move(series));
      },
      py::arg("P"), py::arg("T"), py::arg("n"), Doc("StatTimeSerAnalysis::SimulateArma"));
  m.def(
      "SimulateArima",
      [](const InArray& P, const InArray& T, const InArray& Start, int n) {
        const TVec p = VecIn(P), t = VecIn(T), start = VecIn(Start);
        TVec series;
        Unlocked([&] { SimulateArima(p, t, start, n, series); });
        return VecOut(std::move(series));
      },
      py::arg("P"), py::arg("T"), py::arg("Start"), py::arg("n"), Doc("StatTimeSerAnalysis::SimulateArima"));
}

}  // namespace

void BindTimeSeries(py::module_& m) {
  BindSmoothing(m);
  BindArmaModel(m);
  BindForecasting(m);
}

}  // namespace statkit::python
