// SPDX-License-Identifier: Apache-2.0
#include "compressed/MSAdpcmAvx2.h"

#if defined(__x86_64__)

// All that the code below uses comes first, so that it alone is compiled for AVX2.
#include <immintrin.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "LanesAvx2.h"
#include "compressed/TablesAdpcm.h"

VCM_AVX2_BEGIN
namespace msadpcm {
namespace {

using R = __m256i;

constexpr std::size_t kTile = 8;  // frames that are decoded between loads of codes
constexpr int kCodeBits = 4;
constexpr int kMinDelta = 16;
constexpr int kMaxDelta = std::numeric_limits<int>::max();

// The places of the codes and samples of each block. Lanes without a block of their own repeat the
// last one.
struct S_Places {
  std::array<const std::uint8_t*, kLanes> codes;
  std::array<std::int16_t*, kLanes> samples;
};

// Blocks of two channels lie in the lanes so that their codes come there with few instructions: in
// each half of a register the left channels of two blocks, then their right ones.
template <int nChannels>
constexpr std::size_t BlockOfLane(std::size_t nLane) {
  return nChannels == 1 ? nLane : nLane / 4 * 2 + nLane % 2;
}
template <int nChannels>
constexpr std::size_t ChannelOfLane(std::size_t nLane) {
  return nChannels == 1 ? 0 : nLane / 2 % 2;
}

template <typename Number>
inline Number LoadNumber(const std::uint8_t* pby) {
  Number number;
  std::memcpy(&number, pby, sizeof number);
  return number;
}

// The codes of a tile: in each lane eight codes, the first one lowest.
template <int nChannels>
inline R LoadCodes(const S_Places& places, std::size_t nFrame) {
  const R low = _mm256_set1_epi8(15);
  const std::size_t cb = nFrame * nChannels / 2;
  const auto Load4 = [&](std::size_t i) { return LoadNumber<std::int32_t>(places.codes[i] + cb); };
  const auto Load8 = [&](std::size_t i) { return LoadNumber<std::int64_t>(places.codes[i] + cb); };
  if constexpr (nChannels == 1) {
    const R bytes = _mm256_setr_epi32(Load4(0), Load4(1), Load4(2), Load4(3), Load4(4), Load4(5),
                                      Load4(6), Load4(7));
    return _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi32(bytes, kCodeBits), low),
                           _mm256_slli_epi32(_mm256_and_si256(bytes, low), kCodeBits));
  } else {
    const R bytes = _mm256_setr_epi64x(Load8(0), Load8(1), Load8(2), Load8(3));
    // Two codes of a channel become a byte.
    const R joined = _mm256_set1_epi16(0x1001);
    const R left = _mm256_maddubs_epi16(_mm256_and_si256(_mm256_srli_epi32(bytes, 4), low), joined);
    const R right = _mm256_maddubs_epi16(_mm256_and_si256(bytes, low), joined);
    return _mm256_packus_epi16(left, right);
  }
}

// The channels of eight lanes. The last two samples of a lane take turns in the halves of a pair,
// so that two steps leave a pair in the order of memory.
class C_Lanes {
 public:
  template <int nChannels>
  static C_Lanes Of(std::span<const S_Block> blocks) {
    std::array<std::int32_t, kLanes> pairs{}, even{}, odd{}, deltas{};
    for (std::size_t i = 0; i < kLanes; ++i) {
      const S_Block& block = blocks[std::min(BlockOfLane<nChannels>(i), blocks.size() - 1)];
      const S_Channel& channel = block.channels[ChannelOfLane<nChannels>(i)];
      pairs[i] = Pair(channel.nSample2, channel.nSample1);
      even[i] = Pair(channel.nSecond, channel.nFirst);
      odd[i] = Pair(channel.nFirst, channel.nSecond);
      deltas[i] = static_cast<std::int32_t>(channel.nDelta);
    }
    return {Load(pairs), Load(even), Load(odd), Load(deltas)};
  }

  // The next two samples of each lane.
  R NextPair(R codes) {
    m_pairs = _mm256_blend_epi16(m_pairs, NextSamples(m_even, codes), 0x55);
    const R second = NextSamples(m_odd, _mm256_srli_epi32(codes, kCodeBits));
    m_pairs = _mm256_blend_epi16(m_pairs, _mm256_slli_epi32(second, 16), 0xAA);
    return m_pairs;
  }

