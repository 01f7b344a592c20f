"""Call-table rows: the Python side of calls_regression.cpp."""
import numpy as np

from statkit import Regress as R, RegModels as M, TOptMethod as O
from conftest import data, matrix


W = lambda n, k: data(n, k) + 1  # noqa: E731
X, Y, B, C = W(20, 2), 3 * W(20, 2) + data(20, 3) / 8, np.array([1.5, 0.25]), np.array([1.5, 0.25, -2.0])
groups = lambda n: (np.arange(n) % (3 if n % 3 == 0 else 4)).astype(float)  # noqa: E731
saturation = lambda b, x: b[0] * x / (b[1] + x)  # noqa: E731
saturation_deriv = lambda f, x, y, b: [x / (b[1] + x), -b[0] * x / ((b[1] + x) * (b[1] + x))]  # noqa


def mul_lin(weighted, c, test):
    w = W(30, 2) if weighted else None
    fit = R.MulLinRegress(data(30), matrix(30, 3, 1), Constant=c, **({"Weights": w} if weighted else {}))
    r = R.RegressTest(data(30), fit.YCalc, fit.V, c, Weights=w)
    return (fit, r[:2], r)[test]  # the first C++ form of RegressTest gives V and RegStats


def nlin(model, deriv, b, method, weighted, flag, iters, x=X):
    w = W(20, 4) if weighted else None
    return R.NLinRegress(x, Y, model, deriv, np.array(b, dtype=float), method, w, flag, iters, 1e-10, 1e-10)


def ordinal(y, a):
    return R.LogisticRegress(y, a, np.empty(0), np.empty(0), 200, 1e-10, True)


CALLS = {
    "LinRegress": lambda: R.LinRegress(data(20), data(20, 1), W(20, 2)),
    "MulLinRegress1": lambda: mul_lin(False, True, 0),
    "MulLinRegress2": lambda: mul_lin(True, False, 0),
    "RegressTest1": lambda: mul_lin(False, True, 1),
    "RegressTest2": lambda: mul_lin(True, True, 2),
    "ANOVA1Matrix": lambda: R.ANOVA1(matrix(8, 3, 0)),
    "ANOVA1Groups": lambda: R.ANOVA1(data(24), groups(24), Alpha=0.01),
    "ANOVA2": lambda: R.ANOVA2(matrix(12, 3, 2), 3),
    "ANOVA2Unreplicated": lambda: R.ANOVA2(matrix(4, 3, 2), 1),
    "NumericDerive1": lambda: R.NumericDerive(M.ExpEval, 0.75, 0.0, B),
    "NumericDerive2": lambda: R.NumericDerive(saturation, 0.75, 0.0, B),
    "NLinRegress1": lambda: nlin(M.PowerEval, M.PowerDeriv, [1, 1], O.optMarquardt, False, False, 200),
    "NLinRegress1Numeric": lambda: nlin(M.ExpEval, None, [1, 0.01], O.optBFGS, True, True, 200),
    "NLinRegress2": lambda: nlin(saturation, saturation_deriv, [100, 10], O.optMarquardt, True, False, 200),
    "NLinRegress2Numeric": lambda: nlin(saturation, None, [100, 10], O.optSimplex, False, False, 300),
    "LogisticRegressBinomial": lambda: R.LogisticRegress(
        data(20, 5), np.full(20, 64.0), np.column_stack([np.ones(20), data(20, 4)]), 0.25, 1e-10),
    "LogisticRegressOrdinal": lambda: ordinal(groups(40), matrix(40, 2, 6)),
    "RidgeRegress": lambda: R.RidgeRegress(data(20), matrix(20, 3, 7), 0.5),
    "LinRegressSingular": lambda: R.LinRegress(np.full(5, 2.0), data(5)),
    "ANOVA1EmptyGroup": lambda: R.ANOVA1(data(6), [0, 0, 2, 2, 3, 3]),
    "NLinRegressLengths": lambda: nlin(M.PowerEval, None, [1, 1], O.optSimplex, False, False, 9, x=W(19, 2)),
    "LogisticRegressFractional": lambda: ordinal(data(10) + 0.5, matrix(10, 1, 6)),
    "RidgeRegressNegative": lambda: R.RidgeRegress(data(20), matrix(20, 3, 7), -1.0),
    "LineEvalShortB": lambda: M.LineEval([1.5], 3.5),
    "MulLinEval1": lambda: (M.MulLinEval(C, data(4, 3), True), M.MulLinEval(C, data(4, 3), False)),
    "MulLinEval2": lambda: M.MulLinEval(C, matrix(6, 2, 1), True),
    "MulLinFit": lambda: M.MulLinFit(matrix(30, 3, 1), data(30), False, W(30, 2)),
}
for name in ("Line", "Power", "Exp"):
    ev, de, fit = (getattr(M, name + routine) for routine in ("Eval", "Deriv", "Fit"))
    CALLS.update({name + "Eval1": lambda ev=ev: ev(B, 3.5), name + "Eval2": lambda ev=ev: ev(B, data(10)),
                  name + "Deriv": lambda de=de: de(None, 3.5, 7.0, B),
                  name + "Fit": lambda fit=fit: fit(X, Y, W(20, 4))})
