#!/usr/bin/python3
"""Reference values for the probability functions (tests/array/probability_test.cpp).

mpmath at 40 significant digits from the exact binary value of each argument, far
into the tails. The incomplete beta function by its continued fraction (DLMF
8.17.22, modified Lentz) with 20 guard digits (mpmath's hypergeometric route does
not converge for shapes near 1e5), the incomplete gamma function by
mpmath.gammainc, quantiles by a bracketed Illinois iteration on the logarithm of
the tail. R gives a second opinion: differences beyond 1e-13 go to stderr and the
fixture keeps mpmath's value (R's qf, qbeta and pt are approximate in places).

Writes tests/reference/probability.txt. Run: /usr/bin/python3 gen_probability.py
"""
import math
import re
import subprocess
import sys

import mpmath
from mpmath import mp, mpf

from fixture_writer import Fixture

mp.dps = 40
GUARD = 20


def one_minus(v):
    """1 - v exactly for a double v down to 1e-330."""
    with mp.workdps(mp.dps + GUARD + 330):
        return 1 - mpf(v)


def ibeta_pair(a, b, x, y):
    """(I_x(a, b), 1 - I_x(a, b)) for x + y = 1, y given apart to keep it exact."""
    a, b, x, y = mpf(a), mpf(b), mpf(x), mpf(y)
    if x <= 0 or y <= 0:
        return (mpf(0), mpf(1)) if x <= 0 else (mpf(1), mpf(0))
    with mp.workdps(mp.dps + GUARD):
        if x * (a + b + 2) < a + 1:
            v = _ibeta_cf(a, b, x, y)
            return +v, +(1 - v)
        v = _ibeta_cf(b, a, y, x)
        return +(1 - v), +v


def _ibeta_cf(a, b, x, y):
    """I_x(a, b) = x^a y^b / (a B(a, b)) / (1 + d1/(1 + d2/(1 + ...)))."""
    front = mp.exp(a * mp.log(x) + b * mp.log(y) - lbeta(a, b)) / a
    tiny, eps = mpf(10) ** (-3 * mp.dps), mpf(10) ** (-mp.dps)
    h, c, d = mpf(1), mpf(1), mpf(0)
    for m in range(1, 10 ** 7):
        k = m // 2
        if m % 2:
            coeff = -(a + k) * (a + b + k) * x / ((a + 2 * k) * (a + 2 * k + 1))
        else:
            coeff = k * (b - k) * x / ((a + 2 * k - 1) * (a + 2 * k))
        d = 1 + coeff * d
        d = 1 / (tiny if abs(d) < tiny else d)
        c = 1 + coeff / c
        c = tiny if abs(c) < tiny else c
        h *= c * d
        if abs(c * d - 1) < eps:
            return front / h
    raise RuntimeError("incomplete beta continued fraction did not converge")


def gamma_pair(a, z):
    """(P(a, z), Q(a, z))."""
    a, z = mpf(a), mpf(z)
    if z <= 0:
        return mpf(0), mpf(1)
    with mp.workdps(mp.dps + GUARD):
        if z < a + 1:
            try:
                p = mp.gammainc(a, 0, z, regularized=True)
                return +p, +(1 - p)
            except mpmath.libmp.NoConvergence:
                pass  # shapes near 1e9: the lower series gives up; 1 - Q with 340 more digits
            with mp.workdps(mp.dps + GUARD + 340):
                q = mp.gammainc(a, z, mp.inf, regularized=True)
                return +(1 - q), +q
        q = mp.gammainc(a, z, mp.inf, regularized=True)
        return +(1 - q), +q


def lbeta(a, b):
    return mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)


def flip(pair, flipped):
    return (pair[1], pair[0]) if flipped else pair


# Each law: tails (lower, upper) and density at an argument, parameters after it.
def normal_tails(x, mu, s):
    z = (mpf(x) - mpf(mu)) / mpf(s)
    with mp.workdps(mp.dps + GUARD):
        return +mp.ncdf(z), +mp.ncdf(-z)


