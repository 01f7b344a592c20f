// Call-table rows of the units Regress and RegModels.

#include <cmath>
#include <limits>

#include "call_table.h"

namespace calltable {

using namespace statkit::Regress;
using namespace statkit::RegModels;

namespace {

using Pars = std::span<const double>;

Values Fit(const TVec& B, const TVec& YCalc, const TMtx& V) {
  Values out;
  Put(out, B);
  Put(out, YCalc);
  Put(out, V);
  return out;
}

Values Vec(const TVec& v) {
  Values out;
  Put(out, v);
  return out;
}

// a v + c element by element; exact in binary on the shared inputs, as in the Python rows.
TVec Affine(TVec v, double a, double c) {
  for (int i = 0; i < v.Length(); ++i) v[i] = a * v[i] + c;
  return v;
}
TVec Weights(int n, int k) { return Affine(Data(n, k), 1, 1); }

// Positive abscissae 1 .. 64 and observations near 3 x.
TVec Abscissae() { return Weights(20, 2); }
TVec Observations() {
  TVec y = Affine(Abscissae(), 3, 0);
  const TVec e = Data(20, 3);
  for (int i = 0; i < 20; ++i) y[i] += e[i] / 8;
  return y;
}

// Michaelis-Menten, written as the Python rows write it.
double Saturation(Pars B, double X) { return B[0] * X / (B[1] + X); }
void SaturationDeriv(const TRegressFunction&, double X, double, Pars B, TVec& Grad) {
  Grad.Size(2);
  Grad[0] = X / (B[1] + X);
  Grad[1] = -B[0] * X / ((B[1] + X) * (B[1] + X));
}

Values Nlin(int result, const TVec& B, TOptStopReason stop, const TVec& YCalc) {
  Values out{static_cast<double>(result)};
  Put(out, B);
  out.push_back(static_cast<double>(stop));
  Put(out, YCalc);
  return out;
}

TVec Groups(int n, int k) {
  TVec g(n);
  for (int i = 0; i < n; ++i) g[i] = i % k;
  return g;
}

template <std::size_t N>
Values Table(const std::array<double, N>& t, std::initializer_list<double> signif) {
  Values out(t.begin(), t.end());
  out.insert(out.end(), signif);
  return out;
}

std::vector<Row> RegressRows() {
  return {
      {"LinRegress", [] {
         TVec B, YCalc, w = Weights(20, 2);
         TMtx V;
         LinRegress(Data(20), Data(20, 1), B, &w, &YCalc, &V);
         return Fit(B, YCalc, V);
       }},
      {"MulLinRegress1", [] {
         TVec B, YCalc;
         TMtx V;
         MulLinRegress(Data(30), Data(30, 3, 1), B, true, &YCalc, &V);
         return Fit(B, YCalc, V);
       }},
      {"MulLinRegress2", [] {
         TVec B, YCalc;
         TMtx V;
         MulLinRegress(Data(30), Data(30, 3, 1), B, Weights(30, 2), false, &YCalc, &V);
         return Fit(B, YCalc, V);
       }},
      {"RegressTest1", [] {
         TVec B, YCalc;
         TMtx V;
         MulLinRegress(Data(30), Data(30, 3, 1), B, true, &YCalc, &V);
         TRegStats s;
         RegressTest(Data(30), YCalc, V, s, true);
         Values out;
         Put(out, V);
         out.insert(out.end(), {s.ResidualVar, s.R2, s.AdjustedR2, s.F, s.SignifProb});
         return out;
       }},
      {"RegressTest2", [] {
         const TVec w = Weights(30, 2);
         TVec B, YCalc, residuals, se;
         TMtx V;
         MulLinRegress(Data(30), Data(30, 3, 1), B, w, true, &YCalc, &V);
         TRegStats s;
         RegressTest(Data(30), YCalc, V, s, residuals, se, true, &w);
         Values out;
         Put(out, V);
         out.insert(out.end(), {s.ResidualVar, s.R2, s.AdjustedR2, s.F, s.SignifProb});
         Put(out, residuals);
         Put(out, se);
         return out;
       }},
      {"ANOVA1Matrix", [] {
         double p;
         const TANOVA1Table t = ANOVA1(Data(8, 3, 0), p, 0.05);
         return Table(t, {p});
       }},
      {"ANOVA1Groups", [] {
         double p;
         const TANOVA1Table t = ANOVA1(Data(24), Groups(24, 3), p, 0.01);
         return Table(t, {p});
       }},
      {"ANOVA2", [] {
         double pr, pc, pi = std::numeric_limits<double>::quiet_NaN();
         const TANOVA2Table t = ANOVA2(Data(12, 3, 2), pr, pc, pi, 3, 0.05);
         return Table(t, {pr, pc, pi});
       }},
      {"ANOVA2Unreplicated", [] {  // no interaction: its significance stays NaN
         double pr, pc, pi = std::numeric_limits<double>::quiet_NaN();
         const TANOVA2Table t = ANOVA2(Data(4, 3, 2), pr, pc, pi, 1, 0.05);
         return Table(t, {pr, pc, pi});
       }},
      {"NumericDerive1", [] {
         TVec g(2);
         const double b[] = {2, 0.5};
         NumericDerive(ExpEval, 0.75, 0.0, b, g);
         return Vec(g);
       }},
      {"NumericDerive2", [] {
         TVec g(2);
         const double b[] = {2, 0.5};
         NumericDerive(TRegressFunction(Saturation), 0.75, 0.0, b, g);
         return Vec(g);
       }},
      {"NLinRegress1", [] {
         TVec B{1, 1}, YCalc;
         TOptStopReason stop;
         const int r = NLinRegress(Abscissae(), Observations(), PowerEval, PowerDeriv, B, statkit::optMarquardt, stop,
                                   nullptr, &YCalc, false, 200, 1e-10, 1e-10);
         return Nlin(r, B, stop, YCalc);
       }},
      {"NLinRegress1Numeric", [] {  // no derivative: NumericDerive
         TVec B{1, 0.01}, YCalc, w = Weights(20, 4);
         TOptStopReason stop;
         const int r = NLinRegress(Abscissae(), Observations(), ExpEval, nullptr, B, statkit::optBFGS, stop, &w, &YCalc,
                                   true, 200, 1e-10, 1e-10);
         return Nlin(r, B, stop, YCalc);
       }},
      {"NLinRegress2", [] {
         TVec B{100, 10}, YCalc, w = Weights(20, 4);
         TOptStopReason stop;
         const int r = NLinRegress(Abscissae(), Observations(), TRegressFunction(Saturation),
                                   TDeriveFunction(SaturationDeriv), B, statkit::optMarquardt, stop, &w, &YCalc, false,
                                   200, 1e-10, 1e-10);
         return Nlin(r, B, stop, YCalc);
       }},
      {"NLinRegress2Numeric", [] {
         TVec B{100, 10}, YCalc;
         TOptStopReason stop;
         const int r = NLinRegress(Abscissae(), Observations(), TRegressFunction(Saturation), TDeriveFunction(), B,
                                   statkit::optSimplex, stop, nullptr, &YCalc, false, 300, 1e-10, 1e-10);
         return Nlin(r, B, stop, YCalc);
       }},
      {"LogisticRegressBinomial", [] {
         TMtx A(20, 2);
         const TVec x = Data(20, 4);
         for (int i = 0; i < 20; ++i) A(i, 0) = 1, A(i, 1) = x[i];
         TVec B, YCalc, se;
         LogisticRegress(Data(20, 5), TVec(std::vector<double>(20, 64.0)), B, &A, 0.25, &YCalc, &se, 1e-10);
         Values out = Vec(B);
         Put(out, YCalc);
         Put(out, se);
         return out;
       }},
      {"LogisticRegressOrdinal", [] {
         TVec B, Theta, se;
         double fmin;
         TOptStopReason stop;
         const int r = LogisticRegress(Groups(40, 4), Data(40, 2, 6), B, Theta, se, fmin, stop, 200, 1e-10, true);
         Values out{static_cast<double>(r)};
         for (const TVec* v : {&B, &Theta, &se}) Put(out, *v);
         out.insert(out.end(), {fmin, static_cast<double>(stop)});
         return out;
       }},
      {"RidgeRegress", [] {
         TVec B;
         RidgeRegress(Data(20), Data(20, 3, 7), 0.5, B);
         return Vec(B);
       }},
      // refused calls
      {"LinRegressSingular", [] {
         TVec B;
         LinRegress(TVec(std::vector<double>(5, 2.0)), Data(5), B);
         return Vec(B);
       }},
      {"MulLinRegressRows", [] {
         TVec B;
         MulLinRegress(Data(29), Data(30, 3, 1), B, true);
         return Vec(B);
       }},
      {"ANOVA1EmptyGroup", [] {
         double p;
         const TANOVA1Table t = ANOVA1(Data(6), TVec{0, 0, 2, 2, 3, 3}, p, 0.05);
         return Table(t, {p});
       }},
      {"NLinRegressLengths", [] {
         TVec B{1, 1};
         TOptStopReason stop;
         return Values{static_cast<double>(NLinRegress(Data(5), Data(6), PowerEval, nullptr, B, statkit::optSimplex,
                                                        stop, nullptr, nullptr, false, 10, 1e-8, 1e-8))};
       }},
      {"LogisticRegressFractional", [] {
         TVec B, Theta, se;
         double fmin;
         TOptStopReason stop;
         return Values{static_cast<double>(
             LogisticRegress(Affine(Data(10), 1, 0.5), Data(10, 1, 6), B, Theta, se, fmin, stop, 50, 1e-8, true))};
       }},
      {"RidgeRegressNegative", [] {
         TVec B;
         RidgeRegress(Data(20), Data(20, 3, 7), -1.0, B);
         return Vec(B);
       }},
  };
}

std::vector<Row> ModelRows() {
  const double b[] = {1.5, 0.25};
  return {
      {"LineEval1", [b] { return Values{LineEval(b, 3.5)}; }},
      {"LineEval2", [b] {
         TVec y;
         LineEval(b, Data(10), y);
         return Vec(y);
       }},
      {"LineDeriv", [b] {
         TVec g;
         LineDeriv(nullptr, 3.5, 7.0, b, g);
         return Vec(g);
       }},
      {"LineFit", [] {
         TVec B, w = Weights(20, 2);
         LineFit(B, Data(20), Data(20, 1), &w);
         return Vec(B);
       }},
      {"PowerEval1", [b] { return Values{PowerEval(b, 3.5)}; }},
      {"PowerEval2", [b] {
         TVec y;
         PowerEval(b, Data(10), y);
         return Vec(y);
       }},
      {"PowerDeriv", [b] {
         TVec g;
         PowerDeriv(nullptr, 3.5, 7.0, b, g);
         return Vec(g);
       }},
      {"PowerFit", [] {
         TVec B;
         PowerFit(B, Abscissae(), Data(20, 3));
         return Vec(B);
       }},
      {"ExpEval1", [b] { return Values{ExpEval(b, 3.5)}; }},
      {"ExpEval2", [b] {
         TVec y;
         ExpEval(b, Data(10), y);
         return Vec(y);
       }},
      {"ExpDeriv", [b] {
         TVec g;
         ExpDeriv(nullptr, 3.5, 7.0, b, g);
         return Vec(g);
       }},
      {"ExpFit", [] {
         TVec B, w = Weights(20, 4);
         ExpFit(B, Affine(Data(20), 1.0 / 16, 0), Observations(), &w);
         return Vec(B);
       }},
      {"MulLinEval1", [] {
         const double c[] = {1.5, 0.25, -2.0};
         return Values{MulLinEval(c, Data(4, 3), true), MulLinEval(c, Data(4, 3), false)};
       }},
      {"MulLinEval2", [] {
         const double c[] = {1.5, 0.25, -2.0};
         TVec y;
         MulLinEval(c, Data(6, 2, 1), y, true);
         return Vec(y);
       }},
      {"MulLinFit", [] {
         TVec B, w = Weights(30, 2);
         MulLinFit(B, Data(30, 3, 1), Data(30), false, &w);
         return Vec(B);
       }},
      {"LineEvalShortB", [] {  // refused: the line has two coefficients
         const double c[] = {1.5};
         return Values{LineEval(c, 3.5)};
       }},
  };
}

}  // namespace

std::vector<Row> RegressionRows() {
  std::vector<Row> rows = RegressRows();
  for (Row& r : ModelRows()) rows.push_back(std::move(r));
  return rows;
}

}  // namespace calltable
