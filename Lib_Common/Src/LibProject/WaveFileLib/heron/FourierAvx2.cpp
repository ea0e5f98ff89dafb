// SPDX-License-Identifier: Apache-2.0
//
// A register holds four complex numbers, their real parts in the even lanes of 32 bits. Products of
// 64 bits stand in the place of both.
#include "heron/FourierAvx2.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>
#include <cstddef>

#include "LanesAvx2.h"
#include "heron/Fourier.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using R = __m256i;
constexpr std::size_t kAtOnce = 4;

VCM_LANES_INLINE R Load(const void* p) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}
VCM_LANES_INLINE void Store(void* p, R a) { _mm256_storeu_si256(static_cast<__m256i*>(p), a); }
VCM_LANES_INLINE R Sum(R a, R b) { return _mm256_add_epi32(a, b); }
VCM_LANES_INLINE R Difference(R a, R b) { return _mm256_sub_epi32(a, b); }
VCM_LANES_INLINE R TimesMinusI(R a) {
  const R swapped = _mm256_shuffle_epi32(a, 0xB1);
  return _mm256_blend_epi32(swapped, Difference(_mm256_setzero_si256(), swapped), 0xAA);
}
// The odd lanes in the place of the even ones.
VCM_LANES_INLINE R Odd(R a) { return _mm256_srli_epi64(a, 32); }
VCM_LANES_INLINE R Reversed(R a) { return _mm256_permute4x64_epi64(a, 0x1B); }

// Rounds products, which gives the even lanes. The odd ones have what they like.
VCM_LANES_INLINE R RoundedEven(R products) {
  const R half = _mm256_set1_epi64x(std::int64_t{1} << (kRotationQ - 1));
  return _mm256_srli_epi64(_mm256_add_epi64(products, half), kRotationQ);
}
// The same for the odd lanes.
VCM_LANES_INLINE R RoundedOdd(R products) {
  const R half = _mm256_set1_epi64x(std::int64_t{1} << (kRotationQ - 1));
  return _mm256_slli_epi64(_mm256_add_epi64(products, half), 32 - kRotationQ);
}
VCM_LANES_INLINE R Joined(R even, R odd) { return _mm256_blend_epi32(even, odd, 0xAA); }

// The products of the parts, which stand in even lanes, with a rotation.
VCM_LANES_INLINE R TurnedRe(R re, R im, R rotation) {
  return _mm256_sub_epi64(_mm256_mul_epi32(re, rotation), _mm256_mul_epi32(im, Odd(rotation)));
}
VCM_LANES_INLINE R TurnedIm(R re, R im, R rotation) {
  return _mm256_add_epi64(_mm256_mul_epi32(re, Odd(rotation)), _mm256_mul_epi32(im, rotation));
}
VCM_LANES_INLINE R Rotate(R value, R rotation) {
  const R im = Odd(value);
  return Joined(RoundedEven(TurnedRe(value, im, rotation)),
                RoundedOdd(TurnedIm(value, im, rotation)));
}

struct S_Products {
  R re;
  R im;

  VCM_LANES_INLINE void Add(R value, R factor) {
    re = _mm256_add_epi64(re, _mm256_mul_epi32(value, factor));
    im = _mm256_add_epi64(im, _mm256_mul_epi32(Odd(value), factor));
  }
};
VCM_LANES_INLINE R RoundedSum(const S_Products& a, const S_Products& b) {
  return Joined(RoundedEven(_mm256_add_epi64(a.re, b.re)),
                RoundedOdd(_mm256_add_epi64(a.im, b.im)));
}
VCM_LANES_INLINE R RoundedDifference(const S_Products& a, const S_Products& b) {
  return Joined(RoundedEven(_mm256_sub_epi64(a.re, b.re)),
                RoundedOdd(_mm256_sub_epi64(a.im, b.im)));
}

// The same rotation four times.
VCM_LANES_INLINE R Broadcast(const S_Rotation& rotation) {
  return _mm256_set1_epi64x(static_cast<std::int64_t>(
      static_cast<std::uint64_t>(static_cast<std::uint32_t>(rotation.nSine)) << 32 |
      static_cast<std::uint32_t>(rotation.nCosine)));
}

struct S_Radix2 {
  static constexpr std::size_t kRadix = 2;
  VCM_LANES_INLINE explicit S_Radix2(const S_FourierPass&) {}
  template <typename Put>
  VCM_LANES_INLINE void operator()(const S_Complex* pIn, std::size_t nIn, Put put) const {
    const R a = Load(pIn);
    const R b = Load(pIn + nIn);
    put(0, Sum(a, b));
    put(1, Difference(a, b));
  }
};