def student_tails(x, nu):
    x, nu = mpf(x), mpf(nu)
    if x == 0:
        return mpf(0.5), mpf(0.5)
    with mp.workdps(mp.dps + GUARD):
        small = ibeta_pair(nu / 2, mpf(0.5), nu / (nu + x * x), x * x / (nu + x * x))[0] / 2
        return flip((+small, +(1 - small)), x > 0)


def student_pdf(x, nu):
    x, nu = mpf(x), mpf(nu)
    return mp.exp(mp.loggamma((nu + 1) / 2) - mp.loggamma(nu / 2) - mp.log(nu * mp.pi) / 2
                  - (nu + 1) / 2 * mp.log1p(x * x / nu))


def gamma_pdf(x, a, b):
    x, a, b = mpf(x), mpf(a), mpf(b)
    return mp.exp((a - 1) * mp.log(x / b) - x / b - mp.loggamma(a)) / b


def f_tails(x, n1, n2):
    x, n1, n2 = mpf(x), mpf(n1), mpf(n2)
    with mp.workdps(mp.dps + GUARD):
        return ibeta_pair(n1 / 2, n2 / 2, n1 * x / (n2 + n1 * x), n2 / (n2 + n1 * x))


def f_pdf(x, n1, n2):
    x, a1, a2 = mpf(x), mpf(n1) / 2, mpf(n2) / 2
    return mp.exp(a1 * mp.log(2 * a1) + a2 * mp.log(2 * a2) + (a1 - 1) * mp.log(x)
                  - (a1 + a2) * mp.log(2 * a2 + 2 * a1 * x) - lbeta(a1, a2))


def beta_tails(x, a, b, y=None):
    """Tails at x, or at 1 - y when y is given (below the resolution of x near 1)."""
    if y is None:
        return ibeta_pair(a, b, x, one_minus(x))
    with mp.workdps(mp.dps + GUARD + 330):
        return ibeta_pair(a, b, 1 - mpf(y), y)


def beta_pdf(x, a, b):
    x, a, b = mpf(x), mpf(a), mpf(b)
    return mp.exp((a - 1) * mp.log(x) + (b - 1) * mp.log1p(-x) - lbeta(a, b))


def from_exponent(u):
    """Tails of a law whose upper tail is exp(-u)."""
    return -mp.expm1(-u), mp.exp(-u)


def upper_log(p, upper):
    """-log of the upper-tail probability: of p itself when upper, else of 1 - p."""
    return -mp.log(mpf(p)) if upper else -mp.log1p(-mpf(p))


LAWS = {
    "Normal": (normal_tails, lambda x, mu, s: mp.npdf((mpf(x) - mu) / s) / s),
    "Student": (student_tails, student_pdf),
    "ChiSquare": (lambda x, nu: gamma_pair(mpf(nu) / 2, mpf(x) / 2), lambda x, nu: gamma_pdf(x, mpf(nu) / 2, 2)),
    "F": (f_tails, f_pdf),
    "Gamma": (lambda x, a, b: gamma_pair(a, mpf(x) / mpf(b)), gamma_pdf),
    "Beta": (beta_tails, beta_pdf),
    "Weibull": (lambda x, a, b: from_exponent(mpf(a) * mpf(x) ** mpf(b)),
                lambda x, a, b: a * b * mpf(x) ** (b - 1) * mp.exp(-a * mpf(x) ** b)),
    "Exp": (lambda x, mu: from_exponent(mpf(x) / mu), lambda x, mu: mp.exp(-mpf(x) / mu) / mu),
    "Rayleigh": (lambda x, b: from_exponent((mpf(x) / b) ** 2 / 2),
                 lambda x, b: mpf(x) / b ** 2 * mp.exp(-(mpf(x) / b) ** 2 / 2)),
    # Discrete laws: tails P(X <= k), P(X > k) and the mass at k.
    "Binom": (lambda k, n, p: (mpf(1), mpf(0)) if k >= n else ibeta_pair(n - k, k + 1, one_minus(p), p),
              lambda k, n, p: mp.binomial(int(n), int(k)) * mpf(p) ** k * mp.power(one_minus(p), n - k)),
    "Poisson": (lambda k, lam: flip(gamma_pair(mpf(k) + 1, lam), True),
                lambda k, lam: mp.exp(k * mp.log(lam) - lam - mp.loggamma(k + 1))),
    "NegBinom": (lambda k, r, p: ibeta_pair(r, mpf(k) + 1, p, one_minus(p)),
                 lambda k, r, p: mp.binomial(int(k + r - 1), int(k)) * mpf(p) ** r * mp.power(one_minus(p), k)),
}


