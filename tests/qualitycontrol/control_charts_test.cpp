// Control charts and capability indexes against their formulas written out in
// NumPy with the constants and quantiles in mpmath (gen_control_charts.py), and
// the subgroup constants against their four-decimal tables.
#include <map>

#include "qualitycontrol/subgroup_constants.h"
#include "statkit/StatControlCharts.h"
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::StatControlCharts;

// means, standard deviations, c4 and quantiles: a few tens of eps
constexpr double kTol = 64 * kEps;

// Each element to tol relative, or to tol times the largest of its vector: a lower limit
// near 0 is held to the size of the chart it belongs to.
void ExpectVec(const TVec& actual, const std::vector<double>& expected, double tol) {
  ASSERT_EQ(actual.Length(), static_cast<int>(expected.size()));
  double scale = 0.0;
  for (double v : expected) scale = std::isfinite(v) ? std::fmax(scale, std::fabs(v)) : scale;
  for (int i = 0; i < actual.Length(); ++i) EXPECT_TRUE(NearScaled(actual[i], expected[i], tol, scale)) << i;
}

TEST(ControlCharts, SubgroupConstantsMatchTablesAndDefinitions) {
  // n, c4(n), r(n) as the four-decimal tables print them
  const double printed[] = {2,      0.7979, 0.7071, 3,      0.8862, 0.4864, 4,     0.9213,
                            0.4082, 5,      0.9400, 0.3669, 10,     0.9727, 0.2892};
  for (int i = 0; i < 15; i += 3) {
    EXPECT_NEAR(qc::c4(static_cast<int>(printed[i])), printed[i + 1], 5e-5) << printed[i];
    EXPECT_NEAR(qc::rangeFactor(static_cast<int>(printed[i])), printed[i + 2], 5e-5) << printed[i];
  }
  for (const auto& r : LoadFixture("control_charts.txt")) {
    if (r.Str("kind") != "constants") continue;
    const int n = r.Int("n");  // across the switch to the series at 41, past 344 (Gamma(n / 2) overflows)
    EXPECT_REL(qc::c4(n), r.Num("c4"), 4 * kEps) << n;
    EXPECT_REL(qc::rangeFactor(n), r.Num("r"), 4 * kEps) << n;
  }
  EXPECT_TRUE(std::isnan(qc::c4(1)) && std::isnan(qc::c4(0)));
}

