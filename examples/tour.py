#!/usr/bin/python3
"""A tour of statkit from Python: one stop per unit on small embedded data,
the errors, and the mergeable summaries over a Dask array.

Run: PYTHONPATH=<build>/python python3 examples/tour.py
"""
import numpy as np

import statkit
from statkit import Regress, RegModels, StatControlCharts, Statistics as S, StatProbPlots, StatTimeSerAnalysis

# Tensile strengths (MPa) of two batches.
batch1 = np.array([512.0, 498, 505, 521, 509, 515, 503, 518, 507, 511])
batch2 = np.array([497.0, 503, 489, 508, 495, 501, 492, 499, 504, 494])


def descriptive_and_tests():
    print("== Statistics ==")
    print(f"median {S.Percentile(batch1, 0.5, S.pctMethodEDFAve):.1f}, IQR "
          f"{S.InterQuartile(batch1, S.pctMethodEDFAve):.2f}, geometric mean {S.MeanG(batch1):.2f}")
    t = S.tTest(batch1, batch2)
    print(f"two-sample t test: {t.hRes.name}, p = {t.Signif:.4g}, "
          f"95% interval of the difference ({t.ConfInt[0]:.2f}, {t.ConfInt[1]:.2f})")
    w = S.ShapiroWilks(np.sort(np.concatenate([batch1, batch2])))  # the test reads order statistics
    print(f"Shapiro-Wilk on both batches: {w.hRes.name}, p = {w.Signif:.3f}")
    fit = S.NormalFit(batch1, 0.05)
    print(f"normal fit: mu {fit.mu:.2f} in ({fit.ConfIntMu[0]:.2f}, {fit.ConfIntMu[1]:.2f})")


def regression():
    print("== Regress, RegModels ==")
    # Stopping distance (m) against speed (km/h).
    speed = np.array([20.0, 30, 40, 50, 60, 70, 80, 90, 100, 110])
    dist = np.array([6.1, 10.9, 17.8, 25.2, 34.9, 46.1, 57.8, 71.4, 86.2, 102.5])
    A = np.column_stack([speed, speed ** 2])
    fit = Regress.MulLinRegress(dist, A, True)
    test = Regress.RegressTest(dist, fit.YCalc, fit.V, True)
    print(f"distance = {fit.B[0]:.3f} + {fit.B[1]:.4f} v + {fit.B[2]:.6f} v^2, "
          f"R^2 {test.RegStats.R2:.5f}, standard errors {np.round(test.BStdErr, 5)}")
    power = RegModels.PowerFit(speed, dist)
    print(f"power law: distance = {power[0]:.4f} v^{power[1]:.3f}")
    groups = np.repeat([0.0, 1.0], 10)
    anova = Regress.ANOVA1(np.concatenate([batch1, batch2]), groups)
    print(f"one-way ANOVA of the batches: F = {anova.Table[8]:.2f}, p = {anova.Signif:.4g}")


def time_series():
    print("== StatTimeSerAnalysis ==")
    statkit.RandSeed(2026)
    series = 10.0 + StatTimeSerAnalysis.SimulateArma(np.array([0.6]), np.array([0.3]), 200)
    fit = StatTimeSerAnalysis.ArimaMLE(series, np.array([0.0]), np.array([0.0]), 0)
    forecast = StatTimeSerAnalysis.PredictArima(series, fit.P, fit.T, 0, 3)
    print(f"ARMA(1,1) fit: phi {fit.P[0]:.3f}, theta {fit.T[0]:.3f}, sigma^2 {fit.Aux[0]:.3f}; "
          f"forecasts {np.round(forecast[0], 3)}")


def plots_and_charts():
    print("== StatProbPlots, StatControlCharts ==")
    plot = StatProbPlots.StatNormalPlot(batch1, False)
    print(f"normal plot: {len(plot.XOut)} points, reference line from ({plot.X1:.1f}, {plot.Y1:.2f}) "
          f"to ({plot.X2:.1f}, {plot.Y2:.2f})")
    fills = np.array([[250.2, 249.8, 250.5, 250.1], [249.9, 250.3, 250.0, 249.7],
                      [250.4, 250.6, 249.9, 250.2], [249.6, 250.0, 250.1, 249.8],
                      [250.3, 249.9, 250.2, 250.5]])
    chart = StatControlCharts.QCXChart(fills, 0.9973)
    print(f"X-bar chart: CL {chart.CL:.3f}, UCL {chart.UCL:.3f}, LCL {chart.LCL:.3f}")


def errors():
    print("== errors ==")
    try:
        S.Percentile(batch1, 1.5, S.pctMethodEDF)
    except statkit.EArrayError as e:
        print(f"EArrayError: {e}")


def dask_summaries():
    try:
        import dask.array as da
        import statkit.dask as skd
    except ImportError:
        print("== statkit.dask: skipped (python3-dask is not installed) ==")
        return
    print("== statkit.dask ==")
    x = da.random.RandomState(7).normal(50.0, 5.0, size=10 ** 6, chunks=10 ** 5)
    d = skd.describe(x, bins=10, range=(30.0, 70.0))
    print(f"10^6 values in 10 chunks: mean {d.mean:.4f}, sd {d.sd:.4f}, skewness {d.skewness:.4f}, "
          f"kurtosis {d.kurtosis:.4f}")


if __name__ == "__main__":
    descriptive_and_tests()
    regression()
    time_series()
    plots_and_charts()
    errors()
    dask_summaries()
