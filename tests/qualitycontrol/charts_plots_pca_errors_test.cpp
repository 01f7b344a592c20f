// Bad calls of the principal components, the probability plots and the control
// charts: exact messages, prefixed where the error arises inside an operation's
// protected block (nested through the operations it calls), outputs left alone
// by the checks, and pool temporaries returned.
#include "statkit/StatControlCharts.h"
#include "statkit/StatProbPlots.h"
#include "statkit/Statistics.h"
#include "support/expect.h"

namespace statkit::test {
namespace {
using namespace statkit::StatControlCharts;
using namespace statkit::StatProbPlots;
using statkit::Statistics::PCA;
using statkit::Statistics::PCACorrMat;
using statkit::Statistics::PCAResiduals;

TEST(PcaPlotsAndChartsErrors, BadCallsRaiseExactMessages) {
  TVec x{1.0, 2.0, 3.0}, x4{1.0, 2.0, 3.0, 4.0}, c(3, true), empty, out{7.0}, out2{7.0}, e, ucl, lcl, cl;
  TMtx X{{1, 2, 3}, {2, 1, 5}}, cm(2, 2, true), none, noRows(0, 3), pc, scores, res{{7.0}};
  double a = 7.0, b = 7.0, y1 = 7.0, y2 = 7.0, ci[2] = {7.0, 7.0};
  TVec view;  // a view's length is fixed: resizing it to another fails inside the operation
  view.SetSubRange(x4, 0, 2);
  const RaiseCase cases[] = {
      {"PCAResiduals: NumPC >= Data.Cols", [&] { PCAResiduals(X, 3, res); }},
      {"PCAResiduals: NumPC >= Data.Cols", [&] { PCAResiduals(none, 0, res); }},
      {"PCAResiduals: NumPC < 0", [&] { PCAResiduals(X, -1, res); }},
      {"PCA : Size mismatch", [&] { PCA(none, pc, e, nullptr); }},
      {"PCA : CorrCoef : Covariance : Empty vector",
       [&] { PCA(noRows, pc, scores, e, nullptr, PCACorrMat); }},
      {"PCAResiduals : PCA : CorrCoef : Covariance : Empty vector", [&] { PCAResiduals(noRows, 1, res); }},
      {"StatNormalPlot: (Data.Complex)", [&] { StatNormalPlot(c, out, out2, a, b, y1, y2, false); }},
      {"StatNormalPlot: Data.Length < 1", [&] { StatNormalPlot(empty, out, out2, a, b, y1, y2, false); }},
      {"StatNormalPlot : Size mismatch", [&] { StatNormalPlot(x, out, view, a, b, y1, y2, false); }},
      {"StatWeibullPlot : Size mismatch", [&] { StatWeibullPlot(x, out, view, a, b, y1, y2, false); }},
      {"StatQQPlot: (XData.Complex) or YData.Complex",
       [&] { StatQQPlot(x, c, out, out2, a, b, y1, y2, 0, 0); }},
      {"StatQQPlot: (XData.Length <> YData.Length",
       [&] { StatQQPlot(x, x4, out, out2, a, b, y1, y2, 0, 0); }},
      {"StatQQPlot: XData.Length < 1", [&] { StatQQPlot(empty, empty, out, out2, a, b, y1, y2, 0, 0); }},
      {"StatWeibullPlot: (Data.Complex)", [&] { StatWeibullPlot(c, out, out2, a, b, y1, y2, false); }},
      {"StatWeibullPlot: Data.Length < 1", [&] { StatWeibullPlot(empty, out, out2, a, b, y1, y2, false); }},
      {"QCPChart: (Data.Complex) or (SampleSize.Complex)", [&] { QCPChart(x, c, out, a, ucl, lcl, 0.99); }},
      {"QCPChart: Data.Length <> SampleSize.Length", [&] { QCPChart(x, x4, out, a, ucl, lcl, 0.99); }},
      {"QCPChart: (Data.Complex) or (SampleSize.Complex)", [&] { QCNPChart(c, x, out, cl, ucl, lcl, 0.99); }},
      {"QCPChart: Data.Length <> SampleSize.Length", [&] { QCNPChart(x, x4, out, cl, ucl, lcl, 0.99); }},
      {"QCPChart: (Data.Complex) or (SampleSize.Complex)", [&] { QCUChart(c, c, out, a, ucl, lcl, 0.99); }},
      {"QCPChart: Data.Length <> SampleSize.Length", [&] { QCUChart(x4, x, out, a, ucl, lcl, 0.99); }},
      {"QCPChart : Size mismatch", [&] { QCPChart(x, x, view, a, ucl, lcl, 0.99); }},
      {"QCPChart : Size mismatch", [&] { QCNPChart(x, x, out, cl, view, lcl, 0.99); }},
      {"QCPChart : Size mismatch", [&] { QCUChart(x, x, out, a, ucl, view, 0.99); }},
      {"EWMAChart: (Data.Complex)", [&] { EWMAChart(cm, out, a, b, y1, 0.2, 0.99); }},
      {"EWMAChart: (Data.Complex)", [&] { EWMAChart(cm, out, a, ucl, lcl, 0.2, 0.99); }},
      {"EWMAChart : Data.Rows = 0", [&] { EWMAChart(noRows, out, a, b, y1, 0.2, 0.99); }},
      {"EWMAChart : Data.Rows = 0", [&] { EWMAChart(noRows, out, a, ucl, lcl, 0.2, 0.99); }},
      // the charts without a protected block pass the array layer's errors on unprefixed
      {"Complex data not supported", [&] { QCCChart(c, out, a, b, y1, 0.99); }},
      {"Complex data not supported", [&] { QCPChart(c, 5, out, a, b, y1, 0.99); }},
      {"Empty vector", [&] { QCXChart(noRows, out, a, b, y1, 0.9973); }},
      {"Empty vector", [&] { QCCapIndexes(empty, 0.0, 1.0, a, b, y1, ci, ci, 0.05); }},
  };
  ExpectEachRaises(cases, [&](const RaiseCase& row) {  // failed checks (no " : ") write no output
    const bool alone = out.Length() == 1 && out2[0] == 7.0 && a == 7.0 && y2 == 7.0 && res(0, 0) == 7.0;
    EXPECT_TRUE(alone || row.message.find(" : ") != std::string::npos);
    out = TVec{7.0};  // which a failure inside an operation may have written
  });
}

}  // namespace
}  // namespace statkit::test
