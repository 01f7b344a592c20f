"""A Python model or derivative that raises: what NLinRegress and NumericDerive give the caller."""
import numpy as np
import pytest

import statkit
from statkit import Regress as R, RegModels as M, TOptMethod as O


def raises(error):
    def call(*args):
        raise error
    return call


def fit(f, d, x=np.arange(1.0, 6.0)):
    return R.NLinRegress(x, 2 * x, f, d, [1.0, 1.0], O.optMarquardt, None, False, 50, 1e-10, 1e-10)


NO_MODEL, NONE = raises(ValueError("no model")), type(None)


@pytest.mark.parametrize("call, error, message, cause", [
    (lambda: fit(NO_MODEL, None), statkit.EArrayError, "NLinRegress : ValueError: no model", ValueError),
    (lambda: fit(M.LineEval, lambda *a: {}[0]), statkit.EArrayError, "NLinRegress : KeyError: 0", KeyError),
    (lambda: fit(M.LineEval, lambda *a: [1.0]), statkit.EArrayError, "NLinRegress : Size mismatch", NONE),
    (lambda: fit(raises(KeyboardInterrupt()), None), KeyboardInterrupt, "", NONE),  # passes as itself
    (lambda: R.NumericDerive(NO_MODEL, 1.0, 0.0, [1.0]), ValueError, "no model", NONE),  # unprefixed
])
def test_raising_callable(call, error, message, cause):
    with pytest.raises(error) as raised:
        call()
    assert (str(raised.value), type(raised.value.__cause__)) == (message, cause)
    assert statkit.PoolOutstanding() == 0
