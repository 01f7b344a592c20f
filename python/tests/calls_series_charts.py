"""Call-table rows: the Python side of calls_series_charts.cpp."""
import numpy as np

import statkit
from statkit import StatControlCharts as C, StatProbPlots as P, StatTimeSerAnalysis as S
from conftest import data, matrix

SIZES = np.array([80.0, 95, 70, 64, 120, 88, 77, 99, 101, 66])  # above every count of data(10)


def seeded(seed, call):
    return lambda: (statkit.RandSeed(seed), call())[1]


def same(first, second):  # two spellings of one call
    np.testing.assert_equal(first, second)
    return first


def start_values_kept(p=np.array([0.2]), t=np.array([0.1])):
    """ArimaMLE returns its estimates and leaves the start values it read as they were."""
    fit = S.ArimaMLE(data(60), p, t, 0)
    assert (p[0], t[0]) == (0.2, 0.1)
    return fit


CALLS = {
    "SingleExpSmooth": lambda: S.SingleExpSmooth(data(30), 0.3, 2),
    "DoubleExpSmooth": lambda: S.DoubleExpSmooth(data(30), Alpha=0.3, Beta=0.1),
    "TripleExpSmooth": lambda: S.TripleExpSmooth(data(24), 0.3, 0.1, 0.1),
    "TripleExpSmoothPeriod": lambda: S.TripleExpSmooth(data(24), 0.3, 0.1, 0.1, Period=4),
    "ArmaAcf": lambda: S.ArmaAcf([0.5, -0.2], [0.3], 6, False),
    "ArmaAcfNoModel": lambda: S.ArmaAcf([], [], 3, True),
    "Invertability": lambda: S.Invertability([0.5, -0.2, 0.1]),
    "ArimaLike": lambda: S.ArimaLike([0.4, 0.2], [1.0, 1.0], data(40)),
    "ArimaMLE": start_values_kept,
    "PredictArima": lambda: S.PredictArima(data(40), [0.5], [0.3], d=1, h=5),
    "SimulateArma": seeded(7, lambda: S.SimulateArma([0.5], [0.3], 20)),
    "SimulateArmaExplosive": lambda: S.SimulateArma([1.5], [], 20),
    "SimulateArima": seeded(8, lambda: S.SimulateArima([0.5], [], [10, 1], 20)),
    "StatNormalPlot": lambda: P.StatNormalPlot(data(15), False),
    "StatWeibullPlot": lambda: P.StatWeibullPlot(data(15, 1), Sorted=False),
    "StatQQPlot": lambda: P.StatQQPlot(data(12), data(12, 1), False, False),
    "StatQQPlotLengths": lambda: P.StatQQPlot(data(3), data(4), False, False),
    "QCXChart": lambda: C.QCXChart(matrix(8, 5, 0), 0.9973),
    "QCSChart": lambda: C.QCSChart(matrix(8, 5, 0), 0.9973),
    "QCRChart": lambda: C.QCRChart(matrix(8, 5, 0), Confidence=0.9973),
    "QCPChart": lambda: C.QCPChart(data(10), 80, 0.99865),
    "QCPChartSizes": lambda: C.QCPChart(data(10), SIZES, 0.99865),
    "QCPChartLengths": lambda: C.QCPChart(data(3), SIZES[:4], 0.99865),
    "QCNPChart": lambda: C.QCNPChart(data(10), 80, 0.99865),
    "QCNPChartSizes": lambda: C.QCNPChart(data(10), SIZES, 0.99865),
    "QCUChart": lambda: C.QCUChart(data(10), SampleSize=80, Confidence=0.99865),
    "QCUChartSizes": lambda: C.QCUChart(data(10), SIZES, 0.99865),
    "QCCChart": lambda: C.QCCChart(data(10), 0.99865),
    "EWMAChart": lambda: same(C.EWMAChart(matrix(8, 4, 2), 0.2, 0.99865),
                              C.EWMAChart(matrix(8, 4, 2), 0.2, 0.99865, Exact=False)),
    "EWMAChartExact": lambda: C.EWMAChart(matrix(8, 4, 2), 0.2, 0.99865, Exact=True),
    "EWMAChartEmpty": lambda: C.EWMAChart(np.zeros((0, 3)), 0.2, 0.99865),
    "QCCapIndexes": lambda: C.QCCapIndexes(data(30), 5, 60, 0.05),
    "QCCapIndexesOneSided": lambda: C.QCCapIndexes(data(30), 5, np.inf, Alpha=0.05),
}
