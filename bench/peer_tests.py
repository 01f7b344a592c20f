"""Peers of bench/tests_bench.cpp: the same hypothesis tests on the same data
through SciPy. The data come from the same SplitMix64 stream as in the C++
benchmarks (uniforms (k + 0.5) 2^-53 from the top 53 bits, one Box-Muller
normal per pair), so both sides test identical samples."""
import numpy as np
from scipy import stats

GOLDEN = np.uint64(0x9E3779B97F4A7C15)


def uniforms(seed, n):
    with np.errstate(over="ignore"):
        z = np.uint64(seed) + np.arange(1, n + 1, dtype=np.uint64) * GOLDEN
        z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
        z = z ^ (z >> np.uint64(31))
    return ((z >> np.uint64(11)).astype(np.float64) + 0.5) * 2.0 ** -53


def normals(seed, n):
    u = uniforms(seed, 2 * n)
    return np.sqrt(-2.0 * np.log(u[0::2])) * np.cos(2.0 * np.pi * u[1::2])


def shapiro():
    x = np.sort(normals(1, 5000))
    return lambda: stats.shapiro(x)


def ttest():
    x, y = normals(2, 10 ** 7), normals(3, 10 ** 7) + 0.001
    return lambda: stats.ttest_ind(x, y)


def spearman():
    x = normals(4, 10 ** 6)
    y = x + normals(5, 10 ** 6)
    return lambda: stats.spearmanr(x, y)


def wilcoxon():
    d = normals(6, 14) + 0.3
    return lambda: stats.wilcoxon(d, method="exact")


def kolmogorov(seed, n, shift=0.0):
    x = normals(seed, n) + shift
    return lambda: stats.kstest(x, stats.norm.cdf, method="exact")


PEERS = {
    "BM_ShapiroWilks5000": shapiro,
    "BM_tTestTwoSamples1e7": ttest,
    "BM_SpearmanRankCorr1e6": spearman,
    "BM_WilcoxonSignExact14": wilcoxon,
    "BM_GOFKolmogorov100": lambda: kolmogorov(7, 100),
    "BM_GOFKolmogorov1e4": lambda: kolmogorov(8, 10 ** 4),
    "BM_GOFKolmogorov1e5": lambda: kolmogorov(9, 10 ** 5),
    "BM_GOFKolmogorovShifted1e5": lambda: kolmogorov(9, 10 ** 5, 0.02),
}
