"""NumPy peers of bench/array_bench.cpp: the same 10^7 normal doubles."""
import numpy as np

def _data():
    return np.random.default_rng(7).normal(3.0, 2.0, 10_000_000)

def _mean():
    x = _data()
    return lambda: x.mean()

def _std():
    x = _data()
    return lambda: x.std(ddof=1)

PEERS = {"Mean": _mean, "StdDev": _std}
# statkit kernels reported against another statkit kernel of the same run.
RELATIVE = {"Mean": "ReadLoop4"}
