// ARMA autocovariances (the first max(p, q) + 1 Yule-Walker-type equations,
// then the AR recursion), the root test of a lag polynomial, the exact Gaussian
// ARIMA likelihood by innovations (Ansley 1979) and its maximisation.

#include <algorithm>
#include <climits>
#include <cmath>
#include <numbers>
#include <vector>

#include "statkit/StatTimeSerAnalysis.h"
#include "statkit/Statistics.h"
#include "timeseries/arma_innovations.h"
#include "timeseries/object_access.h"

namespace statkit::StatTimeSerAnalysis {

namespace {

// The largest double less 4 units in the last place: returned for inadmissible coefficients.
constexpr double kPenalty = 1.797693134862315e308;

std::vector<double> valuesOf(const TVec& v) {
  std::vector<double> out(static_cast<std::size_t>(v.Length()));
  for (int i = 0; i < v.Length(); ++i) out[i] = v[i];
  return out;
}

// The pieces of the concentrated likelihood at one parameter point.
struct Likelihood {
  double value = 0.0;   // N ln s2 + ln det R
  double s2 = 0.0;      // innovation variance in correlation units
  double mu = 0.0;      // generalised least-squares mean of the differenced series
  double gamma0 = 0.0;  // variance of the process with unit innovation variance
  int N = 0;
};

struct Orders {
  int d, p;
};

// Consts = [d, p], converted by truncation once checked: d below 0 differences nothing, d beyond
// the series' length empties it.
Orders ordersOf(std::span<const double> Pars, std::span<const double> Consts, int dataLength) {
  if (Consts.size() < 2 || !std::isfinite(Consts[0]) || !std::isfinite(Consts[1]))
    ERaise(msg::InvalidParameter);
  if (Consts[1] < 0 || Consts[1] >= static_cast<double>(Pars.size()) + 1) ERaise(msg::InvalidParameter);
  const double d = std::clamp(std::trunc(Consts[0]), 0.0, static_cast<double>(dataLength));
  return {static_cast<int>(d), static_cast<int>(Consts[1])};
}

// N ln s2 + ln det R of the d-times differenced series with its GLS mean removed; false where an
// innovation variance comes out non-positive (R is then not positive definite).
bool concentratedLikelihood(std::span<const double> Pars, std::span<const double> Consts,
                            std::span<TObject* const> Objects, Likelihood& out) {
  const TVec& data = detail::ObjectAt<TVec>(Objects, 0);
  TVec& W = detail::ObjectAt<TVec>(Objects, 1);
  TVec& acf = detail::ObjectAt<TVec>(Objects, 2);
  TVec& ar = detail::ObjectAt<TVec>(Objects, 3);
  TVec& ma = detail::ObjectAt<TVec>(Objects, 4);
  TMtx& work = detail::ObjectAt<TMtx>(Objects, 5);
  detail::ObjectAt<TMtx>(Objects, 6);
  detail::ObjectAt<TMtx>(Objects, 7);
  const Orders o = ordersOf(Pars, Consts, data.Length());
  const int q = static_cast<int>(Pars.size()) - o.p;
  ar.Size(o.p);
  ar.CopyFromArray(Pars, 0, 0, o.p);
  ma.Size(q);
  ma.CopyFromArray(Pars, o.p, 0, q);
  W = data;
  for (int k = 0; k < o.d; ++k) W.Difference();
  const int N = W.Length();
  const int m = std::max(o.p, q);
  // Lags up to m are all the transformed process needs; ArmaAcf refuses what it always refuses.
  ArmaAcf(ar, ma, std::min(N - 1, m), acf, false);
  const double gamma0 = acf[0];
  std::vector<double> rho(static_cast<std::size_t>(acf.Length()));
  for (int i = 0; i < acf.Length(); ++i) rho[i] = acf[i] / gamma0;
  detail::ArmaInnovations inn(Pars.first(o.p), Pars.subspan(o.p), rho, 1.0 / gamma0);

  // Rows: innovations of the series, innovations of the constant 1, their variances.
  work.Size(3, N);
  double* Ux = work.data();
  double* U1 = Ux + N;
  double* v = U1 + N;
  const double* w = W.data();
  const auto series = [w](long i) { return w[i]; };
  const auto one = [](long) { return 1.0; };
  for (long t = 0; t < N; ++t) {
    inn.Next();
    v[t] = inn.Var();
    if (!(v[t] > 0.0) || !std::isfinite(v[t])) return false;
    Ux[t] = detail::PredictionError(inn, t, series, Ux);
    U1[t] = detail::PredictionError(inn, t, one, U1);
  }
  // With e = G^-1 W and u = G^-1 1 (R = G G'): e_t = Ux_t / sqrt(v_t), u_t = U1_t / sqrt(v_t).
  double eu = 0.0, uu = 0.0, logDet = 0.0;
  for (long t = 0; t < N; ++t) {
    eu += Ux[t] * U1[t] / v[t];
    uu += U1[t] * U1[t] / v[t];
    logDet += std::log(v[t]);
  }
  const double mu = eu / uu;
  double ss = 0.0;
  for (long t = 0; t < N; ++t) {
    const double e = Ux[t] - mu * U1[t];
    ss += e * e / v[t];
  }
  out.s2 = ss / N;
  out.mu = mu;
  out.gamma0 = gamma0;
  out.N = N;
  out.value = N * std::log(out.s2) + logDet;
  return true;
}

// ArimaMLE minimises the likelihood where the AR part is stationary and the MA part invertible,
// each polynomial on its own (not the joint root test of ArimaLike, which refuses admissible
// models). It runs over unconstrained parameters (Jones 1980; Monahan 1984): the partial
// autocorrelations r = tanh(u) of each polynomial, |r| < 1, map one to one onto stationary AR and
// invertible MA coefficients through the Durbin-Levinson step, so the objective has no boundary.
void toCoefficients(std::span<const double> u, std::span<double> coef) {
  for (std::size_t k = 0; k < u.size(); ++k) LevinsonStepUp(coef.first(k + 1), std::tanh(u[k]));
}

// The inverse map: the partial autocorrelations of the AR model with these coefficients.
std::vector<double> toUnconstrained(std::span<const double> coef) {
  std::vector<double> u(coef.size(), 0.0);
  if (coef.empty() || !(Invertability(coef) < 0.0)) return u;
  TVec phi, rho, ar, pac, err;
  phi.SetIt(coef);
  ArmaAcf(phi, TVec(), static_cast<int>(coef.size()), rho, true);
  Statistics::PACF(rho, ar, pac, err);
  for (std::size_t k = 0; k < u.size(); ++k) u[k] = std::atanh(pac[static_cast<int>(k)]);
  return u;
}

// d coefficients / d u (k x k, row by row), by central differences: the map is smooth and cheap.
std::vector<double> mapJacobian(std::span<const double> u, int p) {
  const std::size_t k = u.size();
  std::vector<double> J(k * k, 0.0), up(u.begin(), u.end()), um(u.begin(), u.end()), cp(k), cm(k);
  for (std::size_t a = 0; a < k; ++a) {
    const double h = 1e-5 * std::max(std::fabs(u[a]), 1.0);  // truncation h^2, rounding eps / h: 1e-10
    up[a] = u[a] + h;
    um[a] = u[a] - h;
    const std::size_t ps = static_cast<std::size_t>(p);
    for (auto [from, to] : {std::pair<std::size_t, std::size_t>{0, ps}, {ps, k}}) {
      toCoefficients(std::span<const double>(up).subspan(from, to - from),
                     std::span<double>(cp).subspan(from, to - from));
      toCoefficients(std::span<const double>(um).subspan(from, to - from),
                     std::span<double>(cm).subspan(from, to - from));
    }
    for (std::size_t j = 0; j < k; ++j) J[j * k + a] = (cp[j] - cm[j]) / (2.0 * h);
    up[a] = um[a] = u[a];
  }
  return J;
}

double transformedLikelihood(std::span<const double> U, std::span<const double> Consts,
                             std::span<TObject* const> Objects) {
  const Orders o = ordersOf(U, Consts, detail::ObjectAt<TVec>(Objects, 0).Length());
  std::vector<double> pars(U.size());
  toCoefficients(U.first(o.p), std::span<double>(pars).first(o.p));
  toCoefficients(U.subspan(o.p), std::span<double>(pars).subspan(o.p));
  // tanh rounds to 1 beyond |u| of about 19: a unit root, where ArmaAcf's system is singular
  for (double u : U)
    if (!(std::fabs(std::tanh(u)) < 1.0)) return kPenalty;
  Likelihood l;
  return concentratedLikelihood(pars, Consts, Objects, l) ? l.value : kPenalty;
}

// Newton steps where the Hessian is positive definite; elsewhere (the likelihood need not be convex
// far from its maximum) its diagonal in absolute value, so that Marquardt's steps still descend.
void descentGradHess(TOptObjective Fun, std::span<const double> Pars, std::span<const double> Consts,
                     std::span<TObject* const> Objects, TVec& Grad, TMtx& Hess) {
  NumericGradHess(Fun, Pars, Consts, Objects, Grad, Hess);
  TMtx factor = Hess;
  try {
    factor.Cholesky();
    return;
  } catch (const EArrayError&) {
  }
  const int n = Hess.Rows();
  double largest = 0.0;
  for (int i = 0; i < n; ++i) largest = std::max(largest, std::fabs(Hess(i, i)));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      Hess(i, j) = i != j ? 0.0 : std::max({std::fabs(Hess(i, i)), 1e-8 * largest, 1e-300});
}

}  // namespace

void ArmaAcf(const TVec& P, const TVec& T, int n, TVec& Acf, bool Normalize) {
  if (!(std::max(P.Length(), T.Length()) > 0)) ERaise("not (Max(P.Length,T.Length) > 0)");
  if (n <= 0) ERaise("n <= 0");
  if (n == INT_MAX) ERaise(msg::IntegerOverflow);                    // n + 1 values
  const std::vector<double> phi = valuesOf(P), theta = valuesOf(T);  // Acf may be P or T
  const int p = P.Length(), q = T.Length(), m = std::max(p, q);
  std::vector<double> phiL(m + 1, 0.0), thetaL(m + 1, 0.0), psi(m + 1, 0.0);
  phiL[0] = thetaL[0] = 1.0;
  for (int i = 1; i <= p; ++i) phiL[i] = -phi[i - 1];
  for (int j = 1; j <= q; ++j) thetaL[j] = -theta[j - 1];
  PooledMtx A;
  PooledVec rhs, g;
  A->Size(m + 1, m + 1);
  A->SetZero();
  for (int i = 0; i <= m; ++i)
    for (int k = 0; k <= m; ++k) (*A)(i, std::abs(i - k)) += phiL[k];
  psi[0] = 1.0;
  for (int i = 1; i <= m; ++i) {
    double s = thetaL[i];
    for (int k = 1; k <= i; ++k) s -= phiL[k] * psi[i - k];
    psi[i] = s;
  }
  rhs->Size(m + 1);
  for (int k = 0; k <= m; ++k) {
    double s = 0.0;
    for (int i = 0; i + k <= m; ++i) s += thetaL[i + k] * psi[i];
    (*rhs)[k] = s;
  }
  A->SetRefineSolution(true);
  A->LUSolve(*rhs, *g, mtGeneral);
  Acf.Size(n + 1);
  double* a = Acf.data();
  for (int i = 0; i <= std::min(m, n); ++i) a[i] = (*g)[i];
  // Beyond lag m the autocovariances follow the AR recursion; a pure MA has none there.
  for (int i = m + 1; i <= n; ++i) {
    double s = 0.0;
    for (int k = 1; k <= p; ++k) s += phi[k - 1] * a[i - k];
    a[i] = s;
  }
  if (Normalize) {
    const double a0 = a[0];
    for (int i = 0; i <= n; ++i) a[i] /= a0;
  }
}

double Invertability(std::span<const double> A) {
  const int k = static_cast<int>(A.size());
  PooledVec coeffs, roots;
  coeffs->Size(k + 1);
  for (int i = 0; i < k; ++i) (*coeffs)[i] = -A[k - 1 - i];
  (*coeffs)[k] = 1.0;
  PolyRoots(*roots, *coeffs);
  double smallest = INF;  // no roots: the constant polynomial
  for (int i = 0; i < roots->Length(); ++i) {
    const double r = std::abs(roots->CValues(i));
    if (std::isnan(r)) return NAN;
    smallest = std::min(smallest, r);
  }
  return 1.0 - smallest;
}

double ArimaLike(std::span<const double> Pars, std::span<const double> Consts,
                 std::span<TObject* const> Objects) {
  if (Invertability(Pars) > 0.0) return kPenalty;
  Likelihood l;
  return concentratedLikelihood(Pars, Consts, Objects, l) ? l.value : kPenalty;
}

int ArimaMLE(const TVec& Data, TVec& P, TVec& T, int d, TVec& Aux) {
  if (Data.Length() == 0) ERaise("Data.Length = 0");
  const int p = P.Length(), q = T.Length(), k = p + q;
  if (!(std::max(p, q) > 0)) ERaise("not (Max(P.Length,T.Length) > 0)");
  const double consts[2] = {static_cast<double>(d), static_cast<double>(p)};
  PooledVec w, acf, ar, ma, grad;
  PooledMtx work, m6, m7;
  TObject* const objects[8] = {const_cast<TVec*>(&Data), &*w, &*acf, &*ar, &*ma, &*work, &*m6, &*m7};
  // Start where the caller says, or from white noise for a part that is inadmissible.
  std::vector<double> u = toUnconstrained(valuesOf(P)), uma = toUnconstrained(valuesOf(T));
  u.insert(u.end(), uma.begin(), uma.end());
  double fMin = 0.0;
  TOptStopReason stop{};
  // Newton steps on the numeric Hessian converge quadratically; the gradient test is relative to
  // max(|f|, 1), with f of the order of N.
  const int iterations = Marquardt(transformedLikelihood, descentGradHess, u, consts, objects, fMin, *m6,
                                   stop, 1000, 1e-12, 1e-10, 0.01);
  std::vector<double> pars(k);
  toCoefficients(std::span<const double>(u).first(p), std::span<double>(pars).first(p));
  toCoefficients(std::span<const double>(u).subspan(p), std::span<double>(pars).subspan(p));
  Likelihood l;
  const bool admissible = concentratedLikelihood(pars, consts, objects, l);
  // Standard errors: the inverse of the Hessian of ArimaLike / 2 (the mean and sigma^2 profiled
  // out), differentiated in the unconstrained parameters, where the stencil cannot cross the edge
  // of the admissible region even next to a unit root, and carried back by the Jacobian J of the
  // map: at the optimum H_u = J' H J, so H^-1 = J H_u^-1 J'.
  std::vector<double> se(k, NAN);
  if (admissible) {
    NumericGradHess(transformedLikelihood, u, consts, objects, *grad, *m7);
    m7->Scale(0.5);
    const std::vector<double> J = mapJacobian(u, p);
    try {
      m6->Eye(k, k);
      m7->LUSolve(*m6, *work, mtGeneral);
      for (int j = 0; j < k; ++j) {
        double v = 0.0;
        for (int a = 0; a < k; ++a)
          for (int b = 0; b < k; ++b) v += J[j * k + a] * (*work)(a, b) * J[j * k + b];
        se[j] = std::sqrt(v);
      }
    } catch (const EArrayError&) {  // a singular Hessian leaves the errors NaN
    }
  }
  const double n = l.N, params = k + 2;
  const double m2ll = admissible ? l.value + n * (1.0 + std::log(2.0 * std::numbers::pi)) : NAN;
  Aux.Size(5 + k);
  Aux[0] = admissible ? l.s2 / l.gamma0 : NAN;
  Aux[1] = admissible ? l.mu : NAN;
  Aux[2] = m2ll;
  Aux[3] = m2ll + 2.0 * params;
  Aux[4] = m2ll + std::log(n) * params;
  for (int j = 0; j < k; ++j) Aux[5 + j] = se[j];
  P.Size(p);
  T.Size(q);
  for (int j = 0; j < p; ++j) P[j] = pars[j];
  for (int j = 0; j < q; ++j) T[j] = pars[p + j];
  return iterations;
}

}  // namespace statkit::StatTimeSerAnalysis
