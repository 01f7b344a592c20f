#!/usr/bin/python3
"""Reference values for the probability functions (tests/array/probability_test.cpp).

Every value is computed by mpmath at 40 significant digits from the exact binary
value of each argument, far into the tails: the incomplete beta function by its
continued fraction (DLMF 8.17.22, modified Lentz) with 20 guard digits, since
mpmath's own hypergeometric route does not converge for shapes near 1e5; the
incomplete gamma function by mpmath.gammainc; quantiles by a bracketed Illinois
iteration on the logarithm of the tail probability. Where R is accurate it gives
a second opinion: disagreements beyond 1e-13 are reported on stderr, and the
fixture keeps the mpmath value (R's qf, qbeta and pt are approximate in places).

Writes tests/reference/probability.txt. Run: /usr/bin/python3 gen_probability.py
"""
import math
import os
import subprocess
import sys

import mpmath
from mpmath import mp, mpf

mp.dps = 40
GUARD = 20
HERE = os.path.dirname(os.path.abspath(__file__))

# ---------------------------------------------------------------------------
# Special functions in mpmath


def ibeta_pair(a, b, x, y):
    """(I_x(a, b), 1 - I_x(a, b)) for x + y = 1, y given separately to keep it exact."""
    a, b, x, y = mpf(a), mpf(b), mpf(x), mpf(y)
    if x <= 0:
        return mpf(0), mpf(1)
    if y <= 0:
        return mpf(1), mpf(0)
    with mp.workdps(mp.dps + GUARD):
        if x * (a + b + 2) < a + 1:
            v = _ibeta_cf(a, b, x, y)
            return +v, +(1 - v)
        v = _ibeta_cf(b, a, y, x)
        return +(1 - v), +v


def _ibeta_cf(a, b, x, y):
    """I_x(a, b) = x^a y^b / (a B(a, b)) / (1 + d1/(1 + d2/(1 + ...))), DLMF 8.17.22."""
    lbeta = mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)
    front = mp.exp(a * mp.log(x) + b * mp.log(y) - lbeta) / a
    tiny = mpf(10) ** (-3 * mp.dps)
    eps = mpf(10) ** (-mp.dps)

    def step(d, c, coeff):
        d = 1 + coeff * d
        d = tiny if abs(d) < tiny else d
        c = 1 + coeff / c
        c = tiny if abs(c) < tiny else c
        return 1 / d, c

    # Modified Lentz on 1 + d1/(1 + d2/(1 + ...)), started from f = 1, C = 1, D = 0.
    h, c, d = mpf(1), mpf(1), mpf(0)
    for m in range(1, 10 ** 7):
        k = m // 2
        if m % 2 == 1:
            coeff = -(a + k) * (a + b + k) * x / ((a + 2 * k) * (a + 2 * k + 1))
        else:
            coeff = k * (b - k) * x / ((a + 2 * k - 1) * (a + 2 * k))
        d, c = step(d, c, coeff)
        delta = c * d
        h *= delta
        if abs(delta - 1) < eps:
            break
    else:
        raise RuntimeError("incomplete beta continued fraction did not converge")
    return front / h


def gamma_pair(a, z):
    """(P(a, z), Q(a, z))."""
    a, z = mpf(a), mpf(z)
    if z <= 0:
        return mpf(0), mpf(1)
    with mp.workdps(mp.dps + GUARD):
        if z < a + 1:
            p = mp.gammainc(a, 0, z, regularized=True)
            return +p, +(1 - p)
        q = mp.gammainc(a, z, mp.inf, regularized=True)
        return +(1 - q), +q


def lbeta(a, b):
    return mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)


# Each distribution: (lower, upper) tails and the density at an mpf x, by parameters.

def normal_tails(x, mu, s):
    z = (mpf(x) - mpf(mu)) / mpf(s)
    with mp.workdps(mp.dps + GUARD):
        return +mp.ncdf(z), +mp.ncdf(-z)