struct S_Radix4 {
  static constexpr std::size_t kRadix = 4;
  VCM_LANES_INLINE explicit S_Radix4(const S_FourierPass&) {}
  template <typename Put>
  VCM_LANES_INLINE void operator()(const S_Complex* pIn, std::size_t nIn, Put put) const {
    const R a = Load(pIn);
    const R b = Load(pIn + nIn);
    const R c = Load(pIn + 2 * nIn);
    const R d = Load(pIn + 3 * nIn);
    const R evenSum = Sum(a, c);
    const R evenDifference = Difference(a, c);
    const R oddSum = Sum(b, d);
    const R oddDifference = TimesMinusI(Difference(b, d));
    put(0, Sum(evenSum, oddSum));
    put(1, Sum(evenDifference, oddDifference));
    put(2, Difference(evenSum, oddSum));
    put(3, Difference(evenDifference, oddDifference));
  }
};

template <std::size_t kOdd>
struct S_RadixOdd {
  static constexpr std::size_t kRadix = kOdd;
  static constexpr std::size_t kHalf = kRadix / 2;
  std::array<S_Rotation, kRadix> units;

  VCM_LANES_INLINE explicit S_RadixOdd(const S_FourierPass& pass) {
    for (std::size_t n = 0; n < kRadix; ++n) {
      units[n] = pass.rotations[n * (pass.rotations.size() / kRadix)];
    }
  }
  template <typename Put>
  VCM_LANES_INLINE void operator()(const S_Complex* pIn, std::size_t nIn, Put put) const {
    R sums[kHalf + 1];
    R differences[kHalf + 1];
    const R first = Load(pIn);
    R total = first;
    for (std::size_t n = 1; n <= kHalf; ++n) {
      const R low = Load(pIn + n * nIn);
      const R high = Load(pIn + (kRadix - n) * nIn);
      sums[n] = Sum(low, high);
      differences[n] = TimesMinusI(Difference(high, low));
      total = Sum(total, sums[n]);
    }
    put(0, total);
    for (std::size_t k = 1; k <= kHalf; ++k) {
      S_Products even{_mm256_setzero_si256(), _mm256_setzero_si256()};
      even.Add(first, _mm256_set1_epi32(1 << kRotationQ));
      S_Products odd{_mm256_setzero_si256(), _mm256_setzero_si256()};
      for (std::size_t n = 1; n <= kHalf; ++n) {
        const S_Rotation& unit = units[n * k % kRadix];
        even.Add(sums[n], _mm256_set1_epi32(unit.nCosine));
        odd.Add(differences[n], _mm256_set1_epi32(unit.nSine));
      }
      put(k, RoundedSum(even, odd));
      put(kRadix - k, RoundedDifference(even, odd));
    }
  }
};

template <typename T_Radix>
void Run(const S_FourierPass& pass) {
  constexpr std::size_t kRadix = T_Radix::kRadix;
  const T_Radix radix(pass);
  const std::size_t nIn = pass.InStride();
  for (std::size_t j = 0; j < pass.nLeft; ++j) {
    const S_Complex* const pIn = pass.pIn + j * pass.nDone;
    S_Complex* const pOut = pass.pOut + kRadix * j * pass.nDone;
    if (j == 0) {
      for (std::size_t q = 0; q < pass.nDone; q += kAtOnce) {
        radix(pIn + q, nIn, [&](std::size_t k, R value) VCM_LANES_INLINE_LAMBDA {
          Store(pOut + q + k * pass.nDone, value);
        });
      }
      continue;
    }
    R rotations[kRadix];
    for (std::size_t k = 1; k < kRadix; ++k) {
      rotations[k] = Broadcast(pass.rotations[k * j * pass.nDone]);
    }
    for (std::size_t q = 0; q < pass.nDone; q += kAtOnce) {
      radix(pIn + q, nIn, [&](std::size_t k, R value) VCM_LANES_INLINE_LAMBDA {
        Store(pOut + q + k * pass.nDone, k == 0 ? value : Rotate(value, rotations[k]));
      });
    }
  }
}

// The rotations k * j, k * (j + 1) and so on.
VCM_LANES_INLINE R Stepped(const S_Rotation* pRotations, std::size_t k, std::size_t j) {
  const auto at = [&](std::size_t n) VCM_LANES_INLINE_LAMBDA {
    const S_Rotation& rotation = pRotations[k * (j + n)];
    return _mm_loadl_epi64(static_cast<const __m128i*>(static_cast<const void*>(&rotation)));
  };
  return _mm256_set_m128i(_mm_unpacklo_epi64(at(2), at(3)), _mm_unpacklo_epi64(at(0), at(1)));
}

