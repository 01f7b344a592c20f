#pragma once
// Pieces shared by every unit of the Python module: NumPy arrays in and out
// of TVec and TMtx, named result types, intervals, docstrings, and calls
// that run without the interpreter lock.
//
// Conventions of the module (every unit follows them):
// - an operation keeps its C++ name and its parameter names as keywords;
// - inputs are NumPy arrays (or anything NumPy turns into float64); a C-ordered
//   float64 array is read in place, anything else through a converted copy;
// - outputs are returned, never passed in: one output as itself, several as a
//   named tuple whose fields carry the C++ parameter names (a test returns
//   (hRes, Signif, ConfInt)); optional outputs are always computed and returned;
//   an interval is a tuple (lower, upper);
// - an optional input (a null pointer in C++) is None by default;
// - EArrayError arrives as statkit.EArrayError with the same message.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <utility>

#include "statkit/statkit.h"

namespace statkit::python {

namespace py = pybind11;

/// Float64 input in C order: pybind11 passes a caller's array that already is
/// one through untouched, and converts anything else into a new one.
using InArray = py::array_t<double, py::array::c_style | py::array::forcecast>;
using OptArray = std::optional<InArray>;

/// A float64 input that must have \p Dims dimensions. Overloads that differ
/// only in a vector against a matrix (Covariance, MulLinEval) are told apart by
/// the argument's shape: an array of the other shape does not match, and
/// pybind11 goes on to the next overload instead of calling this one.
template <int Dims>
struct ShapedArray {
  InArray array;
};

/// A vector over the elements of a one-dimensional \p a, in place (no copy).
/// \p a must outlive the vector.
TVec VecIn(const InArray& a);
/// A matrix over the elements of a two-dimensional \p a, in place (no copy).
TMtx MtxIn(const InArray& a);
/// Storage for an optional input: \p holder receives the view, the result
/// points at it, or is null when \p a is None.
const TVec* OptVecIn(const OptArray& a, TVec& holder);

/// Owned copies of an input's elements: for inputs the operation also writes
/// (start values) and for objects that outlive the caller's array (summaries).
TVec OwnedVec(const InArray& a);
TMtx OwnedMtx(const InArray& a);

/// Regression statistics as the named tuple Regress.TRegStats (one type for
/// every unit that reports them, as for the one-way table below).
py::object RegStatsOut(const Regress::TRegStats& s);
/// A one-way table and its significance as the named tuple Regress.TANOVA1Result.
py::object ANOVA1Out(const Regress::TANOVA1Table& t, double Signif);

/// A NumPy array that takes over \p v's storage (no copy); complex vectors become complex128.
py::array VecOut(TVec&& v);
/// A two-dimensional NumPy array that takes over \p m's storage.
py::array MtxOut(TMtx&& m);
/// The interval (lower, upper).
py::tuple Interval(const double (&ci)[2]);

/// The decision \p h as the enumeration's Python value. The three values are
/// made once: a new enumeration instance per call would cost a small test
/// more than its arithmetic.
py::object HypothesisResult(Statistics::THypothesisResult h);

/// The docstring of overload \p overload of \p qualified ("Statistics::tTest")
/// from the header documentation; empty when there is none.
const char* Doc(const char* qualified, int overload = 0);

/// A named tuple type \p name with the space-separated \p fields, added to
/// \p m (which keeps it alive); call the handle to make a value.
py::handle ResultType(py::module_& m, const char* name, const char* fields, const char* doc);

/// Runs \p f without the interpreter lock, so other Python threads (Dask's
/// workers among them) go on meanwhile. \p f must not touch Python objects.
template <class F>
decltype(auto) Unlocked(F&& f) {
  py::gil_scoped_release release;
  return std::forward<F>(f)();
}

// One registration function per unit, called by the module's entry point.
void BindStatistics(py::module_& m);
/// The distribution moments, random variates and fits of the unit Statistics.
void BindDistributions(py::module_& m);
void BindRegress(py::module_& m);
void BindRegModels(py::module_& m);
void BindTimeSeries(py::module_& m);
void BindProbPlots(py::module_& m);
void BindControlCharts(py::module_& m);
void BindSummaries(py::module_& m);

}  // namespace statkit::python

namespace pybind11::detail {

template <int Dims>
struct type_caster<statkit::python::ShapedArray<Dims>> {
  using Array = statkit::python::InArray;
  PYBIND11_TYPE_CASTER(statkit::python::ShapedArray<Dims>, handle_type_name<Array>::name);

  bool load(handle src, bool convert) {
    make_caster<Array> inner;
    if (!inner.load(src, convert)) return false;
    Array& a = cast_op<Array&>(inner);
    if (a.ndim() != Dims) return false;
    value.array = std::move(a);
    return true;
  }
};

}  // namespace pybind11::detail
