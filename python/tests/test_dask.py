"""Mergeable summaries from Python: random splits merged in random order equal the one-piece
summary, summaries survive pickling, and statkit.dask on a two-process cluster gives the
in-memory answers on 10^7 values in 100 chunks."""
import pickle

import dask
import dask.array as da
import numpy as np
import pytest
from scipy import stats

import statkit
from statkit import Regress, Summaries as S
import statkit.dask as sd

RTOL = 1e-12  # merges reorder sums of n terms: a few hundred eps at most, as in the C++ tests

rng0 = np.random.default_rng(19)
N = 3000
X = rng0.exponential(size=N)  # skewed, so skewness and kurtosis are far from 0
M = np.column_stack([X, rng0.normal(size=N), 1e6 + rng0.normal(size=N)])  # an offset column
C = M[:, :2] @ [[1.0, 0.5, 0.0], [0.0, 1.0, 1.0]]  # correlated columns
Y = M @ [2.0, -3.0, 0.5] + 7.0 + rng0.normal(size=N)
G = np.floor(rng0.uniform(0, 5, size=N))
H = np.concatenate([X, [np.nan, -1.0, 0.0, 4.0, 4.5, np.inf, -np.inf]])  # edges, outside, NaN


def fit(s):  # V's off-diagonal entries near 0 are checked against its diagonal, in the cluster test
    f = S.LeastSquaresFit(s)
    return [*f.B, *f.BStdErr, *f.RegStats]


def empty_ls(constant):
    return lambda: S.TLeastSquares(constant)


# kind -> (new empty summary, add rows [lo, hi), results, rows, exact)
KINDS = {
    "moments": (S.TMoments, lambda s, a, b: S.Add(s, X[a:b]),
                lambda s: [s.N, s.Mean, S.Variance(s), S.Skewness(s), S.Kurtosis(s), s.Min, s.Max], N, False),
    "comoments": (S.TCoMoments, lambda s, a, b: S.Add(s, C[a:b]),
                  lambda s: [s.N, *s.Mean, *S.Covariance(s, False).ravel()], N, False),
    "histogram": (lambda: S.InitHistogram(np.linspace(0.0, 4.0, 17)), lambda s, a, b: S.Add(s, H[a:b]),
                  lambda s: [*s.Counts, s.Below, s.Above, s.NaNs], len(H), True),
    "leastsquares": (empty_ls(True), lambda s, a, b: S.Add(s, Y[a:b], M[a:b]), fit, N, False),
    "leastsquares0": (empty_ls(False), lambda s, a, b: S.Add(s, Y[a:b], M[a:b, :2]), fit, N, False),
    "groups": (S.TGroupMoments, lambda s, a, b: S.Add(s, X[a:b], G[a:b]),
               lambda s: [*S.ANOVA1(s, 0.05).Table, S.ANOVA1(s, 0.05).Signif], N, False),
}


def summary(kind, lo, hi):
    make, add = KINDS[kind][:2]
    s = make()
    add(s, lo, hi)
    return s


@pytest.mark.parametrize("kind", sorted(KINDS))
@pytest.mark.parametrize("parts", [1, 2, 3, 17, 64])
def test_random_split_merged_in_random_order_equals_one_piece(kind, parts):
    results, rows, exact = KINDS[kind][2:]
    rng = np.random.default_rng(parts)
    cuts = np.sort(np.concatenate([[0, rows], rng.integers(0, rows + 1, parts - 1)]))  # empty parts allowed
    # every part travels pickled, as between Dask workers
    s = [pickle.loads(pickle.dumps(summary(kind, a, b))) for a, b in zip(cuts[:-1], cuts[1:])]
    while len(s) > 1:
        a = s.pop(rng.integers(len(s)))
        S.Merge(s[rng.integers(len(s))], a)
    expected = results(summary(kind, 0, rows))
    if exact:
        assert results(s[0]) == expected
    else:
        np.testing.assert_allclose(results(s[0]), expected, rtol=RTOL, atol=0)


@pytest.mark.parametrize("kind", sorted(KINDS))
def test_pickle_round_trip_keeps_every_field(kind):
    make, results = KINDS[kind][0], KINDS[kind][2]
    for s in (make(), summary(kind, 0, 100)):  # empty summaries have empty arrays
        t = pickle.loads(pickle.dumps(s))
        state, back = s.__getstate__(), t.__getstate__()
        assert pickle.dumps(state) == pickle.dumps(back)
    assert results(t) == results(s)
    with pytest.raises(ValueError, match="invalid pickled state"):
        type(s).__new__(type(s)).__setstate__((1.0,) * 2)


