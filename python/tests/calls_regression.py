"""Call-table rows: the Python side of calls_regression.cpp."""
import numpy as np

from statkit import Regress as R, RegModels as M, TOptMethod as O
from conftest import data, matrix

X = data(20, 2) + 1
Y = 3 * X + data(20, 3) / 8
B = np.array([1.5, 0.25])
C = np.array([1.5, 0.25, -2.0])


def weights(n, k):
    return data(n, k) + 1


def groups(n, k):
    return (np.arange(n) % k).astype(float)


def saturation(b, x):
    return b[0] * x / (b[1] + x)


def saturation_deriv(f, x, y, b):
    return [x / (b[1] + x), -b[0] * x / ((b[1] + x) * (b[1] + x))]


def regress_test(w, full):
    fit = R.MulLinRegress(data(30), matrix(30, 3, 1), True) if w is None else \
        R.MulLinRegress(data(30), matrix(30, 3, 1), w, True)
    r = R.RegressTest(data(30), fit.YCalc, fit.V, True, Weights=w)
    return r if full else r[:2]


def nlin(model, deriv, b, method, w, flag, iters):
    return R.NLinRegress(X, Y, model, deriv, np.array(b), method, w, flag, iters, 1e-10, 1e-10)


def binomial():
    a = np.column_stack([np.ones(20), data(20, 4)])
    return R.LogisticRegress(data(20, 5), np.full(20, 64.0), a, 0.25, 1e-10)


def ordinal(y, a, iters, tol):
    return R.LogisticRegress(y, a, np.empty(0), np.empty(0), iters, tol, True)


CALLS = {
    "LinRegress": lambda: R.LinRegress(data(20), data(20, 1), weights(20, 2)),
    "MulLinRegress1": lambda: R.MulLinRegress(data(30), matrix(30, 3, 1), True),
    "MulLinRegress2": lambda: R.MulLinRegress(data(30), matrix(30, 3, 1), Weights=weights(30, 2), Constant=False),
    "RegressTest1": lambda: regress_test(None, False),
    "RegressTest2": lambda: regress_test(weights(30, 2), True),
    "ANOVA1Matrix": lambda: R.ANOVA1(matrix(8, 3, 0)),
    "ANOVA1Groups": lambda: R.ANOVA1(data(24), groups(24, 3), Alpha=0.01),
    "ANOVA2": lambda: R.ANOVA2(matrix(12, 3, 2), 3),
    "ANOVA2Unreplicated": lambda: R.ANOVA2(matrix(4, 3, 2), 1),
    "NumericDerive1": lambda: R.NumericDerive(M.ExpEval, 0.75, 0.0, [2, 0.5]),
    "NumericDerive2": lambda: R.NumericDerive(saturation, 0.75, 0.0, [2, 0.5]),
    "NLinRegress1": lambda: nlin(M.PowerEval, M.PowerDeriv, [1, 1], O.optMarquardt, None, False, 200),
    "NLinRegress1Numeric": lambda: nlin(M.ExpEval, None, [1, 0.01], O.optBFGS, weights(20, 4), True, 200),
    "NLinRegress2": lambda: nlin(saturation, saturation_deriv, [100, 10], O.optMarquardt, weights(20, 4), False, 200),
    "NLinRegress2Numeric": lambda: nlin(saturation, None, [100, 10], O.optSimplex, None, False, 300),
    "LogisticRegressBinomial": binomial,
    "LogisticRegressOrdinal": lambda: ordinal(groups(40, 4), matrix(40, 2, 6), 200, 1e-10),
    "RidgeRegress": lambda: R.RidgeRegress(data(20), matrix(20, 3, 7), 0.5),
    "LinRegressSingular": lambda: R.LinRegress(np.full(5, 2.0), data(5)),
    "MulLinRegressRows": lambda: R.MulLinRegress(data(29), matrix(30, 3, 1), True),
    "ANOVA1EmptyGroup": lambda: R.ANOVA1(data(6), [0, 0, 2, 2, 3, 3]),
    "NLinRegressLengths": lambda: R.NLinRegress(data(5), data(6), M.PowerEval, None, [1, 1], O.optSimplex, None,
                                                False, 10, 1e-8, 1e-8),
    "LogisticRegressFractional": lambda: ordinal(data(10) + 0.5, matrix(10, 1, 6), 50, 1e-8),
    "RidgeRegressNegative": lambda: R.RidgeRegress(data(20), matrix(20, 3, 7), -1.0),
    "LineEval1": lambda: M.LineEval(B, 3.5),
    "LineEval2": lambda: M.LineEval(B, data(10)),
    "LineDeriv": lambda: M.LineDeriv(None, 3.5, 7.0, B),
    "LineFit": lambda: M.LineFit(data(20), data(20, 1), weights(20, 2)),
    "PowerEval1": lambda: M.PowerEval(B, 3.5),
    "PowerEval2": lambda: M.PowerEval(B, data(10)),
    "PowerDeriv": lambda: M.PowerDeriv(None, 3.5, 7.0, B),
    "PowerFit": lambda: M.PowerFit(X, data(20, 3)),
    "ExpEval1": lambda: M.ExpEval(B, 3.5),
    "ExpEval2": lambda: M.ExpEval(B, data(10)),
    "ExpDeriv": lambda: M.ExpDeriv(None, 3.5, 7.0, B),
    "ExpFit": lambda: M.ExpFit(data(20) / 16, Y, weights(20, 4)),
    "MulLinEval1": lambda: (M.MulLinEval(C, data(4, 3), True), M.MulLinEval(C, data(4, 3), False)),
    "MulLinEval2": lambda: M.MulLinEval(C, matrix(6, 2, 1), True),
    "MulLinFit": lambda: M.MulLinFit(matrix(30, 3, 1), data(30), False, weights(30, 2)),
    "LineEvalShortB": lambda: M.LineEval([1.5], 3.5),
}
