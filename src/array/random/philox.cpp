// Philox4x32-10 blocks, one at a time and in batches (Salmon, Moraes, Dror and
// Shaw, SC'11). A batch keeps 16 counters in separate word arrays, so every
// round is the same independent arithmetic on 16 lanes. The portable kernel is
// left to the compiler's vectoriser; on x86-64 two kernels spell out the
// 32 x 32 -> 64-bit products as AVX2 and AVX-512 vector multiplications (the
// vectoriser widens them to full 64-bit products, three times the work), and
// the fastest one the processor has is picked once. Every kernel gives the same
// output bit for bit.

#include "array/random/philox.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define STATKIT_PHILOX_X86 1
#endif

namespace statkit::rng {

namespace {
constexpr std::uint32_t kM0 = 0xD2511F53u, kM1 = 0xCD9E8D57u;  // round multipliers
constexpr std::uint32_t kW0 = 0x9E3779B9u, kW1 = 0xBB67AE85u;  // Weyl key increments
constexpr int kRounds = 10;
constexpr int kLanes = 32;

// One round on every lane: the two products give the new words 1 and 3, their
// high halves mixed with the key give words 0 and 2.
inline __attribute__((always_inline)) void round(std::uint32_t* __restrict c0, std::uint32_t* __restrict c1,
                                                 std::uint32_t* __restrict c2, std::uint32_t* __restrict c3,
                                                 std::uint32_t k0, std::uint32_t k1) {
  for (int l = 0; l < kLanes; ++l) {
    std::uint64_t p0 = static_cast<std::uint64_t>(kM0) * c0[l];
    std::uint64_t p1 = static_cast<std::uint64_t>(kM1) * c2[l];
    std::uint32_t n0 = static_cast<std::uint32_t>(p1 >> 32) ^ c1[l] ^ k0;
    std::uint32_t n2 = static_cast<std::uint32_t>(p0 >> 32) ^ c3[l] ^ k1;
    c1[l] = static_cast<std::uint32_t>(p1);
    c3[l] = static_cast<std::uint32_t>(p0);
    c0[l] = n0;
    c2[l] = n2;
  }
}

void lanesPortable(const std::uint32_t key[2], std::uint64_t ctrLo, std::uint64_t ctrHi, std::uint32_t* out) {
  alignas(64) std::uint32_t c0[kLanes], c1[kLanes], c2[kLanes], c3[kLanes];
  for (int l = 0; l < kLanes; ++l) {
    std::uint64_t lo = ctrLo + static_cast<std::uint64_t>(l);
    std::uint64_t hi = ctrHi + (lo < ctrLo ? 1u : 0u);
    c0[l] = static_cast<std::uint32_t>(lo);
    c1[l] = static_cast<std::uint32_t>(lo >> 32);
    c2[l] = static_cast<std::uint32_t>(hi);
    c3[l] = static_cast<std::uint32_t>(hi >> 32);
  }
  std::uint32_t k0 = key[0], k1 = key[1];
  for (int r = 0; r < kRounds; ++r) {
    round(c0, c1, c2, c3, k0, k1);
    k0 += kW0;
    k1 += kW1;
  }
  for (int l = 0; l < kLanes; ++l) {
    out[4 * l] = c0[l];
    out[4 * l + 1] = c1[l];
    out[4 * l + 2] = c2[l];
    out[4 * l + 3] = c3[l];
  }
}
#ifdef STATKIT_PHILOX_X86
// GCC 12 flags the undefined vector inside its own AVX-512 broadcast intrinsics.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
// The four 32-bit counter words of blocks first .. first + W - 1 after (ctrLo, ctrHi),
// one block per 64-bit lane, with the carry into the high half: the setup of a
// vector batch whose low word wraps inside it.
template <int W>
void counterWords(std::uint64_t ctrLo, std::uint64_t ctrHi, int first, std::uint64_t (&w)[4][W]) {
  for (int j = 0; j < W; ++j) {
    std::uint64_t lo = ctrLo + static_cast<std::uint64_t>(first + j);
    std::uint64_t hi = ctrHi + (lo < ctrLo ? 1u : 0u);
    w[0][j] = lo & 0xFFFFFFFFu;
    w[1][j] = lo >> 32;
    w[2][j] = hi & 0xFFFFFFFFu;
    w[3][j] = hi >> 32;
  }
}

// The vector kernels keep each 32-bit word in a 64-bit lane: the multiplication
// reads the low halves only, so the high halves may carry anything until the
// final store, and a round is two multiplications, two shifts and two
// three-way exclusive ors per vector.
__attribute__((target("avx2"))) void lanesAvx2(const std::uint32_t key[2], std::uint64_t ctrLo,
                                               std::uint64_t ctrHi, std::uint32_t* out) {
  constexpr int V = kLanes / 4;
  __m256i c0[V], c1[V], c2[V], c3[V];
  if (static_cast<std::uint32_t>(ctrLo) <= 0xFFFFFFFFu - (kLanes - 1)) {
    // No carry out of the lowest word inside the batch: words 1 to 3 are shared.
    const __m256i base = _mm256_set1_epi64x(static_cast<std::uint32_t>(ctrLo));
    for (int v = 0; v < V; ++v) {
      c0[v] = _mm256_add_epi64(base, _mm256_set_epi64x(4 * v + 3, 4 * v + 2, 4 * v + 1, 4 * v));
      c1[v] = _mm256_set1_epi64x(ctrLo >> 32);
      c2[v] = _mm256_set1_epi64x(ctrHi & 0xFFFFFFFFu);
      c3[v] = _mm256_set1_epi64x(ctrHi >> 32);
    }
  } else {
    for (int v = 0; v < V; ++v) {
      alignas(32) std::uint64_t w[4][4];
      counterWords(ctrLo, ctrHi, 4 * v, w);
      c0[v] = _mm256_load_si256(reinterpret_cast<const __m256i*>(w[0]));
      c1[v] = _mm256_load_si256(reinterpret_cast<const __m256i*>(w[1]));
      c2[v] = _mm256_load_si256(reinterpret_cast<const __m256i*>(w[2]));
      c3[v] = _mm256_load_si256(reinterpret_cast<const __m256i*>(w[3]));
    }
  }
  const __m256i m0 = _mm256_set1_epi64x(kM0), m1 = _mm256_set1_epi64x(kM1);
  std::uint32_t k0 = key[0], k1 = key[1];
  for (int r = 0; r < kRounds; ++r) {
    const __m256i kv0 = _mm256_set1_epi64x(k0), kv1 = _mm256_set1_epi64x(k1);
    for (int v = 0; v < V; ++v) {
      __m256i p0 = _mm256_mul_epu32(c0[v], m0);
      __m256i p1 = _mm256_mul_epu32(c2[v], m1);
      c0[v] = _mm256_xor_si256(_mm256_xor_si256(_mm256_srli_epi64(p1, 32), c1[v]), kv0);
      c2[v] = _mm256_xor_si256(_mm256_xor_si256(_mm256_srli_epi64(p0, 32), c3[v]), kv1);
      c1[v] = p1;
      c3[v] = p0;
    }
    k0 += kW0;
    k1 += kW1;
  }
  const __m256i low = _mm256_set1_epi64x(0xFFFFFFFF);
  for (int v = 0; v < V; ++v) {
    // Words (0, 1) and (2, 3) of each block as 64-bit values, then interleaved by block.
    __m256i a = _mm256_or_si256(_mm256_and_si256(c0[v], low), _mm256_slli_epi64(c1[v], 32));
    __m256i b = _mm256_or_si256(_mm256_and_si256(c2[v], low), _mm256_slli_epi64(c3[v], 32));
    __m256i first = _mm256_unpacklo_epi64(a, b);   // blocks 0 and 2
    __m256i second = _mm256_unpackhi_epi64(a, b);  // blocks 1 and 3
    __m256i x = _mm256_permute2x128_si256(first, second, 0x20);
    __m256i y = _mm256_permute2x128_si256(first, second, 0x31);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 16 * v), x);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 16 * v + 8), y);
  }
}