def normal_pdf(x, mu, s):
    z = (mpf(x) - mpf(mu)) / mpf(s)
    return mp.npdf(z) / mpf(s)


def student_tails(x, nu):
    x, nu = mpf(x), mpf(nu)
    if x == 0:
        return mpf(0.5), mpf(0.5)
    with mp.workdps(mp.dps + GUARD):
        d = nu + x * x
        w, wc = nu / d, x * x / d
        small, _ = ibeta_pair(nu / 2, mpf(0.5), w, wc)
        small /= 2
        return (+small, +(1 - small)) if x < 0 else (+(1 - small), +small)


def student_pdf(x, nu):
    x, nu = mpf(x), mpf(nu)
    return mp.exp(mp.loggamma((nu + 1) / 2) - mp.loggamma(nu / 2) - mp.log(nu * mp.pi) / 2
                  - (nu + 1) / 2 * mp.log1p(x * x / nu))


def gamma_tails(x, a, b):
    return gamma_pair(a, mpf(x) / mpf(b))


def gamma_pdf(x, a, b):
    x, a, b = mpf(x), mpf(a), mpf(b)
    z = x / b
    return mp.exp((a - 1) * mp.log(z) - z - mp.loggamma(a)) / b


def chi2_tails(x, nu):
    return gamma_tails(x, mpf(nu) / 2, 2)


def chi2_pdf(x, nu):
    return gamma_pdf(x, mpf(nu) / 2, 2)


def f_tails(x, n1, n2):
    x, n1, n2 = mpf(x), mpf(n1), mpf(n2)
    with mp.workdps(mp.dps + GUARD):
        d = n2 + n1 * x
        return ibeta_pair(n1 / 2, n2 / 2, n1 * x / d, n2 / d)


def f_pdf(x, n1, n2):
    x, n1, n2 = mpf(x), mpf(n1), mpf(n2)
    a1, a2 = n1 / 2, n2 / 2
    return mp.exp(a1 * mp.log(n1) + a2 * mp.log(n2) + (a1 - 1) * mp.log(x)
                  - (a1 + a2) * mp.log(n2 + n1 * x) - lbeta(a1, a2))


def beta_tails(x, a, b, y=None):
    """Tails at x, or at x = 1 - y when y is given (y below the resolution of x near 1)."""
    with mp.workdps(mp.dps + GUARD + 330):  # 1 - x exact for x down to 1e-330
        if y is None:
            x = mpf(x)
            y = 1 - x
        else:
            y = mpf(y)
            x = 1 - y
    return ibeta_pair(a, b, x, y)


def beta_pdf(x, a, b):
    x, a, b = mpf(x), mpf(a), mpf(b)
    return mp.exp((a - 1) * mp.log(x) + (b - 1) * mp.log1p(-x) - lbeta(a, b))


def weibull_tails(x, a, b):
    u = mpf(a) * mpf(x) ** mpf(b)
    return -mp.expm1(-u), mp.exp(-u)


def weibull_pdf(x, a, b):
    x, a, b = mpf(x), mpf(a), mpf(b)
    return a * b * x ** (b - 1) * mp.exp(-a * x ** b)


def exp_tails(x, mu):
    u = mpf(x) / mpf(mu)
    return -mp.expm1(-u), mp.exp(-u)


def exp_pdf(x, mu):
    return mp.exp(-mpf(x) / mpf(mu)) / mpf(mu)


def rayleigh_tails(x, b):
    u = (mpf(x) / mpf(b)) ** 2 / 2
    return -mp.expm1(-u), mp.exp(-u)


def rayleigh_pdf(x, b):
    x, b = mpf(x), mpf(b)
    return x / b ** 2 * mp.exp(-(x / b) ** 2 / 2)


def binom_tails(k, n, p):
    k, n, p = mpf(k), mpf(n), mpf(p)
    if k >= n:
        return mpf(1), mpf(0)
    with mp.workdps(mp.dps + GUARD + 330):
        q = 1 - p
    # P(X <= k) = I_(1-p)(n - k, k + 1)
    return ibeta_pair(n - k, k + 1, q, p)


