"""Peers of bench/regression_bench.cpp on the same data (the SplitMix64 normals
of peer_tests.py): least squares through numpy.linalg.lstsq and statsmodels OLS,
one-way ANOVA through scipy.stats.f_oneway on groups split beforehand, two-way
sums of squares in NumPy (cells by reshape, means along axes) and through
statsmodels anova_lm on the small layout (its dummy design for the large one
would be 20000 x 4000)."""
import numpy as np
import pandas as pd
import statsmodels.api as sm
from scipy import stats
from statsmodels.formula.api import ols

from peer_tests import normals


def design():
    A = normals(11, 100000 * 50).reshape(100000, 50)
    return np.column_stack([np.ones(100000), A]), normals(12, 100000)


def lstsq():
    X, y = design()
    return lambda: np.linalg.lstsq(X, y, rcond=None)


def statsmodels_ols():
    X, y = design()

    def fit():
        r = sm.OLS(y, X).fit()
        return r.params, r.bse, r.rsquared, r.fvalue
    return fit


def f_oneway():
    x = normals(13, 10 ** 6)
    groups = [x[k::10] for k in range(10)]
    return lambda: stats.f_oneway(*groups)


def numpy_two_way(a, b, r=5):
    d = normals(14, a * r * b).reshape(a * r, b)

    def sums():
        cells = d.reshape(a, r, b).mean(axis=1)
        g = d.mean()
        rows, cols = cells.mean(axis=1), cells.mean(axis=0)
        ssr, ssc = b * r * ((rows - g) ** 2).sum(), a * r * ((cols - g) ** 2).sum()
        ssi = r * ((cells - rows[:, None] - cols[None, :] + g) ** 2).sum()
        sse = ((d.reshape(a, r, b) - cells[:, None, :]) ** 2).sum()
        return ssr, ssc, ssi, sse
    return sums


def anova_lm(a=20, b=10, r=5):
    d = normals(14, a * r * b).reshape(a * r, b)
    frame = pd.DataFrame({"y": d.ravel(), "a": np.repeat(np.arange(a), r * b), "b": np.tile(np.arange(b), a * r)})
    return lambda: sm.stats.anova_lm(ols("y ~ C(a) * C(b)", data=frame).fit())


PEERS = {
    "BM_MulLinRegressAndTest1e5x50": lstsq,
    "BM_MulLinRegressAndTest1e5x50VsOLS": statsmodels_ols,
    "BM_ANOVA1Vector1e6In10Groups": f_oneway,
    "BM_ANOVA2_1000x20x5": lambda: numpy_two_way(1000, 20),
    "BM_ANOVA2_20x10x5": anova_lm,
}
