// Call-table rows of the mergeable summaries: each kind summarises two inputs, merges
// them, and lists the fields and derived statistics in the order Python returns them.

#include "call_table.h"

namespace calltable {

using namespace statkit::Summaries;

namespace {

Values Fields(const TMoments& s) { return {s.N, s.Mean, s.M2, s.M3, s.M4, s.Min, s.Max}; }

template <class S, class F>
S Merged(F add) {
  S a, b;
  add(a, 0), add(b, 1);
  Merge(a, b);
  return a;
}

}  // namespace

std::vector<Row> SummaryRows() {
  return {
      {"SummariesMoments",
       [] {
         const TMoments s = Merged<TMoments>([](TMoments& t, int k) { Add(t, Data(20, k)); });
         Values out = Fields(s);
         for (double v : {Variance(s), StdDev(s), Skewness(s), Kurtosis(s)}) out.push_back(v);
         return out;
       }},
      {"SummariesCoMoments",
       [] {
         const TCoMoments s = Merged<TCoMoments>([](TCoMoments& t, int k) { Add(t, Data(10, 3, k)); });
         TMtx cov;
         Covariance(s, cov, true);
         Values out{s.N};
         Put(out, s.Mean), Put(out, s.C), Put(out, cov);
         return out;
       }},
      {"SummariesHistogram",
       [] {
         THistogram a, b;
         InitHistogram(a, TVec{10, 20, 30, 40, 50}), InitHistogram(b, TVec{10, 20, 30, 40, 50});
         Add(a, Data(30)), Add(b, Data(30, 1));
         Merge(a, b);
         Values out;
         Put(out, a.Edges), Put(out, a.Counts);
         for (double v : {a.Below, a.Above, a.NaNs}) out.push_back(v);
         return out;
       }},
      {"SummariesLeastSquares",
       [] {
         const TLeastSquares s =
             Merged<TLeastSquares>([](TLeastSquares& t, int k) { Add(t, Data(12, k + 2), Data(12, 2, k)); });
         TVec B, SE;
         TMtx V;
         TRegStats r{};
         LeastSquaresFit(s, B, SE, r, &V);
         Values out;
         Put(out, B), Put(out, SE);
         for (double v : {r.ResidualVar, r.R2, r.AdjustedR2, r.F, r.SignifProb}) out.push_back(v);
         Put(out, V);
         return out;
       }},
      {"SummariesANOVA1",
       [] {
         const TGroupMoments s = Merged<TGroupMoments>([](TGroupMoments& t, int k) {
           TVec g = Data(15, k + 4);
           for (double& v : g) v = static_cast<int>(v) % 3;
           Add(t, Data(15, k), g);
         });
         double signif = 0.0;
         const TANOVA1Table table = ANOVA1(s, signif, 0.05);
         Values out(table.begin(), table.end());
         out.push_back(signif);
         return out;
       }},
      {"SummariesEdgesDiffer",
       [] {
         THistogram a, b;
         InitHistogram(a, TVec{0, 1}), InitHistogram(b, TVec{0, 2});
         Merge(a, b);
         return Values{};
       }},
      {"SummariesRowsDiffer",
       [] {
         TLeastSquares s;
         Add(s, Data(3), Data(4, 2, 0));
         return Values{};
       }},
      {"SummariesEmptyGroup",
       [] {
         TGroupMoments s;
         Add(s, Data(2), TVec{0, 2});
         double signif = 0.0;
         ANOVA1(s, signif, 0.05);
         return Values{};
       }},
  };
}

}  // namespace calltable
