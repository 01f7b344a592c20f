#pragma once
// Reader of NIST's Statistical Reference Datasets (StRD): the header names the
// lines of the certified values and of the data; every set (univariate, linear
// and nonlinear least squares, analysis of variance) is read the same way.

#include <string>
#include <vector>

#include "statkit/Array.h"

namespace statkit::test {

struct StrdSet {
  /// Every certified line that holds numbers: its leading words and its numbers
  /// ("Residual Standard Deviation:" {0.10}, "Between Instrument" {4, SS, MS, F}).
  struct Line {
    std::string label;
    std::vector<double> values;
  };
  std::vector<Line> certified;
  /// The parameters (B0, b1, ...) in order: names and certified values (their standard deviations,
  /// the residual SD and R-squared stay in `certified`: Values("B1"), Values("Standard Deviation")).
  std::vector<std::string> params;
  std::vector<double> estimates;
  /// The data by column, in the order of the file's "Data:" line (y first, then x1, ...).
  std::vector<std::vector<double>> columns;

  int Rows() const { return columns.empty() ? 0 : static_cast<int>(columns[0].size()); }
  TVec Column(int j) const { return TVec(columns.at(j)); }
  /// The numbers of the first certified line whose label starts with \p prefix.
  const std::vector<double>& Values(const std::string& prefix) const;
};

/// The design matrix of a linear least-squares set: parameter Bk multiplies x^k (one predictor)
/// or x_k (several), B0 the constant; \p withConstant false leaves B0's column of ones out.
TMtx StrdDesign(const StrdSet& set, bool withConstant = true);

/// Reads StrdDir()/<relPath>.dat ("lls/Norris", "univ/PiDigits"); throws when it is missing.
StrdSet ReadStrd(const std::string& relPath);

}  // namespace statkit::test
