#!/usr/bin/python3
"""statkit.dask against dask.array's own functions on a local two-process cluster, in the
same run, with each worker's peak memory.

Usage: PYTHONPATH=build/py/python /usr/bin/python3 bench/peer_dask.py [--repeats N] [--n N]

Workloads (the data are drawn chunk by chunk inside the workers by dask.array.random and
never held whole, as when chunks are read from storage):
- describe: mean, sd, skewness, kurtosis and a 100-bin histogram of 10^8 normals in chunks of
  10^6, statkit.dask.describe (one pass) against dask.array mean, std, histogram and
  dask.array.stats skew and kurtosis computed together in one dask.compute;
- least squares: 10^7 x 20 normals (and an intercept) in chunks of 10^5 rows,
  statkit.dask.regress against dask.array.linalg.lstsq on [1 A] (both by TSQR).
Both sides are timed as the best of N runs; "net" ratios subtract the time of drawing the
data alone (a sum over the same chunks). Peak memory: before each run every worker's kernel
high-water mark is reset (writing 5 to /proc/self/clear_refs) and after it VmHWM is read from
/proc/self/status, through client.run; the growth over the resident size at the reset is
reported in MB and in chunks. It is run on its own: PEERS is empty, so bench/peer.py, which
loads every bench/peer_*.py, finds nothing to time here.
"""
import argparse
import sys
import time

PEERS = {}


def kib(field):
    for line in open("/proc/self/status"):
        if line.startswith(field):
            return int(line.split()[1])
    return 0


def reset_peak():
    with open("/proc/self/clear_refs", "w") as f:
        f.write("5")
    return kib("VmRSS")


def read_peak():
    return kib("VmHWM")


def timed(client, fn, repeats):
    """Best time of repeats runs of fn, and the largest peak growth (MB) of any worker in any run."""
    best, growth = float("inf"), 0.0
    for _ in range(repeats):
        base = client.run(reset_peak)
        t = time.perf_counter()
        result = fn()
        best = min(best, time.perf_counter() - t)
        peak = client.run(read_peak)
        growth = max(growth, max((peak[w] - base[w]) / 1024 for w in peak))
    return best, growth, result


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--repeats", type=int, default=3)
    ap.add_argument("--n", type=int, default=10 ** 8)
    a = ap.parse_args()

    import dask
    import dask.array as da
    import dask.array.stats as dstats
    import distributed
    import numpy as np

    import statkit.dask as sd

    with distributed.LocalCluster(n_workers=2, processes=True, threads_per_worker=1, host="127.0.0.1",
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        chunk = 10 ** 6
        x = da.random.RandomState(1).standard_normal(a.n, chunks=chunk)
        edges = (-6.0, 6.0)

        def peer_describe():
            return dask.compute(x.mean(), x.std(ddof=1), dstats.skew(x), dstats.kurtosis(x),
                                da.histogram(x, bins=100, range=edges)[0])

        rows, cols, rchunk = a.n // 10, 20, 10 ** 5
        r = da.random.RandomState(2)
        A = r.standard_normal((rows, cols), chunks=(rchunk, cols))
        y = A @ np.linspace(-1.0, 1.0, cols) + 0.5 + r.standard_normal(rows, chunks=rchunk)
        X = da.concatenate([da.ones((rows, 1), chunks=(rchunk, 1)), A], axis=1).rechunk({1: -1})

        kernels = [
            (f"describe {a.n:.0e} (mean sd skew kurt hist100)", lambda: dask.compute(x.sum()),
             lambda: sd.describe(x, bins=100, range=edges), peer_describe, chunk * 8),
            (f"least squares {rows:.0e} x {cols}", lambda: dask.compute(A.sum(), y.sum()),
             lambda: sd.regress(y, A), lambda: da.linalg.lstsq(X, y)[0].compute(), rchunk * (cols + 1) * 8),
        ]
        print(f"{'kernel':44s} {'statkit':>10s} {'peer':>10s} {'draw':>9s} {'ratio':>6s} {'net':>6s}")
        memory = []
        for name, draw, mine, peer, chunk_bytes in kernels:
            draw()  # workers warm: imports, first touch of their memory
            tg, _, _ = timed(client, draw, a.repeats)
            ts, ms, got = timed(client, mine, a.repeats)
            tp, mp, want = timed(client, peer, a.repeats)
            print(f"{name:44s} {ts:9.3f}s {tp:9.3f}s {tg:8.3f}s {ts / tp:6.3f} {(ts - tg) / (tp - tg):6.3f}")
            memory.append((name, ms, mp, chunk_bytes / 2 ** 20))
            check(name, got, want)
        print("\nworker peak memory over its resident size at the start of a run (MB; in chunks)")
        for name, ms, mp, mb in memory:
            print(f"{name:44s} statkit {ms:7.1f} ({ms / mb:4.1f})  peer {mp:7.1f} ({mp / mb:4.1f})"
                  f"  chunk {mb:.1f} MB")
    return 0


def check(name, got, want):
    """The two sides agree (a guard against timing different work)."""
    import numpy as np
    if name.startswith("describe"):
        pairs = [(got.mean, want[0]), (got.sd, want[1]), (got.skewness, want[2]), (got.kurtosis, want[3])]
        rel = max(abs(g - w) / abs(w) for g, w in pairs)
        same = np.array_equal(got.histogram.counts, want[4])
        print(f"  agree: max relative difference {rel:.1e}, histograms {'equal' if same else 'DIFFER'}")
    else:
        rel = np.max(np.abs(got.coef - want) / np.abs(want))
        print(f"  agree: coefficients' max relative difference {rel:.1e}")


if __name__ == "__main__":
    sys.exit(main())
