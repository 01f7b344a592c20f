"""NumPy, SciPy and statsmodels peers of bench/descriptive_bench.cpp, on the
same numbers: splitmix64 through Box-Muller, element for element as there."""
import numpy as np

_GOLDEN = np.uint64(0x9E3779B97F4A7C15)


def _splitmix64(seed, count):
    with np.errstate(over="ignore"):
        z = np.uint64(seed) + (np.arange(1, count + 1, dtype=np.uint64) * _GOLDEN)
        z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
    return z ^ (z >> np.uint64(31))


def normals(n, seed):
    u = (_splitmix64(seed, 2 * n) >> np.uint64(11)).astype(np.float64) * 2.0**-53
    u1, u2 = 1.0 - u[0::2], u[1::2]
    return np.sqrt(-2.0 * np.log(u1)) * np.cos(2.0 * np.pi * u2)


def _percentile():
    x = normals(10_000_000, 1)
    return lambda: np.percentile(x, 30.0)  # linear interpolation: the (n - 1) p + 1 rule


def _histogram():
    x = normals(10_000_000, 1)
    return lambda: np.histogram(x, bins=100)


def _ranks():
    import scipy.stats
    x = normals(1_000_000, 2)
    return lambda: scipy.stats.rankdata(x)


def _unique():
    x = normals(10_000_000, 1)
    return lambda: np.unique(x)


def _covariance():
    x = normals(10_000_000, 3).reshape(1_000_000, 10)
    return lambda: np.cov(x, rowvar=False)


def _acf():
    from statsmodels.tsa.stattools import acf
    x = normals(100_000, 4)
    return lambda: acf(x, nlags=50, adjusted=False, fft=True)


PEERS = {
    "Percentile_1e7": _percentile,
    "Histogram_1e7_100": _histogram,
    "TiedRanks_1e6": _ranks,
    "Unique_1e7": _unique,
    "Covariance_1e6x10": _covariance,
    "ACF_1e5_50": _acf,
}
