#!/bin/sh
# Installs what is missing, then builds and runs the whole test suite, warnings
# as errors: a normal optimised build (and the API reference, which must have no
# warning), under AddressSanitizer + UndefinedBehaviorSanitizer, and with clang;
# then the concurrency tests under ThreadSanitizer.
# Exits non-zero when anything fails.
set -u
cd "$(dirname "$0")/.."
. scripts/deps.sh
need_packages $BUILD_PACKAGES libgtest-dev pkg-config doxygen python3 $PYTHON_PACKAGES || exit 1
jobs=$(nproc)
status=0

run_suite() {
  dir=$1; shift
  echo "== $dir =="
  cmake -S . -B "$dir" -DSTATKIT_BUILD_TESTS=ON -DSTATKIT_BUILD_EXAMPLES=ON -DSTATKIT_WERROR=ON "$@" >/dev/null &&
    cmake --build "$dir" -j "$jobs" &&
    (cd "$dir" && ctest --output-on-failure -j "$jobs") || status=1
}

# The release build also builds the Python module and runs its tests (pytest).
run_suite build/test-release -DCMAKE_BUILD_TYPE=Release -DSTATKIT_BUILD_PYTHON=ON -DPython3_EXECUTABLE=/usr/bin/python3
echo "== API reference ==" && cmake --build build/test-release --target statkit_docs || status=1
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_suite build/test-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTATKIT_SANITIZE=ON

# clang: the whole suite, built by the other supported compiler.
need_packages clang || status=1
run_suite build/test-clang -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=clang++

# ThreadSanitizer: only the tests that call from several threads at once (the
# pool and calling frame, the process-wide generator, streams of one
# generator, concurrent statistics calls), whose suites or names say Concurren.
echo "== build/test-tsan =="
cmake -S . -B build/test-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTATKIT_BUILD_TESTS=ON \
  -DCMAKE_CXX_FLAGS=-fsanitize=thread -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=thread >/dev/null &&
  cmake --build build/test-tsan -j "$jobs" --target statkit_tests &&
  TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 build/test-tsan/tests/statkit_tests --gtest_filter='*Concurren*' ||
  status=1
[ $status -eq 0 ] && echo "all tests passed" || echo "TESTS FAILED"
exit $status
