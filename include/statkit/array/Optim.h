#pragma once
// General optimisers of the array layer and the numeric derivatives they use.
//
// Every optimiser minimises an objective f(Pars; Consts, Objects) starting from
// the values in Pars and writes the best point it reached back into Pars. The
// constant arrays are handed to every callback unchanged. An optimiser that
// stops without converging is no error: StopReason says why it stopped.
// Exceptions thrown by a callback pass through unchanged.

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "statkit/array/Config.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

/// \brief The objective: a function of the parameters, constants and objects.
using TOptObjective = double (*)(std::span<const double> Pars, std::span<const double> Consts,
                                 std::span<TObject* const> Objects);

/// \brief The object that a callback receives back as a \p T (a checked cast): a null pointer or an
/// object of another class raises "Invalid parameter".
template <class T>
T& ObjectAs(TObject* Object) {
  T* t = dynamic_cast<T*>(Object);
  if (t == nullptr) ERaise(msg::InvalidParameter);
  return *t;
}

/// \brief Gradient procedure of Marquardt: fills Grad (length n) and Hess (n x n) at Pars.
/// It is called right after the objective was evaluated at the same Pars.
using TOptGradHessProc = void (*)(TOptObjective Fun, std::span<const double> Pars,
                                  std::span<const double> Consts, std::span<TObject* const> Objects,
                                  TVec& Grad, TMtx& Hess);

/// \brief Gradient procedure of BFGS: fills Grad (length n) at Pars, right after the
/// objective was evaluated at the same Pars.
using TOptGradProc = void (*)(TOptObjective Fun, std::span<const double> Pars, std::span<const double> Consts,
                              std::span<TObject* const> Objects, TVec& Grad);

/// \brief Which optimiser a host selects (ordinals 0..5).
enum TOptMethod : std::uint8_t { optSimplex, optMarquardt, optBFGS, optDFP, optConjGradFR, optConjGradPR };
inline constexpr std::array<std::string_view, 6> TOptMethodNames{
    "optSimplex", "optMarquardt", "optBFGS", "optDFP", "optConjGradFR", "optConjGradPR"};

/// \brief Why an optimiser stopped.
/// - osSmallGradient: the scaled gradient max_i |g_i| max(|x_i|, 1) fell to GradTol max(|f|, 1) or
///   below (Marquardt, BFGS);
/// - osSmallStep: the last step changed every parameter by at most Tol max(|x_i|, 1) (Marquardt), or the
///   simplex shrank to that size with its function values within Tol max(|f_best|, 1) (Simplex);
/// - osSmallChange: a line search step lowered the objective by no more than 4 eps |f|, rounding
///   (BFGS);
/// - osMaxIterations: MaxIter iterations were used up;
/// - osSingularSystem: the caller's matrix has a zero trace (Marquardt), so its sign convention and
///   the damping are undefined;
/// - osNotFinite: the objective or its derivatives are NaN or infinite at the current point.
enum TOptStopReason : std::uint8_t {
  osSmallGradient,
  osSmallStep,
  osSmallChange,
  osMaxIterations,
  osSingularSystem,
  osNotFinite
};
inline constexpr std::array<std::string_view, 6> TOptStopReasonNames{
    "osSmallGradient", "osSmallStep", "osSmallChange", "osMaxIterations", "osSingularSystem", "osNotFinite"};

/// \brief Relative step of the numeric derivatives: the step of coordinate i is
/// h = GradStepSize max(|x_i|, 1) (NumericGradHess). 1e-4 is about eps^(1/4), the step that
/// balances truncation (h^2) against rounding (eps / h^2) in a central second difference; the
/// six-point Richardson first derivative then has truncation error O(h^6), about 1e-24, and rounding
/// about eps / h, 2e-12, relative. Read once per call; a value that is not finite and positive
/// raises "Invalid parameter".
extern STATKIT_API std::atomic<double> GradStepSize;

