"""Call-table rows: the Python side of calls_summaries.cpp."""
import numpy as np

from statkit import Summaries as S
from conftest import data, matrix


def merged(make, add):
    a, b = make(), make()
    add(a, 0), add(b, 1)
    S.Merge(a, b)
    return a


def moments():
    s = merged(S.TMoments, lambda t, k: S.Add(t, data(20, k)))
    return [s.N, s.Mean, s.M2, s.M3, s.M4, s.Min, s.Max, S.Variance(s), S.StdDev(s), S.Skewness(s), S.Kurtosis(s)]


def comoments():
    s = merged(S.TCoMoments, lambda t, k: S.Add(t, matrix(10, 3, k)))
    return s.N, s.Mean, s.C, S.Covariance(s, Biased=True)


def histogram():
    edges = np.array([10.0, 20, 30, 40, 50])
    h = merged(lambda: S.InitHistogram(edges), lambda t, k: S.Add(t, data(30, k)))
    return h.Edges, h.Counts, h.Below, h.Above, h.NaNs


def groups(t, k):
    S.Add(t, data(15, k), np.floor(data(15, k + 4)) % 3)


def bad_groups():
    s = S.TGroupMoments()
    S.Add(s, data(2), np.array([0.0, 2.0]))
    return S.ANOVA1(s)


CALLS = {
    "SummariesMoments": moments,
    "SummariesCoMoments": comoments,
    "SummariesHistogram": histogram,
    "SummariesLeastSquares": lambda: S.LeastSquaresFit(
        merged(S.TLeastSquares, lambda t, k: S.Add(t, data(12, k + 2), matrix(12, 2, k)))),
    "SummariesANOVA1": lambda: S.ANOVA1(merged(S.TGroupMoments, groups)),
    "SummariesEdgesDiffer": lambda: S.Merge(S.InitHistogram(np.array([0.0, 1])), S.InitHistogram(np.array([0.0, 2]))),
    "SummariesRowsDiffer": lambda: S.Add(S.TLeastSquares(), data(3), matrix(4, 2, 0)),
    "SummariesEmptyGroup": bad_groups,
}
