#!/usr/bin/python3
"""Runs statkit's benchmark programs and the same workloads through the Python
peers (NumPy, SciPy, statsmodels) in the same run, and prints the time ratio
statkit/peer for every kernel (below 1.0: statkit is faster).

Usage: bench/peer.py [--build DIR] [--filter REGEX] [--repeats N]

Each topic has a benchmark program bench/<topic>_bench.cpp and a module
bench/peer_<topic>.py that defines PEERS: a dict from a benchmark name to a
function returning a zero-argument callable that runs the peer's workload on
the same data (the data generators live beside it). Both sides are timed as
the best of N repetitions, so one-time costs (first touch of fresh memory)
count on neither. A module may also define RELATIVE: a dict from a benchmark
name to another benchmark of the same program, reported as a speed ratio
within one run (a kernel against the memory-bandwidth loop, say).
"""
import argparse, glob, importlib.util, json, os, re, subprocess, sys, time

here = os.path.dirname(os.path.abspath(__file__))

relative = {}  # statkit kernel -> (topic, statkit baseline of the same run)

def load_peers():
    peers = {}
    for path in sorted(glob.glob(os.path.join(here, "peer_*.py"))):
        loader = importlib.util.spec_from_file_location(os.path.basename(path)[:-3], path)
        mod = importlib.util.module_from_spec(loader)
        loader.loader.exec_module(mod)
        topic = os.path.basename(path)[len("peer_"):-3]
        for name, make in mod.PEERS.items():
            peers[name] = (topic, make)
        for name, base in getattr(mod, "RELATIVE", {}).items():
            relative[name] = (topic, base)
    return peers

def best_time(fn, repeats):
    best = float("inf")
    for _ in range(repeats):
        t = time.perf_counter()
        fn()
        best = min(best, time.perf_counter() - t)
    return best

def run_statkit(build, topic, flt, repeats):
    exe = os.path.join(build, "bench", f"{topic}_bench")
    out = subprocess.run([exe, "--benchmark_format=json", f"--benchmark_filter={flt}",
                          "--benchmark_min_time=0.1", f"--benchmark_repetitions={repeats}"],
                         capture_output=True, text=True, check=True)
    res = {}
    for b in json.loads(out.stdout)["benchmarks"]:
        if b.get("run_type") == "aggregate":
            continue
        unit = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[b["time_unit"]]
        name = b.get("run_name", b["name"])
        res[name] = min(res.get(name, float("inf")), b["real_time"] * unit)
    return res

def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--build", default=os.path.join(here, "..", "build", "bench-release"))
    ap.add_argument("--filter", default=".")
    ap.add_argument("--repeats", type=int, default=5)
    a = ap.parse_args()
    peers = load_peers()
    topics = sorted({t for t, _ in peers.values()})
    print(f"{'kernel':48s} {'statkit':>12s} {'peer':>12s} {'ratio':>7s}")
    for topic in topics:
        names = [n for n, (t, _) in peers.items() if t == topic and re.search(a.filter, n)]
        if not names:
            continue
        sk = run_statkit(a.build, topic, "|".join(re.escape(n) + "$" for n in names), a.repeats)
        for n in names:
            fn = peers[n][1]()
            pt = best_time(fn, a.repeats)
            st = sk.get(n)
            if st is None:
                print(f"{n:48s} {'missing':>12s}")
                continue
            print(f"{n:48s} {st*1e3:10.3f}ms {pt*1e3:10.3f}ms {st/pt:7.3f}")
    for n, (topic, base) in relative.items():
        if not re.search(a.filter, n):
            continue
        sk = run_statkit(a.build, topic, re.escape(n) + "$|" + re.escape(base) + "$", a.repeats)
        if n in sk and base in sk:
            print(f"{n} runs at {100 * sk[base] / sk[n]:.0f}% of the speed of {base} (same run)")
    return 0

if __name__ == "__main__":
    sys.exit(main())
