"""Call-table rows: the Python side of calls_statistics.cpp."""
import numpy as np

from statkit import Statistics as S
from conftest import data, matrix

CALLS = {
    "MeanG": lambda: S.MeanG(data(20)),
    "Histogram": lambda: S.Histogram(data(50), np.array([10.0, 20, 30, 40, 50])),
    "tTest1": lambda: S.tTest(data(20), 30.0),
    "tTest2": lambda: S.tTest(data(20), data(20, 1), Paired=True, hType=S.htRightTailed, Alpha=0.01),
}
