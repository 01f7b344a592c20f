// Call-table rows of the unit Statistics (descriptive statistics and tests).

#include "call_table.h"

namespace calltable {

using namespace statkit::Statistics;

namespace {

Values Test(THypothesisResult hRes, double Signif, const double (&ci)[2]) {
  return {static_cast<double>(hRes), Signif, ci[0], ci[1]};
}

}  // namespace

std::vector<Row> StatisticsRows() {
  return {
      {"MeanG", [] { return Values{MeanG(Data(20))}; }},
      {"Histogram", [] {
         TVec r;
         Histogram(Data(50), TVec{10, 20, 30, 40, 50}, r);
         Values out;
         Put(out, r);
         return out;
       }},
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
  };
}

}  // namespace calltable
