// Call-table rows of the unit Statistics (descriptive statistics and tests).

#include "call_table.h"

namespace calltable {

using namespace statkit::Statistics;

namespace {

void Add(Values& out, double x) { out.push_back(x); }
void Add(Values& out, const TDenseKalpa& x) { Put(out, x); }

// The results in the order the module returns them.
template <class... T>
Values Out(const T&... results) {
  Values out;
  (Add(out, results), ...);
  return out;
}

Values Test(THypothesisResult hRes, double Signif, const double (&ci)[2]) {
  return {static_cast<double>(hRes), Signif, ci[0], ci[1]};
}

// A test's outputs, which a row's test writes.
struct Outcome {
  THypothesisResult h = hrNan;
  double p = 0.0, ci[2] = {0.0, 0.0};
};
using O = Outcome&;

// The row of a test that \p f runs on an Outcome: (hRes, Signif, ConfInt).
template <class F>
std::function<Values()> Tested(F f) {
  return [f] { Outcome t; f(t); return Test(t.h, t.p, t.ci); };
}
// The row of a test without an interval: (hRes, Signif).
template <class F>
std::function<Values()> Decided(F f) {
  return [f] { Outcome t; f(t); return Out(t.h, t.p); };
}

TVec Ties() { return TVec{3, 1, 2, 3, 1, 5}; }
TVec Sorted(int n) {
  TVec x = Data(n);
  x.SortAscend();
  return x;
}
TMtx Cov() {
  TMtx c;
  Covariance(Data(10, 3, 0), c, false);
  return c;
}

}  // namespace

std::vector<Row> StatisticsRows() {
  return {
      {"Unique", [] { TVec r; Unique(Ties(), r); return Out(r); }},
      {"TiedRanks", [] { TVec r; double s; TiedRanks(Ties(), r, s); return Out(r, s); }},
      {"MeanG", [] { return Values{MeanG(Data(20))}; }},
      {"MeanH", [] { return Out(MeanH(Data(20, 1))); }},
      {"MeanT", [] { return Out(MeanT(Data(20), 0.2)); }},
      {"Moment", [] { return Out(Moment(Data(20), 30.0, 3)); }},
      {"Range", [] { return Out(Range(Data(20))); }},
      {"RangeRows", [] { TVec r; RangeRows(Data(4, 5, 0), r); return Out(r); }},
      {"RangeCols", [] { TVec r; RangeCols(Data(4, 5, 0), r); return Out(r); }},
      {"StdRows", [] { TVec r; StdRows(Data(4, 5, 0), r); return Out(r); }},
      {"StdCols", [] { TVec r; StdCols(Data(4, 5, 0), r); return Out(r); }},
      {"ZScore", [] { TMtx r; ZScore(Data(4, 5, 0), r); return Out(r); }},
      {"Percentile", [] { return Out(Percentile(Data(21), 0.3, pctMethodEDFAve)); }},
      {"InterQuartile", [] { return Out(InterQuartile(Data(21), pctMethodClosestN)); }},
      {"Histogram0", [] { TVec r, b; Histogram(Data(50), 5, r, b, true, 60.0, 0.0); return Out(r, b); }},
      {"Histogram1", [] { TVec r, b; Histogram(Data(50), 6, r, b, false); return Out(r, b); }},
      {"Histogram", [] {
         TVec r;
         Histogram(Data(50), TVec{10, 20, 30, 40, 50}, r);
         Values out;
         Put(out, r);
         return out;
       }},
      {"CumulativeHist0", [] { TVec r, b; CumulativeHist(Data(50), 6, r, b, true); return Out(r, b); }},
      {"CumulativeHist1", [] { TVec r; CumulativeHist(Data(50), TVec{10, 30, 50}, r); return Out(r); }},
      {"Covariance0", [] { double c; Covariance(Data(20), c, true); return Out(c); }},
      {"Covariance1", [] { TMtx r; Covariance(Data(20), Data(20, 1), r, false); return Out(r); }},
      {"Covariance2", [] { TMtx r; Covariance(Data(10, 3, 0), r, false); return Out(r); }},
      {"Covariance3", [] { TMtx r; Covariance(Data(5, 4, 0), Data(10, 2, 1), r, true); return Out(r); }},
      {"CorrCoef0", [] { TMtx r; CorrCoef(Data(20), Data(20, 1), r); return Out(r); }},
      {"CorrCoef1", [] { TMtx r; CorrCoef(Data(10, 3, 0), r); return Out(r); }},
      {"CorrCoef2", [] { TMtx r; CorrCoef(Data(5, 4, 0), Data(10, 2, 1), r); return Out(r); }},
      {"AutoCov", [] { TVec r; AutoCov(Data(30), r, -1); return Out(r); }},
      {"ACF", [] { TVec r; ACF(Data(30), r, 5); return Out(r); }},
      {"PACF", [] {
         TVec a, phi, d, e;
         AutoCov(Data(30), a, 5);
         PACF(a, phi, d, e);
         return Out(phi, d, e);
       }},
      // the short form's result is the complete form's Dst
      {"PACF_short", [] { TVec a, d; ACF(Data(30), a, 5); PACF(a, d); return Out(d); }},
      {"ZTest", Tested([](O t) { ZTest(Data(20), 30.0, 12.0, t.h, t.p, t.ci, htTwoTailed, 0.05); })},
      {"tTest1", [] {
         THypothesisResult h;
         double p, ci[2];
         tTest(Data(20), 30.0, h, p, ci, htTwoTailed, 0.05);
         return Test(h, p, ci);
       }},
      {"tTest2", [] {
         THypothesisResult h;
         double p, ci[2];
         tTest(Data(20), Data(20, 1), h, p, ci, true, htRightTailed, 0.01);
         return Test(h, p, ci);
       }},
      {"SignTest0", Decided([](O t) { SignTest(Data(20), 30.0, t.h, t.p, t.ci, htLeftTailed, 0.1); })},
      {"SignTest1", Decided([](O t) { SignTest(Data(20), Data(20, 1), t.h, t.p, t.ci, htTwoTailed, 0.05); })},
      {"ChiSquareTest", Tested([](O t) {
         ChiSquareTest(Data(20), 15.0, t.h, t.p, t.ci, htTwoTailed, 0.05);
       })},
      {"FTest", Tested([](O t) { FTest(Data(20), Data(15, 1), t.h, t.p, t.ci, htRightTailed, 0.05); })},
      {"BarlettTest", [] {
         int k;
         TVec s;
         BarlettTest(Data(12, 4, 0), k, s, PCACorrMat, 0.05);
         return Out(k, s);
       }},
      {"WilcoxonSign0", Tested([](O t) { WilcoxonSign(Data(20), 30.0, t.h, t.p, t.ci, htTwoTailed, 0.05); })},
      {"WilcoxonSign1", Tested([](O t) {
         WilcoxonSign(Data(20), Data(20, 1), t.h, t.p, t.ci, htLeftTailed, 0.05);
       })},
      {"SpearmanRankCorr", [] {
         double rs;
         Outcome t;
         SpearmanRankCorr(Data(20), Data(20, 1), rs, t.h, t.p, t.ci, htTwoTailed, 0.05);
         return Out(rs, t.h, t.p, t.ci[0], t.ci[1]);
       }},
      {"GOFChi2Test0", Decided([](O t) {
         GOFChi2Test(TVec{18, 22, 30, 30}, TVec{25, 25, 25, 25}, 100, 3, t.h, t.p, htRightTailed, 0.05);
       })},
      {"GOFChi2Test1", Decided([](O t) {
         GOFChi2Test(Data(50), distNormal, 6, t.h, t.p, htRightTailed, 0.05);
       })},
      {"GOFKolmogorov", Decided([](O t) {
         GOFKolmogorov(Data(20), t.h, t.p, nullptr, nullptr, htTwoTailed, 0.05);
       })},
      {"GOFKolmogorovTable", Decided([](O t) {
         const TVec x{0, 63}, y{0, 1};
         GOFKolmogorov(Data(20), t.h, t.p, &x, &y, htRightTailed, 0.05);
       })},
      {"ShapiroWilks", Decided([](O t) { ShapiroWilks(Sorted(20), t.h, t.p, htRightTailed, 0.05); })},
      {"ShapiroFrancia", Decided([](O t) { ShapiroFrancia(Sorted(20), t.h, t.p, htRightTailed, 0.05); })},
      {"FullFactDesign0", [] { TMtx r; FullFactDesign(3, r); return Out(r); }},
      {"FullFactDesignMul", [] { TMtx r; const TVec m{2, 3, 4}; FullFactDesign(3, r, &m); return Out(r); }},
      {"FullFactDesign1", [] { TMtx r; FullFactDesign(TVec{2, 3}, r); return Out(r); }},
      {"PCA0", [] { TMtx pc; TVec e, v; PCA(Cov(), pc, e, &v); return Out(pc, e, v); }},
      {"PCA1", [] {
         TMtx pc, s;
         TVec e, v;
         PCA(Data(10, 3, 0), pc, s, e, &v, PCACorrMat);
         return Out(pc, s, e, v);
       }},
      {"PCAResiduals", [] { TMtx r; PCAResiduals(Data(10, 3, 0), 1, r); return Out(r); }},
      // the commonest refusals, one or two per family
      {"MeanT_error", [] { return Out(MeanT(Data(5), 1.5)); }},
      {"Percentile_error", [] { return Out(Percentile(Data(5), -0.1, pctMethodEDF)); }},
      {"Histogram_error", [] { TVec r, b; Histogram(Data(5), 0, r, b, true); return Out(r, b); }},
      {"Covariance_error", [] { TMtx r; Covariance(Data(5), Data(6, 1), r, false); return Out(r); }},
      {"PACF_error", [] { TVec phi, d, e; PACF(TVec{1}, phi, d, e); return Out(phi, d, e); }},
      {"SignTest_error", Decided([](O t) {
         SignTest(Data(5), Data(6, 1), t.h, t.p, t.ci, htTwoTailed, 0.05);
       })},
      {"tTest_error", Tested([](O t) {
         tTest(Data(5), Data(6, 1), t.h, t.p, t.ci, true, htTwoTailed, 0.05);
       })},
      {"FTest_error", Tested([](O t) { FTest(Data(1), Data(5), t.h, t.p, t.ci, htTwoTailed, 0.05); })},
      {"ShapiroWilks_error", Decided([](O t) { ShapiroWilks(Data(2), t.h, t.p, htTwoTailed, 0.05); })},
      {"GOFKolmogorov_error", Decided([](O t) {
         const TVec x{0, 1}, y{0, 0.5, 1};
         GOFKolmogorov(Data(5), t.h, t.p, &x, &y, htTwoTailed, 0.05);
       })},
      {"FullFactDesign_error", [] { TMtx r; FullFactDesign(TVec{2, 0}, r); return Out(r); }},
      {"PCAResiduals_error", [] { TMtx r; PCAResiduals(Data(10, 3, 0), 3, r); return Out(r); }},
  };
}

}  // namespace calltable
