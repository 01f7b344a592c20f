#include "support/nist.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/fixture.h"

namespace statkit::test {

namespace {
bool number(const std::string& word, double& value) {
  char* end = nullptr;
  value = std::strtod(word.c_str(), &end);
  return end != word.c_str() && *end == '\0';
}

// The 1-based, inclusive line range that the header gives for \p what ("Certified Values", "Data").
std::pair<int, int> headerRange(const std::vector<std::string>& lines, const std::string& what) {
  for (std::size_t i = 0; i < lines.size() && i < 60; ++i) {
    const auto at = lines[i].find(what);
    const auto from = lines[i].find("lines", at == std::string::npos ? lines[i].size() : at);
    int first = 0, last = -1;
    if (from != std::string::npos && std::sscanf(lines[i].c_str() + from, "lines %d to %d", &first, &last) == 2)
      return {first, last};
  }
  throw std::runtime_error("StRD header without the lines of " + what);
}
}  // namespace

const std::vector<double>& StrdSet::Values(const std::string& prefix) const {
  for (const auto& l : certified)
    if (l.label.rfind(prefix, 0) == 0) return l.values;
  throw std::runtime_error("StRD set has no certified line " + prefix);
}

TMtx StrdDesign(const StrdSet& set, bool withConstant) {
  const int n = set.Rows();
  std::vector<int> powers;
  for (const std::string& name : set.params)
    if (int k = std::stoi(name.substr(1)); k != 0 || withConstant) powers.push_back(k);
  TMtx design(n, static_cast<int>(powers.size()));
  for (int j = 0; j < design.Cols(); ++j)
    for (int i = 0; i < n; ++i)
      design(i, j) = set.columns.size() == 2 ? std::pow(set.columns[1][i], powers[j])
                     : powers[j] == 0        ? 1.0
                                             : set.columns[powers[j]][i];
  return design;
}

StrdSet ReadStrd(const std::string& relPath) {
  const std::string path = StrdDir() + "/" + relPath + ".dat";
  std::ifstream in(path);
  if (!in) throw std::runtime_error("missing StRD file " + path);
  std::vector<std::string> lines;
  for (std::string l; std::getline(in, l);) lines.push_back(l.substr(0, l.find('\r')));
  StrdSet set;
  const auto [certFirst, certLast] = headerRange(lines, "Certified Values");
  for (int i = certFirst - 1; i < certLast && i < static_cast<int>(lines.size()); ++i) {
    std::istringstream words(lines[i]);
    StrdSet::Line line;
    double v;
    for (std::string w; words >> w;)
      if (number(w, v)) line.values.push_back(v);
      else if (line.values.empty()) line.label += (line.label.empty() ? "" : " ") + w;
    if (line.values.empty()) continue;
    // A parameter line: "B3 value sd" (linear) or "b1 = start1 start2 value sd" (nonlinear).
    const std::string name = line.label.substr(0, line.label.find(' '));
    if (name.size() > 1 && (name[0] == 'B' || name[0] == 'b') &&
        name.find_first_not_of("0123456789", 1) == std::string::npos && line.values.size() >= 2) {
      set.params.push_back(name);
      set.estimates.push_back(line.values[line.values.size() - 2]);
    }
    set.certified.push_back(line);
  }
  const auto [dataFirst, dataLast] = headerRange(lines, "Data ");
  for (int i = dataFirst - 1; i < dataLast && i < static_cast<int>(lines.size()); ++i) {
    std::istringstream words(lines[i]);
    std::vector<double> row;
    double v;
    for (std::string w; words >> w && number(w, v);) row.push_back(v);
    if (row.empty()) continue;
    if (set.columns.empty()) set.columns.resize(row.size());
    if (row.size() != set.columns.size()) throw std::runtime_error("ragged data row in " + path);
    for (std::size_t j = 0; j < row.size(); ++j) set.columns[j].push_back(row[j]);
  }
  return set;
}

}  // namespace statkit::test
