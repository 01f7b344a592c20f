#!/bin/sh
# Installs what is missing, then builds and runs the whole test suite twice:
# a normal optimised build, and under AddressSanitizer + UndefinedBehaviorSanitizer,
# warnings as errors in both; then builds the API reference, which must have no warning.
# Exits non-zero when anything fails.
set -u
cd "$(dirname "$0")/.."
. scripts/deps.sh
need_packages $BUILD_PACKAGES libgtest-dev pkg-config doxygen || exit 1
jobs=$(nproc)
status=0

run_suite() {
  dir=$1; shift
  echo "== $dir =="
  cmake -S . -B "$dir" -DSTATKIT_BUILD_TESTS=ON -DSTATKIT_BUILD_EXAMPLES=ON -DSTATKIT_WERROR=ON "$@" >/dev/null &&
    cmake --build "$dir" -j "$jobs" &&
    (cd "$dir" && ctest --output-on-failure -j "$jobs") || status=1
}

run_suite build/test-release -DCMAKE_BUILD_TYPE=Release
echo "== API reference ==" && cmake --build build/test-release --target statkit_docs || status=1
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_suite build/test-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTATKIT_SANITIZE=ON
[ $status -eq 0 ] && echo "all tests passed" || echo "TESTS FAILED"
exit $status