# ---------------------------------------------------------------------------
# Quantiles: log(tail(to_x(u))) = log(target) by a bracketed Illinois iteration in u.
# p <= 1/2 on the lower tail, p > 1/2 on the upper one at 1 - p (exact for a double);
# upper=True: p is itself the upper-tail probability.

def solve(tails, p, to_x, u0=0, increasing=True, upper=False, tails_of_u=None):
    p = mpf(p)
    lower = p <= 0.5 and not upper
    target = mp.log(p if lower or upper else 1 - p)
    sign = 1 if lower == increasing else -1

    def g(u):
        t = (tails_of_u(u) if tails_of_u else tails(to_x(u)))[0 if lower else 1]
        return sign * (mp.log(t) - target) if t > 0 else -sign * mpf(10) ** 6

    a = b = mpf(u0)
    ga = gb = g(a)
    step = 1
    while ga > 0:  # bracket: g(a) < 0 < g(b)
        b, gb, a = a, ga, a - step
        ga, step = g(a), 2 * step
    while gb < 0:
        a, ga, b = b, gb, b + step
        gb, step = g(b), 2 * step
    side = 0
    for _ in range(400):
        c = (a * gb - b * ga) / (gb - ga) if gb != ga else (a + b) / 2
        gc = g(c)
        if abs(gc) < mpf(10) ** -34 or abs(b - a) <= mpf(10) ** -32 * max(1, abs(c)):
            return to_x(c)
        if gc < 0:
            a, ga = c, gc
            gb, side = (gb / 2 if side == -1 else gb), -1
        else:
            b, gb = c, gc
            ga, side = (ga / 2 if side == 1 else ga), 1
    raise RuntimeError("quantile iteration did not converge")


def positive_quantile(tails, p, upper=False, guess=None):
    u0 = mp.log(guess) if guess else 0
    return solve(tails, p, mp.exp, u0, upper=upper)


def symmetric_quantile(tails, p, upper=False):
    p = mpf(p)
    if upper or p > 0.5:
        return -symmetric_quantile(tails, p if upper else one_minus(p))
    return mpf(0) if p == 0.5 else solve(tails, p, lambda u: -mp.exp(u), increasing=False)


def unit_quantile(tails, p, upper=False):
    if mpf(p) <= 0.5 and not upper:
        return solve(tails, p, mp.exp, -1)
    return solve(tails, p, lambda u: 1 - mp.exp(u), -1, increasing=False, upper=upper,
                 tails_of_u=lambda u: tails(None, y=mp.exp(u)))


def discrete_quantile(cdf, p, guess):
    """Smallest whole k >= 0 with cdf(k) >= p, exactly: gallop from the guess, then bisect."""
    p, lo, hi, step = mpf(p), max(0, int(guess)), max(0, int(guess)), 1
    if cdf(hi) >= p:
        while lo > 0 and cdf(lo) >= p:
            hi, lo, step = lo, max(0, lo - step), 2 * step
        if cdf(lo) >= p:
            return lo
    else:
        while cdf(hi) < p:
            lo, hi, step = hi, hi + step, 2 * step
    while hi - lo > 1:  # cdf(lo) < p <= cdf(hi)
        mid = (lo + hi) // 2
        lo, hi = (lo, mid) if cdf(mid) >= p else (mid, hi)
    return hi


# ---------------------------------------------------------------------------
# Grids

P_GRID = [1e-300, 1e-200, 1e-100, 1e-50, 1e-20, 1e-10, 1e-5, 1e-3, 0.01, 0.1, 0.25, 0.3, 0.5,
          0.6, 0.75, 0.9, 0.99, 0.999, 1 - 1e-5, 1 - 1e-10, 1 - 2.0 ** -40, 1 - 2.0 ** -53]