// Every chart of a record on the same data; the outputs, by the record's keys, against
// the formulas: (CL, UCL, LCL) under the chart's letter, or the per-sample vectors.
TEST(ControlCharts, MatchFormulas) {
  for (const auto& r : LoadFixture("control_charts.txt")) {
    const std::string kind = r.Str("kind");
    if (kind == "constants") continue;
    SCOPED_TRACE(kind);
    PoolBalance balance;
    const double conf = kind == "capability" ? 0.0 : r.Num("conf");
    std::map<std::string, TVec> got;
    TVec draw, ucl, lcl, cl;
    double CL, UCL, LCL;
    const auto chart = [&](const std::string& key, auto&& call) {
      call();
      got[key + "draw"] = draw;
      got[key] = TVec{CL, UCL, LCL};
    };
    if (kind == "variables") {
      const TMtx X = r.Mtx("X");
      const double lam = r.Num("lam");
      chart("x", [&] { QCXChart(X, draw, CL, UCL, LCL, conf); });
      chart("s", [&] { QCSChart(X, draw, CL, UCL, LCL, conf); });
      chart("r", [&] { QCRChart(X, draw, CL, UCL, LCL, conf); });
      chart("e", [&] { EWMAChart(X, draw, CL, UCL, LCL, lam, conf); });
      EWMAChart(X, draw, CL, got["eucl"], got["elcl"], lam, conf);
    } else if (kind == "attributes") {
      const TVec d = r.Vec("d"), sizes = r.Vec("n");
      if (r.Int("perSample")) {
        QCPChart(d, sizes, got["pdraw"], CL, got["pucl"], got["plcl"], conf);
        got["pcl"] = TVec{CL};
        QCUChart(d, sizes, got["udraw"], CL, got["uucl"], got["ulcl"], conf);
        got["ucl"] = TVec{CL};
        QCNPChart(d, sizes, got["npdraw"], got["npcl"], got["npucl"], got["nplcl"], conf);
      } else {
        const int size = r.Int("size");
        chart("p", [&] { QCPChart(d, size, draw, CL, UCL, LCL, conf); });
        chart("u", [&] { QCUChart(d, size, draw, CL, UCL, LCL, conf); });
        chart("np", [&] { QCNPChart(d, size, draw, CL, UCL, LCL, conf); });
      }
      chart("c", [&] { QCCChart(d, draw, CL, UCL, LCL, conf); });
    } else {
      TVec x = r.Has("x") ? r.Vec("x") : TVec(r.Int("ramp"));  // ramp: 20000 values, 9 N^2 - 1 past 32 bits
      if (!r.Has("x")) x.Ramp(0.0, 1.0);
      double nonConf, cp, cpk, cpCI[2] = {7.0, 7.0}, cpkCI[2] = {7.0, 7.0};
      QCCapIndexes(x, r.Num("lsl"), r.Num("usl"), nonConf, cp, cpk, cpCI, cpkCI, r.Num("alpha"));
      got["nonconf"] = TVec{nonConf};
      if (r.Has("cap")) got["cap"] = TVec{cp, cpk, cpCI[0], cpCI[1], cpkCI[0], cpkCI[1]};
      else EXPECT_TRUE(std::isnan(cp) && std::isnan(cpk) && cpCI[0] == 7.0 && cpkCI[1] == 7.0);
    }
    for (const auto& [key, value] : got) {
      SCOPED_TRACE(key);
      ASSERT_TRUE(r.Has(key));
      // a normal tail 4.3 standard deviations out carries z^2 = 19 times the error of z
      ExpectVec(value, r.Nums(key), key == "nonconf" ? 20 * kTol : kTol);
    }
  }
}

// Subgroups of one value have no spread: undefined limits for the X and S charts,
// unbounded ones for the EWMA chart, whose points are still the means. The S chart
// clips a negative lower limit; the R chart does not. Attribute charts may write
// their points over their data.
TEST(ControlCharts, EdgesOfSubgroupsAndAliasing) {
  TMtx single{{1.0}, {3.0}, {2.0}}, pairs{{1.0, 2.0}, {3.0, 3.5}, {2.0, 4.0}};
  TVec draw, ucl, lcl;
  double CL, UCL, LCL;
  QCXChart(single, draw, CL, UCL, LCL, 0.9973);
  EXPECT_TRUE(CL == 2.0 && std::isnan(UCL) && std::isnan(LCL));
  EWMAChart(single, draw, CL, UCL, LCL, 0.5, 0.99865);
  EXPECT_TRUE(UCL == INF && LCL == -INF && draw[0] == 1.5 && draw[2] == 2.125);
  EWMAChart(single, draw, CL, ucl, lcl, 0.5, 0.99865);
  EXPECT_TRUE(ucl.Length() == 3 && ucl[2] == INF && lcl[0] == -INF);
  QCSChart(pairs, draw, CL, UCL, LCL, 0.9973);
  EXPECT_EQ(LCL, 0.0);
  QCRChart(pairs, draw, CL, UCL, LCL, 0.9973);
  EXPECT_LT(LCL, 0.0);
  TVec counts{4.0, 6.0, 5.0}, sizes{40.0, 50.0, 60.0}, expected;
  QCPChart(counts, sizes, expected, CL, ucl, lcl, 0.99);
  QCPChart(counts, sizes, sizes, CL, ucl, lcl, 0.99);  // the points written over the sizes
  for (int i = 0; i < 3; ++i) EXPECT_EQ(sizes[i], expected[i]);
  double nonConf, cp, cpk;
  QCCapIndexes(TVec{1.0, 2.0, 3.0, 4.0}, 0.0, 5.0, nonConf, cp, cpk, nullptr, nullptr, 0.05);
  EXPECT_EQ(cp, cpk);  // the mean halfway between the limits
}

}  // namespace
}  // namespace statkit::test
