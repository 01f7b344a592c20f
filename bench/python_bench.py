#!/usr/bin/python3
"""statkit from Python: the kernels that bench/peer.py times, called through the
Python module on the same data, against the same peers (NumPy, SciPy,
statsmodels) and against the C++ benchmark programs of the same run, whose
difference is the binding's overhead; then the cost of a call on 10 values.

Usage: PYTHONPATH=<build>/python bench/python_bench.py [--build DIR] [--repeats N]

DIR is a build with -DSTATKIT_BUILD_BENCH=ON (for the C++ times; without it
only the peer ratios are printed). Times are the best of N repetitions.
"""
import argparse
import os
import sys
import timeit

import numpy as np

here = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, here)

import peer  # noqa: E402
import peer_descriptive as desc  # noqa: E402
import peer_fitting as fitting  # noqa: E402
import peer_regression as regression  # noqa: E402
import peer_tests as tests  # noqa: E402
from scipy import stats as scipy_stats  # noqa: E402

import statkit  # noqa: E402
from statkit import Regress, Statistics as S  # noqa: E402


def regress_and_test():
    X, y = regression.design()
    A = np.ascontiguousarray(X[:, 1:])

    def run():
        fit = Regress.MulLinRegress(y, A, True)
        return Regress.RegressTest(y, fit.YCalc, fit.V, True)
    return run


def anova1():
    x = tests.normals(13, 10 ** 6)
    groups = (np.arange(10 ** 6) % 10).astype(np.float64)
    return lambda: Regress.ANOVA1(x, groups, 0.05)


def gamma_fit():
    x = scipy_stats.gamma.ppf(tests.uniforms(11, 10 ** 5), 2.5, scale=1.7)
    return lambda: S.GammaFit(x, 500, 1e-8)


# benchmark name (as in bench/*_bench.cpp) -> (topic, statkit workload from Python)
STATKIT = {
    "Percentile_1e7": ("descriptive", lambda: (lambda x: lambda: S.Percentile(x, 0.3, S.pctMethodNMinus))(
        desc.normals(10 ** 7, 1))),
    "Histogram_1e7_100": ("descriptive", lambda: (lambda x: lambda: S.Histogram(x, 100, False))(
        desc.normals(10 ** 7, 1))),
    "TiedRanks_1e6": ("descriptive", lambda: (lambda x: lambda: S.TiedRanks(x))(desc.normals(10 ** 6, 2))),
    "Covariance_1e6x10": ("descriptive", lambda: (lambda x: lambda: S.Covariance(x, False))(
        desc.normals(10 ** 7, 3).reshape(10 ** 6, 10))),
    "BM_tTestTwoSamples1e7": ("tests", lambda: (lambda x, y: lambda: S.tTest(x, y))(
        tests.normals(2, 10 ** 7), tests.normals(3, 10 ** 7) + 0.001)),
    "BM_SpearmanRankCorr1e6": ("tests", lambda: (lambda x: lambda: S.SpearmanRankCorr(x, x + tests.normals(5, 10 ** 6)))(
        tests.normals(4, 10 ** 6))),
    "BM_GammaFit1e5": ("fitting", gamma_fit),
    "BM_MulLinRegressAndTest1e5x50": ("regression", regress_and_test),
    "BM_ANOVA1Vector1e6In10Groups": ("regression", anova1),
}


def best(fn, repeats):
    return peer.best_time(fn, repeats)


def cpp_times(build, repeats):
    times = {}
    for topic in sorted({t for t, _ in STATKIT.values()}):
        names = [n for n, (t, _) in STATKIT.items() if t == topic]
        if os.path.exists(os.path.join(build, "bench", f"{topic}_bench")):
            times.update(peer.run_statkit(build, topic, "|".join(n + "$" for n in names), repeats))
    return times


# Calls on 10 values: (C++ benchmark of the same call or None, the call from Python).
SMALL = {
    "tTest": ("BM_tTestOneSample10", lambda x: lambda: S.tTest(x, 0.0)),
    "Percentile": ("BM_PercentileEDF10", lambda x: lambda: S.Percentile(x, 0.5, S.pctMethodEDF)),
    "MeanG": (None, lambda x: lambda: S.MeanG(x)),
    "scipy.stats.ttest_1samp": (None, lambda x: lambda: scipy_stats.ttest_1samp(x, 0.0)),
}


def small_calls(build, repeats):
    """Microseconds a call on 10 values from Python (best of 5 runs of 20000) and in C++."""
    x = tests.normals(21, 10)
    names = [cpp for cpp, _ in SMALL.values() if cpp]
    cpp = {}
    if os.path.exists(os.path.join(build, "bench", "tests_bench")):
        cpp = peer.run_statkit(build, "tests", "|".join(n + "$" for n in names), repeats)
    for name, (cpp_name, make) in SMALL.items():
        fn = make(x)
        py = min(timeit.repeat(fn, number=20000, repeat=5)) / 20000 * 1e6
        c = cpp.get(cpp_name)
        extra = f"  C++ {c * 1e6:6.2f} us, binding {py - c * 1e6:5.2f} us" if c else ""
        print(f"  {name:28s} {py:6.2f} us{extra}")


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--build", default=os.path.join(here, "..", "build", "bench-release"))
    ap.add_argument("--repeats", type=int, default=5)
    a = ap.parse_args()
    peers = peer.load_peers()
    cpp = cpp_times(a.build, a.repeats)
    print(f"{'kernel':36s} {'python':>10s} {'C++':>10s} {'peer':>10s} {'py/peer':>8s} {'overhead':>9s}")
    for name, (_, make) in STATKIT.items():
        py = best(make(), a.repeats)
        pt = best(peers[name][1](), a.repeats)
        c = cpp.get(name)
        over = f"{100 * (py - c) / c:8.1f}%" if c else f"{'-':>9s}"
        ctext = f"{c * 1e3:8.2f}ms" if c else f"{'-':>10s}"
        print(f"{name:36s} {py * 1e3:8.2f}ms {ctext} {pt * 1e3:8.2f}ms {py / pt:8.3f} {over}")
    print("\nA call on 10 values (the whole call from Python: conversion, C++ work, result):")
    small_calls(a.build, a.repeats)
    print(f"pool objects outstanding after the run: {statkit.PoolOutstanding()}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
