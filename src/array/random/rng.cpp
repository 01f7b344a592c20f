// Generators of independent Philox4x32-10 streams and the continuous laws of
// a stream: uniform, normal (ziggurat or Box-Muller), exponential, Cauchy,
// Laplace, Rayleigh, Weibull and triangular, the last six by inversion, and
// gamma (Marsaglia and Tsang).
// Seeds come from the process-wide generator, one draw per generator.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "array/checks.h"
#include "array/random/philox.h"
#include "array/random/rng_samplers.h"
#include "statkit/array/Errors.h"
#include "statkit/array/Random.h"

namespace statkit {

using rng::BitSource;

// --- seeds ----------------------------------------------------------------------------

int SeedFromUniform(double U) {
  double x = U * 4294967295.0;
  if (!(U >= 0.0 && U < 1.0)) ERaise(msg::InvalidParameter);
  double r = std::floor(x);
  double frac = x - r;
  if (frac > 0.5 || (frac == 0.5 && std::fmod(r, 2.0) != 0.0)) r += 1.0;  // halves to even
  auto bits = static_cast<std::uint32_t>(r);
  return static_cast<int>(bits);  // modular: values from 2^31 on become negative
}

int NextSeed() { return SeedFromUniform(Random()); }

// --- generator ------------------------------------------------------------------------

TRandomGenerator::TRandomGenerator() = default;
TRandomGenerator::~TRandomGenerator() = default;

void TRandomGenerator::SetStreamIndependence(TRngStreamIndependence Independence) {
  if (Independence > siDistinctKeys) ERaise(msg::InvalidParameter);
  if (Independence == siSingleStream && count_ > 1) ERaise(msg::InvalidParameter);
  independence_ = Independence;
  Restart();
}

void TRandomGenerator::SetStreamCount(int Count) {
  if (Count < 1 || (independence_ == siSingleStream && Count > 1)) ERaise(msg::InvalidParameter);
  count_ = Count;
  Restart();
}

void TRandomGenerator::Init(TBasicRandomGenerator Generator, int Seed) {
  if (Generator != rgPhilox4x32) ERaise(msg::GeneratorNotSupported);
  seed_ = static_cast<std::uint32_t>(Seed);
  Restart();
}

TRngStream& TRandomGenerator::GetStream(int Index) {
  if (Index < 0 || Index >= count_) ERaise(msg::IndexOutOfRange);
  // Streams are made on first request, so that a large stream count costs
  // nothing until its streams are used; the lock lets threads ask at once.
  std::lock_guard<std::mutex> lock(streamsLock_);
  auto it = streams_.find(Index);
  if (it != streams_.end()) return *it->second;
  return detail::RaisingOutOfMemory([&]() -> TRngStream& {
    std::unique_ptr<TRngStream> s(new TRngStream());
    Place(*s, Index);
    return *streams_.emplace(Index, std::move(s)).first->second;
  });
}

void TRandomGenerator::Restart() {
  for (auto& [index, s] : streams_) Place(*s, index);
}

// Distinct keys: the key is (seed, stream index), the counter starts at 0;
// Philox under two keys is two unrelated bijections (Salmon et al. 2011, 2.2).
// Skip-ahead: one key, stream i owns the blocks from i * 2^64 on.
void TRandomGenerator::Place(TRngStream& s, int index) const {
  auto i = static_cast<std::uint32_t>(index);
  s.key_[0] = seed_;
  s.key_[1] = independence_ == siDistinctKeys ? i : 0u;
  s.counter_[0] = 0;
  s.counter_[1] = independence_ == siSkipAhead ? i : 0u;
}

// --- shared checks ------------------------------------------------------------------

namespace {
bool finite(double x) { return std::isfinite(x); }
// A location and a scale: both finite, the scale >= 0 (0: the location itself).
void requireLocationScale(double location, double scale) {
  rng::Require(finite(location) && finite(scale) && scale >= 0.0);
}
}  // namespace

// --- tables of the samplers ---------------------------------------------------------

namespace rng {

const ZigguratTables& Ziggurat() {
  static const ZigguratTables tables = [] {
    ZigguratTables t{};
    constexpr double r = ZigguratTables::kR;
    auto f = [](double x) { return std::exp(-0.5 * x * x); };
    // Every layer has the area v of the base layer: the rectangle [0, r] x [0, f(r)] plus the tail.
    double v = r * f(r) + std::sqrt(std::acos(-1.0) / 2.0) * std::erfc(r / std::sqrt(2.0));
    t.x[0] = v / f(r);  // the base layer as a rectangle of the same area
    t.x[1] = r;
    for (int i = 1; i < 255; ++i) t.x[i + 1] = std::sqrt(-2.0 * std::log(v / t.x[i] + f(t.x[i])));
    t.x[256] = 0.0;
    for (int i = 0; i <= 256; ++i) t.f[i] = f(t.x[i]);
    t.f[256] = 1.0;
    for (int i = 0; i < 256; ++i) {
      t.scale[i] = t.x[i] * 0x1.0p-52;
      t.inner[i] = static_cast<std::uint64_t>(std::floor(t.x[i + 1] / t.x[i] * 0x1.0p52));
    }
    return t;
  }();
  return tables;
}

double NormalZigguratSlow(BitSource& bits, const ZigguratTables& t, std::uint64_t w) {
  for (;;) {
    unsigned i = static_cast<unsigned>(w & 0xFF);
    bool negative = (w >> 8) & 1;
    std::uint64_t j = w >> 12;
    double x = static_cast<double>(j) * t.scale[i];
    if (j < t.inner[i]) return negative ? -x : x;
    if (i == 0) {
      x = NormalTail(bits, ZigguratTables::kR);
      return negative ? -x : x;
    }
    // The wedge between the inner rectangle and the curve: a uniform height in the layer.
    double y = t.f[i] + bits.U01() * (t.f[i + 1] - t.f[i]);
    if (y < std::exp(-0.5 * x * x)) return negative ? -x : x;
    w = bits.Next64();
  }
}

double StirlingRemainder(double k) {
  static const std::array<double, 16> small = [] {
    std::array<double, 16> r{};
    double factorial = 1.0;  // exact in double up to 22!
    for (int i = 0; i < 16; ++i) {
      if (i > 0) factorial *= i;
      double n = i + 1.0;
      r[static_cast<std::size_t>(i)] = std::log(factorial) - ((n - 0.5) * std::log(n) - n + kLogSqrt2Pi);
    }
    return r;
  }();
  if (k < 16.0) return small[static_cast<std::size_t>(k)];
  double n = k + 1.0, n2 = 1.0 / (n * n);
  // Bernoulli terms B_2j / (2j (2j - 1) n^(2j - 1)), j = 1..6.
  return (1.0 / 12 -
          n2 * (1.0 / 360 - n2 * (1.0 / 1260 - n2 * (1.0 / 1680 - n2 * (1.0 / 1188 - n2 * (691.0 / 360360)))))) /
         n;
}

}  // namespace rng

// --- continuous laws ---------------------------------------------------------------

void TRngStream::RandomBits(std::span<std::uint32_t> Dst) {
  BitSource bits(key_, counter_);
  bits.Words(Dst.data(), Dst.size());
}

void TRngStream::RandomUniform(TKalpa& Dst, double Low, double High) {
  double* out = rng::RealDestination(Dst);
  rng::Require(finite(Low) && finite(High) && Low <= High);
  double width = High - Low;
  rng::Require(finite(width));
  std::size_t n = static_cast<std::size_t>(Dst.Length());
  BitSource bits(key_, counter_);
  // Words in batches that stay in the first-level cache, 53 bits per value.
  constexpr std::size_t kBatch = 1024;
  std::uint32_t words[2 * kBatch];
  for (std::size_t done = 0; done < n;) {
    std::size_t m = std::min(kBatch, n - done);
    bits.Words(words, 2 * m);
    double* o = out + done;
    for (std::size_t i = 0; i < m; ++i)
      o[i] = Low + width * rng::Uniform53(words[2 * i] | (static_cast<std::uint64_t>(words[2 * i + 1]) << 32));
    done += m;
  }
}

void TRngStream::RandomGaussian(TKalpa& Dst, double Mu, double Sigma, TGaussRandMethod Method) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(Mu, Sigma);
  rng::Require(Method == gmZiggurat || Method == gmBoxMuller);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  if (Method == gmZiggurat) {
    const auto& t = rng::Ziggurat();
    for (int i = 0; i < n; ++i) out[i] = Mu + Sigma * rng::NormalZiggurat(bits, t);
    return;
  }
  // Box and Muller (1958): a pair of normals from a pair of uniforms.
  constexpr double twoPi = 6.283185307179586477;
  for (int i = 0; i < n; i += 2) {
    double radius = std::sqrt(-2.0 * std::log(bits.U01Pos()));
    double angle = twoPi * bits.U01();
    out[i] = Mu + Sigma * (radius * std::cos(angle));
    if (i + 1 < n) out[i + 1] = Mu + Sigma * (radius * std::sin(angle));
  }
}