def binom_pmf(k, n, p):
    k, n, p = int(k), int(n), mpf(p)
    with mp.workdps(mp.dps + GUARD):
        return +(mp.binomial(n, k) * p ** k * mp.power(1 - p, n - k))


def poisson_tails(k, lam):
    # P(X <= k) = Q(k + 1, lambda)
    lo, up = gamma_pair(mpf(k) + 1, lam)
    return up, lo


def poisson_pmf(k, lam):
    k, lam = mpf(k), mpf(lam)
    return mp.exp(k * mp.log(lam) - lam - mp.loggamma(k + 1))


def negbinom_tails(k, r, p):
    p = mpf(p)
    with mp.workdps(mp.dps + GUARD + 330):
        q = 1 - p
    return ibeta_pair(r, mpf(k) + 1, p, q)


def negbinom_pmf(k, r, p):
    k, r, p = int(k), int(r), mpf(p)
    with mp.workdps(mp.dps + GUARD):
        return +(mp.binomial(k + r - 1, k) * p ** r * mp.power(1 - p, k))


# ---------------------------------------------------------------------------
# Quantiles: solve log(tail(x)) = log(target) by a bracketed Illinois iteration in
# u, with x = to_x(u) monotone. p <= 1/2 uses the lower tail, p > 1/2 the upper tail
# at 1 - p, which is exact for a double p >= 1/2.

def solve_quantile(tails, p, to_x, u0=mpf(0), increasing=True, upper=False, tails_of_u=None):
    """upper: p is the upper-tail probability of the wanted point; tails_of_u, when
    given, evaluates the tails from u directly (where to_x(u) would round)."""
    p = mpf(p)
    use_lower = p <= 0.5 and not upper
    target = mp.log(p if use_lower or upper else 1 - p)

    def g(u):
        lo, up = tails_of_u(u) if tails_of_u else tails(to_x(u))
        t = lo if use_lower else up
        if t <= 0:
            return -mpf(10) ** 6 if (use_lower == increasing) else mpf(10) ** 6
        v = mp.log(t) - target
        return v if (use_lower == increasing) else -v

    # g is increasing in u; bracket the root.
    a = b = mpf(u0)
    ga = gb = g(a)
    if ga == 0:
        return to_x(a)
    step = mpf(1)
    if ga < 0:
        while gb < 0:
            a, ga = b, gb
            b = b + step
            gb = g(b)
            step *= 2
    else:
        while ga > 0:
            b, gb = a, ga
            a = a - step
            ga = g(a)
            step *= 2
    side = 0
    for _ in range(400):
        c = (a * gb - b * ga) / (gb - ga)
        gc = g(c)
        if gc == 0:
            return to_x(c)
        if (gc < 0) == (ga < 0):
            a, ga = c, gc
            if side == -1:
                gb /= 2
            side = -1
        else:
            b, gb = c, gc
            if side == 1:
                ga /= 2
            side = 1
        # u to 1e-32 gives x to 1e-32 relative: far below a double's rounding.
        if abs(gc) < mpf(10) ** -34:
            return to_x(c)
        if abs(b - a) <= mpf(10) ** -32 * max(1, abs(c)):
            return to_x((a + b) / 2)
    raise RuntimeError("quantile iteration did not converge")


def positive_quantile(tails, p, guess=None, upper=False):
    """Quantile of a distribution on (0, inf), searched in u = log x."""
    u0 = mp.log(guess) if guess and guess > 0 and math.isfinite(guess) else mpf(0)
    return solve_quantile(tails, p, mp.exp, u0, upper=upper)


def symmetric_quantile(tails, p, upper=False):
    """Quantile of a distribution symmetric about 0, searched in u = log|x|."""
    p = mpf(p)
    if upper:
        return -symmetric_quantile(tails, p)
    if p == 0.5:
        return mpf(0)
    if p < 0.5:
        return solve_quantile(tails, p, lambda u: -mp.exp(u), increasing=False)
    with mp.workdps(mp.dps + 10):
        q = 1 - p
    return -symmetric_quantile(tails, q)


