// The units StatProbPlots and StatControlCharts from Python: the points and
// reference line of the probability plots, the control charts' points and
// limits, and the capability indexes.

#include <cmath>

#include "binding.h"

namespace statkit::python {

namespace {

// A chart's points and lines (DrawVec, CL, UCL, LCL) with scalar centre line and limits.
template <class F>
py::object ScalarLimitsChart(py::handle Result, F&& call) {
  TVec draw;
  double cl = 0.0, ucl = 0.0, lcl = 0.0;
  Unlocked([&] { call(draw, cl, ucl, lcl); });
  return Result(VecOut(std::move(draw)), cl, ucl, lcl);
}

// Charts with one limit per sample: CL a float (p, u, EWMA) and the limits arrays.
template <class F>
py::object VectorLimitsChart(py::handle Result, F&& call) {
  TVec draw, ucl, lcl;
  double cl = 0.0;
  Unlocked([&] { call(draw, cl, ucl, lcl); });
  return Result(VecOut(std::move(draw)), cl, VecOut(std::move(ucl)), VecOut(std::move(lcl)));
}

void BindVariablesCharts(py::module_& m, py::handle Result) {
  using namespace StatControlCharts;
  using TVariablesChart = void (*)(const TMtx&, TVec&, double&, double&, double&, double);
  const std::pair<const char*, TVariablesChart> charts[] = {
      {"QCXChart", &QCXChart}, {"QCSChart", &QCSChart}, {"QCRChart", &QCRChart}};
  for (const auto& [name, chart] : charts) {
    const std::string qualified = std::string("StatControlCharts::") + name;
    m.def(
        name,
        [Result, chart = chart](const InArray& Data, double Confidence) {
          const TMtx x = MtxIn(Data);
          return ScalarLimitsChart(Result, [&](TVec& draw, double& cl, double& ucl, double& lcl) {
            chart(x, draw, cl, ucl, lcl, Confidence);
          });
        },
        py::arg("Data"), py::arg("Confidence"), Doc(qualified.c_str()));
  }
}

void BindAttributeCharts(py::module_& m, py::handle Result) {
  using namespace StatControlCharts;
  using TOneSize = void (*)(const TVec&, int, TVec&, double&, double&, double&, double);
  using TPerSample = void (*)(const TVec&, const TVec&, TVec&, double&, TVec&, TVec&, double);
  struct Attribute {
    const char* name;
    TOneSize oneSize;
    TPerSample perSample;  // null for np, whose centre line is per sample too
  };
  const Attribute charts[] = {{"QCPChart", &QCPChart, &QCPChart},
                              {"QCNPChart", &QCNPChart, nullptr},
                              {"QCUChart", &QCUChart, &QCUChart}};
  for (const Attribute& c : charts) {
    const std::string qualified = std::string("StatControlCharts::") + c.name;
    m.def(
        c.name,
        [Result, chart = c.oneSize](const InArray& Data, int SampleSize, double Confidence) {
          const TVec x = VecIn(Data);
          return ScalarLimitsChart(Result, [&](TVec& draw, double& cl, double& ucl, double& lcl) {
            chart(x, SampleSize, draw, cl, ucl, lcl, Confidence);
          });
        },
        py::arg("Data"), py::arg("SampleSize"), py::arg("Confidence"), Doc(qualified.c_str(), 0));
    if (c.perSample) {
      m.def(
          c.name,
          [Result, chart = c.perSample](const InArray& Data, const InArray& SampleSize, double Confidence) {
            const TVec x = VecIn(Data), n = VecIn(SampleSize);
            return VectorLimitsChart(Result, [&](TVec& draw, double& cl, TVec& ucl, TVec& lcl) {
              chart(x, n, draw, cl, ucl, lcl, Confidence);
            });
          },
          py::arg("Data"), py::arg("SampleSize"), py::arg("Confidence"), Doc(qualified.c_str(), 1));
    }
  }
  m.def(
      "QCNPChart",
      [Result](const InArray& Data, const InArray& SampleSize, double Confidence) {
        const TVec x = VecIn(Data), n = VecIn(SampleSize);
        TVec draw, cl, ucl, lcl;
        Unlocked([&] { QCNPChart(x, n, draw, cl, ucl, lcl, Confidence); });
        return Result(VecOut(std::move(draw)), VecOut(std::move(cl)), VecOut(std::move(ucl)),
                      VecOut(std::move(lcl)));
      },
      py::arg("Data"), py::arg("SampleSize"), py::arg("Confidence"), Doc("StatControlCharts::QCNPChart", 1));
  m.def(
      "QCCChart",
      [Result](const InArray& Data, double Confidence) {
        const TVec x = VecIn(Data);
        return ScalarLimitsChart(Result, [&](TVec& draw, double& cl, double& ucl, double& lcl) {
          QCCChart(x, draw, cl, ucl, lcl, Confidence);
        });
      },
      py::arg("Data"), py::arg("Confidence"), Doc("StatControlCharts::QCCChart"));
}

// The two EWMA charts differ only in the type of their limits, which Python cannot pass:
// the keyword Exact picks the overload with one pair of limits per subgroup.
void BindEwmaAndCapability(py::module_& m, py::handle Result) {
  using namespace StatControlCharts;
  auto asymptotic = [Result](const TMtx& x, double Lambda, double Confidence) {
    return ScalarLimitsChart(Result, [&](TVec& draw, double& cl, double& ucl, double& lcl) {
      EWMAChart(x, draw, cl, ucl, lcl, Lambda, Confidence);
    });
  };
  m.def(
      "EWMAChart",
      [asymptotic](const InArray& Data, double Lambda, double Confidence) {
        return asymptotic(MtxIn(Data), Lambda, Confidence);
      },
      py::arg("Data"), py::arg("Lambda"), py::arg("Confidence"), Doc("StatControlCharts::EWMAChart", 0));
  m.def(
      "EWMAChart",
      [Result, asymptotic](const InArray& Data, double Lambda, double Confidence, bool Exact) {
        const TMtx x = MtxIn(Data);
        if (!Exact) return asymptotic(x, Lambda, Confidence);
        return VectorLimitsChart(Result, [&](TVec& draw, double& cl, TVec& ucl, TVec& lcl) {
          EWMAChart(x, draw, cl, ucl, lcl, Lambda, Confidence);
        });
      },
      py::arg("Data"), py::arg("Lambda"), py::arg("Confidence"), py::kw_only(), py::arg("Exact"),
      (std::string("With Exact=True: ") + Doc("StatControlCharts::EWMAChart", 1)).c_str());

  const py::handle Capability = ResultType(m, "TCapIndexesResult", "NonConforming Cp Cpk CpCI CpkCI",
                                           "Normal fraction outside the limits, Cp, Cpk and their intervals "
                                           "(lower, upper); NaN where not defined.");
  m.def(
      "QCCapIndexes",
      [Capability](const InArray& Data, double LSL, double USL, double Alpha) {
        const TVec x = VecIn(Data);
        double nonConforming = NAN, cp = NAN, cpk = NAN, cpCI[2] = {NAN, NAN}, cpkCI[2] = {NAN, NAN};
        Unlocked([&] { QCCapIndexes(x, LSL, USL, nonConforming, cp, cpk, cpCI, cpkCI, Alpha); });
        return Capability(nonConforming, cp, cpk, Interval(cpCI), Interval(cpkCI));
      },
      py::arg("Data"), py::arg("LSL"), py::arg("USL"), py::arg("Alpha"),
      Doc("StatControlCharts::QCCapIndexes"));
}

}  // namespace

void BindProbPlots(py::module_& m) {
  using namespace StatProbPlots;
  const py::handle Plot = ResultType(m, "TProbPlotResult", "XOut YOut X1 X2 Y1 Y2",
                                     "The plot's points and the end points (X1, Y1), (X2, Y2) of its line.");
  using TOneSamplePlot = void (*)(const TVec&, TVec&, TVec&, double&, double&, double&, double&, bool);
  const std::pair<const char*, TOneSamplePlot> plots[] = {{"StatNormalPlot", &StatNormalPlot},
                                                          {"StatWeibullPlot", &StatWeibullPlot}};
  for (const auto& [name, plot] : plots) {
    const std::string qualified = std::string("StatProbPlots::") + name;
    m.def(
        name,
        [Plot, plot = plot](const InArray& Data, bool Sorted) {
          const TVec x = VecIn(Data);
          TVec xOut, yOut;
          double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
          Unlocked([&] { plot(x, xOut, yOut, x1, x2, y1, y2, Sorted); });
          return Plot(VecOut(std::move(xOut)), VecOut(std::move(yOut)), x1, x2, y1, y2);
        },
        py::arg("Data"), py::arg("Sorted"), Doc(qualified.c_str()));
  }
  m.def(
      "StatQQPlot",
      [Plot](const InArray& XData, const InArray& YData, bool XSorted, bool YSorted) {
        const TVec x = VecIn(XData), y = VecIn(YData);
        TVec xOut, yOut;
        double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
        Unlocked([&] { StatQQPlot(x, y, xOut, yOut, x1, x2, y1, y2, XSorted, YSorted); });
        return Plot(VecOut(std::move(xOut)), VecOut(std::move(yOut)), x1, x2, y1, y2);
      },
      py::arg("XData"), py::arg("YData"), py::arg("XSorted"), py::arg("YSorted"),
      Doc("StatProbPlots::StatQQPlot"));
}

void BindControlCharts(py::module_& m) {
  const py::handle Result = ResultType(m, "TChartResult", "DrawVec CL UCL LCL",
                                       "The points to draw, the centre line and the upper and lower limits "
                                       "(floats, or arrays with one value per sample).");
  BindVariablesCharts(m, Result);
  BindAttributeCharts(m, Result);
  BindEwmaAndCapability(m, Result);
}

}  // namespace statkit::python
