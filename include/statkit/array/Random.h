#pragma once
// Random numbers: the process-wide uniform generator, which seeds every
// generator that the library creates, and counter-based generators with
// independent streams that fill vectors and matrices with variates.
//
// Threads: Random, RandSeed, Randomize and NextSeed may be called from any
// number of threads at once (the state is one atomic word, so every call takes
// its own draw and none is lost or repeated). The process-wide generator
// starts from a fixed state, so a program that never seeds it repeats its results.

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <memory>
#include <span>
#include <string_view>

#include "statkit/array/Config.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

/// \brief The next uniform value in [0, 1) of the process-wide generator.
STATKIT_API double Random();
/// \brief Seeds the process-wide generator.
STATKIT_API void RandSeed(std::uint32_t Seed);
/// \brief Seeds the process-wide generator from the clock.
STATKIT_API void Randomize();

/// \brief The seed of a new generator from one uniform \p U in [0, 1):
/// U * 4294967295 rounded half to even to an unsigned 32-bit value, reinterpreted as signed.
[[nodiscard]] STATKIT_API int SeedFromUniform(double U);
/// \brief A seed for a new generator: SeedFromUniform of one draw of the process-wide generator.
STATKIT_API int NextSeed();

/// \brief Basic generators. Only Philox4x32-10 (Salmon, Moraes, Dror and Shaw,
/// SC'11) is provided; ordinals 0 and 1 are reserved and raise
/// "Basic generator not supported".
enum TBasicRandomGenerator : std::uint8_t { rgReserved0, rgReserved1, rgPhilox4x32 };
inline constexpr std::array<std::string_view, 3> TBasicRandomGeneratorNames{"rgReserved0", "rgReserved1",
                                                                            "rgPhilox4x32"};

/// \brief How the streams of a generator are kept apart.
/// - siSingleStream: one stream only (a stream count above 1 raises "Invalid parameter");
/// - siSkipAhead: one key, stream i starts its counter at i * 2^64 blocks;
/// - siDistinctKeys: stream i has its own key (seed, i) and its counter starts at 0.
/// Stream 0 is the same sequence in every mode.
enum TRngStreamIndependence : std::uint8_t { siSingleStream, siSkipAhead, siDistinctKeys };
inline constexpr std::array<std::string_view, 3> TRngStreamIndependenceNames{"siSingleStream", "siSkipAhead",
                                                                             "siDistinctKeys"};

/// \brief Methods for normal variates: the ziggurat of Marsaglia and Tsang (2000)
/// with 256 layers and independent bits for layer, sign and abscissa (Doornik
/// 2005), or the Box-Muller transform (1958).
enum TGaussRandMethod : std::uint8_t { gmZiggurat, gmBoxMuller };
inline constexpr std::array<std::string_view, 2> TGaussRandMethodNames{"gmZiggurat", "gmBoxMuller"};

/// \brief Methods for Poisson variates: PTRS, the transformed rejection of
/// Hormann (1993), for means of 10 and above; inversion below.
enum TPoissonRandMethod : std::uint8_t { pmPTRS };
inline constexpr std::array<std::string_view, 1> TPoissonRandMethodNames{"pmPTRS"};

class TRandomGenerator;

/// \brief One stream of a generator: a Philox4x32-10 key and a 128-bit block counter.
///
/// Every fill writes Dst.Length() values in storage order and starts at a fresh
/// block, so the values of a call do not depend on how earlier calls ended.
/// A parameter outside the law's domain (NaN included) raises "Invalid
/// parameter"; complex destinations raise "Complex data not supported". A
/// scale of 0 gives the location in every element.
///
/// Threads: a stream is used by one thread at a time (a fill advances its
/// counter); distinct streams, of one generator or of several, may fill at the
/// same time, since the samplers share only tables that are built once and read.
class STATKIT_API TRngStream : public TObject {
public:
  TRngStream(const TRngStream&) = delete;
  TRngStream& operator=(const TRngStream&) = delete;

