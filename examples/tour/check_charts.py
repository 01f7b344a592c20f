#!/usr/bin/python3
"""Runs the tour in a scratch folder and checks the charts it writes: each is
well-formed SVG, holds one point per plotted value, and draws its reference
lines at the values the tour computed and printed (to the printed digits).

Usage: check_charts.py TOUR_BINARY"""
import os, re, subprocess, sys, tempfile, xml.etree.ElementTree as ET

SVG = "{http://www.w3.org/2000/svg}"
# Points per chart: 23 fatigue lives in both plots, 12 subgroups in both charts.
POINTS = {"normal_plot.svg": 23, "weibull_plot.svg": 23, "xbar_chart.svg": 12, "ewma_chart.svg": 12}


def main(tour):
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        out = subprocess.run([os.path.abspath(tour)], cwd=folder, capture_output=True, text=True, check=True).stdout
        lines = {}
        for name, count in POINTS.items():
            root = ET.parse(f"{folder}/{name}").getroot()  # raises on malformed XML
            points = root.findall(f"{SVG}circle[@class='point']")
            if len(points) != count:
                failures.append(f"{name}: {len(points)} points, expected {count}")
            lines[name] = [float(l.get("data-y")) for l in root.findall(f"{SVG}polyline[@class='line']")]
    number = r"(-?[0-9.]+)"
    expected = {  # chart: (printed values its lines start at, half a unit of the last printed digit)
        "xbar_chart.svg": (re.search(rf"X-bar chart: CL {number}  UCL {number}  LCL {number}", out).groups(), 5e-4),
        "normal_plot.svg": (re.search(rf"normal plot: line from \([0-9.]+, {number}\)", out).groups(), 5e-4),
        "weibull_plot.svg": (re.search(rf"Weibull plot: line from \([0-9.]+, {number}\)", out).groups(), 5e-4),
    }
    for name, (values, tol) in expected.items():
        for v in map(float, values):
            if not any(abs(y - v) <= tol for y in lines[name]):
                failures.append(f"{name}: no line at {v} (lines at {lines[name]})")
    for f in failures:
        print(f)
    print(f"{len(POINTS) - len({f.split(':')[0] for f in failures})} passed, "
          f"{len({f.split(':')[0] for f in failures})} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
