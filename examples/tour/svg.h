#pragma once
// A small SVG writer for the tour's charts: points, polylines and labelled straight
// lines in data coordinates, mapped into a framed plot with ticks on both axes and,
// when asked, a logarithmic x axis. statkit itself draws nothing.

#include <string>
#include <vector>

namespace tour::svg {

class Chart {
public:
  Chart(std::string title, std::string xLabel, std::string yLabel, bool logX = false);
  /// Markers at (x[i], y[i]).
  void Points(const std::vector<double>& x, const std::vector<double>& y, const char* colour);
  /// A line through (x[i], y[i]) in order.
  void Polyline(const std::vector<double>& x, const std::vector<double>& y, const char* colour);
  /// A straight segment from (xa, ya) to (xb, yb), labelled at its right end; dashed for limits.
  void Line(double xa, double ya, double xb, double yb, const char* colour, const std::string& label,
            bool dashed);
  /// Writes the chart; false when the file cannot be written.
  bool Write(const std::string& path) const;

private:
  struct Item {
    enum Kind { points, polyline, line } kind;
    std::vector<double> x, y;
    std::string colour, label;
    bool dashed;
  };
  std::string title_, xLabel_, yLabel_;
  bool logX_;
  std::vector<Item> items_;
};

}  // namespace tour::svg
