// Call-table rows of the units StatTimeSerAnalysis, StatProbPlots and StatControlCharts.

#include <tuple>

#include "call_table.h"

namespace calltable {

using namespace statkit;
using namespace statkit::StatTimeSerAnalysis;
using namespace statkit::StatProbPlots;
using namespace statkit::StatControlCharts;

namespace {

void Add(Values& out, double v) { out.push_back(v); }
void Add(Values& out, const TDenseKalpa& x) { Put(out, x); }

// With(init...)(f): a row that calls f on outputs starting at the values init and lists them in order.
template <class... Out>
auto With(Out... init) {
  return [=](auto f) -> std::function<Values()> {
    return [=] {
      std::tuple<Out...> out(init...);
      std::apply(f, out);
      Values v;
      std::apply([&v](const auto&... o) { (Add(v, o), ...); }, out);
      return v;
    };
  };
}
const auto Vector = With(TVec());
const auto Scalar = With(0.0);
const auto Plot = With(TVec(), TVec(), 0.0, 0.0, 0.0, 0.0);
const auto ScalarChart = With(TVec(), 0.0, 0.0, 0.0);
const auto VectorChart = With(TVec(), 0.0, TVec(), TVec());
const auto VectorsChart = With(TVec(), TVec(), TVec(), TVec());
const auto Capability = [](double USL) {
  const auto outputs = With(0.0, 0.0, 0.0, TVec{NAN, NAN}, TVec{NAN, NAN});
  return outputs([USL](double& nc, double& cp, double& cpk, TVec& ci, TVec& cik) {
    QCCapIndexes(Data(30), 5, USL, nc, cp, cpk, ci.data(), cik.data(), 0.05);
  });
};

const TVec Sizes{80, 95, 70, 64, 120, 88, 77, 99, 101, 66};  // above every count of Data(10)

}  // namespace

std::vector<Row> SeriesAndChartRows() {
  return {
      {"SingleExpSmooth", With(TVec(), 0.3, 0.0)([](TVec& s, double& a, double& mse) {
         mse = SingleExpSmooth(Data(30), s, a, 2);
       })},
      {"DoubleExpSmooth", With(TVec(), 0.3, 0.1)([](auto&... o) { DoubleExpSmooth(Data(30), o...); })},
      {"TripleExpSmooth", With(TVec(), 0.3, 0.1, 0.1)([](auto&... o) { TripleExpSmooth(Data(24), o...); })},
      {"TripleExpSmoothPeriod",
       With(TVec(), 0.3, 0.1, 0.1)([](auto&... o) { TripleExpSmooth(Data(24), o..., 4); })},
      {"ArmaAcf", Vector([](TVec& acf) {
         ArmaAcf(TVec{0.5, -0.2}, TVec{0.3}, 6, acf, false);
       })},
      {"ArmaAcfNoModel", Vector([](TVec& acf) { ArmaAcf(TVec(), TVec(), 3, acf, true); })},
      {"Invertability", Scalar([](double& r) {
         r = Invertability(std::vector{0.5, -0.2, 0.1});
       })},
      {"ArimaLike", Scalar([](double& r) {
         TVec x = Data(40), w, acf, ar, ma;
         TMtx m5, m6, m7;
         TObject* const objects[8] = {&x, &w, &acf, &ar, &ma, &m5, &m6, &m7};
         r = ArimaLike(std::vector{0.4, 0.2}, std::vector{1.0, 1.0}, objects);
       })},
      {"ArimaMLE", With(TVec{0.2}, TVec{0.1}, TVec(), 0.0)([](TVec& p, TVec& t, TVec& aux, double& it) {
         it = ArimaMLE(Data(60), p, t, 0, aux);
       })},
      {"PredictArima",
       With(TVec(), TVec())([](auto&... o) { PredictArima(Data(40), TVec{0.5}, TVec{0.3}, 1, 5, o...); })},
      {"SimulateArma", Vector([](TVec& s) {
         RandSeed(7);
         SimulateArma(TVec{0.5}, TVec{0.3}, 20, s);
       })},
      {"SimulateArmaExplosive", Vector([](TVec& s) { SimulateArma(TVec{1.5}, TVec(), 20, s); })},
      {"SimulateArima", Vector([](TVec& s) {
         RandSeed(8);
         SimulateArima(TVec{0.5}, TVec(), TVec{10, 1}, 20, s);
       })},
      {"StatNormalPlot", Plot([](auto&... o) { StatNormalPlot(Data(15), o..., false); })},
      {"StatWeibullPlot", Plot([](auto&... o) { StatWeibullPlot(Data(15, 1), o..., false); })},
      {"StatQQPlot", Plot([](auto&... o) { StatQQPlot(Data(12), Data(12, 1), o..., false, false); })},
      {"StatQQPlotLengths", Plot([](auto&... o) { StatQQPlot(Data(3), Data(4), o..., false, false); })},
      {"QCXChart", ScalarChart([](auto&... o) { QCXChart(Data(8, 5, 0), o..., 0.9973); })},
      {"QCSChart", ScalarChart([](auto&... o) { QCSChart(Data(8, 5, 0), o..., 0.9973); })},
      {"QCRChart", ScalarChart([](auto&... o) { QCRChart(Data(8, 5, 0), o..., 0.9973); })},
      {"QCPChart", ScalarChart([](auto&... o) { QCPChart(Data(10), 80, o..., 0.99865); })},
      {"QCPChartSizes", VectorChart([](auto&... o) { QCPChart(Data(10), Sizes, o..., 0.99865); })},
      {"QCPChartLengths", VectorChart([](auto&... o) {
         QCPChart(Data(3), TVec{80, 95, 70, 64}, o..., 0.99865);
       })},
      {"QCNPChart", ScalarChart([](auto&... o) { QCNPChart(Data(10), 80, o..., 0.99865); })},
      {"QCNPChartSizes", VectorsChart([](auto&... o) { QCNPChart(Data(10), Sizes, o..., 0.99865); })},
      {"QCUChart", ScalarChart([](auto&... o) { QCUChart(Data(10), 80, o..., 0.99865); })},
      {"QCUChartSizes", VectorChart([](auto&... o) { QCUChart(Data(10), Sizes, o..., 0.99865); })},
      {"QCCChart", ScalarChart([](auto&... o) { QCCChart(Data(10), o..., 0.99865); })},
      {"EWMAChart", ScalarChart([](auto&... o) { EWMAChart(Data(8, 4, 2), o..., 0.2, 0.99865); })},
      {"EWMAChartExact", VectorChart([](auto&... o) { EWMAChart(Data(8, 4, 2), o..., 0.2, 0.99865); })},
      {"EWMAChartEmpty", ScalarChart([](auto&... o) { EWMAChart(TMtx(0, 3), o..., 0.2, 0.99865); })},
      {"QCCapIndexes", Capability(60)},
      {"QCCapIndexesOneSided", Capability(INF)},
  };
}

}  // namespace calltable
