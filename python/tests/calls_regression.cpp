// Call-table rows of the units Regress and RegModels.

#include <limits>

#include "call_table.h"

namespace calltable {

using namespace statkit::Regress;
using namespace statkit::RegModels;

namespace {

using Pars = std::span<const double>;
constexpr double kB[] = {1.5, 0.25}, kC[] = {1.5, 0.25, -2};

void Add(Values& v, double x) { v.push_back(x); }
void Add(Values& v, const statkit::TDenseKalpa& x) { Put(v, x); }
void Add(Values& v, const TRegStats& s) {
  v.insert(v.end(), {s.ResidualVar, s.R2, s.AdjustedR2, s.F, s.SignifProb});
}
template <std::size_t N>
void Add(Values& v, const std::array<double, N>& t) {
  for (double x : t) v.push_back(x);  // (insert trips a false -Wstringop-overflow of g++ 12)
}
// The results in the order the Python module returns them.
template <class... T>
Values Flat(const T&... x) {
  Values v;
  (Add(v, x), ...);
  return v;
}

// a v + c element by element: exact on the shared inputs, as in the Python rows.
TVec Affine(TVec v, double a, double c) {
  for (int i = 0; i < v.Length(); ++i) v[i] = a * v[i] + c;
  return v;
}
TVec W(int n, int k) { return Affine(Data(n, k), 1, 1); }  // 1 .. 64: weights and abscissae
TVec Obs() {                                                // near 3 x
  TVec y = Affine(W(20, 2), 3, 0);
  for (int i = 0; i < 20; ++i) y[i] += Data(20, 3)[i] / 8;
  return y;
}
TVec Groups(int n) {  // 0 1 2 3 0 1 ...: three groups of a multiple of 3 observations, four of one of 4
  TVec g(n);
  for (int i = 0; i < n; ++i) g[i] = i % (n % 3 == 0 ? 3 : 4);
  return g;
}
Values Anova2(int rows, int r) {
  double pr, pc, pi = std::numeric_limits<double>::quiet_NaN();
  const auto t = ANOVA2(Data(rows, 3, 2), pr, pc, pi, r, 0.05);
  return Flat(t, pr, pc, pi);
}

// The saturation curve of Michaelis and Menten, as the Python rows write it.
double Sat(Pars B, double X) { return B[0] * X / (B[1] + X); }
void SatDeriv(const TRegressFunction&, double X, double, Pars B, TVec& Grad) {
  Grad.Size(2);
  Grad[0] = X / (B[1] + X);
  Grad[1] = -B[0] * X / ((B[1] + X) * (B[1] + X));
}

// MulLinRegress (weighted or not), then no test (0), RegressTest's first form (1) or its second (2).
Values MulLin(bool weighted, bool constant, int test) {
  const TVec y = Data(30), w = W(30, 2);
  TVec B, YCalc, res, se;
  TMtx V;
  TRegStats s;
  if (weighted) MulLinRegress(y, Data(30, 3, 1), B, w, constant, &YCalc, &V);
  else MulLinRegress(y, Data(30, 3, 1), B, constant, &YCalc, &V);
  if (test == 0) return Flat(B, YCalc, V);
  if (test == 1) RegressTest(y, YCalc, V, s, constant);
  else RegressTest(y, YCalc, V, s, res, se, constant, &w);
  return test == 1 ? Flat(V, s) : Flat(V, s, res, se);
}

template <class M, class D>
Values Nlin(M model, D deriv, TVec B, TOptMethod method, bool weighted, bool flag, int iters) {
  const TVec w = W(20, 4);
  TVec YCalc;
  TOptStopReason stop;
  const int r = NLinRegress(W(20, 2), Obs(), model, deriv, B, method, stop, weighted ? &w : nullptr, &YCalc,
                            flag, iters, 1e-10, 1e-10);
  return Flat(r, B, stop, YCalc);
}

Values Ordinal(const TVec& y, const TMtx& A) {
  TVec B, Theta, se;
  double fmin;
  TOptStopReason stop;
  const int r = LogisticRegress(y, A, B, Theta, se, fmin, stop, 200, 1e-10, true);
  return Flat(r, B, Theta, se, fmin, stop);
}

// The line, power and exponential models: four routines of the same shapes each.
template <auto Eval1, auto EvalN, auto Deriv, auto Fit>
void Curve(std::vector<Row>& rows, const std::string& name) {
  rows.push_back({name + "Eval1", [] { return Flat(Eval1(Pars(kB), 3.5)); }});
  rows.push_back({name + "Eval2", [] { TVec y; EvalN(Pars(kB), Data(10), y); return Flat(y); }});
  rows.push_back({name + "Deriv", [] { TVec g; Deriv(nullptr, 3.5, 7.0, Pars(kB), g); return Flat(g); }});
  rows.push_back({name + "Fit", [] { TVec B, w = W(20, 4); Fit(B, W(20, 2), Obs(), &w); return Flat(B); }});
}

}  // namespace

std::vector<Row> RegressionRows() {
  constexpr auto NlinC = Nlin<TRegressFun, TDeriveProc>;  // the function-pointer form
  constexpr auto NlinF = Nlin<TRegressFunction, TDeriveFunction>;
  std::vector<Row> rows = {
      {"LinRegress", [] { TVec B, YCalc, w = W(20, 2); TMtx V;
         LinRegress(Data(20), Data(20, 1), B, &w, &YCalc, &V); return Flat(B, YCalc, V); }},
      {"MulLinRegress1", [] { return MulLin(false, true, 0); }},
      {"MulLinRegress2", [] { return MulLin(true, false, 0); }},
      {"RegressTest1", [] { return MulLin(false, true, 1); }},
      {"RegressTest2", [] { return MulLin(true, true, 2); }},
      {"ANOVA1Matrix", [] { double p; const auto t = ANOVA1(Data(8, 3, 0), p, 0.05); return Flat(t, p); }},
      {"ANOVA1Groups", [] { double p; const auto t = ANOVA1(Data(24), Groups(24), p, 0.01);
         return Flat(t, p); }},
      {"ANOVA2", [] { return Anova2(12, 3); }},
      {"ANOVA2Unreplicated", [] { return Anova2(4, 1); }},  // no interaction: NaN
      {"NumericDerive1", [] { TVec g(2); NumericDerive(ExpEval, 0.75, 0.0, kB, g); return Flat(g); }},
      {"NumericDerive2", [] { TVec g(2); NumericDerive(TRegressFunction(Sat), 0.75, 0, kB, g);
         return Flat(g); }},
      {"NLinRegress1", [] { return NlinC(PowerEval, PowerDeriv, {1, 1}, optMarquardt, false, false, 200); }},
      {"NLinRegress1Numeric", [] { return NlinC(ExpEval, nullptr, {1, 0.01}, optBFGS, true, true, 200); }},
      {"NLinRegress2", [] { return NlinF(Sat, SatDeriv, {100, 10}, optMarquardt, true, false, 200); }},
      {"NLinRegress2Numeric", [] { return NlinF(Sat, {}, {100, 10}, optSimplex, false, false, 300); }},
      {"LogisticRegressBinomial", [] {
         TMtx A(20, 2);
         for (int i = 0; i < 20; ++i) A(i, 0) = 1, A(i, 1) = Data(20, 4)[i];
         TVec B, YCalc, se;
         LogisticRegress(Data(20, 5), Affine(Data(20), 0, 64), B, &A, 0.25, &YCalc, &se, 1e-10);
         return Flat(B, YCalc, se); }},
      {"LogisticRegressOrdinal", [] { return Ordinal(Groups(40), Data(40, 2, 6)); }},
      {"RidgeRegress", [] { TVec B; RidgeRegress(Data(20), Data(20, 3, 7), 0.5, B); return Flat(B); }},
      // refused calls
      {"LinRegressSingular", [] { TVec B; LinRegress(Affine(Data(5), 0, 2), Data(5), B); return Flat(B); }},
      {"ANOVA1EmptyGroup", [] { double p; const auto t = ANOVA1(Data(6), {0, 0, 2, 2, 3, 3}, p, 0.05);
         return Flat(t); }},
      {"NLinRegressLengths", [] { TVec B{1, 1}; TOptStopReason s;  // X one shorter than Y
         return Flat(NLinRegress(W(19, 2), Obs(), PowerEval, nullptr, B, optSimplex, s, nullptr, nullptr,
                                 false, 9, 1e-10, 1e-10)); }},
      {"LogisticRegressFractional", [] { return Ordinal(Affine(Data(10), 1, 0.5), Data(10, 1, 6)); }},
      {"RidgeRegressNegative", [] { TVec B; RidgeRegress(Data(20), Data(20, 3, 7), -1, B); return Flat(B); }},
      {"LineEvalShortB", [] { const double b[] = {1.5}; return Flat(LineEval(b, 3.5)); }},
      {"MulLinEval1", [] { return Flat(MulLinEval(kC, Data(4, 3), true),
                                       MulLinEval(kC, Data(4, 3), false)); }},
      {"MulLinEval2", [] { TVec y; MulLinEval(kC, Data(6, 2, 1), y, true); return Flat(y); }},
      {"MulLinFit", [] { TVec B, w = W(30, 2); MulLinFit(B, Data(30, 3, 1), Data(30), false, &w);
         return Flat(B); }},
  };
  using E1 = double (*)(Pars, double);
  using EN = void (*)(Pars, const TVec&, TVec&);
  Curve<static_cast<E1>(LineEval), static_cast<EN>(LineEval), LineDeriv, LineFit>(rows, "Line");
  Curve<static_cast<E1>(PowerEval), static_cast<EN>(PowerEval), PowerDeriv, PowerFit>(rows, "Power");
  Curve<static_cast<E1>(ExpEval), static_cast<EN>(ExpEval), ExpDeriv, ExpFit>(rows, "Exp");
  return rows;
}

}  // namespace calltable