def unit_quantile(tails, p, upper=False):
    """Quantile of a distribution on (0, 1): x = exp(u) for the lower tail, 1 - exp(u) for the upper."""
    p = mpf(p)
    if p <= 0.5 and not upper:
        return solve_quantile(tails, p, mp.exp, mpf(-1))
    return solve_quantile(tails, p, lambda u: 1 - mp.exp(u), mpf(-1), increasing=False, upper=upper,
                          tails_of_u=lambda u: tails(None, y=mp.exp(u)))


def discrete_quantile(cdf, p, guess):
    """Smallest whole k >= 0 with cdf(k) >= p, exactly: gallop from the guess, then bisect."""
    p = mpf(p)
    k = max(0, int(guess))
    if cdf(k) >= p:
        hi, step = k, 1
        while True:
            lo = hi - step
            if lo < 0:
                if cdf(0) >= p:
                    return 0
                lo = 0
                break
            if cdf(lo) < p:
                break
            hi, step = lo, 2 * step
    else:
        lo, step = k, 1
        while True:
            hi = lo + step
            if cdf(hi) >= p:
                break
            lo, step = hi, 2 * step
    while hi - lo > 1:  # cdf(lo) < p <= cdf(hi)
        mid = (lo + hi) // 2
        if cdf(mid) >= p:
            hi = mid
        else:
            lo = mid
    return hi


# ---------------------------------------------------------------------------
# Grids

P_GRID = [1e-300, 1e-200, 1e-100, 1e-50, 1e-20, 1e-10, 1e-5, 1e-3, 0.01, 0.1, 0.25, 0.3, 0.5,
          0.6, 0.75, 0.9, 0.99, 0.999, 1 - 1e-5, 1 - 1e-10, 1 - 2.0 ** -40, 1 - 2.0 ** -53]
TAIL_P = [1e-300, 1e-200, 1e-100, 1e-50, 1e-20, 1e-10, 1e-5, 0.01, 0.1, 0.3]
DF = [1, 2, 3, 10, 100, 10000, 1000000]
DISCRETE_P = [1e-300, 1e-10, 0.01, 0.3, 0.5, 0.7, 0.9, 0.99, 1 - 1e-10]


def upper_log(p, upper):
    """-log of the upper-tail probability: -log(p) when p is that tail, else -log(1 - p)."""
    return -mp.log(mpf(p)) if upper else -mp.log1p(-mpf(p))


def round_sig(x, digits=6):
    return float("%.*g" % (digits, x))


def representable(v):
    v = abs(float(v))
    return v == 0 or (5e-324 <= v < 1.7e308)


def dbl(v):
    return float(v)


records = []


def add(fn, par, xs, ys):
    print("  %s%s: %d values" % (fn, tuple(par), len(xs)), file=sys.stderr, flush=True)
    keep = [(x, y) for x, y in zip(xs, ys) if representable(y) and (y == 0 or float(y) != 0)]
    if keep:
        records.append((fn, list(par), [k[0] for k in keep], [float(k[1]) for k in keep]))


def tail_grid(tails, quantile_of, extra=()):
    """Arguments where the lower and the upper tail take the values of TAIL_P."""
    xs = set(extra)
    for p in TAIL_P:
        for upper in (False, True):
            try:
                q = quantile_of(p, upper=upper)
            except (ZeroDivisionError, RuntimeError, ValueError):
                continue
            if representable(q) and float(q) != 0:
                xs.add(round_sig(float(q)))
    return sorted(xs)


def quantile_records(fn, par, quantile_of, ps=P_GRID):
    xs, ys = [], []
    for p in ps:
        q = quantile_of(p)
        if representable(q) and (float(q) != 0 or q == 0):
            xs.append(p)
            ys.append(q)
    add(fn, par, xs, ys)