__attribute__((target("avx512f"))) void lanesAvx512(const std::uint32_t key[2], std::uint64_t ctrLo,
                                                    std::uint64_t ctrHi, std::uint32_t* out) {
  constexpr int V = kLanes / 8;
  __m512i c0[V], c1[V], c2[V], c3[V];
  if (static_cast<std::uint32_t>(ctrLo) <= 0xFFFFFFFFu - (kLanes - 1)) {
    // No carry out of the lowest word inside the batch: words 1 to 3 are shared.
    const __m512i base = _mm512_set1_epi64(static_cast<std::uint32_t>(ctrLo));
    for (int v = 0; v < V; ++v) {
      c0[v] = _mm512_add_epi64(base, _mm512_set_epi64(8 * v + 7, 8 * v + 6, 8 * v + 5, 8 * v + 4, 8 * v + 3,
                                                      8 * v + 2, 8 * v + 1, 8 * v));
      c1[v] = _mm512_set1_epi64(static_cast<long long>(ctrLo >> 32));
      c2[v] = _mm512_set1_epi64(static_cast<long long>(ctrHi & 0xFFFFFFFFu));
      c3[v] = _mm512_set1_epi64(static_cast<long long>(ctrHi >> 32));
    }
  } else {
    for (int v = 0; v < V; ++v) {
      alignas(64) std::uint64_t w[4][8];
      counterWords(ctrLo, ctrHi, 8 * v, w);
      c0[v] = _mm512_load_si512(w[0]);
      c1[v] = _mm512_load_si512(w[1]);
      c2[v] = _mm512_load_si512(w[2]);
      c3[v] = _mm512_load_si512(w[3]);
    }
  }
  const __m512i m0 = _mm512_set1_epi64(kM0), m1 = _mm512_set1_epi64(kM1);
  std::uint32_t k0 = key[0], k1 = key[1];
  for (int r = 0; r < kRounds; ++r) {
    const __m512i kv0 = _mm512_set1_epi64(k0), kv1 = _mm512_set1_epi64(k1);
    for (int v = 0; v < V; ++v) {
      __m512i p0 = _mm512_mul_epu32(c0[v], m0);
      __m512i p1 = _mm512_mul_epu32(c2[v], m1);
      c0[v] = _mm512_ternarylogic_epi64(_mm512_srli_epi64(p1, 32), c1[v], kv0, 0x96);  // a ^ b ^ c
      c2[v] = _mm512_ternarylogic_epi64(_mm512_srli_epi64(p0, 32), c3[v], kv1, 0x96);
      c1[v] = p1;
      c3[v] = p0;
    }
    k0 += kW0;
    k1 += kW1;
  }
  const __m512i low = _mm512_set1_epi64(0xFFFFFFFF);
  const __m512i firstHalf = _mm512_set_epi64(11, 3, 10, 2, 9, 1, 8, 0);
  const __m512i secondHalf = _mm512_set_epi64(15, 7, 14, 6, 13, 5, 12, 4);
  for (int v = 0; v < V; ++v) {
    __m512i a = _mm512_or_si512(_mm512_and_si512(c0[v], low), _mm512_slli_epi64(c1[v], 32));
    __m512i b = _mm512_or_si512(_mm512_and_si512(c2[v], low), _mm512_slli_epi64(c3[v], 32));
    _mm512_storeu_si512(out + 32 * v, _mm512_permutex2var_epi64(a, firstHalf, b));
    _mm512_storeu_si512(out + 32 * v + 16, _mm512_permutex2var_epi64(a, secondHalf, b));
  }
}
#pragma GCC diagnostic pop
#endif

