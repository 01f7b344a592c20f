"""Call-table rows: the Python side of calls_distributions.cpp."""
CALLS = {}
