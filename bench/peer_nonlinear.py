"""Peers of bench/nonlinear_bench.cpp: the binomial fit by statsmodels' GLM (IRLS), the ordinal fit by
statsmodels' OrderedModel (BFGS; its default Nelder-Mead stops at 500 iterations) and NIST's Thurber by
scipy.optimize.least_squares(method='lm'), all with exact derivatives and on the same data (the SplitMix64
stream of the C++ side)."""
import os

import numpy as np
from scipy.optimize import least_squares
import statsmodels.api as sm
from statsmodels.miscmodels.ordinal_model import OrderedModel

from peer_tests import uniforms


def design(n, p):
    u = uniforms(7, n * p).reshape(n, p)
    A = 2 * u - 1
    A[:, 0] = 1
    return A, A @ (0.3 * np.where(np.arange(p) % 2, -1.0, 1.0))


def binomial():
    A, eta = design(100000, 20)
    y = np.floor(10 / (1 + np.exp(-eta)) + uniforms(11, 100000))
    counts = np.column_stack([y, 10 - y])
    return lambda: sm.GLM(counts, A, family=sm.families.Binomial()).fit(tol=1e-8)


def ordinal():
    A, eta = design(10000, 6)
    u = uniforms(13, 10000)
    latent = eta + np.log(u / (1 - u))
    y = sum((latent > c).astype(int) for c in (-1.0, 0.0, 1.0, 2.0))
    return lambda: OrderedModel(y, A[:, 1:], distr="logit").fit(method="bfgs", disp=False, maxiter=1000)


def thurber():
    path = os.path.join(os.path.dirname(__file__), "..", "..", "shared", "strd", "nls", "Thurber.dat")
    with open(path) as f:
        lines = f.read().splitlines()
    start = next(i for i, l in enumerate(lines) if l.startswith("Data:   y"))
    y, x = np.array([[float(v) for v in l.split()] for l in lines[start + 1:] if l.strip()]).T

    def res(b):
        return (b[0] + x * (b[1] + x * (b[2] + x * b[3]))) / (1 + x * (b[4] + x * (b[5] + x * b[6]))) - y

    def jac(b):
        num = b[0] + x * (b[1] + x * (b[2] + x * b[3]))
        den = 1 + x * (b[4] + x * (b[5] + x * b[6]))
        return np.column_stack([x ** j / den for j in range(4)] + [-num * x ** j / den ** 2 for j in range(1, 4)])

    b0 = np.array([1000, 1000, 400, 40, 0.7, 0.3, 0.03])
    return lambda: least_squares(res, b0, jac=jac, method="lm", xtol=1e-8, ftol=1e-8)


PEERS = {"BM_LogisticBinomial_1e5x20": binomial, "BM_LogisticOrdinal_1e4x5": ordinal,
         "BM_NLinRegressThurber": thurber}