def continuous(name, par, tails, pdf, quantile_of, extra=(), with_cdfc=True, with_inv=True,
               pdf_filter=None):
    xs = tail_grid(tails, quantile_of, extra)
    lo = [tails(x) for x in xs]
    add(name + "CDF", par, xs, [t[0] for t in lo])
    if with_cdfc:
        add(name + "CDFc", par, xs, [t[1] for t in lo])
    if pdf is not None:
        px = [x for x in xs if pdf_filter is None or pdf_filter(x)]
        add(name + "PDF", par, px, [pdf(x) for x in px])
    if with_inv:
        quantile_records(name + "CDFInv", par, quantile_of)


def build():
    # Normal: the standard case over the whole double range of the tails, then
    # shifted and scaled ones whose standardised argument is inexact.
    zs = [-38.4, -38.2, -38.0, -37.6, -37.5, -37.0, -36.0, -35.0, -30.0, -27.0, -26.5, -25.0, -20.0,
          -15.0, -10.0, -8.0, -6.0, -5.0, -3.0, -2.0, -1.5, -1.0, -0.5, -1e-8, -1e-300, 0.0, 1e-300,
          0.25, 0.5, 1.0, 1.41, 2.0, 3.0, 5.0, 8.0, 8.2, 9.0, 12.0, 20.0, 38.0]
    zs += [round_sig(-38.0 + 47.0 * i / 61.0, 12) for i in range(61)]
    for mu, s in [(0.0, 1.0), (3.0, 0.5), (-1000.0, 25.5), (0.1, 3.3)]:
        xs = sorted({mu + s * z for z in zs})
        tails = [normal_tails(x, mu, s) for x in xs]
        add("NormalCDF", (mu, s), xs, [t[0] for t in tails])
        add("NormalCDFc", (mu, s), xs, [t[1] for t in tails])
        add("NormalPDF", (mu, s), xs, [normal_pdf(x, mu, s) for x in xs])
        ps = P_GRID + [5e-324, 1e-320, 1e-310, 2.2250738585072014e-308]
        quantile_records("NormalCDFInv", (mu, s), lambda p, upper=False: mpf(mu) + mpf(s) * symmetric_quantile(
            lambda x: normal_tails(x, 0, 1), p, upper), ps)

    for nu in DF:
        t = lambda x, nu=nu: student_tails(x, nu)
        q = lambda p, upper=False, t=t: symmetric_quantile(t, p, upper)
        extra = [0.0, 1e-10, -1e-10, 0.5, -2.0]
        if nu <= 3:
            extra += [-1e16, -1e20, -1e50, -1e100, 1e100] + ([-1e300, 1e300, -1.7e308] if nu == 1 else [])
        continuous("Student", (nu,), t, lambda x, nu=nu: student_pdf(x, nu), q, extra)

    for nu in DF:
        t = lambda x, nu=nu: chi2_tails(x, nu)
        q = lambda p, upper=False, t=t: positive_quantile(t, p, float(nu), upper)
        continuous("ChiSquare", (nu,), t, lambda x, nu=nu: chi2_pdf(x, nu), q, [1e-300, 1e-10, 0.5, 1.0, 2.0])

    for n1, n2 in [(1, 1), (1, 7), (2, 3), (3, 10), (10, 100), (5, 10000), (100, 1000000),
                   (10000, 10000), (1000000, 1000000), (1000000, 1), (1, 1000000)]:
        t = lambda x, n1=n1, n2=n2: f_tails(x, n1, n2)
        q = lambda p, upper=False, t=t: positive_quantile(t, p, None, upper)
        continuous("F", (n1, n2), t, lambda x, n1=n1, n2=n2: f_pdf(x, n1, n2), q, [1e-300, 1e-10, 1.0, 1e10])

    for a, b in [(0.1, 1.0), (0.5, 2.5), (1.0, 1.0), (3.7, 0.3), (10.0, 7.0), (150.5, 0.01),
                 (10000.0, 1.0), (250000.0, 3.3)]:
        t = lambda x, a=a, b=b: gamma_tails(x, a, b)
        q = lambda p, upper=False, t=t, a=a, b=b: positive_quantile(t, p, a * b, upper)
        continuous("Gamma", (a, b), t, lambda x, a=a, b=b: gamma_pdf(x, a, b), q, [1e-300, 1e-10, 1.0])

    for a, b in [(0.5, 0.5), (1.0, 1.0), (2.0, 5.0), (0.1, 10.0), (50.0, 0.7), (1000.0, 10000.0),
                 (100000.0, 100000.0)]:
        t = lambda x, a=a, b=b, y=None: beta_tails(x, a, b, y)
        q = lambda p, upper=False, t=t: unit_quantile(t, p, upper)
        continuous("Beta", (a, b), t, lambda x, a=a, b=b: beta_pdf(x, a, b), q, [1e-300, 1e-10, 0.5],
                   with_cdfc=False)

    # Weibull: the density's exponent A x^B carries the rounding of pow (about 1.5 eps
    # relative), which the density multiplies by A x^B; its grid stops at A x^B = 40.
    for a, b in [(1.0, 1.0), (2.0, 0.5), (0.3, 3.2), (1e-3, 2.0)]:
        t = lambda x, a=a, b=b: weibull_tails(x, a, b)
        q = lambda p, upper=False, a=a, b=b: (upper_log(p, upper) / mpf(a)) ** (1 / mpf(b))
        continuous("Weibull", (a, b), t, lambda x, a=a, b=b: weibull_pdf(x, a, b), q, [1e-300, 1.0],
                   with_cdfc=False, pdf_filter=lambda x, a=a, b=b: a * x ** b <= 40)

    for mu in [1.0, 0.3, 2e5]:
        t = lambda x, mu=mu: exp_tails(x, mu)
        q = lambda p, upper=False, mu=mu: mpf(mu) * upper_log(p, upper)
        continuous("Exp", (mu,), t, lambda x, mu=mu: exp_pdf(x, mu), q, [1e-300, 1.0], with_cdfc=False)

    for b in [1.0, 0.3, 2e5]:
        t = lambda x, b=b: rayleigh_tails(x, b)
        q = lambda p, upper=False, b=b: mpf(b) * mp.sqrt(2 * upper_log(p, upper))
        continuous("Rayleigh", (b,), t, lambda x, b=b: rayleigh_pdf(x, b), q, [1e-300, 1.0], with_cdfc=False)

    # Discrete distributions: whole arguments around the mean and into both tails.
    for n, p in [(1, 0.5), (10, 0.3), (100, 0.01), (1000, 0.5), (10000, 0.999), (1000000, 1e-4)]:
        mean, sd = n * p, math.sqrt(n * p * (1 - p))
        ks = {0, 1, n - 1, n, int(mean)}
        for m in (-30, -10, -3, -1, 1, 3, 10, 30):
            ks.add(int(round(mean + m * sd)))
        ks = sorted(k for k in ks if 0 <= k <= n)
        tails = [binom_tails(k, n, p) for k in ks]
        add("BinomCDF", (n, p), [float(k) for k in ks], [t[0] for t in tails])
        add("BinomCDFc", (n, p), [float(k) for k in ks], [t[1] for t in tails])
        add("BinomPDF", (n, p), [float(k) for k in ks], [binom_pmf(k, n, p) for k in ks])

    for lam in [1e-3, 0.5, 1.0, 10.0, 123.4, 10000.0, 1000000.0]:
        sd = math.sqrt(lam)
        ks = {0, 1, 2, int(lam)}
        for m in (-30, -10, -3, -1, 1, 3, 10, 30, 100):
            ks.add(int(round(lam + m * sd)))
        ks = sorted(k for k in ks if k >= 0)
        tails = [poisson_tails(k, lam) for k in ks]
        add("PoissonCDF", (lam,), [float(k) for k in ks], [t[0] for t in tails])
        add("PoissonCDFc", (lam,), [float(k) for k in ks], [t[1] for t in tails])
        add("PoissonPDF", (lam,), [float(k) for k in ks], [poisson_pmf(k, lam) for k in ks])
        add_discrete_inv("PoissonCDFInv", (lam,), lambda k, lam=lam: poisson_tails(k, lam)[0], DISCRETE_P, lam)

    for r, p in [(1, 0.5), (3, 0.2), (10, 0.95), (100, 0.01), (1000, 0.5)]:
        mean = r * (1 - p) / p
        sd = math.sqrt(r * (1 - p)) / p
        ks = {0, 1, int(mean)}
        for m in (-10, -3, -1, 1, 3, 10, 30, 100):
            ks.add(int(round(mean + m * sd)))
        ks = sorted(k for k in ks if k >= 0)
        tails = [negbinom_tails(k, r, p) for k in ks]
        add("NegBinomCDF", (r, p), [float(k) for k in ks], [t[0] for t in tails])
        add("NegBinomCDFc", (r, p), [float(k) for k in ks], [t[1] for t in tails])
        add("NegBinomPDF", (r, p), [float(k) for k in ks], [negbinom_pmf(k, r, p) for k in ks])
        add_discrete_inv("NegBinomCDFInv", (r, p), lambda k, r=r, p=p: negbinom_tails(k, r, p)[0], DISCRETE_P, mean)

    xs = [-1 + 2.0 ** -53, -0.999999, -0.5, -1e-300, 0.0, 1e-300, 1e-10, 0.1, 0.5, 0.9, 0.99,
          0.999999, 1 - 1e-10, 1 - 2.0 ** -52, 1 - 2.0 ** -53]
    add("ErfInv", (), xs, [mp.erfinv(mpf(x)) for x in xs])