void TRngStream::RandomExponential(TKalpa& Dst, double A, double Beta) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(A, Beta);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  for (int i = 0; i < n; ++i) out[i] = A - Beta * std::log(bits.U01Pos());
}

void TRngStream::RandomCauchy(TKalpa& Dst, double A, double B) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(A, B);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  constexpr double pi = 3.141592653589793238;
  // Inversion on the symmetric open interval: tan(pi (u - 1/2)) is finite.
  for (int i = 0; i < n; ++i) out[i] = A + B * std::tan(pi * (bits.U01Open() - 0.5));
}

void TRngStream::RandomLaplace(TKalpa& Dst, double A, double B) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(A, B);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  // An exponential with a random sign: one 64-bit word gives the sign and 52 bits of the magnitude.
  for (int i = 0; i < n; ++i) {
    std::uint64_t w = bits.Next64();
    double e = -std::log(1.0 - static_cast<double>(w >> 12) * 0x1.0p-52);
    out[i] = A + B * rng::WithSignBit(e, w & 1);
  }
}

void TRngStream::RandomRayleigh(TKalpa& Dst, double A, double Beta) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(A, Beta);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  for (int i = 0; i < n; ++i) out[i] = A + Beta * std::sqrt(-std::log(bits.U01Pos()));
}