using Kernel = void (*)(const std::uint32_t*, std::uint64_t, std::uint64_t, std::uint32_t*);

Kernel kernelFor(PhiloxKernel k) {
  switch (k) {
#ifdef STATKIT_PHILOX_X86
    case PhiloxKernel::Avx2: return lanesAvx2;
    case PhiloxKernel::Avx512: return lanesAvx512;
#endif
    default: return lanesPortable;
  }
}

void blocksWith(Kernel lanes, const std::uint32_t key[2], std::uint64_t ctrLo, std::uint64_t ctrHi,
                std::uint32_t* out, std::size_t nBlocks) {
  while (nBlocks >= static_cast<std::size_t>(kLanes)) {
    lanes(key, ctrLo, ctrHi, out);
    std::uint64_t lo = ctrLo + kLanes;
    if (lo < ctrLo) ++ctrHi;
    ctrLo = lo;
    out += 4 * kLanes;
    nBlocks -= kLanes;
  }
  if (nBlocks > 0) {
    std::uint32_t tail[4 * kLanes];
    lanes(key, ctrLo, ctrHi, tail);
    std::memcpy(out, tail, nBlocks * 4 * sizeof(std::uint32_t));
  }
}
}  // namespace

bool PhiloxKernelAvailable(PhiloxKernel k) {
  switch (k) {
    case PhiloxKernel::Portable: return true;
#ifdef STATKIT_PHILOX_X86
    case PhiloxKernel::Avx2: return __builtin_cpu_supports("avx2");
    case PhiloxKernel::Avx512: return __builtin_cpu_supports("avx512f");
#endif
    default: return false;
  }
}

