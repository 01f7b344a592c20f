// Location, spread and moments: geometric, harmonic and trimmed means, central
// moments about a given mean, ranges and standard deviations of the rows or
// columns of a matrix, and column standardisation (z-scores).
// An empty vector gives 0/0 = NaN for the means and moments (IEEE arithmetic).

#include <complex>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

enum class Lines { rows, cols };

// Calls summary(line) on every row or column, copied into one pooled vector.
template <class Summary>
void forEachLine(const TMtx& Data, Lines lines, Summary&& summary) {
  PooledVec line;
  const int count = lines == Lines::rows ? Data.Rows() : Data.Cols();
  for (int i = 0; i < count; ++i) {
    if (lines == Lines::rows) line->GetRow(Data, i);
    else line->GetCol(Data, i);
    summary(i, *line);
  }
}

void rangeOfLines(const TMtx& Data, TVec& Dst, Lines lines) {
  Dst.Size(lines == Lines::rows ? Data.Rows() : Data.Cols(), Data.Complex());
  forEachLine(Data, lines, [&](int i, const TVec& v) {
    if (v.Complex()) Dst.CValues(i) = v.Maxc() - v.Minc();
    else Dst[i] = v.Max() - v.Min();
  });
}

// Sample standard deviations (divisor length - 1); complex lines about their complex mean,
// stored as complex numbers with a zero imaginary part.
void stdOfLines(const TMtx& Data, TVec& Dst, Lines lines) {
  Dst.Size(lines == Lines::rows ? Data.Rows() : Data.Cols(), Data.Complex());
  Dst.SetZero();
  forEachLine(Data, lines, [&](int i, const TVec& v) {
    if (v.Complex()) Dst.CValues(i) = v.StdDev(v.Meanc());
    else Dst[i] = v.StdDev();
  });
}

}  // namespace

double MeanG(const TVec& Data) {
  if (Data.Complex()) ERaise("MeanGData.Complex = true");
  return core::Guarded("MeanG : ", [&] {
    PooledVec logs;
    logs->Ln(Data);
    return Exp(logs->Sum() / Data.Length());
  });
}

double MeanH(const TVec& Data) {
  if (Data.Complex()) ERaise("MeanHData.Complex = true");
  return core::Guarded("MeanH : ", [&] {
    PooledVec inverses;
    inverses->Inv(Data);
    return 1.0 / (inverses->Sum() / Data.Length());
  });
}

double MeanT(const TVec& Data, double Percent) {
  if (Data.Complex()) ERaise("MeanTData.Complex = true");
  // Percent is a fraction despite the message; NaN is refused with the out-of-range values
  if (!(Percent >= 0.0 && Percent < 1.0)) ERaise("MeanT(Percent >= 100) or (Percent < 0)");
  return core::Guarded("MeanT : ", [&] {
    const double lo = Percentile(Data, 0.5 * Percent, pctMethodNPlus);
    const double hi = Percentile(Data, 1.0 - 0.5 * Percent, pctMethodNPlus);
    // bounds inclusive; a NaN element is neither below lo nor above hi, so it is kept
    double sum[2] = {0.0, 0.0};
    double kept = 0.0;
    const double* x = Data.data();
    for (int i = 0, n = Data.Length(); i < n; ++i)
      if (!(x[i] < lo) && !(x[i] > hi)) {
        sum[i & 1] += x[i];
        kept += 1.0;
      }
    return (sum[0] + sum[1]) / kept;
  });
}

double Moment(const TVec& X, double Mean, int Order) {
  if (X.Complex()) ERaise("Moment : X.Complex = true");
  if (Order <= 1) return 0.0;
  return core::Guarded("Moment : ", [&] {
    PooledVec powers;
    powers->Normalize(X, Mean, 1.0);
    powers->IntPower(Order);
    return powers->Sum() / X.Length();
  });
}

double Range(const TVec& X) {
  if (X.Complex()) ERaise("Range: X.Complex := true");
  return core::Guarded("Range : ", [&] { return X.Max() - X.Min(); });
}

void RangeRows(const TMtx& Data, TVec& Dst) {
  core::Guarded("RangeRows : ", [&] { rangeOfLines(Data, Dst, Lines::rows); });
}

void RangeCols(const TMtx& Data, TVec& Dst) {
  core::Guarded("RangeCols : ", [&] { rangeOfLines(Data, Dst, Lines::cols); });
}

void StdRows(const TMtx& Data, TVec& Dst) {
  core::Guarded("StdRows : ", [&] { stdOfLines(Data, Dst, Lines::rows); });
}

void StdCols(const TMtx& Data, TVec& Dst) {
  core::Guarded("StdCols : ", [&] { stdOfLines(Data, Dst, Lines::cols); });
}

void ZScore(const TMtx& Data, TMtx& Dst) {
  core::Guarded("ZScore : ", [&] {
    PooledVec mean, sd;
    StdCols(Data, *sd);
    Data.MeanCols(*mean);
    // every element is read before it is overwritten, so Dst may be Data
    if (&Dst != &Data) Dst.Size(Data);
    const int rows = Data.Rows(), cols = Data.Cols();
    if (Data.Complex()) {
      const TCplx* m = reinterpret_cast<const TCplx*>(mean->data());
      const TCplx* s = reinterpret_cast<const TCplx*>(sd->data());
      const TCplx* x = reinterpret_cast<const TCplx*>(Data.data());
      TCplx* d = reinterpret_cast<TCplx*>(Dst.data());
      for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c, ++x, ++d) *d = (*x - m[c]) / s[c].real();
    } else {
      const double* m = mean->data();
      const double* s = sd->data();
      const double* x = Data.data();
      double* d = Dst.data();
      for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c, ++x, ++d) *d = (*x - m[c]) / s[c];
    }
  });
}

}  // namespace statkit::Statistics
