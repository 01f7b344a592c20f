"""Call-table rows: the Python side of calls_regression.cpp."""
CALLS = {}