/// \brief Numeric gradient and Hessian of \p Fun at \p Pars, in the shape of a gradient procedure
/// of Marquardt. With h = GradStepSize max(|x_i|, 1), each gradient element and diagonal Hessian
/// element comes from f at x +- h, +-2h, +-4h along coordinate i, as central differences extrapolated
/// twice (Richardson, removing the h^2 and h^4 terms); each off-diagonal element is the four-point
/// central difference (f(++) - f(+-) - f(-+) + f(--)) / (4 h_i h_j). Hess is symmetric. Costs
/// 1 + 6n + 2n(n - 1) evaluations. Empty Pars raise "Empty vector".
STATKIT_API void NumericGradHess(TOptObjective Fun, std::span<const double> Pars,
                                 std::span<const double> Consts, std::span<TObject* const> Objects,
                                 TVec& Grad, TMtx& Hess);

/// \brief Nelder-Mead simplex minimisation (Lagarias, Reeds, Wright and Wright 1998) with the
/// dimension-dependent coefficients of Gao and Han (2012): reflection 1, expansion 1 + 2/n,
/// contraction 3/4 - 1/(2n), shrink 1 - 1/n (the classic 1, 2, 1/2, 1/2 for n = 2, also used for n = 1).
///
/// The start simplex is Pars and n points that each move one coordinate by 5% (0.00025 when it is 0).
/// It has converged when every vertex lies within Tol max(|x_best,i|, 1) of the best vertex in every
/// coordinate and every function value within Tol max(|f_best|, 1) of the best one. On convergence
/// it restarts from the best vertex with a fresh start simplex, and stops (osSmallStep) when a restart
/// no longer lowers the best value. A NaN objective value counts as +INF. A Tol within a few eps of
/// rounding (1e-15 in ten dimensions) may never be met: the run then ends at MaxIter.
///
/// \return the number of iterations (reflection steps and restarts) used, at most MaxIter. Pars receives the
/// best vertex and FMin its value; MaxIter = 0 evaluates the start only (osMaxIterations).
/// MaxIter < 0, Tol negative or NaN, or a null objective raise "Invalid parameter"; empty Pars
/// raise "Empty vector".
STATKIT_API int Simplex(TOptObjective Fun, std::span<double> Pars, std::span<const double> Consts,
                        std::span<TObject* const> Objects, double& FMin, TOptStopReason& StopReason,
                        int MaxIter, double Tol, std::vector<std::string>* Log = nullptr);

/// \brief Levenberg-Marquardt minimisation (Levenberg 1944, Marquardt 1963) with diagonal scaling.
///
/// GradHess supplies g and H at the point, in either sign convention: (a multiple of) the gradient
/// of the objective with a positive definite H (for a sum of squares S: g = J'(f - y) = half the
/// gradient and H = J'J, the Gauss-Newton matrix of S/2), or the gradient of a log-likelihood that
/// the objective negates with its negative definite Hessian. The step d solves
/// (sign H + lambda D) d = -sign g, which is the same step in both conventions; sign is that of the
/// trace of H at the current point (a zero trace stops with osSingularSystem), and D holds |H_ii|,
/// each raised to at least 1e-12 max_j |H_jj| so that a parameter without influence is damped too.
/// So an H that is indefinite away from the minimum (a full Hessian) still gives descent steps once
/// lambda is large enough, as long as its trace has the convention's sign.
///
/// lambda starts at Lambda0; a step that lowers the objective is taken and lambda divided by 10,
/// otherwise (or when the damped system is not definite) lambda becomes max(10 lambda, 1e-12). The objective
/// is evaluated at a point right before GradHess is asked for derivatives there.
///
/// Stopping, checked in this order: osNotFinite (f, g or H not finite at the start point);
/// osSmallGradient (max_i |g_i| max(|x_i|, 1) <= GradTol max(|f|, 1)); osSmallStep (a step, taken or
/// refused, with |d_i| <= Tol max(|x_i|, 1) for every i, or lambda above 1e100); osMaxIterations.
///
/// \return the number of iterations (trial steps, each one objective evaluation), at most MaxIter.
/// Pars receives the best point, FMin its objective and VarCovar (n x n) the inverse of the caller's
/// H there (NaN when it is singular), which is the covariance estimate up to the caller's scale
/// (s^2 (J'J)^-1 for least squares, -H^-1 for a log-likelihood).
/// MaxIter < 0, Tol, GradTol negative or NaN, Lambda0 not finite and positive or a null callback raise
/// "Invalid parameter"; empty Pars raise "Empty vector"; a Grad or Hess of the wrong size from the
/// callback raises "Size mismatch".
STATKIT_API int Marquardt(TOptObjective Fun, TOptGradHessProc GradHess, std::span<double> Pars,
                          std::span<const double> Consts, std::span<TObject* const> Objects, double& FMin,
                          TMtx& VarCovar, TOptStopReason& StopReason, int MaxIter, double Tol, double GradTol,
                          double Lambda0, std::vector<std::string>* Log = nullptr);

