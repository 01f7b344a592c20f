// The tour's SVG writer: data bounds from everything drawn, padded by 5 %, then
// a linear (or logarithmic in x) map into a 640 x 400 frame.

#include "svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>

namespace tour::svg {

namespace {
constexpr double kW = 640, kH = 400, kLeft = 70, kRight = 120, kTop = 40, kBottom = 50;

std::string number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.4g", v);
  return buf;
}

// Round tick values in [lo, hi]: multiples of 1, 2 or 5 times a power of ten, about five of
// them; on a logarithmic axis (lo, hi its base-10 logarithms) the 1-2-5 values of each decade.
std::vector<double> ticks(double lo, double hi, bool logarithmic) {
  std::vector<double> out;
  if (logarithmic) {
    for (double decade = std::floor(lo); decade <= hi; ++decade)
      for (double m : {1.0, 2.0, 5.0})
        if (const double t = std::log10(m) + decade; t >= lo && t <= hi) out.push_back(std::pow(10.0, t));
    return out;
  }
  const double raw = (hi - lo) / 5, magnitude = std::pow(10.0, std::floor(std::log10(raw)));
  const double step = magnitude * (raw / magnitude < 1.5 ? 1 : raw / magnitude < 3.5 ? 2 : 5);
  // at most 12: where step is below the spacing of doubles near t, t + step rounds to t
  for (double t = std::ceil(lo / step) * step; t <= hi && out.size() < 12; t += step)
    out.push_back(std::fabs(t) < 1e-9 * step ? 0 : t);
  return out;
}
}  // namespace

Chart::Chart(std::string title, std::string xLabel, std::string yLabel, bool logX)
    : title_(std::move(title)), xLabel_(std::move(xLabel)), yLabel_(std::move(yLabel)), logX_(logX) {}

void Chart::Points(const std::vector<double>& x, const std::vector<double>& y, const char* colour) {
  items_.push_back({Item::points, x, y, colour, "", false});
}
void Chart::Polyline(const std::vector<double>& x, const std::vector<double>& y, const char* colour) {
  items_.push_back({Item::polyline, x, y, colour, "", false});
}
void Chart::Line(double xa, double ya, double xb, double yb, const char* colour, const std::string& label,
                 bool dashed) {
  items_.push_back({Item::line, {xa, xb}, {ya, yb}, colour, label, dashed});
}

bool Chart::Write(const std::string& path) const {
  const auto fx = [&](double x) { return logX_ ? std::log10(x) : x; };
  double x0 = std::numeric_limits<double>::infinity(), x1 = -x0, y0 = x0, y1 = -x0;
  for (const Item& it : items_)
    for (std::size_t i = 0; i < it.x.size(); ++i) {
      if (!std::isfinite(fx(it.x[i])) || !std::isfinite(it.y[i])) continue;
      x0 = std::min(x0, fx(it.x[i])), x1 = std::max(x1, fx(it.x[i]));
      y0 = std::min(y0, it.y[i]), y1 = std::max(y1, it.y[i]);
    }
  if (!(x1 > x0)) x1 = x0 + 1;
  if (!(y1 > y0)) y1 = y0 + 1;
  const double padX = 0.05 * (x1 - x0), padY = 0.05 * (y1 - y0);
  x0 -= padX, x1 += padX, y0 -= padY, y1 += padY;
  const auto px = [&](double x) { return kLeft + (fx(x) - x0) / (x1 - x0) * (kW - kLeft - kRight); };
  const auto py = [&](double y) { return kH - kBottom - (y - y0) / (y1 - y0) * (kH - kTop - kBottom); };
  std::ostringstream s;
  s << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kW << "\" height=\"" << kH
    << "\" font-family=\"sans-serif\" font-size=\"12\">\n<rect width=\"100%\" height=\"100%\" "
       "fill=\"white\"/>\n"
    << "<text x=\"" << kW / 2 << "\" y=\"22\" text-anchor=\"middle\" font-size=\"15\">" << title_
    << "</text>\n"
    << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\"" << kW - kLeft - kRight << "\" height=\""
    << kH - kTop - kBottom << "\" fill=\"none\" stroke=\"black\"/>\n";
  for (double t : ticks(x0, x1, logX_))
    s << "<text x=\"" << px(t) << "\" y=\"" << kH - kBottom + 16 << "\" text-anchor=\"middle\">" << number(t)
      << "</text>\n";
  for (double t : ticks(y0, y1, false))
    s << "<text x=\"" << kLeft - 6 << "\" y=\"" << py(t) + 4 << "\" text-anchor=\"end\">" << number(t)
      << "</text>\n<line x1=\"" << kLeft << "\" x2=\"" << kW - kRight << "\" y1=\"" << py(t) << "\" y2=\""
      << py(t) << "\" stroke=\"#e4e4e4\"/>\n";
  s << "<text x=\"" << (kLeft + kW - kRight) / 2 << "\" y=\"" << kH - 12 << "\" text-anchor=\"middle\">"
    << xLabel_ << "</text>\n<text x=\"16\" y=\"" << (kTop + kH - kBottom) / 2
    << "\" transform=\"rotate(-90 16 " << (kTop + kH - kBottom) / 2 << ")\" text-anchor=\"middle\">"
    << yLabel_ << "</text>\n";
  for (const Item& it : items_) {
    if (it.kind == Item::points) {
      for (std::size_t i = 0; i < it.x.size(); ++i)
        s << "<circle class=\"point\" cx=\"" << px(it.x[i]) << "\" cy=\"" << py(it.y[i])
          << "\" r=\"3\" fill=\"" << it.colour << "\"/>\n";
      continue;
    }
    char dataY[32];  // the value drawn, to the last digit, for a reader that checks the chart
    std::snprintf(dataY, sizeof dataY, "%.17g", it.y.front());
    s << "<polyline class=\"" << (it.kind == Item::line ? "line" : "trace") << "\" data-y=\"" << dataY
      << "\" fill=\"none\" stroke=\"" << it.colour << "\""
      << (it.dashed ? " stroke-dasharray=\"6 4\"" : "") << " points=\"";
    for (std::size_t i = 0; i < it.x.size(); ++i) s << px(it.x[i]) << "," << py(it.y[i]) << " ";
    s << "\"/>\n";
    if (!it.label.empty())
      s << "<text x=\"" << px(it.x.back()) + 6 << "\" y=\"" << py(it.y.back()) + 4 << "\" fill=\""
        << it.colour << "\">" << it.label << "</text>\n";
  }
  s << "</svg>\n";
  std::ofstream file(path);
  file << s.str();
  return static_cast<bool>(file);
}

}  // namespace tour::svg
