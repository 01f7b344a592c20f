#!/bin/sh
# Installs what is missing, builds statkit and runs the tour of examples/; when
# python3 is present, also builds the Python module and runs examples/tour.py.
set -eu
cd "$(dirname "$0")/.."
. scripts/deps.sh
need_packages $BUILD_PACKAGES
python=""
if [ -x /usr/bin/python3 ]; then
  need_packages $PYTHON_PACKAGES
  python="-DSTATKIT_BUILD_PYTHON=ON -DPython3_EXECUTABLE=/usr/bin/python3"
fi
cmake -S . -B build/tour -DCMAKE_BUILD_TYPE=Release -DSTATKIT_BUILD_TESTS=OFF -DSTATKIT_BUILD_EXAMPLES=ON $python >/dev/null
cmake --build build/tour --target tour -j "$(nproc)"
./build/tour/examples/tour
if [ -n "$python" ]; then
  cmake --build build/tour --target statkit_python -j "$(nproc)"
  PYTHONPATH=build/tour/python /usr/bin/python3 examples/tour.py
fi