TAIL_P = [1e-300, 1e-200, 1e-100, 1e-50, 1e-20, 1e-10, 1e-5, 0.01, 0.1, 0.3]
DISCRETE_P = [1e-300, 1e-10, 0.01, 0.3, 0.5, 0.7, 0.9, 0.99, 1 - 1e-10]
DF = [1, 2, 3, 10, 100, 10000, 1000000, 2147483647]

records = []


def representable(v):
    return v == 0 or 5e-324 <= abs(float(v)) < 1.7e308


def add(fn, par, xs, ys):
    keep = [(x, float(y)) for x, y in zip(xs, ys) if representable(y) and (y == 0 or float(y) != 0)]
    print("  %s%s: %d values" % (fn, tuple(par), len(keep)), file=sys.stderr, flush=True)
    if keep:
        records.append((fn, list(par), [k[0] for k in keep], [k[1] for k in keep]))


def continuous(name, par, quantile, extra=(), cdfc=True, pdf_filter=None, xs=None, ps=P_GRID):
    """Both tails and the density where the tails take the values of TAIL_P (or at xs), and the
    quantiles at ps; quantile(p, upper, *par) has lower tail p, or upper tail p when upper."""
    tails, pdf = LAWS[name]
    if xs is None:
        xs = set(extra(*par) if callable(extra) else extra)
        for p in TAIL_P:
            for upper in (False, True):
                q = quantile(p, upper, *par)
                if representable(q) and float(q) != 0:
                    xs.add(float("%.6g" % float(q)))
        xs = sorted(xs)
    t = [tails(x, *par) for x in xs]
    add(name + "CDF", par, xs, [v[0] for v in t])
    if cdfc:
        add(name + "CDFc", par, xs, [v[1] for v in t])
    px = [x for x in xs if pdf_filter is None or pdf_filter(x, *par)]
    add(name + "PDF", par, px, [pdf(x, *map(mpf, par)) for x in px])
    add(name + "CDFInv", par, ps, [quantile(p, False, *par) for p in ps])


def discrete(name, par, mean, sd, ks, with_inv=True):
    tails, pmf = LAWS[name]
    ks = set(ks) | {int(round(mean + m * sd)) for m in (-30, -10, -3, -1, 1, 3, 10, 30, 100)}
    ks = sorted(k for k in ks if k >= 0 and (name != "Binom" or k <= par[0]))
    t = [tails(k, *par) for k in ks]
    add(name + "CDF", par, [float(k) for k in ks], [v[0] for v in t])
    add(name + "CDFc", par, [float(k) for k in ks], [v[1] for v in t])
    add(name + "PDF", par, [float(k) for k in ks], [pmf(k, *par) for k in ks])
    if not with_inv:
        return
    # Inverses away from the steps: a p within 1e-12 of some CDF(k) would hang on the
    # last bits of the computed CDF; the steps themselves are tested apart.
    cdf = lambda k: tails(k, *par)[0]
    xs, ys = [], []
    for p in DISCRETE_P:
        k = discrete_quantile(cdf, p, mean)
        if all(abs(c - mpf(p)) > mpf(1e-12) * mpf(p) for c in [cdf(k)] + ([cdf(k - 1)] if k else [])):
            xs.append(p)
            ys.append(k)
    records.append((name + "CDFInv", list(par), xs, [float(y) for y in ys]))


