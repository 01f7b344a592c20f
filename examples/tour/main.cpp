// A tour of statkit: every subsystem on a small embedded sample.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <vector>

#include "statkit/statkit.h"
#include "tour.h"

namespace tour {
namespace {
struct Section {
  int order;
  const char* title;
  SectionFn run;
};
std::vector<Section>& sections() {
  static std::vector<Section> all;
  return all;
}
}  // namespace

bool RegisterSection(int order, const char* title, SectionFn run) {
  sections().push_back({order, title, run});
  return true;
}
}  // namespace tour

int main() {
  auto& all = tour::sections();
  std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.order < b.order; });
  std::printf("statkit %s tour\n", STATKIT_VERSION);
  try {
    for (const auto& s : all) {
      std::printf("\n== %s ==\n", s.title);
      s.run();
    }
  } catch (const std::exception& e) {
    std::printf("tour failed: %s\n", e.what());
    return 1;
  }
  return 0;
}
