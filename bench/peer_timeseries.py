"""Peers of bench/timeseries_bench.cpp: statsmodels' ARIMA(y, order=(2, 0, 1),
trend='c') on the same ARMA(2,1) series, the model built outside the timing.
statsmodels writes the MA term with a plus sign: ma.L1 = 0.4 is statkit's
theta_1 = -0.4."""
import numpy as np
import warnings
from statsmodels.tsa.arima.model import ARIMA

GOLDEN = np.uint64(0x9E3779B97F4A7C15)


def series(n):
    with np.errstate(over="ignore"):
        z = np.uint64(7) + np.arange(1, 2 * n + 1, dtype=np.uint64) * GOLDEN
        z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
        z = z ^ (z >> np.uint64(31))
    u = ((z >> np.uint64(11)).astype(np.float64) + 0.5) * 2.0 ** -53
    e = np.sqrt(-2.0 * np.log(u[0::2])) * np.cos(2.0 * np.pi * u[1::2])
    x = np.zeros(n)
    for t in range(n):
        x[t] = e[t] + (0.5 * x[t - 1] + 0.4 * e[t - 1] if t > 0 else 0.0) + (-0.3 * x[t - 2] if t > 1 else 0.0)
    return x + 10.0


def model(n):
    warnings.simplefilter("ignore")
    return ARIMA(series(n), order=(2, 0, 1), trend="c")


PARAMS = np.array([10.0, 0.5, -0.3, 0.4, 1.0])


def loglike(n):
    m = model(n)
    return lambda: m.loglike(PARAMS)


def fit(n):
    m = model(n)
    return lambda: m.fit()


def forecast(n):
    m = model(n)
    return lambda: m.filter(PARAMS).get_forecast(20).summary_frame()


PEERS = {
    "BM_ArimaLike/10000": lambda: loglike(10000),
    "BM_ArimaMLE/1000": lambda: fit(1000),
    "BM_ArimaMLE/10000": lambda: fit(10000),
    "BM_PredictArima20/10000": lambda: forecast(10000),
}