  /// \brief Uniform between \p Low and \p High (Low <= High, both finite).
  void RandomUniform(TKalpa& Dst, double Low, double High);
  /// \brief Normal with mean \p Mu and standard deviation \p Sigma >= 0.
  void RandomGaussian(TKalpa& Dst, double Mu, double Sigma, TGaussRandMethod Method = gmZiggurat);
  /// \brief Density exp(-(x - A)/Beta)/Beta for x >= A (mean A + Beta).
  void RandomExponential(TKalpa& Dst, double A, double Beta);
  /// \brief Density 1/(pi B (1 + ((x - A)/B)^2)).
  void RandomCauchy(TKalpa& Dst, double A, double B);
  /// \brief Density exp(-|x - A|/B)/(2 B).
  void RandomLaplace(TKalpa& Dst, double A, double B);
  /// \brief Rayleigh displaced by \p A with \p Beta > 0: density 2 (x - A)/Beta^2 exp(-((x - A)/Beta)^2)
  /// for x >= A. Beta is sqrt(2) times the scale b of Statistics::RandomRayleigh and RayleighCDF
  /// (density (x/b^2) exp(-x^2/(2 b^2))): A = 0, Beta = b sqrt(2) draws that law, mean b sqrt(pi/2).
  void RandomRayleigh(TKalpa& Dst, double A, double Beta);
  /// \brief Weibull with shape \p Alpha > 0, displacement \p A and scale \p Beta > 0: density
  /// (Alpha/Beta) ((x - A)/Beta)^(Alpha - 1) exp(-((x - A)/Beta)^Alpha) for x >= A. The law
  /// F(x) = 1 - exp(-a x^b) of Statistics::RandomWeibull and WeibullCDF is Alpha = b, A = 0,
  /// Beta = a^(-1/b).
  void RandomWeibull(TKalpa& Dst, double Alpha, double A, double Beta);
  /// \brief Gamma with shape \p Shape > 0 and scale \p Scale (Marsaglia and Tsang, ACM TOMS 2000).
  void RandomGamma(TKalpa& Dst, double Shape, double Scale);
  /// \brief The logarithms of gamma variates of shape \p Shape > 0 and scale 1: finite also
  /// where the variates underflow (shapes near 0), for ratios such as the beta's.
  void RandomLogGamma(TKalpa& Dst, double Shape);
  /// \brief Triangular law on [A, B] with mode C (A <= C <= B), by inversion.
  void RandomTriangular(TKalpa& Dst, double A, double B, double C);
  /// \brief Number of successes in \p Trials >= 0 trials of success probability \p P.
  void RandomBinomial(TKalpa& Dst, int Trials, double P);
  /// \brief Poisson with mean \p Lambda (0 <= Lambda <= 1e15).
  void RandomPoisson(TKalpa& Dst, double Lambda, TPoissonRandMethod Method = pmPTRS);
  /// \brief Failures before the \p R-th success (R > 0, need not be whole), success probability
  /// \p P in [0, 1]; P = 0 gives +INF, the count of failures it means.
  void RandomNegbinomial(TKalpa& Dst, double R, double P);
  /// \brief Marked items in a sample of \p Sample drawn without replacement from
  /// \p Population items of which \p Marked are marked.
  void RandomHypergeometric(TKalpa& Dst, int Population, int Marked, int Sample);
  /// \brief The raw 32-bit output words of the stream, four per block.
  void RandomBits(std::span<std::uint32_t> Dst);

  /// \brief The Philox key of this stream.
  [[nodiscard]] std::array<std::uint32_t, 2> Key() const { return {key_[0], key_[1]}; }

private:
  friend class TRandomGenerator;
  TRngStream() = default;
  std::uint32_t key_[2] = {0, 0};
  std::uint64_t counter_[2] = {0, 0};  // the next block: low and high 64 bits
};

/// \brief A generator of independent streams.
///
/// Use: optionally SetStreamIndependence, then SetStreamCount, Init, GetStream.
/// Before Init a generator behaves as if seeded with Init(rgPhilox4x32, 0).
/// Changing the stream count or the independence restarts every stream.
///
/// Threads: GetStream and StreamCount may be called from several threads at
/// once (a stream is created on first request under the generator's lock, and
/// a reference to it stays valid for the generator's lifetime), and each
/// thread may then fill its own stream. SetStreamIndependence, SetStreamCount
/// and Init restart every stream: call them while no other thread uses the
/// generator or any of its streams.
class STATKIT_API TRandomGenerator : public TObject {
public:
  TRandomGenerator();
  ~TRandomGenerator() override;
  TRandomGenerator(const TRandomGenerator&) = delete;
  TRandomGenerator& operator=(const TRandomGenerator&) = delete;

  /// \brief A new generator owned by the caller.
  [[nodiscard]] static std::unique_ptr<TRandomGenerator> Create() { return std::make_unique<TRandomGenerator>(); }

  /// \brief How the streams are kept apart (siDistinctKeys by default).
  void SetStreamIndependence(TRngStreamIndependence Independence);
  /// \brief The number of streams (at least 1).
  void SetStreamCount(int Count);
  /// \brief The number of streams.
  [[nodiscard]] int StreamCount() const { return count_; }
  /// \brief Seeds every stream; only rgPhilox4x32 is supported.
  void Init(TBasicRandomGenerator Generator, int Seed);
  /// \brief Stream \p Index (zero-based), owned by the generator.
  TRngStream& GetStream(int Index);

private:
  void Restart();
  void Place(TRngStream& s, int index) const;

  TRngStreamIndependence independence_ = siDistinctKeys;
  int count_ = 1;
  std::uint32_t seed_ = 0;
  std::mutex streamsLock_;                              // guards streams_ in GetStream
  std::map<int, std::unique_ptr<TRngStream>> streams_;  // made on first request
};

}  // namespace statkit
