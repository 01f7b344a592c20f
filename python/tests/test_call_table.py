"""Every operation called from Python gives the C++ library's results, bit for bit."""
import numpy as np
import pytest

import statkit
import calls_distributions
import calls_regression
import calls_series_charts
import calls_statistics
import calls_summaries

# name -> the same call as the row of that name in calls_*.cpp
CALLS = {**calls_statistics.CALLS, **calls_distributions.CALLS, **calls_regression.CALLS,
         **calls_series_charts.CALLS, **calls_summaries.CALLS}


def test_every_row_has_both_halves(cpp_results):
    assert sorted(CALLS) == sorted(cpp_results)


def flatten(result):
    if isinstance(result, (tuple, list)):
        return [v for item in result for v in flatten(item)]
    if isinstance(result, np.ndarray):
        return list(result.view(np.float64).ravel()) if result.dtype == np.complex128 else list(result.ravel())
    return [float(int(result) if hasattr(result, "__index__") else result)]


@pytest.mark.parametrize("name", sorted(CALLS))
def test_same_results_as_cpp(name, cpp_results):
    expected = cpp_results[name]
    if isinstance(expected, str):
        with pytest.raises(statkit.EArrayError) as raised:
            CALLS[name]()
        assert str(raised.value) == expected
    else:
        np.testing.assert_array_equal(flatten(CALLS[name]()), expected)
