"""Writes a reference fixture as the tests read it (tests/support/fixture.h):
comment lines naming the generator and the versions of its references, then
records of "key values" lines separated by "---". A double is written as its
repr, which reads back exactly."""
import atexit
import os

import numpy as np


def nums(values):
    """A number or a sequence of numbers as space-separated doubles."""
    return " ".join(repr(float(v)) for v in np.atleast_1d(values))


class Fixture:
    """tests/reference/<name>, opened by its comment lines; "---" opens each record (closes it when
    trailing; only separates records when between)."""

    def __init__(self, name, *comments, trailing=False, between=False):
        self.out = open(os.path.join(os.path.dirname(os.path.abspath(__file__)), name), "w")
        self.trailing, self.between, self.first = trailing, between, True
        atexit.register(self.out.close)
        self.out.writelines(f"# {c}\n" for c in comments)

    def record(self, *comments, **fields):
        """Comment lines, then one line per field: strings and ints as they are, anything else as doubles."""
        lines = [f"# {c}" for c in comments]
        lines += [f"{k} {v if isinstance(v, (str, int)) else nums(v)}" for k, v in fields.items()]
        sep, self.first = ([] if self.between and self.first else ["---"]), False
        self.out.write("\n".join(lines + sep if self.trailing else sep + lines) + "\n")
