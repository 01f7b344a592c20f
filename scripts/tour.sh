#!/bin/sh
# Installs what is missing, builds statkit and runs the tour of examples/.
set -eu
cd "$(dirname "$0")/.."
. scripts/deps.sh
need_packages $BUILD_PACKAGES
cmake -S . -B build/tour -DCMAKE_BUILD_TYPE=Release -DSTATKIT_BUILD_TESTS=OFF -DSTATKIT_BUILD_EXAMPLES=ON >/dev/null
cmake --build build/tour --target tour -j "$(nproc)"
./build/tour/examples/tour