void TRngStream::RandomWeibull(TKalpa& Dst, double Alpha, double A, double Beta) {
  double* out = rng::RealDestination(Dst);
  requireLocationScale(A, Beta);
  rng::Require(finite(Alpha) && Alpha > 0.0);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  if (Beta == 0.0) {  // the location, also where E^(1/Alpha) overflows (0 x Inf)
    for (int i = 0; i < n; ++i) out[i] = A;
    return;
  }
  const double inverseShape = 1.0 / Alpha, logScale = std::log(Beta);
  for (int i = 0; i < n; ++i) {
    double e = -std::log(bits.U01Pos());
    double p = std::pow(e, inverseShape);
    // Where E^(1/Alpha) overflows or underflows, Beta E^(1/Alpha) may not: its
    // logarithm is a sum of finite terms, or -INF.
    double x = p >= std::numeric_limits<double>::min() && p <= std::numeric_limits<double>::max()
                   ? Beta * p
                   : std::exp(logScale + std::log(e) * inverseShape);
    out[i] = A + x;
  }
}

void TRngStream::RandomGamma(TKalpa& Dst, double Shape, double Scale) {
  double* out = rng::RealDestination(Dst);
  rng::Require(finite(Shape) && Shape > 0.0);
  requireLocationScale(0.0, Scale);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  const auto& t = rng::Ziggurat();
  rng::GammaMT gamma(Shape);
  for (int i = 0; i < n; ++i) out[i] = Scale * gamma(bits, t);
}

void TRngStream::RandomLogGamma(TKalpa& Dst, double Shape) {
  double* out = rng::RealDestination(Dst);
  rng::Require(finite(Shape) && Shape > 0.0);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  const auto& t = rng::Ziggurat();
  rng::GammaMT gamma(Shape);
  for (int i = 0; i < n; ++i) out[i] = gamma.Log(bits, t);
}

void TRngStream::RandomTriangular(TKalpa& Dst, double A, double B, double C) {
  double* out = rng::RealDestination(Dst);
  rng::Require(finite(A) && finite(B) && finite(C) && A <= C && C <= B);
  int n = Dst.Length();
  BitSource bits(key_, counter_);
  if (A == B) {
    for (int i = 0; i < n; ++i) out[i] = A;
    return;
  }
  // Where B - A overflows, the law is drawn on [A/2, B/2] and doubled (halving
  // is exact at such magnitudes, and doubling a point of [A/2, B/2] cannot overflow).
  const double s = finite(B - A) ? 1.0 : 0.5;
  const double a = A * s, b = B * s, c = C * s, width = b - a;
  // F(x) = (x - a)^2 / ((b - a)(c - a)) up to the mode, 1 - (b - x)^2 / ((b - a)(b - c)) above;
  // the products under the roots are taken as products of roots, which cannot overflow.
  const double split = (c - a) / width;
  const double rise = std::sqrt(width) * std::sqrt(c - a), fall = std::sqrt(width) * std::sqrt(b - c);
  for (int i = 0; i < n; ++i) {
    double u = bits.U01();
    out[i] = (u < split ? a + rise * std::sqrt(u) : b - fall * std::sqrt(1.0 - u)) / s;
  }
}

// --- the process-wide default generator of TKalpa ----------------------------------

void TKalpa::RandGauss(double Mu, double Sigma) {
  if (Complex()) ERaise(msg::ComplexNotSupported);
  TRandomGenerator generator;
  generator.Init(rgPhilox4x32, NextSeed());
  generator.GetStream(0).RandomGaussian(*this, Mu, Sigma, gmZiggurat);
}

}  // namespace statkit
