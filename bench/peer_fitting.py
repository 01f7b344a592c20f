"""Peers of bench/fitting_bench.cpp: the same fits on the same data through
SciPy (maximum likelihood with the location fixed at 0)."""
import numpy as np
from scipy import stats

from peer_tests import uniforms


def gamma_fit():
    x = stats.gamma.ppf(uniforms(11, 10 ** 5), 2.5, scale=1.7)
    return lambda: stats.gamma.fit(x, floc=0)


def weibull_fit():
    x = (-np.log1p(-uniforms(12, 10 ** 5)) / 0.02) ** (1 / 1.8)
    return lambda: stats.weibull_min.fit(x, floc=0)


def gof_normal():
    x = stats.norm.ppf(uniforms(13, 10 ** 6), 10.0, 2.0)

    def run():
        mu, sigma = x.mean(), x.std(ddof=1)  # norm.fit's sigma divides by n; the test's by n - 1
        observed, edges = np.histogram(x, bins=20, range=(x.min(), x.max()))
        expected = len(x) * np.diff(stats.norm.cdf(edges, mu, sigma))
        return stats.chi2.sf(((observed - expected) ** 2 / expected).sum(), 17)
    return run


PEERS = {
    "BM_GammaFit1e5": gamma_fit,
    "BM_WeibullFit1e5": weibull_fit,
    "BM_GOFChi2TestNormal1e6": gof_normal,
}