def add_discrete_inv(fn, par, cdf, ps, mean):
    """Inverse at p away from the steps: a p within 1e-12 (relative) of some cdf(k)
    would hang on the last bits of the computed cdf; such steps are tested apart."""
    xs, ys = [], []
    for p in ps:
        k = discrete_quantile(cdf, p, mean)
        near = [c for c in (cdf(k), cdf(k - 1) if k > 0 else None) if c is not None]
        if all(abs(c - mpf(p)) > mpf(1e-12) * mpf(p) for c in near):
            xs.append(p)
            ys.append(k)
    records.append((fn, list(par), xs, [float(y) for y in ys]))


# ---------------------------------------------------------------------------
# R cross-check

R_CALLS = {
    "NormalCDF": "pnorm(x, p1, p2)", "NormalCDFc": "pnorm(x, p1, p2, lower.tail=FALSE)",
    "NormalPDF": "dnorm(x, p1, p2)", "NormalCDFInv": "qnorm(x, p1, p2)",
    "StudentCDF": "pt(x, p1)", "StudentCDFc": "pt(x, p1, lower.tail=FALSE)", "StudentPDF": "dt(x, p1)",
    "StudentCDFInv": "qt(x, p1)",
    "ChiSquareCDF": "pchisq(x, p1)", "ChiSquareCDFc": "pchisq(x, p1, lower.tail=FALSE)",
    "ChiSquarePDF": "dchisq(x, p1)", "ChiSquareCDFInv": "qchisq(x, p1)",
    "FCDF": "pf(x, p1, p2)", "FCDFc": "pf(x, p1, p2, lower.tail=FALSE)", "FPDF": "df(x, p1, p2)",
    "FCDFInv": "qf(x, p1, p2)",
    "GammaCDF": "pgamma(x, p1, scale=p2)", "GammaCDFc": "pgamma(x, p1, scale=p2, lower.tail=FALSE)",
    "GammaPDF": "dgamma(x, p1, scale=p2)", "GammaCDFInv": "qgamma(x, p1, scale=p2)",
    "BetaCDF": "pbeta(x, p1, p2)", "BetaPDF": "dbeta(x, p1, p2)", "BetaCDFInv": "qbeta(x, p1, p2)",
    "BinomCDF": "pbinom(x, p1, p2)", "BinomCDFc": "pbinom(x, p1, p2, lower.tail=FALSE)",
    "BinomPDF": "dbinom(x, p1, p2)",
    "PoissonCDF": "ppois(x, p1)", "PoissonCDFc": "ppois(x, p1, lower.tail=FALSE)", "PoissonPDF": "dpois(x, p1)",
    "PoissonCDFInv": "qpois(x, p1)",
    "NegBinomCDF": "pnbinom(x, p1, p2)", "NegBinomCDFc": "pnbinom(x, p1, p2, lower.tail=FALSE)",
    "NegBinomPDF": "dnbinom(x, p1, p2)", "NegBinomCDFInv": "qnbinom(x, p1, p2)",
}