 private:
  C_Lanes(R pairs, R even, R odd, R deltas)
      : m_pairs(pairs), m_even(even), m_odd(odd), m_deltas(deltas) {}

  static std::int32_t Pair(std::int64_t nLow, std::int64_t nHigh) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(nHigh) << 16U |
                                     static_cast<std::uint16_t>(nLow));
  }
  static R Load(const std::array<std::int32_t, kLanes>& lanes) {
    return _mm256_loadu_si256(reinterpret_cast<const R*>(lanes.data()));
  }

  // Only the lowest code of each lane counts.
  R NextSamples(R coefficients, R codes) {
    const R atTop = _mm256_slli_epi32(codes, 32 - kCodeBits);
    const R factors = _mm256_srai_epi32(atTop, 32 - kCodeBits);
    // A prediction is at most 2^23. With a delta of 2^24 or more, each factor but 0 therefore leads
    // to a limit of the samples, so larger deltas make no difference, and no product and no sum
    // leaves 32 bits.
    const R largest = _mm256_set1_epi32(1 << 24);
    const R predictions = _mm256_srai_epi32(_mm256_madd_epi16(m_pairs, coefficients), 8);
    const R samples = _mm256_add_epi32(
        predictions, _mm256_mullo_epi32(_mm256_min_epi32(m_deltas, largest), factors));
    Adapt(codes, atTop);
    return _mm256_max_epi32(_mm256_min_epi32(samples, _mm256_set1_epi32(32767)),
                            _mm256_set1_epi32(-32768));
  }

  // A delta times an adaptation has up to 41 bits. In 256ths it is the upper bits of the delta
  // times the adaptation and what the lowest eight bits add. That is below 2^32 with adaptations up
  // to 512, because deltas are below 2^31. With larger ones, every delta from 2^30 on leads to the
  // limit of the deltas, so 2^30 - 1 is taken for these, which leads there, too.
  void Adapt(R codes, R atTop) {
    const R adaptations = AdaptationsOf(codes, atTop);
    const R isLarge = _mm256_cmpgt_epi32(adaptations, _mm256_set1_epi32(512));
    const R most = _mm256_set1_epi32(kMaxDelta);
    const R deltas =
        _mm256_min_epi32(m_deltas, _mm256_add_epi32(most, _mm256_slli_epi32(isLarge, 30)));
    const R upper = _mm256_mullo_epi32(_mm256_srli_epi32(deltas, 8), adaptations);
    const R lower =
        _mm256_madd_epi16(_mm256_and_si256(deltas, _mm256_set1_epi32(255)), adaptations);
    const R adapted = _mm256_add_epi32(upper, _mm256_srli_epi32(lower, 8));
    m_deltas = _mm256_max_epi32(_mm256_min_epu32(adapted, most), _mm256_set1_epi32(kMinDelta));
  }

  // Looks up three bits of a code in both halves of the table; the highest bit, which is at the
  // top of a lane, says in which half it is.
  static R AdaptationsOf(R codes, R atTop) {
    const auto* const pTable = reinterpret_cast<const R*>(kMSAdpcmAdaptation.data());
    const R lower = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(pTable), codes);
    const R upper = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(pTable + 1), codes);
    return _mm256_castps_si256(_mm256_blendv_ps(
        _mm256_castsi256_ps(lower), _mm256_castsi256_ps(upper), _mm256_castsi256_ps(atTop)));
  }

  R m_pairs;
  R m_even;  // the coefficients in the order of the pairs before an even step
  R m_odd;
  R m_deltas;
};

inline void Store(std::int16_t* pFirst, std::int16_t* pSecond, R a) {
  vcm::S_LanesAvx2::StoreParts(pFirst, pSecond, a);
}

