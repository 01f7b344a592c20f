// ARIMA forecasts as exact conditional expectations given all observations,
// by the innovations algorithm (Brockwell and Davis 1991, 5.3 and 5.5), and
// ARMA/ARIMA simulation with the burn-in rule of R's arima.sim.

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include "array/checks.h"
#include "statkit/StatTimeSerAnalysis.h"
#include "timeseries/arma_innovations.h"

namespace statkit::StatTimeSerAnalysis {

namespace {

std::vector<double> valuesOf(const TVec& v) {
  std::vector<double> out(static_cast<std::size_t>(v.Length()));
  for (int i = 0; i < v.Length(); ++i) out[i] = v[i];
  return out;
}

// Replaces v[from..] by its running sums, `times` times: integration of the differences.
void integrate(std::vector<double>& v, std::size_t from, int times) {
  for (int k = 0; k < times; ++k)
    for (std::size_t i = from + 1; i < v.size(); ++i) v[i] += v[i - 1];
}

void predictArima(const TVec& Data, const TVec& P, const TVec& T, int d, int h, TVec& Forecast,
                  TVec& StdErr) {
  const int N = Data.Length();
  if (d < 0 || d >= N) ERaise("PredictArima: d out of range");
  const std::vector<double> data = valuesOf(Data), phi = valuesOf(P), theta = valuesOf(T);
  const int M = N - d;
  const int m = std::max(P.Length(), T.Length());
  PooledVec acf;
  // Only lags 0..m enter the transformed process; ArmaAcf refuses an empty model and M + h <= 0
  // (M + h in 64 bits: h may be near INT_MAX).
  ArmaAcf(P, T, static_cast<int>(std::min<long>(static_cast<long>(M) + h, std::max(m, 1))), *acf, false);
  if (h < 0) ERaise(msg::SizeMismatch);

  // The centred differenced series, in correlation units of its ARMA model.
  std::vector<double> y(data);
  for (int k = 0; k < d; ++k)
    for (std::size_t i = 0; i + 1 + k < data.size(); ++i) y[i] = y[i + 1] - y[i];
  y.resize(static_cast<std::size_t>(M));
  double mean = 0.0, ss = 0.0;
  for (double v : y) mean += v;
  mean /= M;
  for (double& v : y) {
    v -= mean;
    ss += v * v;
  }
  const double s = std::sqrt(ss / M);

  const double gamma0 = (*acf)[0];
  std::vector<double> rho(static_cast<std::size_t>(acf->Length()));
  for (int i = 0; i < acf->Length(); ++i) rho[i] = (*acf)[i] / gamma0;
  detail::ArmaInnovations inn(phi, theta, rho, 1.0 / gamma0);
  const long total = static_cast<long>(M) + h;
  y.resize(static_cast<std::size_t>(total), 0.0);
  std::vector<double> U(static_cast<std::size_t>(total), 0.0), vF(static_cast<std::size_t>(h));
  std::vector<double> thF(static_cast<std::size_t>(h) * std::max(m, 1), 0.0);  // rows M..M+h-1
  const auto past = [&y](long i) { return y[static_cast<std::size_t>(i)]; };
  for (long t = 0; t < total; ++t) {
    inn.Next();
    const double v = inn.Var();
    if (!(v > 0.0) || !std::isfinite(v)) ERaise(msg::NotPositiveDefinite);
    if (t < M) {
      U[t] = detail::PredictionError(inn, t, past, U.data());
    } else {
      // Future innovations have conditional mean 0: the forecast is the predictor itself.
      const long k = t - M;
      y[t] = -detail::PredictionError(inn, t, past, U.data());
      vF[k] = v;
      const auto c = inn.Coeffs();
      std::copy(c.begin(), c.end(), thF.begin() + k * m);
    }
  }

  // Forecast error k = sum over future innovations c <= k of their response at k: by the ARMA
  // recursion on the errors from row m on; integrated d times for the undifferenced series.
  std::vector<double> var(static_cast<std::size_t>(h), 0.0), e(static_cast<std::size_t>(h));
  for (int c = 0; c < h; ++c) {
    std::fill(e.begin(), e.end(), 0.0);
    for (int k = c; k < h; ++k) {
      const long t = static_cast<long>(M) + k;
      double r =
          k == c ? 1.0 : (k - c <= inn.window(t) ? thF[static_cast<std::size_t>(k) * m + (k - c - 1)] : 0.0);
      if (t >= m)
        for (int i = 0; i < static_cast<int>(phi.size()) && k - 1 - i >= c; ++i) r += phi[i] * e[k - 1 - i];
      e[k] = r;
    }
    integrate(e, static_cast<std::size_t>(c), d);
    for (int k = c; k < h; ++k) var[k] += e[k] * e[k] * vF[c];
  }

  std::vector<double> V;
  if (d == 0) {
    for (int k = 0; k < h; ++k) V.push_back(y[M + k] + mean);
  } else {
    // Start values: Data[N-d] and the first element of each further difference of the last d values.
    std::vector<double> tail(data.end() - d, data.end());
    for (int j = 0; j < d; ++j) {
      V.push_back(tail[0]);
      for (std::size_t i = 0; i + 1 < tail.size(); ++i) tail[i] = tail[i + 1] - tail[i];
      tail.pop_back();
    }
    for (int k = 0; k < h; ++k) V.push_back(y[M + k]);
    for (int k = 1; k <= d; ++k) integrate(V, static_cast<std::size_t>(d - k), 1);
    V.erase(V.begin(), V.begin() + d);
  }
  Forecast.Size(h);
  StdErr.Size(h);
  for (int k = 0; k < h; ++k) {
    Forecast[k] = V[k];
    StdErr[k] = s * std::sqrt(var[k]);
  }
}

void simulateArma(const TVec& P, const TVec& T, int n, TVec& Series) {
  const std::vector<double> phi = valuesOf(P), theta = valuesOf(T);
  const int p = P.Length(), q = T.Length();
  double burnIn = p + q;
  if (p > 0) {
    const double smallestRoot = 1.0 - Invertability(phi);
    if (!(smallestRoot > 1.0)) ERaise("SimulateArma: AR part not stationary");
    burnIn += std::ceil(6.0 / std::log(smallestRoot));  // R's arima.sim: 6 / ln of the smallest root
  }
  if (n < 0) ERaise(msg::SizeMismatch);
  if (burnIn + n > INT_MAX) ERaise(msg::IntegerOverflow);
  const int total = static_cast<int>(burnIn) + n;
  PooledVec e;
  e->Size(total);
  e->RandGauss(0.0, 1.0);
  std::vector<double> x(static_cast<std::size_t>(total));
  const double* z = e->data();
  // x_t = sum phi_i x_(t-i) + e_t - sum theta_j e_(t-j), from zeros before the first value
  for (int t = 0; t < total; ++t) {
    double v = z[t];
    for (int i = 1; i <= p && i <= t; ++i) v += phi[i - 1] * x[t - i];
    for (int j = 1; j <= q && j <= t; ++j) v -= theta[j - 1] * z[t - j];
    x[t] = v;
  }
  Series.Size(n);
  std::copy(x.end() - n, x.end(), Series.data());
}

}  // namespace

// The standard containers' std::bad_alloc becomes the array layer's "Out of memory".
void PredictArima(const TVec& Data, const TVec& P, const TVec& T, int d, int h, TVec& Forecast,
                  TVec& StdErr) {
  statkit::detail::RaisingOutOfMemory([&] { predictArima(Data, P, T, d, h, Forecast, StdErr); });
}

void SimulateArma(const TVec& P, const TVec& T, int n, TVec& Series) {
  statkit::detail::RaisingOutOfMemory([&] { simulateArma(P, T, n, Series); });
}

void SimulateArima(const TVec& P, const TVec& T, const TVec& Start, int n, TVec& Series) {
  std::vector<double> V = valuesOf(Start);  // Start may be Series
  const int k = Start.Length();
  SimulateArma(P, T, n, Series);
  for (int i = 0; i < n; ++i) V.push_back(Series[i]);
  for (int i = 1; i <= k; ++i) integrate(V, static_cast<std::size_t>(k - i), 1);
  for (int i = 0; i < n; ++i) Series[i] = V[i];
}

}  // namespace statkit::StatTimeSerAnalysis