def test_mismatched_summaries_and_arrays_raise_statkit_errors():
    with pytest.raises(statkit.EArrayError, match="^Histogram: edges differ$"):
        S.Merge(S.InitHistogram(np.array([0.0, 1.0])), S.InitHistogram(np.array([0.0, 2.0])))
    with pytest.raises(statkit.EArrayError, match=r"^LeastSquares: y.Length <> A.Rows$"):
        sd.regress(da.ones(5, chunks=2), da.ones((4, 2), chunks=2))


@pytest.fixture(scope="session")
def client():
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, processes=True, threads_per_worker=1, host="127.0.0.1",
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as c:
        yield c


def in_memory(make, add, *arrays):
    s = make()
    add(s, *arrays)
    return s


@pytest.mark.filterwarnings("ignore:Running on a single-machine scheduler")  # the in-memory copies
def test_cluster_matches_in_memory_on_1e7_values_in_100_chunks(client):
    n, chunks = 10 ** 7, 10 ** 5
    r = da.random.RandomState(7)
    x = r.standard_exponential(n, chunks=chunks)
    A = r.standard_normal((n, 2), chunks=(chunks, 2))
    y = 1.0 + A @ np.array([2.0, -3.0]) + r.standard_normal(n, chunks=chunks)
    g = da.floor(r.random_sample(n, chunks=chunks) * 5)
    v = x + 0.0008 * g  # F near 3: a p-value far from 0 amplifies no rounding of F
    xm, Am, ym, gm, vm = dask.compute(x, A, y, g, v, scheduler="sync")

    d = sd.describe(x, bins=100, range=(0.0, 10.0))
    m = in_memory(S.TMoments, S.Add, xm)
    h = in_memory(lambda: S.InitHistogram(np.linspace(0.0, 10.0, 101)), S.Add, xm)
    np.testing.assert_allclose([d.count, d.mean, d.sd, d.skewness, d.kurtosis, d.min, d.max],
                               [m.N, m.Mean, S.StdDev(m), S.Skewness(m), S.Kurtosis(m), m.Min, m.Max], rtol=RTOL)
    assert (d.histogram.counts == h.Counts).all() and d.histogram.above == h.Above
    # independent references, to the accuracy of their one-pass and float sums
    np.testing.assert_allclose([d.mean, d.sd, d.skewness, d.kurtosis],
                               [xm.mean(), xm.std(ddof=1), stats.skew(xm), stats.kurtosis(xm)], rtol=1e-9)
    assert (d.histogram.counts == np.histogram(xm, 100, (0.0, 10.0))[0]).all()

    reg = sd.regress(y, A)
    f = Regress.MulLinRegress(ym, Am, True)
    t = Regress.RegressTest(ym, f.YCalc, f.V, True)
    np.testing.assert_allclose([*reg.coef, *reg.stderr, *reg.stats], [*f.B, *t.BStdErr, *t.RegStats], rtol=RTOL)
    assert (abs(reg.cov - t.V) <= RTOL * np.sqrt(np.outer(np.diag(t.V), np.diag(t.V)))).all()
    np.testing.assert_allclose(reg.coef, np.linalg.lstsq(np.column_stack([np.ones(n), Am]), ym, rcond=None)[0],
                               rtol=1e-9)

    a = sd.anova1(v, g)
    t = Regress.ANOVA1(vm, gm, 0.05)
    np.testing.assert_allclose([*a.table, a.signif], [*t.Table, t.Signif], rtol=RTOL, atol=0)
    ref = stats.f_oneway(*(vm[gm == k] for k in range(5)))
    np.testing.assert_allclose([a.table.f, a.signif], [ref.statistic, ref.pvalue], rtol=1e-7)


def test_covariance_and_corrcoef_match_numpy():
    x = da.from_array(C, chunks=(700, 1))  # columns rechunked into one
    np.testing.assert_allclose(sd.covariance(x, biased=True), np.cov(C.T, bias=True), rtol=1e-13)
    r = sd.corrcoef(x)
    np.testing.assert_allclose(r, np.corrcoef(C.T), rtol=1e-13, atol=1e-15)
    assert (np.diag(r) == 1.0).all()


def test_describe_counts_nan_and_infinities_apart_and_no_values_give_nan():
    d = sd.describe(da.from_array(np.array([np.nan, 1, 2, np.inf, 3, 3]), chunks=2), bins=4)  # finite range
    assert d.histogram.edges.tolist() == [1, 1.5, 2, 2.5, 3] and d.histogram.counts.tolist() == [1, 0, 1, 2]
    assert (d.count, d.histogram.above, d.histogram.nans) == (6, 1, 1) and np.isnan([d.mean, d.min, d.max]).all()
    e = sd.describe(da.zeros(0, chunks=1), bins=[0.0, 1.0])
    assert e.count == 0 and np.isnan([e.mean, e.sd, e.min, e.max]).all()
