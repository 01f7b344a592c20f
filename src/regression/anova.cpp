// One-way and two-way analysis of variance: sums of squares as centred sums of
// the data shifted by one of its own values (exact by Sterbenz's lemma for data
// sharing their leading digits) around means refined by a second pass, so that
// a common offset costs no accuracy (Simon and Lesage 1989, "Assessing the
// accuracy of ANOVA calculations in statistical software", CSDA 8).

#include <algorithm>
#include <cmath>
#include <complex>
#include <type_traits>
#include <vector>

#include "core/frame.h"
#include "regression/fit_tables.h"
#include "statkit/Regress.h"

namespace statkit::Regress {

namespace {

double sq(double x) { return x * x; }
double sq(const TCplx& z) { return std::norm(z); }

// Element i of the storage, real or complex.
template <class T>
T element(const TDenseKalpa& Data, int i) {
  if constexpr (std::is_same_v<T, double>) return Data.data()[i];
  else return Data.CValues(i);
}

// A sum with Neumaier's compensation (ZAMM 54, 1974): the error stays near one
// rounding whatever the count, at double speed (long double costs four times as much).
struct CompensatedSum {
  double sum = 0.0, carry = 0.0;
  void add(double x) {
    const double t = sum + x;
    carry += std::fabs(sum) >= std::fabs(x) ? (sum - t) + x : (x - t) + sum;
    sum = t;
  }
  [[nodiscard]] double value() const { return sum + carry; }
};

struct OneWaySums {
  double between, within, total;
};

// The sums of squares of N values in k groups: group[i] is the group of value i,
// count[g] > 0 the size of group g. Two passes: the sums give first means m0;
// the second accumulates d = x - m0 and d^2, and sum (x - m)^2 = sum d^2 - (sum d)^2 / n
// around the refined mean m = m0 + sum d / n (the corrected two-pass algorithm,
// Chan, Golub and LeVeque 1983).
template <class T>
OneWaySums oneWaySums(const TDenseKalpa& Data, int N, const std::vector<int>& group,
                      const std::vector<int>& count) {
  const std::size_t k = count.size();
  const T shift = element<T>(Data, 0);
  auto x = [&](int i) { return element<T>(Data, i) - shift; };
  std::vector<T> sum(k, T(0)), dev(k, T(0));
  std::vector<CompensatedSum> dev2(k);
  T grandSum(0);
  T grandDev(0);
  CompensatedSum grandDev2;
  for (int i = 0; i < N; ++i) sum[group[i]] += x(i);
  std::vector<T> m(k);
  for (std::size_t g = 0; g < k; ++g) m[g] = sum[g] / double(count[g]), grandSum += sum[g];
  const T grand0 = grandSum / double(N);
  for (int i = 0; i < N; ++i) {
    const T xi = x(i), d = xi - m[group[i]], e = xi - grand0;
    dev[group[i]] += d, dev2[group[i]].add(sq(d)), grandDev += e, grandDev2.add(sq(e));
  }
  long double between = 0, within = 0;
  const T grand = grand0 + grandDev / double(N);
  for (std::size_t g = 0; g < k; ++g) {
    within += dev2[g].value() - sq(dev[g]) / count[g];
    m[g] += dev[g] / double(count[g]);
    between += count[g] * static_cast<long double>(sq(m[g] - grand));
  }
  const double total = grandDev2.value() - sq(grandDev) / N;
  return {static_cast<double>(between), static_cast<double>(within), static_cast<double>(total)};
}

// F of an effect against the error and its upper tail. An exactly zero sum of
// squares of the effect (checked first when zeroEffectFirst) or of the error
// decides without dividing.
void effectTest(double ss, int df, double ssE, int dfE, bool zeroEffectFirst, double& F, double& signif) {
  if ((zeroEffectFirst || ssE == 0.0) && ss == 0.0) {
    F = 0.0, signif = 1.0;
  } else if (ssE == 0.0) {
    F = INF, signif = 0.0;
  } else {
    F = (ss / df) / (ssE / dfE);
    signif = FCDFc(F, df, dfE);
  }
}

template <class T>
TANOVA1Table oneWay(const TDenseKalpa& Data, int N, const std::vector<int>& group,
                    const std::vector<int>& count, double& Signif, double Alpha) {
  const OneWaySums s = oneWaySums<T>(Data, N, group, count);
  return detail::OneWayTable(s.between, s.within, s.total, N, static_cast<int>(count.size()), Signif, Alpha);
}

TANOVA1Table dispatchOneWay(const TDenseKalpa& Data, int N, const std::vector<int>& group,
                            const std::vector<int>& count, double& Signif, double Alpha) {
  return Data.Complex() ? oneWay<TCplx>(Data, N, group, count, Signif, Alpha)
                        : oneWay<double>(Data, N, group, count, Signif, Alpha);
}

}  // namespace

TANOVA1Table detail::OneWayTable(double between, double within, double total, int N, int k, double& Signif,
                                 double Alpha) {
  const int dfB = k - 1, dfW = N - k;
  TANOVA1Table t{};
  t[0] = between, t[1] = within, t[2] = total;
  t[3] = dfB, t[4] = dfW, t[5] = double(dfB) + dfW;
  t[6] = between / dfB, t[7] = within / dfW;
  effectTest(between, dfB, within, dfW, true, t[8], Signif);
  t[9] = FCDFInv(1.0 - Alpha, dfB, dfW);
  return t;
}

TANOVA1Table ANOVA1(const TMtx& Data, double& Signif, double Alpha) {
  return core::Guarded("ANOVA1 : ", [&] {
    const int r = Data.Rows(), c = Data.Cols(), N = r * c;
    if (N == 0) {
      // No observation: every mean is 0/0.
      Signif = NAN;
      TANOVA1Table t;
      t.fill(NAN);
      return t;
    }
    std::vector<int> group(static_cast<std::size_t>(N)), count(static_cast<std::size_t>(c), r);
    for (int i = 0; i < N; ++i) group[i] = i % c;
    return dispatchOneWay(Data, N, group, count, Signif, Alpha);
  });
}

TANOVA1Table ANOVA1(const TVec& Data, const TVec& GroupIndex, double& Signif, double Alpha) {
  if (Data.Length() != GroupIndex.Length()) ERaise("ANOVA1: Data.Length <> GroupIndex.Length");
  if (GroupIndex.Complex()) ERaise("ANOVA1: GroupIndex.Complex = true");
  const int N = Data.Length();
  const double* gi = GroupIndex.data();
  double largest = -1.0;
  for (int i = 0; i < N; ++i) {
    if (!std::isfinite(gi[i]) || gi[i] < 0.0) ERaise("ANOVA1: GroupIndex must be finite and >= 0");
    largest = std::max(largest, gi[i]);
  }
  // k + 1 groups among N values: more groups than values leaves one empty (checked before converting).
  if (largest >= N) ERaise("ANOVA1: empty group");
  const int k = static_cast<int>(largest);
  std::vector<int> group(static_cast<std::size_t>(N)), count(static_cast<std::size_t>(k + 1), 0);
  for (int i = 0; i < N; ++i) ++count[group[i] = static_cast<int>(gi[i])];
  for (int n : count)
    if (n == 0) ERaise("ANOVA1: empty group");
  if (k < 1) ERaise("ANOVA1: fewer than two groups");
  return core::Guarded("ANOVA1 : ", [&] { return dispatchOneWay(Data, N, group, count, Signif, Alpha); });
}

TANOVA2Table ANOVA2(const TMtx& Data, double& SignifRows, double& SignifCols, double& SignifInteract,
                    int Replications, double Alpha) {
  const int r = Replications;
  if (r != 0 && Data.Rows() % r != 0) ERaise("ANOVA2: (Data.Rows mod Replications) <> 0");
  if (r <= 0) ERaise("ANOVA2: Replications <= 0");
  if (Data.Complex()) ERaise("ANOVA2: Data.Complex = true");
  return core::Guarded("ANOVA2 : ", [&] {
    const int a = Data.Rows() / r, b = Data.Cols();
    const double* d = Data.data();
    const double shift = a * b > 0 ? d[0] : 0.0;
    auto x = [&](int row, int col) { return d[static_cast<std::ptrdiff_t>(row) * b + col] - shift; };
    // Cell means from the sums, then one pass over the rows in storage order for
    // the deviations from them and from the grand mean (corrected two-pass sums).
    // Every accumulator belongs to one column, so the inner loops run in SIMD lanes.
    std::vector<double> M(static_cast<std::size_t>(a) * b, 0.0), acc(static_cast<std::size_t>(b));
    for (int i = 0; i < a; ++i) {
      std::fill(acc.begin(), acc.end(), 0.0);
      for (int t = 0; t < r; ++t)
        for (int j = 0; j < b; ++j) acc[j] += x(i * r + t, j);
      for (int j = 0; j < b; ++j) M[static_cast<std::size_t>(i) * b + j] = acc[j] / r;
    }
    double g0 = 0.0;
    for (double m : M) g0 += m / (double(a) * b);
    std::vector<double> d2(static_cast<std::size_t>(b), 0.0), e1(d2), e2(d2);
    long double corrWithin = 0;
    for (int i = 0; i < a; ++i) {
      std::fill(acc.begin(), acc.end(), 0.0);
      double* m = M.data() + static_cast<std::size_t>(i) * b;
      for (int t = 0; t < r; ++t) {
        const double* row = d + static_cast<std::ptrdiff_t>(i * r + t) * b;
        for (int j = 0; j < b; ++j) {
          const double xv = row[j] - shift, dv = xv - m[j], ev = xv - g0;
          acc[j] += dv, d2[j] += dv * dv, e1[j] += ev, e2[j] += ev * ev;
        }
      }
      for (int j = 0; j < b; ++j) corrWithin += acc[j] * acc[j] / r, m[j] += acc[j] / r;
    }
    long double ssWithin = -corrWithin, ssT = 0, devT = 0;
    for (int j = 0; j < b; ++j) ssWithin += d2[j], ssT += e2[j], devT += e1[j];
    auto cell = [&](int i, int j) { return M[static_cast<std::size_t>(i) * b + j]; };
    std::vector<double> u(static_cast<std::size_t>(a), 0.0), v(static_cast<std::size_t>(b), 0.0);
    for (int i = 0; i < a; ++i)
      for (int j = 0; j < b; ++j) u[i] += cell(i, j) / b, v[j] += cell(i, j) / a;
    double g = 0.0;
    for (int j = 0; j < b; ++j) g += v[j] / b;
    // sum (x - g)^2 from the sums around g0.
    const long double N = static_cast<long double>(a) * r * b, shiftG = static_cast<long double>(g) - g0;
    ssT += -2 * shiftG * devT + N * shiftG * shiftG;
    long double ssR = 0, ssC = 0, ssCells = 0;
    for (int i = 0; i < a; ++i) ssR += sq(u[i] - g);
    for (int j = 0; j < b; ++j) ssC += sq(v[j] - g);
    for (int i = 0; i < a; ++i)
      for (int j = 0; j < b; ++j) ssCells += sq(cell(i, j) - u[i] - v[j] + g);
    ssR *= double(b) * r, ssC *= double(a) * r, ssCells *= r;
    const bool replicated = r > 1;
    const int dfR = a - 1, dfC = b - 1, dfI = (a - 1) * (b - 1), dfE = replicated ? (r - 1) * a * b : dfI;
    const double ssE = static_cast<double>(replicated ? ssWithin : ssCells);
    const double ssI = replicated ? static_cast<double>(ssCells) : NAN;
    TANOVA2Table t;
    t.fill(NAN);
    t[0] = static_cast<double>(ssR), t[1] = static_cast<double>(ssC), t[2] = ssI, t[3] = ssE;
    t[4] = static_cast<double>(ssT);
    t[5] = dfR, t[6] = dfC, t[8] = dfE, t[9] = double(a) * r * b - 1.0;
    t[10] = t[0] / dfR, t[11] = t[1] / dfC, t[13] = ssE / dfE;
    effectTest(t[0], dfR, ssE, dfE, false, t[14], SignifRows);
    effectTest(t[1], dfC, ssE, dfE, false, t[15], SignifCols);
    t[17] = FCDFInv(1.0 - Alpha, dfR, dfE);
    t[18] = FCDFInv(1.0 - Alpha, dfC, dfE);
    if (replicated) {
      t[7] = dfI, t[12] = ssI / dfI;
      effectTest(ssI, dfI, ssE, dfE, false, t[16], SignifInteract);
      t[19] = FCDFInv(1.0 - Alpha, dfI, dfE);
    }
    return t;
  });
}

}  // namespace statkit::Regress
