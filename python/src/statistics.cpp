// The unit Statistics from Python.

#include "binding.h"

namespace statkit::python {

using namespace Statistics;

namespace {

// A test's decision, significance and interval, as the tests write them.
struct TestOutcome {
  THypothesisResult hRes = hrNan;
  double Signif = 0.0;
  double ConfInt[2] = {0.0, 0.0};
};

void BindLocationTests(py::module_& m, py::handle Test) {
  auto tuple = [Test](const TestOutcome& r) { return Test(r.hRes, r.Signif, Interval(r.ConfInt)); };
  m.def(
      "tTest",
      [tuple](const InArray& Data, double Mean, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data);
        TestOutcome r;
        Unlocked([&] { tTest(x, Mean, r.hRes, r.Signif, r.ConfInt, hType, Alpha); });
        return tuple(r);
      },
      py::arg("Data"), py::arg("Mean"), py::arg("hType") = htTwoTailed, py::arg("Alpha") = 0.05,
      Doc("Statistics::tTest", 0));
  m.def(
      "tTest",
      [tuple](const InArray& Data1, const InArray& Data2, bool Paired, THypothesisType hType, double Alpha) {
        const TVec x = VecIn(Data1), y = VecIn(Data2);
        TestOutcome r;
        Unlocked([&] { tTest(x, y, r.hRes, r.Signif, r.ConfInt, Paired, hType, Alpha); });
        return tuple(r);
      },
      py::arg("Data1"), py::arg("Data2"), py::arg("Paired") = false, py::arg("hType") = htTwoTailed,
      py::arg("Alpha") = 0.05, Doc("Statistics::tTest", 1));
}

void BindLocation(py::module_& m) {
  m.def("MeanG", [](const InArray& Data) { const TVec x = VecIn(Data); return Unlocked([&] { return MeanG(x); }); },
        py::arg("Data"), Doc("Statistics::MeanG"));
  m.def(
      "Histogram",
      [](const InArray& Data, const InArray& Bins) {
        const TVec x = VecIn(Data), b = VecIn(Bins);
        TVec results;
        Unlocked([&] { Histogram(x, b, results); });
        return VecOut(std::move(results));
      },
      py::arg("Data"), py::arg("Bins"), Doc("Statistics::Histogram", 2));
}

}  // namespace

void BindStatistics(py::module_& m) {
  const py::handle Test = ResultType(m, "TTestResult", "hRes Signif ConfInt",
                                     "A test's decision, significance probability and interval (lower, upper).");
  BindLocation(m);
  BindLocationTests(m, Test);
  BindDistributions(m);
}

}  // namespace statkit::python