def r_version():
    try:
        out = subprocess.run(["Rscript", "-e", "cat(R.version$major, R.version$minor, sep='.')"],
                             capture_output=True, text=True, check=True)
        return out.stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return None


def cross_check_r():
    version = r_version()
    if version is None:
        print("R not available: no cross-check", file=sys.stderr)
        return "not run"
    lines = ["f <- function(x, p1, p2) 0", "out <- c()"]
    rows = []
    for i, (fn, par, xs, ys) in enumerate(records):
        call = R_CALLS.get(fn)
        if call is None:
            continue
        p1 = repr(par[0]) if par else "0"
        p2 = repr(par[1]) if len(par) > 1 else "0"
        xv = "c(" + ",".join(repr(x) for x in xs) + ")"
        lines.append("x <- %s; p1 <- %s; p2 <- %s" % (xv, p1, p2))
        lines.append("out <- c(out, suppressWarnings(%s))" % call)
        rows.extend((fn, par, x, y) for x, y in zip(xs, ys))
    lines.append('cat(sprintf("%.17g", out), sep="\\n")')
    out = subprocess.run(["Rscript", "-"], input="\n".join(lines), capture_output=True, text=True, check=True)
    rvals = [float(v) for v in out.stdout.split()]
    worst = {}
    for (fn, par, x, y), r in zip(rows, rvals):
        if y == r:
            continue
        err = abs(r - y) / abs(y) if y != 0 else abs(r)
        if abs(y) < 2.2250738585072014e-308 and abs(r - y) <= 1e-300:
            continue
        if err > 1e-13:
            print("R differs: %s%s x=%r mpmath=%r R=%r rel=%.2g" % (fn, tuple(par), x, y, r, err), file=sys.stderr)
        worst[fn] = max(worst.get(fn, 0.0), err)
    for fn in sorted(worst):
        print("R worst relative difference %-16s %.3g" % (fn, worst[fn]), file=sys.stderr)
    return version


def main():
    build()
    rver = cross_check_r()
    path = os.path.join(HERE, "probability.txt")
    with open(path, "w") as f:
        f.write("# Probability functions: reference values from mpmath %s at mp.dps = 40\n" % mpmath.__version__)
        f.write("# (tests/reference/gen_probability.py); cross-checked against R %s.\n" % rver)
        f.write("# fn: function; par: parameters after the argument; x: arguments (p for the\n")
        f.write("# inverses); y: values. Discrete inverses: the smallest whole k with CDF(k) >= p.\n")
        for fn, par, xs, ys in records:
            f.write("---\nfn %s\n" % fn)
            f.write("par %s\n" % " ".join(repr(float(v)) for v in par))
            f.write("x %s\n" % " ".join(repr(float(v)) for v in xs))
            f.write("y %s\n" % " ".join(repr(float(v)) for v in ys))
    print("wrote %s: %d records, %d values" % (path, len(records), sum(len(r[2]) for r in records)),
          file=sys.stderr)


if __name__ == "__main__":
    main()
