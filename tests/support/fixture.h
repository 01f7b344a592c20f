#pragma once
// Reader of the reference fixtures in tests/reference: plain text, one record
// after another, records separated by a line "---". Inside a record each line
// is a key followed by values ("x 1 2 3", "method pctMethodEDF"); numbers are
// read with strtod (so nan, inf and -inf are allowed). Lines starting with '#'
// are comments (the generator and the reference's version stand there).

#include <map>
#include <string>
#include <vector>

#include "statkit/Array.h"

namespace statkit::test {

class Record {
public:
  bool Has(const std::string& key) const { return fields_.count(key) != 0; }
  /// The single number stored under \p key.
  double Num(const std::string& key) const;
  int Int(const std::string& key) const { return static_cast<int>(Num(key)); }
  /// All numbers stored under \p key.
  std::vector<double> Nums(const std::string& key) const;
  TVec Vec(const std::string& key) const { return TVec(Nums(key)); }
  /// A matrix stored as "key rows cols v00 v01 ..." (row by row).
  TMtx Mtx(const std::string& key) const;
  /// The first word stored under \p key.
  const std::string& Str(const std::string& key) const;
  std::map<std::string, std::vector<std::string>> fields_;
};

/// Reads tests/reference/<name>; fails the calling test when it is missing.
std::vector<Record> LoadFixture(const std::string& name);

/// Folder of NIST's Statistical Reference Datasets, or "" when it is absent.
std::string StrdDir();

/// Log relative error of \p x against the certified \p c.
double LRE(double x, double c);

}  // namespace statkit::test