def build():
    zs = [-38.4, -38.2, -38.0, -37.6, -37.5, -37.0, -36.0, -35.0, -30.0, -27.0, -26.5, -25.0, -20.0,
          -15.0, -10.0, -8.0, -6.0, -5.0, -3.0, -2.0, -1.5, -1.0, -0.5, -1e-8, -1e-300, 0.0, 1e-300,
          0.25, 0.5, 1.0, 1.41, 2.0, 3.0, 5.0, 8.0, 8.2, 9.0, 12.0, 20.0, 38.0]
    zs += [float("%.12g" % (-38.0 + 47.0 * i / 61.0)) for i in range(61)]
    standard = lambda p, upper, mu, s: mpf(mu) + mpf(s) * symmetric_quantile(lambda x: normal_tails(x, 0, 1), p)
    for mu, s in [(0.0, 1.0), (3.0, 0.5), (-1000.0, 25.5), (0.1, 3.3)]:
        # Shifted and scaled arguments make the standardised one inexact.
        continuous("Normal", (mu, s), standard, xs=sorted({mu + s * z for z in zs}),
                   ps=P_GRID + [5e-324, 1e-320, 1e-310, 2.2250738585072014e-308])

    positive = lambda name, guess=lambda *par: None: lambda p, upper, *par: positive_quantile(
        lambda x: LAWS[name][0](x, *par), p, upper, guess(*par))
    # Each law: parameter sets, quantile(p, upper, *par), extra arguments (or their function of the
    # parameters), options. Chi-square: 2^31 - 1 degrees would take hours of 380-digit incomplete
    # gamma functions. Weibull: the density's exponent A x^B carries the rounding of pow (about
    # 1.5 eps relative), which the density multiplies by A x^B; its grid stops at A x^B = 40.
    for name, pars, quantile, extra, options in [
        ("Student", [(nu,) for nu in DF], lambda p, upper, nu: symmetric_quantile(
            lambda x: student_tails(x, nu), p, upper), lambda nu: [0.0, 1e-10, -1e-10, 0.5, -2.0]
         + ([-1e16, -1e20, -1e50, -1e100, 1e100] if nu <= 3 else []) + ([-1e300, 1e300, -1.7e308] if nu == 1 else []), {}),
        ("ChiSquare", [(nu,) for nu in DF[:-1]], positive("ChiSquare", float), [1e-300, 1e-10, 0.5, 1.0, 2.0], {}),
        ("F", [(1, 1), (1, 7), (2, 3), (3, 10), (10, 100), (5, 10000), (100, 1000000), (10000, 10000),
               (1000000, 1000000), (1000000, 1), (1, 1000000)], positive("F"), [1e-300, 1e-10, 1.0, 1e10], {}),
        ("Gamma", [(0.1, 1.0), (0.5, 2.5), (1.0, 1.0), (3.7, 0.3), (10.0, 7.0), (150.5, 0.01), (10000.0, 1.0),
                   (250000.0, 3.3), (2e6, 1.0)], positive("Gamma", lambda a, b: a * b), [1e-300, 1e-10, 1.0], {}),
        ("Beta", [(0.5, 0.5), (1.0, 1.0), (2.0, 5.0), (0.1, 10.0), (50.0, 0.7), (1000.0, 10000.0), (100000.0, 100000.0)],
         lambda p, upper, a, b: unit_quantile(lambda x, y=None: beta_tails(x, a, b, y), p, upper),
         [1e-300, 1e-10, 0.5], {"cdfc": False}),
        ("Weibull", [(1.0, 1.0), (2.0, 0.5), (0.3, 3.2), (1e-3, 2.0)],
         lambda p, upper, a, b: (upper_log(p, upper) / a) ** (1 / mpf(b)), [1e-300, 1.0],
         {"cdfc": False, "pdf_filter": lambda x, a, b: a * x ** b <= 40}),
        ("Exp", [(1.0,), (0.3,), (2e5,)], lambda p, upper, mu: mu * upper_log(p, upper), [1e-300, 1.0], {"cdfc": False}),
        ("Rayleigh", [(1.0,), (0.3,), (2e5,)], lambda p, upper, b: b * mp.sqrt(2 * upper_log(p, upper)),
         [1e-300, 1.0], {"cdfc": False}),
    ]:
        for par in pars:
            continuous(name, par, quantile, extra, **options)

    for n, p in [(1, 0.5), (10, 0.3), (100, 0.01), (1000, 0.5), (10000, 0.999), (1000000, 1e-4)]:
        discrete("Binom", (n, p), n * p, math.sqrt(n * p * (1 - p)), [0, 1, n - 1, n, int(n * p)], with_inv=False)
    for lam in [1e-3, 0.5, 1.0, 10.0, 123.4, 10000.0, 1000000.0, 1e9]:
        discrete("Poisson", (lam,), lam, math.sqrt(lam), [0, 1, 2, int(lam)])
    for r, p in [(1, 0.5), (3, 0.2), (10, 0.95), (100, 0.01), (1000, 0.5)]:
        discrete("NegBinom", (r, p), r * (1 - p) / p, math.sqrt(r * (1 - p)) / p, [0, 1, int(r * (1 - p) / p)])

    xs = [-1 + 2.0 ** -53, -0.999999, -0.5, -1e-300, 0.0, 1e-300, 1e-10, 0.1, 0.5, 0.9, 0.99,
          0.999999, 1 - 1e-10, 1 - 2.0 ** -52, 1 - 2.0 ** -53]
    add("ErfInv", (), xs, [mp.erfinv(mpf(x)) for x in xs])


