"""Shared fixtures of the Python module's tests."""
import os
import subprocess

import numpy as np
import pytest


def data(n, k=0):
    """The call table's shared inputs (exact in binary, as in call_table.cpp)."""
    i = np.arange(n, dtype=np.int64)
    return ((i * 7919 + k * 104729) % 1009) / 16.0


def matrix(rows, cols, k):
    return data(rows * cols, k).reshape(rows, cols)


@pytest.fixture(scope="session")
def cpp_results():
    """Each call-table row's results from the C++ library: name -> list of doubles, or the error text."""
    out = subprocess.run([os.environ["STATKIT_CALL_TABLE"]], check=True, capture_output=True, text=True).stdout
    rows = {}
    for line in out.splitlines():
        name, _, rest = line.partition(" ")
        rows[name] = rest[len("error "):] if rest.startswith("error ") else [float(v) for v in rest.split()]
    return rows
