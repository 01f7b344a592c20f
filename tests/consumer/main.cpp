// A host program built against statkit as hosts embed it: the installed CMake package, the
// installed pkg-config file, or the source tree added with add_subdirectory.
#include <statkit/statkit.h>

#include <cstdio>

int main() {
  using namespace statkit::Statistics;
  TVec x{2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0};
  double mean = 0, var = 0;
  MVNormal(x.Mean(), x.StdDev(), mean, var);
  TVec zeros(3);  // the sized constructor, exported like the rest
  std::printf("statkit %s: mean %.6g variance %.6g\n", STATKIT_VERSION, mean, var);
  return (mean == 5.0 && var > 4.57 && var < 4.58 && zeros.Length() == 3 && zeros.Sum() == 0.0) ? 0 : 1;
}