void PhiloxBlocksWith(PhiloxKernel k, const std::uint32_t key[2], std::uint64_t ctrLo, std::uint64_t ctrHi,
                      std::uint32_t* out, std::size_t nBlocks) {
  if (!PhiloxKernelAvailable(k)) k = PhiloxKernel::Portable;
  blocksWith(kernelFor(k), key, ctrLo, ctrHi, out, nBlocks);
}

void PhiloxBlock(const std::uint32_t ctr[4], const std::uint32_t key[2], std::uint32_t out[4]) {
  std::uint32_t c[4] = {ctr[0], ctr[1], ctr[2], ctr[3]};
  std::uint32_t k0 = key[0], k1 = key[1];
  for (int r = 0; r < kRounds; ++r) {
    std::uint64_t p0 = static_cast<std::uint64_t>(kM0) * c[0];
    std::uint64_t p1 = static_cast<std::uint64_t>(kM1) * c[2];
    std::uint32_t n[4] = {static_cast<std::uint32_t>(p1 >> 32) ^ c[1] ^ k0, static_cast<std::uint32_t>(p1),
                          static_cast<std::uint32_t>(p0 >> 32) ^ c[3] ^ k1, static_cast<std::uint32_t>(p0)};
    std::memcpy(c, n, sizeof c);
    k0 += kW0;
    k1 += kW1;
  }
  std::memcpy(out, c, sizeof c);
}

void PhiloxBlocks(const std::uint32_t key[2], std::uint64_t ctrLo, std::uint64_t ctrHi, std::uint32_t* out,
                  std::size_t nBlocks) {
  static const Kernel best = [] {
    for (PhiloxKernel k : {PhiloxKernel::Avx512, PhiloxKernel::Avx2})
      if (PhiloxKernelAvailable(k)) return kernelFor(k);
    return kernelFor(PhiloxKernel::Portable);
  }();
  blocksWith(best, key, ctrLo, ctrHi, out, nBlocks);
}

void BitSource::refill() {
  advance(end_ / 4);  // the whole previous chunk is behind us
  std::size_t blocks = nextBlocks_;
  nextBlocks_ = std::min(2 * nextBlocks_, kChunkBlocks);
  PhiloxBlocks(key_, counter_[0], counter_[1], buf_, blocks);
  pos_ = 0;
  end_ = 4 * blocks;
}

void BitSource::Words(std::uint32_t* dst, std::size_t n) {
  // First what is left of the chunk, then whole batches straight into dst.
  std::size_t take = std::min(n, end_ - pos_);
  // An empty destination may be a null pointer, which memcpy must not be given.
  if (take > 0) std::memcpy(dst, buf_ + pos_, take * sizeof(std::uint32_t));
  pos_ += take;
  dst += take;
  n -= take;
  if (n >= 4) {
    advance((pos_ + 3) / 4);
    pos_ = end_ = 0;
    std::size_t blocks = n / 4;
    PhiloxBlocks(key_, counter_[0], counter_[1], dst, blocks);
    advance(blocks);
    dst += 4 * blocks;
    n -= 4 * blocks;
  }
  for (; n > 0; --n) *dst++ = Next32();
}

}  // namespace statkit::rng