// Each of the four registers has two samples of each lane; here they become eight samples of two
// lanes each.
template <int nChannels>
inline void StoreTile(const S_Places& places, std::size_t nFrame, R a, R b, R c, R d) {
  const R ab01 = _mm256_unpacklo_epi32(a, b);
  const R ab23 = _mm256_unpackhi_epi32(a, b);
  const R cd01 = _mm256_unpacklo_epi32(c, d);
  const R cd23 = _mm256_unpackhi_epi32(c, d);
  const R lane0 = _mm256_unpacklo_epi64(ab01, cd01);
  const R lane1 = _mm256_unpackhi_epi64(ab01, cd01);
  const R lane2 = _mm256_unpacklo_epi64(ab23, cd23);
  const R lane3 = _mm256_unpackhi_epi64(ab23, cd23);
  const std::size_t n = nFrame * nChannels;
  const auto& samples = places.samples;
  if constexpr (nChannels == 1) {
    Store(samples[0] + n, samples[4] + n, lane0);
    Store(samples[1] + n, samples[5] + n, lane1);
    Store(samples[2] + n, samples[6] + n, lane2);
    Store(samples[3] + n, samples[7] + n, lane3);
  } else {
    Store(samples[0] + n, samples[2] + n, _mm256_unpacklo_epi16(lane0, lane2));
    Store(samples[0] + n + kTile, samples[2] + n + kTile, _mm256_unpackhi_epi16(lane0, lane2));
    Store(samples[1] + n, samples[3] + n, _mm256_unpacklo_epi16(lane1, lane3));
    Store(samples[1] + n + kTile, samples[3] + n + kTile, _mm256_unpackhi_epi16(lane1, lane3));
  }
}

template <int nChannels>
inline void DecodeTile(C_Lanes& lanes, const S_Places& places, std::size_t nFrame) {
  const R codes = LoadCodes<nChannels>(places, nFrame);
  const R a = lanes.NextPair(codes);
  const R b = lanes.NextPair(_mm256_srli_epi32(codes, 2 * kCodeBits));
  const R c = lanes.NextPair(_mm256_srli_epi32(codes, 4 * kCodeBits));
  const R d = lanes.NextPair(_mm256_srli_epi32(codes, 6 * kCodeBits));
  StoreTile<nChannels>(places, nFrame, a, b, c, d);
}

// Decodes a tile of which only nFrames frames are there, through memory that holds a whole one.
template <int nChannels>
void DecodeLastTile(C_Lanes& lanes, std::span<const S_Block> blocks, std::size_t nFrame,
                    std::size_t nFrames) {
  std::array<std::array<std::uint8_t, kTile * nChannels / 2>, kLanes> codes{};
  std::array<std::array<std::int16_t, kTile * nChannels>, kLanes> samples;
  S_Places places;
  for (std::size_t i = 0; i < kLanes; ++i) {
    places.codes[i] = codes[i].data();
    places.samples[i] = samples[i].data();
    const S_Block& block = blocks[std::min(i, blocks.size() - 1)];
    std::memcpy(codes[i].data(), block.pbyCodes + nFrame * nChannels / 2,
                (nFrames * nChannels + 1) / 2);
  }
  DecodeTile<nChannels>(lanes, places, 0);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    std::memcpy(blocks[i].pSamples + nFrame * nChannels, samples[i].data(),
                nFrames * nChannels * sizeof(std::int16_t));
  }
}

template <int nChannels>
void DecodeBlocks(std::span<const S_Block> blocks, std::size_t nFrames) {
  C_Lanes lanes = C_Lanes::Of<nChannels>(blocks);
  S_Places places;
  for (std::size_t i = 0; i < kLanes; ++i) {
    const S_Block& block = blocks[std::min(i, blocks.size() - 1)];
    places.codes[i] = block.pbyCodes;
    places.samples[i] = block.pSamples;
  }
  std::size_t nFrame = 0;
  for (; nFrames - nFrame >= kTile; nFrame += kTile) DecodeTile<nChannels>(lanes, places, nFrame);
  if (nFrame < nFrames) DecodeLastTile<nChannels>(lanes, blocks, nFrame, nFrames - nFrame);
}

}  // namespace

void DecodeAvx2(std::span<const S_Block> blocks, std::size_t nChannels,
                std::size_t nFrames) noexcept {
  if (blocks.empty()) return;
  if (nChannels == 1) {
    DecodeBlocks<1>(blocks, nFrames);
  } else {
    DecodeBlocks<2>(blocks, nFrames);
  }
}

}  // namespace msadpcm
VCM_AVX2_END

#else

namespace msadpcm {

void DecodeAvx2(std::span<const S_Block> /*blocks*/, std::size_t /*nChannels*/,
                std::size_t /*nFrames*/) noexcept {}

}  // namespace msadpcm

#endif
