// The extension statkit._statkit: array conversion, the error class, the
// enumerations, and one submodule per unit.

#include <climits>
#include <cstring>
#include <string_view>

#include "binding.h"

namespace statkit::python {

namespace {

struct DocEntry {
  const char* name;
  int overload;
  const char* text;
};
constexpr DocEntry kDocs[] = {
#include "docstrings.inc"
};

// NumPy sizes are 64-bit; statkit's lengths are int.
int CheckedLength(py::ssize_t n) {
  if (n > INT_MAX) ERaise(msg::IntegerOverflow);
  return static_cast<int>(n);
}

void RequireDims(const InArray& a, int dims) {
  if (a.ndim() != dims)
    throw py::value_error("expected a " + std::to_string(dims) + "-dimensional array, got " +
                          std::to_string(a.ndim()) + " dimensions");
}

// NumPy never writes through these views: inputs are const in every operation.
double* Elements(const InArray& a) { return const_cast<double*>(a.data()); }

template <class T>
py::capsule Owner(T* obj) {
  return py::capsule(obj, [](void* p) { delete static_cast<T*>(p); });
}

template <class T>
py::array Adopt(T&& obj, std::vector<py::ssize_t> shape) {
  auto* owner = new T(std::move(obj));
  const py::capsule base = Owner(owner);
  if (owner->Complex()) {
    std::vector<py::ssize_t> strides(shape.size(), sizeof(TCplx));
    if (shape.size() == 2) strides[0] = shape[1] * py::ssize_t(sizeof(TCplx));
    return py::array_t<std::complex<double>>(shape, strides, reinterpret_cast<TCplx*>(owner->data()), base);
  }
  std::vector<py::ssize_t> strides(shape.size(), sizeof(double));
  if (shape.size() == 2) strides[0] = shape[1] * py::ssize_t(sizeof(double));
  return py::array_t<double>(shape, strides, owner->data(), base);
}

template <class E, std::size_t N>
py::enum_<E> BindEnum(py::module_& m, const char* name, const std::array<std::string_view, N>& names,
                      const char* doc) {
  py::enum_<E> e(m, name, doc);
  for (std::size_t i = 0; i < N; ++i) e.value(std::string(names[i]).c_str(), static_cast<E>(i));
  e.export_values();
  return e;
}

// The values of THypothesisResult (the module's own, which it keeps alive).
PyObject* gDecisions[3] = {};

void BindEnumerations(py::module_& top, py::module_& stats, py::module_& models) {
  using namespace Statistics;
  BindEnum<THypothesisType>(stats, "THypothesisType", THypothesisTypeNames, "The alternative hypothesis.");
  BindEnum<THypothesisResult>(stats, "THypothesisResult", THypothesisResultNames, "A test's decision.");
  for (int h = 0; h < 3; ++h) gDecisions[h] = stats.attr(std::string(THypothesisResultNames[h]).c_str()).ptr();
  BindEnum<TPCAMode>(stats, "TPCAMode", TPCAModeNames, "The matrix principal components come from.");
  BindEnum<TTestDistribution>(stats, "TTestDistribution", TTestDistributionNames,
                              "The laws the goodness-of-fit test fits.");
  BindEnum<TPercentileMethod>(stats, "TPercentileMethod", TPercentileMethodNames, "Percentile rules.");
  BindEnum<RegModels::TRegressionModel>(models, "TRegressionModel", RegModels::TRegressionModelNames,
                                        "The regression models.");
  BindEnum<TOptMethod>(top, "TOptMethod", TOptMethodNames, "The optimisers.");
  BindEnum<TOptStopReason>(top, "TOptStopReason", TOptStopReasonNames, "Why an optimiser stopped.");
}

}  // namespace

TVec VecIn(const InArray& a) {
  RequireDims(a, 1);
  TVec v;
  v.SetExternal(Elements(a), CheckedLength(a.shape(0)));
  return v;
}

TMtx MtxIn(const InArray& a) {
  RequireDims(a, 2);
  const int rows = CheckedLength(a.shape(0)), cols = CheckedLength(a.shape(1));
  TMtx m;
  m.SetExternal(Elements(a), rows, cols);
  return m;
}

const TVec* OptVecIn(const OptArray& a, TVec& holder) {
  if (!a) return nullptr;
  holder = VecIn(*a);
  return &holder;
}

// The copy constructors copy the elements (a prvalue would only be the view itself).
TVec OwnedVec(const InArray& a) {
  const TVec view = VecIn(a);
  return TVec(view);
}

TMtx OwnedMtx(const InArray& a) {
  const TMtx view = MtxIn(a);
  return TMtx(view);
}

py::array VecOut(TVec&& v) { return Adopt(std::move(v), {v.Length()}); }

py::array MtxOut(TMtx&& m) { return Adopt(std::move(m), {m.Rows(), m.Cols()}); }

py::object HypothesisResult(Statistics::THypothesisResult h) {
  return py::reinterpret_borrow<py::object>(gDecisions[h]);
}

py::tuple Interval(const double (&ci)[2]) { return py::make_tuple(ci[0], ci[1]); }

const char* Doc(const char* qualified, int overload) {
  for (const DocEntry& d : kDocs)
    if (d.overload == overload && std::strcmp(d.name, qualified) == 0) return d.text;
  return "";
}

py::handle ResultType(py::module_& m, const char* name, const char* fields, const char* doc) {
  py::object type = py::module_::import("collections").attr("namedtuple")(name, fields);
  type.attr("__doc__") = doc;
  type.attr("__module__") = m.attr("__name__");
  m.attr(name) = type;
  return type;
}

}  // namespace statkit::python

PYBIND11_MODULE(_statkit, m) {
  using namespace statkit::python;
  m.doc() = "statkit: statistics over NumPy arrays.";
  py::register_exception<statkit::EArrayError>(m, "EArrayError", PyExc_Exception);
  m.def("PoolOutstanding", &statkit::PoolOutstanding,
        "Number of the pool's temporary objects handed out and not yet given back (0 between calls).");
  m.def("RandSeed", [](std::uint32_t Seed) { statkit::RandSeed(Seed); }, py::arg("Seed"),
        "Seeds the process-wide generator that seeds every Random* procedure, so a run repeats its values.");

  py::module_ stats = m.def_submodule("Statistics", "Descriptive statistics, tests, moments, variates, fits.");
  py::module_ regress = m.def_submodule("Regress", "Linear, nonlinear, logistic, ridge regression; ANOVA.");
  py::module_ models = m.def_submodule("RegModels", "Regression models: evaluation, derivatives, fits.");
  py::module_ series = m.def_submodule("StatTimeSerAnalysis", "Exponential smoothing and ARIMA models.");
  py::module_ plots = m.def_submodule("StatProbPlots", "Probability plots.");
  py::module_ charts = m.def_submodule("StatControlCharts", "Control charts and capability indexes.");
  py::module_ summaries = m.def_submodule("Summaries", "Mergeable summaries of parts of the data.");
  BindEnumerations(m, stats, models);
  BindStatistics(stats);
  BindRegress(regress);
  BindRegModels(models);
  BindTimeSeries(series);
  BindProbPlots(plots);
  BindControlCharts(charts);
  BindSummaries(summaries);
}
