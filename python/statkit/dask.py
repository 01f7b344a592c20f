"""statkit's mergeable summaries over Dask arrays.

Every function here reads each chunk of its arrays once (in one pass; regress
reads them twice by default) where the chunk lives: a task summarises the chunk (moments, co-moments, a fixed-edge
histogram, the triangular QR factor of a least-squares fit, moments per group),
a tree of tasks merges the summaries a few at a time, and the statistics come
out of the one merged summary. Only summaries travel (a few hundred bytes,
pickled as floats and arrays), never the data, so the arrays may be far larger
than any one machine's memory. The results equal those of the in-memory
statkit calls up to the rounding of the merges (well within 1e-12 relative).

Each function computes at once with the active Dask scheduler (a
dask.distributed Client when one is set up) and returns small named tuples:

    import dask.array as da
    from statkit.dask import describe, regress
    x = da.random.random(10**8, chunks=10**6)
    d = describe(x, bins=100, range=(0, 1))   # d.mean, d.sd, d.histogram.counts, ...
"""
import copy
import operator
from collections import namedtuple

import dask
import dask.array as da
import numpy as np
from dask import delayed

from statkit import EArrayError, Summaries

__all__ = ["describe", "histogram", "covariance", "corrcoef", "regress", "anova1",
           "Description", "Histogram", "Regression", "ANOVA1", "ANOVA1Table"]

Histogram = namedtuple("Histogram", "counts edges below above nans")
Histogram.__doc__ = ("Counts of the values in [edges[i], edges[i+1]) (the last bin closed), and of the "
                     "values below the first edge, above the last one, and NaN.")
Description = namedtuple("Description", "count mean sd skewness kurtosis min max histogram")
Description.__doc__ = ("Count, mean, sample standard deviation, moment skewness, moment excess kurtosis, "
                       "minimum, maximum (NaN once a NaN is met) and the Histogram of the values.")
Regression = namedtuple("Regression", "coef stderr stats cov")
Regression.__doc__ = ("Coefficients (the intercept first), their standard errors, the regression statistics "
                      "(a Summaries.TRegStats: ResidualVar, R2, AdjustedR2, F, SignifProb) and the "
                      "coefficients' covariance matrix.")
ANOVA1Table = namedtuple("ANOVA1Table", "ss_between ss_within ss_total df_between df_within df_total "
                                        "ms_between ms_within f f_crit")
ANOVA1Table.__doc__ = "The one-way table: sums of squares, degrees of freedom, mean squares, F and critical F."
ANOVA1 = namedtuple("ANOVA1", "table signif")
ANOVA1.__doc__ = "The ANOVA1Table and the upper tail probability of F."

SPLIT_EVERY = 8  # summaries merged by one task of the tree


# --- the machinery: blocks, one pass, the merge tree ---------------------------

def _row_blocks(arrays, names, ndims, mismatch):
    """Aligned row blocks of arrays with as many rows: a list of tuples of delayed NumPy blocks.

    Array i must have ndims[i] dimensions (a tuple of those allowed). The first keeps its row
    chunks, the others are rechunked to them; the columns of 2-D arrays go into one chunk.
    Arrays with different numbers of rows raise EArrayError(mismatch)."""
    arrays = [da.asarray(a) for a in arrays]
    for a, name, allowed in zip(arrays, names, ndims):
        if a.ndim not in allowed:
            raise ValueError(f"{name} must have {' or '.join(map(str, allowed))} dimensions, not {a.ndim}")
    if any(a.shape[0] != arrays[0].shape[0] for a in arrays):
        raise EArrayError(mismatch)
    rows = arrays[0].rechunk({1: -1}).chunks[0] if arrays[0].ndim == 2 else arrays[0].chunks[0]
    arrays = [a.rechunk({0: rows, 1: -1} if a.ndim == 2 else {0: rows}) for a in arrays]
    columns = [a.to_delayed().reshape(len(rows)) if a.ndim == 1 else a.to_delayed()[:, 0] for a in arrays]
    return list(zip(*columns))


def _merge(parts):
    """One task of the merge tree: the summaries of parts (tuples of summaries) merged into copies."""
    out = tuple(copy.copy(s) for s in parts[0])
    for p in parts[1:]:
        for a, b in zip(out, p):
            Summaries.Merge(a, b)
    return out


