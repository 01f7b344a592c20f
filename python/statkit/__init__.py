"""statkit: statistics over NumPy arrays.

The operations live in one submodule per unit, under their C++ names:
Statistics, Regress, RegModels, StatTimeSerAnalysis, StatProbPlots,
StatControlCharts, and the mergeable Summaries; statkit.dask runs the
summaries over Dask arrays. Errors raise statkit.EArrayError with statkit's
exact message.
"""
from statkit._statkit import (EArrayError, PoolOutstanding, RandSeed, Regress, RegModels,
                              StatControlCharts, Statistics, StatProbPlots, StatTimeSerAnalysis,
                              Summaries, TOptMethod, TOptStopReason)

__all__ = ["EArrayError", "PoolOutstanding", "RandSeed", "Regress", "RegModels", "StatControlCharts",
           "Statistics", "StatProbPlots", "StatTimeSerAnalysis", "Summaries", "TOptMethod", "TOptStopReason"]
