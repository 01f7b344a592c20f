// Random streams: Philox4x32-10 against its authors' known answers, every
// batch kernel against the one-block function, the layout of keys and
// counters, seeds, reproducibility, streams used on several threads, refused
// parameters and laws at huge parameters (the goodness of fit of every stream
// law is checked with the random variates).

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

#include "array/random/philox.h"
#include "statkit/Array.h"
#include "support/expect.h"

namespace statkit {
namespace {

using Block = std::array<std::uint32_t, 4>;

Block philox(Block ctr, std::array<std::uint32_t, 2> key) {
  Block out;
  rng::PhiloxBlock(ctr.data(), key.data(), out.data());
  return out;
}

// Salmon, Moraes, Dror and Shaw's known-answer vectors for Philox4x32-10
// (counter, key, output), as published with their reference implementation.
TEST(Philox, ReproducesPublishedKnownAnswers) {
  struct Kat {
    Block ctr;
    std::array<std::uint32_t, 2> key;
    Block out;
  } table[] = {
      {{0, 0, 0, 0}, {0, 0}, {0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}},
      {{0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff},
       {0xffffffff, 0xffffffff},
       {0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}},
      {{0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344},
       {0xa4093822, 0x299f31d0},
       {0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}},
  };
  for (const auto& k : table) EXPECT_EQ(philox(k.ctr, k.key), k.out);
}

// Each batch kernel keeps its own counters: a carry out of the low 32 or 64
// bits, or a batch that ends inside a group of lanes, would show here.
TEST(Philox, EveryBatchKernelMatchesTheOneBlockFunction) {
  struct Start {
    std::uint64_t lo, hi;
    std::size_t blocks;
  } starts[] = {
      {0, 0, 1}, {0, 0, 77}, {0xFFFFFFF0ull, 5, 40}, {0xFFFFFFFFFFFFFFF5ull, 0x1234, 45},
      {0xFFFFFFFFFFFFFFFFull, 0xFFFFFFFFFFFFFFFFull, 33},
  };
  const std::uint32_t key[2] = {0xDEADBEEF, 7};
  for (auto kernel : {rng::PhiloxKernel::Portable, rng::PhiloxKernel::Avx2, rng::PhiloxKernel::Avx512}) {
    if (!rng::PhiloxKernelAvailable(kernel)) continue;
    for (const auto& s : starts) {
      SCOPED_TRACE(::testing::Message() << "kernel " << int(kernel) << " from " << s.lo);
      std::vector<std::uint32_t> out(4 * s.blocks);
      rng::PhiloxBlocksWith(kernel, key, s.lo, s.hi, out.data(), s.blocks);
      for (std::size_t b = 0; b < s.blocks; ++b) {
        std::uint64_t lo = s.lo + b, hi = s.hi + (lo < s.lo ? 1 : 0);
        Block ctr = {std::uint32_t(lo), std::uint32_t(lo >> 32), std::uint32_t(hi), std::uint32_t(hi >> 32)};
        Block expect = philox(ctr, {key[0], key[1]});
        ASSERT_EQ((Block{out[4 * b], out[4 * b + 1], out[4 * b + 2], out[4 * b + 3]}), expect) << "block " << b;
      }
    }
  }
}

// Distinct keys: stream i has key (seed, i) and counts from 0; skip-ahead: key
// (seed, 0) and stream i counts from i 2^64; stream 0 is the same in every mode.
// A fill starts at the block after the last one the previous fill touched,
// whether the previous fill ended inside a block, inside a chunk or exactly at
// the end of one; an empty fill (no storage at all) touches none.
TEST(RandomStreams, KeysCountersAndTheBlockEachFillStartsAt) {
  struct Case {
    TRngStreamIndependence mode;
    int stream, seed;
    std::size_t first;  // words of a previous fill
    std::array<std::uint32_t, 2> key;
    std::uint32_t ctrHigh;
  } table[] = {
      {siDistinctKeys, 0, 12345, 0, {12345, 0}, 0},     {siDistinctKeys, 3, 12345, 0, {12345, 3}, 0},
      {siSkipAhead, 0, 12345, 0, {12345, 0}, 0},        {siSkipAhead, 3, 12345, 0, {12345, 0}, 3},
      {siSingleStream, 0, 12345, 0, {12345, 0}, 0},     {siDistinctKeys, 0, -7, 1, {0xFFFFFFF9u, 0}, 0},
      {siDistinctKeys, 0, -7, 4, {0xFFFFFFF9u, 0}, 0},  {siDistinctKeys, 0, -7, 5, {0xFFFFFFF9u, 0}, 0},
      {siDistinctKeys, 0, -7, 63, {0xFFFFFFF9u, 0}, 0}, {siDistinctKeys, 0, -7, 1024, {0xFFFFFFF9u, 0}, 0},
      {siSkipAhead, 3, -7, 1030, {0xFFFFFFF9u, 0}, 3},  {siDistinctKeys, 0, -7, 70001, {0xFFFFFFF9u, 0}, 0},
  };
  for (const auto& t : table) {
    SCOPED_TRACE(::testing::Message() << int(t.mode) << " stream " << t.stream << " after " << t.first);
    TRandomGenerator g;
    g.SetStreamIndependence(t.mode);
    g.SetStreamCount(t.mode == siSingleStream ? 1 : 4);
    g.Init(rgPhilox4x32, t.seed);
    TRngStream& s = g.GetStream(t.stream);
    EXPECT_EQ(s.Key(), t.key);
    std::vector<std::uint32_t> previous(t.first), words(8);
    s.RandomBits(previous);
    s.RandomBits(words);
    for (std::uint32_t b = 0; b < 2; ++b) {
      Block expect = philox({std::uint32_t((t.first + 3) / 4) + b, 0, t.ctrHigh, 0}, t.key);
      EXPECT_EQ((Block{words[4 * b], words[4 * b + 1], words[4 * b + 2], words[4 * b + 3]}), expect);
    }
  }
}

TEST(RandomStreams, SeedIsTheDrawRoundedHalfToEvenAsSigned) {
  struct Case {
    double u;
    int seed;
  } table[] = {
      {0.0, 0},
      {1.0 / 4294967295.0, 1},
      {0.25, 1073741824},                       // 1073741823.75 rounds up
      {1.5 / 4294967295.0, 2},                  // a half goes to the even neighbour
      {2.5 / 4294967295.0, 2},
      {0.5, std::numeric_limits<int>::min()},   // 2147483647.5 -> 2^31, reinterpreted
      {1.0 - 0x1.0p-53, -1},                    // 4294967295 -> -1
  };
  for (const auto& t : table) EXPECT_EQ(SeedFromUniform(t.u), t.seed) << t.u;
  EXPECT_RAISES(SeedFromUniform(1.0), "Invalid parameter");
  EXPECT_RAISES(SeedFromUniform(NAN), "Invalid parameter");
  RandSeed(3);
  double u = Random();
  RandSeed(3);
  EXPECT_EQ(NextSeed(), SeedFromUniform(u));
}

TEST(RandomStreams, ReproducibleAndRestartedByInitAndByResizing) {
  auto draw = [](TRandomGenerator& g, int stream) {
    TVec v;
    v.Size(100);
    g.GetStream(stream).RandomUniform(v, 0, 1);
    return std::vector<double>(v.begin(), v.end());
  };
  TRandomGenerator a, b;
  a.SetStreamCount(3);
  b.SetStreamCount(3);
  a.Init(rgPhilox4x32, 99);
  b.Init(rgPhilox4x32, 99);
  auto first = draw(a, 2);
  EXPECT_EQ(first, draw(b, 2));
  EXPECT_NE(first, draw(a, 2)) << "a stream moves on";
  EXPECT_NE(first, draw(a, 1)) << "streams differ";
  a.Init(rgPhilox4x32, 99);
  EXPECT_EQ(first, draw(a, 2)) << "Init restarts";
  draw(a, 2);
  a.SetStreamCount(4);
  EXPECT_EQ(first, draw(a, 2)) << "a new stream count restarts";
  TRandomGenerator fresh;  // unseeded: as Init(rgPhilox4x32, 0)
  TRandomGenerator zero;
  zero.Init(rgPhilox4x32, 0);
  EXPECT_EQ(draw(fresh, 0), draw(zero, 0));
}

TEST(RandomStreams, RefusedCallsRaiseTheArrayMessages) {
  TRandomGenerator g;
  g.SetStreamCount(2);
  TRngStream& s = g.GetStream(0);
  TVec v;
  v.Size(10);
  TVec c;
  c.Size(4, true);
  const double nan = NAN, big = std::numeric_limits<double>::max();
  const test::RaiseCase table[] = {
      {"Basic generator not supported", [&] { g.Init(rgReserved0, 1); }, "reserved generator 0"},
      {"Basic generator not supported", [&] { g.Init(rgReserved1, 1); }, "reserved generator 1"},
      {"Basic generator not supported", [&] { g.Init(TBasicRandomGenerator(3), 1); }, "unknown generator"},
      {"Invalid parameter", [&] { g.SetStreamCount(0); }, "no stream"},
      {"Invalid parameter", [&] { g.SetStreamIndependence(TRngStreamIndependence(3)); }, "unknown independence"},
      {"Invalid parameter", [&] { g.SetStreamIndependence(siSingleStream); }, "single stream of two"},
      {"Index out of range", [&] { g.GetStream(2); }, "stream past the count"},
      {"Index out of range", [&] { g.GetStream(-1); }, "negative stream"},
      {"Complex data not supported", [&] { s.RandomUniform(c, 0, 1); }, "complex destination"},
      {"Complex data not supported", [&] { c.RandGauss(0, 1); }, "complex RandGauss"},
      {"Invalid parameter", [&] { s.RandomUniform(v, 1, 0); }, "uniform reversed"},
      {"Invalid parameter", [&] { s.RandomUniform(v, nan, 1); }, "uniform NaN"},
      {"Invalid parameter", [&] { s.RandomUniform(v, -big, big); }, "uniform width overflows"},
      {"Invalid parameter", [&] { s.RandomGaussian(v, 0, -1); }, "gaussian negative sigma"},
      {"Invalid parameter", [&] { s.RandomGaussian(v, 0, 1, TGaussRandMethod(7)); }, "gaussian unknown method"},
      {"Invalid parameter", [&] { s.RandomExponential(v, 0, INF); }, "exponential infinite scale"},
      {"Invalid parameter", [&] { s.RandomCauchy(v, 0, -1); }, "cauchy negative scale"},
      {"Invalid parameter", [&] { s.RandomLaplace(v, nan, 1); }, "laplace NaN location"},
      {"Invalid parameter", [&] { s.RandomRayleigh(v, 0, -1); }, "rayleigh negative scale"},
      {"Invalid parameter", [&] { s.RandomWeibull(v, 0, 0, 1); }, "weibull shape 0"},
      {"Invalid parameter", [&] { s.RandomTriangular(v, 0, 1, 2); }, "triangular mode above"},
      {"Invalid parameter", [&] { s.RandomGamma(v, 0, 1); }, "gamma shape 0"},
      {"Invalid parameter", [&] { s.RandomGamma(v, 2, -1); }, "gamma negative scale"},
      {"Invalid parameter", [&] { s.RandomLogGamma(v, nan); }, "log-gamma NaN shape"},
      {"Invalid parameter", [&] { s.RandomBinomial(v, -1, 0.5); }, "binomial negative trials"},
      {"Invalid parameter", [&] { s.RandomBinomial(v, 5, 1.5); }, "binomial p above 1"},
      {"Invalid parameter", [&] { s.RandomPoisson(v, -1); }, "poisson negative"},
      {"Invalid parameter", [&] { s.RandomPoisson(v, nan); }, "poisson NaN"},
      {"Invalid parameter", [&] { s.RandomPoisson(v, 2, TPoissonRandMethod(3)); }, "poisson unknown method"},
      {"Invalid parameter", [&] { s.RandomNegbinomial(v, 0, 0.5); }, "negbinomial r 0"},
      {"Invalid parameter", [&] { s.RandomNegbinomial(v, 2, 1.5); }, "negbinomial p above 1"},
      {"Invalid parameter", [&] { s.RandomHypergeometric(v, 5, 6, 1); }, "hypergeometric marked above"},
      {"Invalid parameter", [&] { s.RandomHypergeometric(v, 5, 1, 6); }, "hypergeometric sample above"},
      {"Invalid parameter", [&] { s.RandomHypergeometric(v, -1, 0, 0); }, "hypergeometric negative"},
  };
  test::ExpectEachRaises(table);
}

TEST(RandomStreams, RandGaussIsTheNormalOfOneSeededStream) {
  TVec a, b;
  a.Size(1000);
  b.Size(1000);
  RandSeed(41);
  a.RandGauss(2, 3);
  double next = Random();
  RandSeed(41);
  TRandomGenerator g;
  g.Init(rgPhilox4x32, NextSeed());
  g.GetStream(0).RandomGaussian(b, 2, 3, gmZiggurat);
  EXPECT_EQ(next, Random()) << "one process-wide draw";
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(a[i], b[i]);
}

// Streams of one generator, asked for and filled on four threads at once, give
// what they give alone: streams are made under the generator's lock, and the
// samplers share only tables that are built once and read.
TEST(RandomStreamsConcurrency, StreamsOfOneGeneratorMatchSequentialOnes) {
  auto work = [](TRandomGenerator& g, int stream, std::vector<double>& out) {
    TVec v;
    v.Size(20000);
    auto& s = g.GetStream(stream);
    out.clear();
    for (int k = 0; k < 6; ++k) {
      switch (k) {
        case 0: s.RandomGaussian(v, 0, 1); break;
        case 1: s.RandomPoisson(v, 250); break;
        case 2: s.RandomBinomial(v, 500, 0.3); break;
        case 3: s.RandomHypergeometric(v, 5000, 1200, 800); break;
        case 4: s.RandomGamma(v, 0.7, 2); break;
        default: s.RandomNegbinomial(v, 3.5, 0.2); break;
      }
      out.insert(out.end(), v.begin(), v.end());
    }
  };
  TRandomGenerator alone, shared;
  for (TRandomGenerator* g : {&alone, &shared}) g->SetStreamCount(4), g->Init(rgPhilox4x32, 1);
  std::vector<double> want[4], got[4];
  for (int i = 0; i < 4; ++i) work(alone, i, want[i]);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work, std::ref(shared), i, std::ref(got[i]));
  for (auto& t : threads) t.join();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(got[i], want[i]) << "stream " << i;
}

// Laws at parameters far beyond the fixture's: the mean and variance of 10^5
// draws within five standard errors (the laws are close to normal here, so
// the variance's standard error is sqrt(2/n) var).
TEST(RandomStreams, DiscreteLawsAtHugeParameters) {
  struct Case {
    const char* what;
    std::function<void(TRngStream&, TVec&)> fill;
    double mean, variance;
  } table[] = {
      {"binomial n = 2^31 - 1", [](TRngStream& s, TVec& v) { s.RandomBinomial(v, 2147483647, 0.5); },
       2147483647 * 0.5, 2147483647 * 0.25},
      {"binomial with p near 1", [](TRngStream& s, TVec& v) { s.RandomBinomial(v, 2000000000, 1 - 1e-6); },
       2e9 * (1 - 1e-6), 2e9 * (1 - 1e-6) * 1e-6},
      {"poisson 1e12", [](TRngStream& s, TVec& v) { s.RandomPoisson(v, 1e12); }, 1e12, 1e12},
      {"hypergeometric 2e9, 1e9, 1e6",
       [](TRngStream& s, TVec& v) { s.RandomHypergeometric(v, 2000000000, 1000000000, 1000000); }, 5e5,
       1e6 * 0.25 * (2e9 - 1e6) / (2e9 - 1)},
      {"negative binomial with a large mean", [](TRngStream& s, TVec& v) { s.RandomNegbinomial(v, 1e4, 1e-3); },
       1e4 * 0.999 / 1e-3, 1e4 * 0.999 / 1e-6},
  };
  const int n = 100000;
  for (const auto& t : table) {
    SCOPED_TRACE(t.what);
    TRandomGenerator g;
    g.Init(rgPhilox4x32, 17);
    TVec v;
    v.Size(n);
    t.fill(g.GetStream(0), v);
    double mean = v.Mean(), sd = v.StdDev();
    for (double x : v) ASSERT_EQ(x, std::floor(x));
    EXPECT_LE(std::fabs(mean - t.mean), 5 * std::sqrt(t.variance / n));
    EXPECT_LE(std::fabs(sd * sd - t.variance), 5 * std::sqrt(2.0 / n) * t.variance);
  }
}

}  // namespace
}  // namespace statkit
