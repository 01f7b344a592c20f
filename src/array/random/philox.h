#pragma once
// Philox4x32-10 (Salmon, Moraes, Dror and Shaw, "Parallel random numbers: as
// easy as 1, 2, 3", SC'11): a counter-based generator whose output block is a
// keyed bijection of a 128-bit counter. Ten rounds of two 32 x 32 -> 64-bit
// multiplications each; it passes BigCrush, and blocks at consecutive
// counters are independent computations, so batches of them vectorise.
//
// BitSource hands out the words of one stream during one fill call.

#include <bit>
#include <cstddef>
#include <cstdint>

#include "statkit/array/Config.h"

namespace statkit::rng {

/// One block: out = Philox4x32-10(ctr, key). ctr[0] is the least significant word.
STATKIT_API void PhiloxBlock(const std::uint32_t ctr[4], const std::uint32_t key[2], std::uint32_t out[4]);

/// \p nBlocks blocks at the consecutive counters (ctrLo, ctrHi), (ctrLo + 1, ...)
/// with carry into the high 64 bits, written one block after another (4 words each).
STATKIT_API void PhiloxBlocks(const std::uint32_t key[2], std::uint64_t ctrLo, std::uint64_t ctrHi,
                              std::uint32_t* out, std::size_t nBlocks);

/// The batch kernels: each gives the same words; the fastest available one serves PhiloxBlocks.
enum class PhiloxKernel { Portable, Avx2, Avx512 };
STATKIT_API bool PhiloxKernelAvailable(PhiloxKernel k);
/// PhiloxBlocks through the given kernel (the portable one when \p k is not available).
STATKIT_API void PhiloxBlocksWith(PhiloxKernel k, const std::uint32_t key[2], std::uint64_t ctrLo,
                                  std::uint64_t ctrHi, std::uint32_t* out, std::size_t nBlocks);

/// The uniform on [0, 1) of the 53 high bits of \p w, converted without an
/// integer-to-double instruction (x86-64 has none for vectors before AVX-512):
/// each half of the 53 bits, OR-ed into the mantissa of 2^52, gives 2^52 plus
/// that half exactly, so every step is exact and loops over words vectorise.
inline double Uniform53(std::uint64_t w) {
  constexpr std::uint64_t kTwo52 = 0x4330000000000000ull;  // the bits of 2^52
  std::uint64_t u = w >> 11;
  double high = std::bit_cast<double>((u >> 26) | kTwo52) - 0x1.0p52;
  double low = std::bit_cast<double>((u & 0x3FFFFFFull) | kTwo52) - 0x1.0p52;
  return high * 0x1.0p-27 + low * 0x1.0p-53;
}

/// The words of one stream for one fill: generated a chunk at a time; on
/// destruction the stream's counter moves past the last block used, so the
/// next fill starts at a fresh block.
class BitSource {
public:
  BitSource(const std::uint32_t key[2], std::uint64_t* counter) : counter_(counter) {
    key_[0] = key[0];
    key_[1] = key[1];
  }
  ~BitSource() { advance((pos_ + 3) / 4); }  // the blocks of the current chunk touched
  BitSource(const BitSource&) = delete;
  BitSource& operator=(const BitSource&) = delete;

  std::uint32_t Next32() {
    if (pos_ == end_) refill();
    return buf_[pos_++];
  }
  std::uint64_t Next64() {
    if (pos_ + 2 > end_) refill();
    std::uint64_t lo = buf_[pos_], hi = buf_[pos_ + 1];
    pos_ += 2;
    return lo | (hi << 32);
  }
  /// Uniform on [0, 1): 53 bits, multiples of 2^-53.
  double U01() { return Uniform53(Next64()); }
  /// Uniform on (0, 1]: 53 bits; safe under a logarithm.
  double U01Pos() { return 1.0 - U01(); }
  /// Uniform on (0, 1), symmetric: (2k + 1) 2^-53 for 52 random bits k.
  double U01Open() { return (static_cast<double>(Next64() >> 12) + 0.5) * 0x1.0p-52; }

  /// Copies the next \p n words (n a multiple of 2) into \p dst.
  void Words(std::uint32_t* dst, std::size_t n);

  static constexpr std::size_t kChunkBlocks = 256;

private:
  // Small fills need a few blocks only: the chunk grows from 4 blocks to kChunkBlocks.
  [[gnu::noinline]] void refill();
  void advance(std::uint64_t blocks) {
    std::uint64_t lo = counter_[0] + blocks;
    if (lo < counter_[0]) ++counter_[1];
    counter_[0] = lo;
  }

  std::uint32_t key_[2];
  std::uint64_t* counter_;
  std::size_t pos_ = 0, end_ = 0;  // words of the current chunk: used, available
  std::size_t nextBlocks_ = 4;
  std::uint32_t buf_[4 * kChunkBlocks];
};

}  // namespace statkit::rng