/// \brief Quasi-Newton minimisation: BFGS, or DFP when \p DFP is true (Nocedal and Wright 2006,
/// chapter 6). The inverse-Hessian model starts as the identity, is rescaled by s'y / y'y before the
/// first update, and is kept when a step fails the curvature condition s'y > 0. Each step is a line
/// search along -H g for the strong Wolfe conditions (c1 = 1e-4; c2 = 0.9 when \p SoftLineSearch, 0.2
/// for DFP, whose update does not correct itself after loose searches; an accurate search with c2 = 0.01
/// otherwise; at most 40 evaluations), starting at the full step.
/// A direction that does not descend, or a failed search, restarts from the identity (steepest
/// descent); a failed steepest-descent search stops with osSmallStep.
///
/// Stopping: osNotFinite (f or g not finite at the start or after a step); osSmallGradient
/// (max_i |g_i| max(|x_i|, 1) <= GradTol max(|f|, 1)); osSmallStep (every |x_new,i - x_i| <=
/// Tol max(|x_i|, 1)); osSmallChange; osMaxIterations.
///
/// \return the number of iterations (line searches), at most MaxIter. Pars receives the best
/// point, FMin its objective and InvHess the final inverse-Hessian model. MaxIter < 0, Tol or
/// GradTol negative or NaN, or a null callback raise "Invalid parameter"; empty Pars raise "Empty
/// vector"; a gradient of the wrong length raises "Size mismatch".
STATKIT_API int BFGS(TOptObjective Fun, TOptGradProc GradProc, std::span<double> Pars,
                     std::span<const double> Consts, std::span<TObject* const> Objects, double& FMin,
                     TMtx& InvHess, TOptStopReason& StopReason, bool DFP, bool SoftLineSearch, int MaxIter,
                     double Tol, double GradTol, std::vector<std::string>* Log = nullptr);

/// \brief Nonlinear conjugate-gradient minimisation (Nocedal and Wright 2006, chapter 5): the
/// Fletcher-Reeves update when \p FletcherReeves is true, else Polak-Ribiere (with beta = max(beta, 0),
/// PR+). Each step is a line search along the conjugate direction for the strong Wolfe conditions
/// (c1 = 1e-4; c2 = 0.1 for an accurate search, 0.45 when \p SoftLineSearch, the largest c2 that keeps
/// Fletcher-Reeves directions descending), starting from a step that repeats the previous decrease. The
/// direction restarts along -g every n iterations, when it does not descend, and after a failed search;
/// a failed steepest-descent search stops with osSmallStep.
///
/// Stopping as BFGS: osNotFinite, osSmallGradient, osSmallStep, osSmallChange, osMaxIterations.
///
/// \return the number of iterations (line searches), at most MaxIter. Pars receives the best point and
/// FMin its objective. MaxIter < 0, Tol or GradTol negative or NaN, or a null callback raise "Invalid
/// parameter"; empty Pars raise "Empty vector"; a gradient of the wrong length raises "Size mismatch".
STATKIT_API int ConjGrad(TOptObjective Fun, TOptGradProc GradProc, std::span<double> Pars,
                         std::span<const double> Consts, std::span<TObject* const> Objects, double& FMin,
                         TOptStopReason& StopReason, bool FletcherReeves, bool SoftLineSearch, int MaxIter,
                         double Tol, double GradTol, std::vector<std::string>* Log = nullptr);

}  // namespace statkit