// The first pass: four butterflies with their own rotations, whose results are next to each other.
void RunFirst4(const S_FourierPass& pass) {
  const S_Radix4 radix(pass);
  const S_Rotation* const pRotations = pass.rotations.data();
  for (std::size_t j = 0; j < pass.nLeft; j += kAtOnce) {
    R results[4];
    radix(pass.pIn + j, pass.nLeft,
          [&](std::size_t k, R value) VCM_LANES_INLINE_LAMBDA { results[k] = value; });
    results[1] = Rotate(results[1], Load(pRotations + j));
    results[2] = Rotate(results[2], Stepped(pRotations, 2, j));
    results[3] = Rotate(results[3], Stepped(pRotations, 3, j));
    const R low01 = _mm256_unpacklo_epi64(results[0], results[1]);
    const R high01 = _mm256_unpackhi_epi64(results[0], results[1]);
    const R low23 = _mm256_unpacklo_epi64(results[2], results[3]);
    const R high23 = _mm256_unpackhi_epi64(results[2], results[3]);
    S_Complex* const pOut = pass.pOut + 4 * j;
    Store(pOut, _mm256_permute2x128_si256(low01, low23, 0x20));
    Store(pOut + 4, _mm256_permute2x128_si256(high01, high23, 0x20));
    Store(pOut + 8, _mm256_permute2x128_si256(low01, low23, 0x31));
    Store(pOut + 12, _mm256_permute2x128_si256(high01, high23, 0x31));
  }
}

}  // namespace

bool RunFourierPassAvx2(const S_FourierPass& pass) noexcept {
  if (pass.nDone == 1 && pass.nRadix == 4 && pass.nLeft % kAtOnce == 0) {
    RunFirst4(pass);
    return true;
  }
  if (pass.nDone % kAtOnce != 0) return false;
  switch (pass.nRadix) {
    case 2:
      Run<S_Radix2>(pass);
      return true;
    case 3:
      Run<S_RadixOdd<3>>(pass);
      return true;
    case 4:
      Run<S_Radix4>(pass);
      return true;
    case 5:
      Run<S_RadixOdd<5>>(pass);
      return true;
    default:
      return false;
  }
}

bool RotateIntoPointsAvx2(std::span<const std::int32_t> values,
                          std::span<const S_Rotation> rotations,
                          std::span<S_Complex> points) noexcept {
  if (points.size() % kAtOnce != 0) return false;
  const std::int32_t* pFront = values.data();
  const std::int32_t* pBack = values.data() + values.size();
  for (std::size_t n = 0; n < points.size(); n += kAtOnce, pFront += 2 * kAtOnce) {
    pBack -= 2 * kAtOnce;
    const R re = Load(pFront);
    const R im = Reversed(Odd(Load(pBack)));
    const R rotation = Load(&rotations[n]);
    Store(&points[n],
          Joined(RoundedEven(TurnedRe(re, im, rotation)), RoundedOdd(TurnedIm(re, im, rotation))));
  }
  return true;
}

bool RotateFromPointsAvx2(std::span<const S_Complex> points, std::span<const S_Rotation> rotations,
                          std::span<std::int32_t> values) noexcept {
  if (points.size() % kAtOnce != 0) return false;
  std::int32_t* pTo = values.data();
  for (std::size_t n = 0; n < points.size(); n += kAtOnce, pTo += 2 * kAtOnce) {
    const R point = Load(&points[n]);
    const R even = RoundedEven(TurnedRe(point, Odd(point), Load(&rotations[n])));
    // The other end: its imaginary parts belong between these real parts.
    const std::size_t nMirror = points.size() - kAtOnce - n;
    const R mirror = Load(&points[nMirror]);
    const R im = RoundedOdd(TurnedIm(mirror, Odd(mirror), Load(&rotations[nMirror])));
    Store(pTo, Joined(even, Difference(_mm256_setzero_si256(), Reversed(im))));
  }
  return true;
}

}  // namespace heron
VCM_AVX2_END

#else

namespace heron {

bool RunFourierPassAvx2(const S_FourierPass& /*pass*/) noexcept { return false; }
bool RotateIntoPointsAvx2(std::span<const std::int32_t> /*values*/,
                          std::span<const S_Rotation> /*rotations*/,
                          std::span<S_Complex> /*points*/) noexcept {
  return false;
}
bool RotateFromPointsAvx2(std::span<const S_Complex> /*points*/,
                          std::span<const S_Rotation> /*rotations*/,
                          std::span<std::int32_t> /*values*/) noexcept {
  return false;
}

}  // namespace heron
#endif
