"""Call-table rows: the Python side of calls_series_charts.cpp."""
CALLS = {}
