"""NumPy and SciPy peers of bench/multivariate_plots_bench.cpp on standard normal data of the same shapes
(timing only). PCA in covariance mode three ways: the SVD of the centred data (what statkit computes), the
eigendecomposition of the covariance matrix (the Gram path, which squares the condition number) and the SVD of
the R factor of a QR of the centred data; each centres, decomposes, squares or scales the values and projects.
The normal plot: scipy.stats.probplot, whose Filliben positions and least-squares line differ from statkit's."""
import numpy as np

_rng = np.random.default_rng(20261125)


def _pca(path):
    x = _rng.standard_normal((100_000, 50))

    def run():
        c = x - x.mean(axis=0)
        if path == "svd":
            _, s, vt = np.linalg.svd(c, full_matrices=False)
            v, w = vt.T, s**2 / (len(c) - 1)
        elif path == "gram":
            w, v = np.linalg.eigh(c.T @ c / (len(c) - 1))
            w, v = w[::-1], v[:, ::-1]
        else:
            _, s, vt = np.linalg.svd(np.linalg.qr(c, mode="r"))
            v, w = vt.T, s**2 / (len(c) - 1)
        return w, c @ v

    return run


def _normal_plot():
    import scipy.stats
    x = _rng.standard_normal(1_000_000)
    return lambda: scipy.stats.probplot(x)


PEERS = {
    "PCACovMat_1e5x50": lambda: _pca("svd"),
    "PCACovMat_1e5x50_vs_Gram": lambda: _pca("gram"),
    "PCACovMat_1e5x50_vs_QR": lambda: _pca("qr"),
    "StatNormalPlot_1e6": _normal_plot,
}
