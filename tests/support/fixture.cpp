#include "support/fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>

namespace statkit::test {

namespace {
const std::vector<std::string>& field(const Record& r, const std::string& key) {
  auto it = r.fields_.find(key);
  if (it == r.fields_.end()) throw std::runtime_error("fixture record has no field '" + key + "'");
  return it->second;
}
double parse(const std::string& s) {
  char* end = nullptr;
  double v = std::strtod(s.c_str(), &end);
  if (end == s.c_str() || *end != '\0') throw std::runtime_error("fixture: not a number: '" + s + "'");
  return v;
}
}  // namespace

double Record::Num(const std::string& key) const {
  const auto& f = field(*this, key);
  if (f.size() != 1) throw std::runtime_error("fixture field '" + key + "' is not a single number");
  return parse(f[0]);
}

std::vector<double> Record::Nums(const std::string& key) const {
  std::vector<double> out;
  for (const auto& s : field(*this, key)) out.push_back(parse(s));
  return out;
}

TMtx Record::Mtx(const std::string& key) const {
  auto v = Nums(key);
  if (v.size() < 2) throw std::runtime_error("fixture matrix '" + key + "' has no shape");
  int rows = static_cast<int>(v[0]), cols = static_cast<int>(v[1]);
  if (v.size() != 2 + static_cast<std::size_t>(rows) * cols)
    throw std::runtime_error("fixture matrix '" + key + "' has the wrong number of values");
  TMtx m(rows, cols);
  for (int i = 0; i < rows * cols; ++i) m.data()[i] = v[2 + i];
  return m;
}

const std::string& Record::Str(const std::string& key) const {
  const auto& f = field(*this, key);
  if (f.empty()) throw std::runtime_error("fixture field '" + key + "' is empty");
  return f[0];
}

std::vector<Record> LoadFixture(const std::string& name) {
  std::string path = std::string(STATKIT_FIXTURE_DIR) + "/" + name;
  std::ifstream in(path);
  if (!in) throw std::runtime_error("missing fixture " + path);
  std::vector<Record> out(1);
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    if (line == "---") {
      if (!out.back().fields_.empty()) out.emplace_back();
      continue;
    }
    std::istringstream words(line);
    std::string key, w;
    words >> key;
    auto& f = out.back().fields_[key];
    while (words >> w) f.push_back(w);
  }
  if (out.back().fields_.empty()) out.pop_back();
  return out;
}

std::string StrdDir() {
  std::string dir = STATKIT_STRD_DIR;
  struct stat st{};
  if (stat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) return dir;
  const char* ci = std::getenv("CI");
  if (ci && std::string(ci) == "true") ADD_FAILURE() << "NIST StRD folder missing: " << dir;
  return "";
}

double LRE(double x, double c) {
  if (x == c) return 16.0;
  double rel = c == 0.0 ? std::fabs(x) : std::fabs(x - c) / std::fabs(c);
  return -std::log10(rel);
}

}  // namespace statkit::test