def _tree(parts, split_every=SPLIT_EVERY):
    """The delayed merge of the delayed summaries parts, split_every at a time, in a balanced tree."""
    while len(parts) > 1:
        parts = [delayed(_merge, pure=True)(parts[i:i + split_every]) for i in range(0, len(parts), split_every)]
    return parts[0]


def _pass(blocks, summarise, *broadcast, split_every=SPLIT_EVERY):
    """One pass over the blocks: summarise(*block, *broadcast) per block, merged by the tree.

    broadcast may hold delayed values (the merged summary of an earlier pass, say): each
    block's task receives them, so a later pass can refine an earlier one."""
    return _tree([delayed(summarise, pure=True)(*b, *broadcast) for b in blocks], split_every)


def _compute(summary):
    (out,) = dask.compute(summary)
    return out


# --- summaries of one block -----------------------------------------------------

def _moments_and_histogram(x, edges):
    x = np.ravel(x)
    m = Summaries.TMoments()
    Summaries.Add(m, x)
    h = Summaries.InitHistogram(edges)
    Summaries.Add(h, x)
    return m, h


def _histogram_only(x, edges):
    h = Summaries.InitHistogram(edges)
    Summaries.Add(h, np.ravel(x))
    return (h,)


def _comoments(x):
    s = Summaries.TCoMoments()
    Summaries.Add(s, x)
    return (s,)


def _least_squares(y, A, constant):
    s = Summaries.TLeastSquares(constant)
    Summaries.Add(s, y, A[:, None] if A.ndim == 1 else A)
    return (s,)


def _residuals(y, A, ls, coef):
    r = Summaries.InitResiduals(ls, coef)
    Summaries.Add(r, y, A[:, None] if A.ndim == 1 else A)
    return (r,)


def _group_moments(data, groups):
    s = Summaries.TGroupMoments()
    Summaries.Add(s, data, groups)
    return (s,)


def _histogram_result(h):
    return Histogram(h.Counts, h.Edges, h.Below, h.Above, h.NaNs)


def _edges(x, bins, range):
    """Histogram edges: bins itself when a sequence, else bins equal bins over range (by default
    the data's least and largest finite values, found by an extra pass, as numpy.histogram does).
    Bad edges are refused here, before any task runs."""
    if np.isscalar(bins):
        if range is None:
            finite = da.where(da.isfinite(x), x, np.nan)
            range = dask.compute(da.nanmin(finite), da.nanmax(finite))
        lo, hi = float(range[0]), float(range[1])
        if lo == hi:
            lo, hi = lo - 0.5, hi + 0.5
        bins = np.linspace(lo, hi, operator.index(bins) + 1)
    edges = np.asarray(bins, dtype=np.float64)
    Summaries.InitHistogram(edges)
    return edges


# --- the statistics ------------------------------------------------------------------

def describe(x, bins=100, range=None, split_every=SPLIT_EVERY):
    """Count, mean, sd, skewness, kurtosis, min, max and a histogram of every value of x, in one pass.

    x: a dask array (or anything dask.array.asarray takes) of any shape; all its values count.
    bins: the number of equal bins over range, or the ascending, finite bin edges.
    range: (low, high) of the equal bins; by default the least and largest finite values of x,
      which costs an extra pass over the data.
    split_every: how many summaries one task of the merge tree merges.
    Returns a Description; sd is the sample standard deviation (divisor n - 1), skewness and
    kurtosis the moment coefficients m3 / m2^1.5 and m4 / m2^2 - 3 (Summaries.Skewness, Kurtosis).
    """
    x = da.asarray(x)
    edges = _edges(x, bins, range)
    m, h = _compute(_pass([(b,) for b in x.to_delayed().ravel()], _moments_and_histogram, edges,
                          split_every=split_every))
    mean, lo, hi = (m.Mean + m.MeanLow, m.Min, m.Max) if m.N > 0 else (np.nan,) * 3  # no values: no mean, no extremes
    return Description(int(m.N), mean, Summaries.StdDev(m), Summaries.Skewness(m), Summaries.Kurtosis(m),
                       lo, hi, _histogram_result(h))


