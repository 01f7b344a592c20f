"""Call-table rows: the Python side of calls_distributions.cpp."""
from functools import partial

import numpy as np

import statkit
from statkit import Statistics as S
from conftest import data

MOMENTS = {"MVBeta": (2.0, 3.5), "MVBinom": (10, 0.3), "MVCauchy": (0.0, 1.0), "MVChiSquare": (7,),
           "MVExponent": (2.5,), "MVF": (3, 5), "MVGamma": (2.5, 1.5), "MVGeometric": (0.3,), "MVMaxwell": (0.7,),
           "MVHypGeometric": (20, 7, 5), "MVNegBinom": (4, 0.35), "MVNormal": (-1.5, 2.0), "MVPareto": (2.5, 1.5),
           "MVPoisson": (3.7,), "MVRayleigh": (1.3,), "MVStudent": (2,), "MVUniform": (-1.0, 3.0),
           "MVUniformD": (9,), "MVWeibull": (0.5, 1.7)}
VARIATES = {"RandomBeta": (2.0, 3.5, 7), "RandomBinom": (10, 0.3, (3, 4)), "RandomCauchy": (1.0, 2.0, 7),
            "RandomChiSquare": (3, 7), "RandomExponent": (2.5, 7), "RandomF": (3, 5, (2, 3)),
            "RandomGamma": (0.5, 2.0, 7), "RandomGeometric": (0.3, 7), "RandomHypGeometric": (20, 7, 5, 7),
            "RandomLaplace": (1.0, 0.5, 7), "RandomLogNormal": (0.5, 1.5, 7), "RandomNegBinom": (4, 0.35, 7),
            "RandomNormal": (-1.0, 2.0, (3, 4)), "RandomRayleigh": (1.3, 7), "RandomStudent": (4, 7),
            "RandomTriangular": (0.0, 2.0, 0.5, 7), "RandomUniform": (-1.0, 3.0, (1, 7)), "RandomUniformD": (9, 7),
            "RandomWeibull": (0.5, 1.7, 7)}
unit = np.array([0.05, 0.13, 0.21, 0.34, 0.42, 0.5, 0.55, 0.61, 0.68, 0.77, 0.83, 0.91, 0.97])
pos, x = data(30, 1), data(30)
# The short forms' arguments; the long forms (rows ...CI) add Alpha = 0.1.
FITS = {"BetaFit": (unit, 200, 1e-10), "ExponentFit": (pos,), "GammaFit": (pos, 300, 1e-12), "GeometricFit": (x,),
        "LogNormalFit": (pos,), "NormalFit": (x,), "PoissonFit": (x,), "RayleighFit": (pos,), "UniformDFit": (x,),
        "UniformFit": (x,), "WeibullFit": (pos, 99, 1e-9)}


def seeded(f, *args, **kwargs):
    return lambda: (statkit.RandSeed(20261125), f(*args, **kwargs))[1]


CALLS = {
    **{name: partial(getattr(S, name), *a) for name, a in MOMENTS.items()},
    **{name: seeded(getattr(S, name), *a) for name, a in VARIATES.items()},
    **{name: partial(getattr(S, name), *a) for name, a in FITS.items()},
    **{name + "CI": partial(getattr(S, name), *a, 0.1) for name, a in FITS.items()},
    "RandomPoisson": seeded(S.RandomPoisson, lambda_=3.7, Shape=7),
    "RandomNormalSigma": seeded(S.RandomNormal, 0.0, -1.0, 7),
    "RandomShape": seeded(S.RandomUniformD, 9, -1),
    "BinomFit": lambda: S.BinomFit(data(20), 64),
    "BinomFitN": lambda: S.BinomFit(data(20), data(20, 1)),
    "BinomFitCI": lambda: S.BinomFit(X=data(20), n=64.0, Alpha=0.1),
    "BinomFitZero": lambda: S.BinomFit(data(20), 0.0),
    "BinomFitSizes": lambda: S.BinomFit(data(20), data(19)),
    "ExponentFitEmpty": lambda: S.ExponentFit(data(0)),
}
