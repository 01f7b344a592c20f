"""Module-wide properties: arrays read in place, nothing leaked after errors,
documentation and stubs that match the module."""
import filecmp
import os
import subprocess
import sys
import tracemalloc
import types

import numpy as np
import pytest

import statkit
from statkit import Statistics as S

SOURCE = os.environ.get("STATKIT_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", ".."))


def peak_python_allocation(call):
    """Peak bytes allocated through Python and NumPy while call() runs (a copy of an input shows here)."""
    tracemalloc.start()
    try:
        call()
        return tracemalloc.get_traced_memory()[1]
    finally:
        tracemalloc.stop()


def test_contiguous_float64_is_read_in_place():
    x = np.linspace(1.0, 2.0, 10**7)
    m = x.reshape(1000, 10000)
    in_place = [peak_python_allocation(lambda: S.MeanG(x)), peak_python_allocation(lambda: S.RangeCols(m))]
    # The 80 MB input is never copied (other threads, a Dask client's, may allocate meanwhile: a
    # few MB at most; RangeCols' result is 80 kB).
    assert max(in_place) < 8 * 10**6
    # Other layouts are converted once, and give the same answer.
    assert peak_python_allocation(lambda: S.MeanG(x[::2])) >= 4 * 10**7
    assert S.MeanG(x.astype(np.float32)) == S.MeanG(x.astype(np.float32).astype(np.float64))
    assert S.MeanG(x[::2]) == S.MeanG(np.ascontiguousarray(x[::2]))
    assert S.MeanG(list(x[:10])) == S.MeanG(x[:10])


def test_results_own_their_storage():
    r = S.Histogram(np.arange(10.0), np.array([2.0, 5.0, 8.0]))
    assert r.flags.writeable and r.flags.c_contiguous and not r.flags.owndata
    del r  # the capsule frees the C++ vector (ASan-free build: checked by the reference count below)


def test_errors_leave_references_and_the_pool_balanced():
    x = np.arange(5.0)
    bad_calls = [lambda: S.MeanT(x, 101.0), lambda: S.Percentile(x, 2.0, S.pctMethodEDF),
                 lambda: S.tTest(x, x[:3], Paired=True), lambda: S.Histogram(x, np.array([])),
                 lambda: S.MeanG(x.reshape(5, 1))]
    before = sys.getrefcount(x)
    for call in bad_calls * 50:
        with pytest.raises((statkit.EArrayError, ValueError)):
            call()
    assert sys.getrefcount(x) == before
    assert statkit.PoolOutstanding() == 0


def test_dimension_errors_name_the_shape():
    with pytest.raises(ValueError, match="expected a 1-dimensional array, got 2 dimensions"):
        S.MeanG(np.ones((2, 2)))


def public_routines():
    for unit in vars(statkit._statkit).values():
        if isinstance(unit, types.ModuleType):
            for name, obj in vars(unit).items():
                if callable(obj) and not isinstance(obj, type) and not name.startswith("_"):
                    yield f"{unit.__name__}.{name}", obj


def overloads_without_text(name, doc):
    """Signature lines of doc not followed by a line of documentation."""
    lines = [line.strip() for line in doc.splitlines() if line.strip()]
    is_signature = [line.split("(")[0].split(". ")[-1] == name and ") -> " in line for line in lines]
    return [line for line, sig, nxt in zip(lines, is_signature, is_signature[1:] + [True]) if sig and nxt]


def test_every_operation_is_documented_from_the_headers():
    missing = [(name, sig) for name, obj in public_routines()
               for sig in overloads_without_text(name.split(".")[-1], obj.__doc__)]
    assert missing == []


def test_committed_stubs_match_the_module(tmp_path):
    subprocess.run([sys.executable, os.path.join(SOURCE, "python", "gen_stubs.py"), str(tmp_path)], check=True)
    committed = os.path.join(SOURCE, "python", "statkit")
    names = sorted(f for f in os.listdir(tmp_path) if f.endswith(".pyi"))
    assert names == sorted(f for f in os.listdir(committed) if f.endswith(".pyi"))
    _, mismatch, errors = filecmp.cmpfiles(tmp_path, committed, names, shallow=False)
    assert mismatch == [] and errors == [], "regenerate with python/gen_stubs.py python/statkit"
