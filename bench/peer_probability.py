"""SciPy peers of bench/probability_bench.cpp: scipy.special.ndtr on the same
10^7 points (standard normal quantiles at (pi(i) + 1/2)/n, pi(i) = i 2654435761 mod n)."""
import numpy as np
from scipy import special

N = 10_000_000

def _points():
    i = np.arange(N, dtype=np.int64)
    return special.ndtri(((i * 2654435761) % N + 0.5) / N)

def _standard():
    x = _points()
    out = np.empty_like(x)
    return lambda: special.ndtr(x, out=out)

def _mu_sigma():
    x = _points()
    z, out = np.empty_like(x), np.empty_like(x)
    def run():
        np.subtract(x, 0.5, out=z)
        np.divide(z, 1.5, out=z)
        special.ndtr(z, out=out)
    return run

PEERS = {"NormalCDF": _standard, "NormalCDFMuSigma": _mu_sigma}
