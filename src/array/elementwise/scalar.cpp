// Scalar functions of the array layer and the process-wide uniform generator.
//
// The process-wide generator is SplitMix64 (Steele, Lea and Flood, "Fast
// splittable pseudorandom number generators", OOPSLA 2014): its whole state
// is one 64-bit counter, so an atomic fetch-add makes it thread-safe without
// a lock, and every call is one mix of the counter.

#include <atomic>
#include <cfenv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

#include "statkit/array/Errors.h"
#include "statkit/array/Math.h"
#include "statkit/array/Random.h"

namespace statkit {

bool Equal(double a, double b) {
  if (a == b) return true;
  constexpr double tol = 4.0 * std::numeric_limits<double>::epsilon();
  // An infinity equals only itself: against it the relative bound would be inf <= inf.
  const double d = std::fabs(a - b);
  return d <= tol * std::fmax(std::fabs(a), std::fabs(b)) && d != INF;  // false for NaN
}

namespace {
// A double that converts to int without undefined behaviour, or "Integer overflow".
int toInt(double v) {
  if (!(v >= -2147483648.0 && v <= 2147483647.0)) ERaise(msg::IntegerOverflow);
  return static_cast<int>(v);
}
}  // namespace

int Floor(double x) { return toInt(std::floor(x)); }
int Ceil(double x) { return toInt(std::ceil(x)); }

int TruncAndFrac(double x, double& Frac) {
  double whole = std::trunc(x);
  int i = toInt(whole);
  Frac = x - whole;
  return i;
}

int aRound(double x) {
  double r = std::round(x);  // halves away from zero
  if (std::fabs(x - std::trunc(x)) == 0.5) r = 2.0 * std::round(x / 2.0);  // halves to even
  return toInt(r);
}

double Gamma(double x) { return std::tgamma(x); }

double IntPower(double Base, int Exponent) {
  long long n = Exponent;
  bool invert = n < 0;
  unsigned long long e = static_cast<unsigned long long>(invert ? -n : n);
  double result = 1.0, b = Base;
  while (e) {
    if (e & 1) result *= b;
    b *= b;
    e >>= 1;
  }
  return invert ? 1.0 / result : result;
}

int SetRoundToTrunc() {
  int saved = std::fegetround();
  std::fesetround(FE_TOWARDZERO);
  return saved;
}

void RestoreRound(int Saved) { std::fesetround(Saved); }

// --- the process-wide generator ----------------------------------------------

namespace {
constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15ull;
constexpr std::uint64_t kStartState = 0x5EED5EED5EED5EEDull;
std::atomic<std::uint64_t> processState{kStartState};

std::uint64_t splitMix64(std::uint64_t z) {
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}
}  // namespace

double Random() {
  std::uint64_t z = processState.fetch_add(kGolden, std::memory_order_relaxed) + kGolden;
  return static_cast<double>(splitMix64(z) >> 11) * 0x1.0p-53;  // 53 random bits in [0, 1)
}

void RandSeed(std::uint32_t Seed) { processState.store(splitMix64(Seed), std::memory_order_relaxed); }

void Randomize() {
  auto ticks = std::chrono::high_resolution_clock::now().time_since_epoch().count();
  processState.store(splitMix64(static_cast<std::uint64_t>(ticks)), std::memory_order_relaxed);
}

}  // namespace statkit