# ---------------------------------------------------------------------------
# R cross-check: R's name of each function, x and the parameters p1, p2.

R_CALLS = {
    "Normal": ("norm", "p1, p2"), "Student": ("t", "p1"), "ChiSquare": ("chisq", "p1"), "F": ("f", "p1, p2"),
    "Gamma": ("gamma", "p1, scale=p2"), "Beta": ("beta", "p1, p2"), "Binom": ("binom", "p1, p2"),
    "Poisson": ("pois", "p1"), "NegBinom": ("nbinom", "p1, p2"),
}


def r_call(fn):
    law, kind = re.fullmatch(r"(.*?)(CDFInv|CDFc|CDF|PDF|Inv)", fn).groups()
    if law not in R_CALLS:
        return None
    prefix = {"CDF": "p", "CDFc": "p", "PDF": "d", "CDFInv": "q"}[kind]
    return "%s%s(x, %s%s)" % (prefix, R_CALLS[law][0], R_CALLS[law][1], ", lower.tail=FALSE" if kind == "CDFc" else "")


def cross_check_r():
    try:
        version = subprocess.run(["Rscript", "-e", "cat(R.version$major, R.version$minor, sep='.')"],
                                 capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        print("R not available: no cross-check", file=sys.stderr)
        return "(not run)"
    lines, rows = ["out <- c()"], []
    for fn, par, xs, ys in records:
        call = r_call(fn)
        if call:
            p = [repr(v) for v in par] + ["0", "0"]
            lines.append("x <- c(%s); p1 <- %s; p2 <- %s" % (",".join(map(repr, xs)), p[0], p[1]))
            lines.append("out <- c(out, suppressWarnings(%s))" % call)
            rows.extend((fn, par, x, y) for x, y in zip(xs, ys))
    lines.append('cat(sprintf("%.17g", out), sep="\\n")')
    out = subprocess.run(["Rscript", "-"], input="\n".join(lines), capture_output=True, text=True, check=True)
    worst = {}
    for (fn, par, x, y), r in zip(rows, map(float, out.stdout.split())):
        if y == r or (abs(y) < 2.2250738585072014e-308 and abs(r - y) <= 1e-300):
            continue
        err = abs(r - y) / abs(y) if y != 0 else abs(r)
        if err > 1e-13:
            print("R differs: %s%s x=%r mpmath=%r R=%r rel=%.2g" % (fn, tuple(par), x, y, r, err), file=sys.stderr)
        worst[fn] = max(worst.get(fn, 0.0), err)
    for fn in sorted(worst):
        print("R worst relative difference %-16s %.3g" % (fn, worst[fn]), file=sys.stderr)
    return version


def main():
    build()
    rver = cross_check_r()
    out = Fixture("probability.txt",
                  "Probability functions: reference values from mpmath %s at mp.dps = 40" % mpmath.__version__,
                  "(tests/reference/gen_probability.py); cross-checked against R %s." % rver,
                  "fn: function; par: parameters after the argument; x: arguments (p for the",
                  "inverses); y: values. Discrete inverses: the smallest whole k with CDF(k) >= p.")
    for fn, par, xs, ys in records:
        out.record(fn=fn, par=par, x=xs, y=ys)
    print("wrote probability.txt: %d records, %d values" % (len(records), sum(len(r[2]) for r in records)),
          file=sys.stderr)


if __name__ == "__main__":
    main()
