"""The peer of bench/random_bench.cpp: 10^7 draws from numpy.random.default_rng()
(PCG64). Where NumPy can write into an existing array (out=), it does, as the
statkit benchmark fills an existing vector; the Poisson and binomial draws
return new integer arrays, NumPy's only form."""
import numpy as np

N = 10_000_000

def _make(draw):
    def make():
        rng = np.random.default_rng(12345)
        buf = np.empty(N)
        return lambda: draw(rng, buf)
    return make

PEERS = {
    "Uniform": _make(lambda rng, buf: rng.random(out=buf)),
    "Normal": _make(lambda rng, buf: rng.standard_normal(out=buf)),
    "Gamma/shape_0_5": _make(lambda rng, buf: rng.standard_gamma(0.5, out=buf)),
    "Gamma/shape_2_5": _make(lambda rng, buf: rng.standard_gamma(2.5, out=buf)),
    "Poisson/mean_3": _make(lambda rng, buf: rng.poisson(3.0, N)),
    "Poisson/mean_300": _make(lambda rng, buf: rng.poisson(300.0, N)),
    "Binom/n_20_p_0_3": _make(lambda rng, buf: rng.binomial(20, 0.3, N)),
}