def histogram(x, edges, split_every=SPLIT_EVERY):
    """Counts of the values of x (any shape) between the fixed edges (at least two, finite, ascending;
    a number instead gives as many equal bins between the least and largest finite values).

    The bins are [edges[i], edges[i+1]), the last one closed; values outside the edges and NaNs
    are counted apart. Returns a Histogram; the counts are exact, whatever the chunks.
    """
    x = da.asarray(x)
    (h,) = _compute(_pass([(b,) for b in x.to_delayed().ravel()], _histogram_only, _edges(x, edges, None),
                          split_every=split_every))
    return _histogram_result(h)


def _comoments_of(x, split_every):
    blocks = _row_blocks([x], ["x"], [(2,)], "")
    (s,) = _compute(_pass(blocks, _comoments, split_every=split_every))
    return s


def covariance(x, biased=False, split_every=SPLIT_EVERY):
    """Covariance matrix of the columns of the 2-D array x (one observation a row).

    The divisor is n - 1, or n when biased; as Statistics.Covariance(X, Dst, Biased). Rows may be
    chunked at will; the columns are put into one chunk.
    """
    return Summaries.Covariance(_comoments_of(x, split_every), biased)


def corrcoef(x, split_every=SPLIT_EVERY):
    """Correlation matrix of the columns of the 2-D array x, as Statistics.CorrCoef(X, Dst):
    the covariances divided by the products of the standard deviations."""
    c = Summaries.Covariance(_comoments_of(x, split_every), False)
    var = np.diag(c).copy()
    sd = np.sqrt(var)
    with np.errstate(divide="ignore", invalid="ignore"):
        r = c / np.outer(sd, sd)
        np.fill_diagonal(r, var / var)
    return r


def regress(y, A, constant=True, refine=True, split_every=SPLIT_EVERY):
    """Linear least-squares regression of y on the columns of A, with its regression statistics.

    y: the n observations (1-D); A: n x k independent variables (a 1-D A is one column). The
    rows may be chunked at will (A is rechunked to y's rows); A's columns are put into one chunk.
    constant: a column of ones stands before the columns of A (the intercept is coef[0]).
    refine: a second pass sums the residuals of the first fit in double-double and refines the
      coefficients and the residual sum of squares by them, as the in-memory fit refines its
      solution; without it a badly conditioned design (NIST's Wampler sets) loses digits.
    Returns a Regression with what Regress.MulLinRegress followed by Regress.RegressTest give:
    the coefficients, their standard errors, the TRegStats and the covariance matrix V. Each
    block's rows are factored by QR and the triangular factors merged by QR again (TSQR), so the
    accuracy is that of a QR fit, not of the normal equations.
    """
    blocks = _row_blocks([y, A], ["y", "A"], [(1,), (1, 2)], "LeastSquares: y.Length <> A.Rows")
    (ls,) = _compute(_pass(blocks, _least_squares, constant, split_every=split_every))
    fit = Summaries.LeastSquaresFit(ls)
    if refine:
        (res,) = _compute(_pass(blocks, _residuals, ls, fit.B, split_every=split_every))
        fit = Summaries.LeastSquaresFit(ls, res)
    return Regression(fit.B, fit.BStdErr, fit.RegStats, fit.V)


def anova1(data, groups, alpha=0.05, split_every=SPLIT_EVERY):
    """One-way analysis of variance of data in the groups numbered 0, 1, ... by groups.

    data, groups: 1-D arrays of the same length (groups is rechunked to data's chunks); group
    numbers are truncated, and every group from 0 to the largest must have a value.
    alpha: the level of the critical F.
    Returns an ANOVA1: the ANOVA1Table (as Regress.ANOVA1(Data, GroupIndex, ...) gives it) and
    the upper tail probability of F.
    """
    blocks = _row_blocks([data, groups], ["data", "groups"], [(1,), (1,)],
                         "GroupMoments: Data.Length <> GroupIndex.Length")
    (s,) = _compute(_pass(blocks, _group_moments, split_every=split_every))
    table, signif = Summaries.ANOVA1(s, alpha)
    return ANOVA1(ANOVA1Table(*table), signif)
