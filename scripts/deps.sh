# Sourced by the run scripts: installs the Debian packages that are missing,
# without questions (apt-get update once, then apt-get install -y).
need_packages() {
  missing=""
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
  done
  if [ -n "$missing" ]; then
    echo "installing:$missing"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq && apt-get install -y -qq --no-install-recommends $missing
  fi
}
BUILD_PACKAGES="g++ make cmake libeigen3-dev libboost-dev"
# The Python module and its tests: pybind11, NumPy, pytest, Dask.
PYTHON_PACKAGES="python3-dev pybind11-dev python3-numpy python3-pytest python3-dask python3-distributed"
