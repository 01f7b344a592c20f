#!/usr/bin/python3
"""Reference cells and moments for the goodness-of-fit checks of the random
variates, from SciPy's distributions in statkit's parameterisations
(geometric and negative binomial count failures, the exponential takes its
mean, the Weibull has F(x) = 1 - exp(-a x^b), the stream's Rayleigh has
density 2 (x - a)/beta^2 exp(-((x - a)/beta)^2), the discrete uniform runs
over 1..N).

Continuous laws: the 100 inner edges of 101 cells of equal probability
(SciPy's ppf). Discrete laws: cells of consecutive values, each of probability
at least 5e-5 (50 expected draws in 10^6), the tails folded into the end
cells, an odd number of cells (so the chi-square has even degrees of freedom,
whose upper tail is a finite sum). Moments: mean, variance and fourth central
moment where they are finite.

Writes random_variates.txt: records "law", "params", "seed", then "edges" or
"cells" and "probs", then "mean", "var", "mu4" as they exist.
"""
import math
import numpy as np
import scipy
from scipy import stats

from fixture_writer import Fixture

CELLS = 101
MIN_PROB = 5e-5

# Each law: statkit's name, SciPy's law of statkit's parameters, the parameters in order.
LAWS = [
    ("RandomBeta", stats.beta, [(0.5, 0.5), (2.0, 5.0), (0.05, 0.2)]),
    ("RandomBinom", stats.binom, [(20, 0.3), (1000, 0.4), (100, 0.95), (2000, 0.9)]),
    ("RandomCauchy", stats.cauchy, [(1.0, 2.0)]),
    ("RandomChiSquare", stats.chi2, [(1,), (2,), (7,)]),
    ("RandomExponent", lambda mu: stats.expon(scale=mu), [(2.5,)]),
    ("RandomF", stats.f, [(3, 7), (10, 20)]),
    ("RandomGamma", lambda a, b: stats.gamma(a, scale=b), [(0.5, 2.0), (2.5, 1.0), (1.0, 3.0), (0.05, 1.0), (100.0, 0.1)]),
    ("RandomGeometric", lambda p: stats.geom(p, loc=-1), [(0.3,), (0.01,)]),
    ("RandomHypGeometric", stats.hypergeom, [(50, 10, 5), (1000, 300, 200), (1000, 700, 900), (100000, 50000, 400)]),
    ("RandomLaplace", stats.laplace, [(1.0, 2.0)]),
    ("RandomLogNormal", lambda mu, s: stats.lognorm(s, scale=math.exp(mu)), [(0.5, 0.8)]),
    ("RandomNegBinom", stats.nbinom, [(3, 0.4), (1, 0.05), (20, 0.9)]),
    ("RandomNormal", stats.norm, [(3.0, 2.0)]),
    ("RandomPoisson", stats.poisson, [(3.0,), (300.0,), (12.5,), (0.05,)]),
    ("RandomRayleigh", lambda b: stats.rayleigh(scale=b), [(1.5,)]),
    ("RandomStudent", stats.t, [(1,), (2,), (3,), (9,)]),
    ("RandomTriangular", lambda a, b, c: stats.triang((c - a) / (b - a), loc=a, scale=b - a), [(0.0, 3.0, 1.0), (-1.0, 1.0, 1.0)]),
    ("RandomUniform", lambda a, b: stats.uniform(a, b - a), [(-2.0, 5.0)]),
    ("RandomUniformD", lambda n: stats.randint(1, n + 1), [(6,), (1000,)]),
    ("RandomWeibull", lambda a, b: stats.weibull_min(b, scale=a ** (-1 / b)), [(2.0, 0.7), (0.5, 3.0)]),
    # Stream methods that the procedures do not reach: the second normal method,
    # displaced laws, a negative binomial with a fractional count, and the
    # binomial and Poisson methods at the edges of their ranges.
    ("Stream.GaussianBoxMuller", stats.norm, [(1.0, 2.0)]),
    ("Stream.Exponential", stats.expon, [(1.0, 2.0)]),
    ("Stream.Weibull", lambda b, a, s: stats.weibull_min(b, loc=a, scale=s), [(1.5, -1.0, 2.0)]),
    ("Stream.Rayleigh", lambda a, b: stats.rayleigh(a, b / math.sqrt(2.0)), [(2.0, 1.0)]),
    ("Stream.Cauchy", stats.cauchy, [(-3.0, 0.5)]),
    ("Stream.Laplace", stats.laplace, [(-1.0, 0.25)]),
    ("Stream.NegBinomial", stats.nbinom, [(2.5, 0.3), (0.5, 0.01)]),
    ("Stream.Binomial", stats.binom, [(50, 0.2), (2000000000, 3e-9)]),
    ("Stream.Poisson", stats.poisson, [(10.0,), (9.99,), (1e6,)]),
    ("Stream.Hypergeometric", stats.hypergeom, [(2000000000, 1000000000, 30)]),
]

def discrete_cells(dist):
    lo = int(dist.ppf(1e-13))
    hi = int(dist.ppf(1.0 - 1e-13))
    lo = max(lo - 1, int(dist.support()[0]))
    ks = np.arange(lo, hi + 1)
    pmf = dist.pmf(ks)
    pmf[0] += dist.cdf(lo - 1)  # nothing below the first value
    cells, probs = [], []
    acc, start = 0.0, None
    for k, p in zip(ks, pmf):
        if start is None:
            start = k
        acc += p
        if acc >= MIN_PROB:
            cells.append(int(start))
            probs.append(acc)
            acc, start = 0.0, None
    probs[-1] += acc + dist.sf(hi)  # the upper tail joins the last cell
    def merge_last_two():
        last = probs.pop()
        probs[-1] += last
        cells.pop()
    while len(probs) >= 2 and probs[-1] < MIN_PROB:
        merge_last_two()
    if len(cells) % 2 == 0:  # an odd number of cells
        merge_last_two()
    total = sum(probs)
    return cells, [p / total for p in probs]

def moments(dist):
    if dist.dist.name == "hypergeom":
        # SciPy's closed forms overflow for populations near 2^31: sum over the support instead.
        ks = np.arange(dist.support()[0], dist.support()[1] + 1)
        p = dist.pmf(ks)
        p /= p.sum()
        m = float((ks * p).sum())
        v = float(((ks - m) ** 2 * p).sum())
        mu4 = float(((ks - m) ** 4 * p).sum())
        return {"mean": m, "var": v, "mu4": mu4}
    m, v, k = (float(x) for x in dist.stats("mvk"))
    finite = math.isfinite(m) and math.isfinite(v)
    return {**({"mean": m, "var": v} if finite else {}), **({"mu4": (k + 3.0) * v * v} if finite and math.isfinite(k) else {})}

out = Fixture("random_variates.txt", "generated by tests/reference/gen_random_variates.py with SciPy %s, NumPy %s"
              % (scipy.__version__, np.__version__), between=True)
for i, (law, law_of, params) in enumerate((law, law_of, p) for law, law_of, ps in LAWS for p in ps):
    dist = law_of(*params)
    if isinstance(dist.dist, stats.rv_discrete):
        cells, probs = discrete_cells(dist)
        cell_fields = {"cells": " ".join(str(c) for c in cells), "probs": probs}
    else:
        cell_fields = {"edges": dist.ppf(np.arange(1, CELLS) / CELLS)}
    out.record(law=law, params=params, seed=20261123 + 7919 * i, **cell_fields, **moments(dist))
