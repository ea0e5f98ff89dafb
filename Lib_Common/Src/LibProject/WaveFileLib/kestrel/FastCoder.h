// SPDX-License-Identifier: Apache-2.0
//
// Encoder and decoder of a frame with fast steps: a template over the transforms and over what is
// done to a region (RegionLanes.h or RegionLoops.h). The results are those of Encoder.h and
// Decoder.h to the bit. It reads like those: the steps are the same, but for tables that do several
// of them at once.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "Lanes.h"
#include "kestrel/BasicOperators.h"
#include "kestrel/BitStream.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"
#include "kestrel/Envelope.h"
#include "kestrel/FastCategories.h"
#include "kestrel/RateControl.h"
#include "kestrel/TablesThresholds.h"
#include "kestrel/TablesVectors.h"
#include "kestrel/VectorCoder.h"
#include "kestrel/WordStream.h"

namespace kestrel {

template <typename Transforms, typename Regions>
class C_FastCoder {
 public:
  static void Encode(S_EncoderState& state, const S_Configuration& configuration, S_Samples samples,
                     std::span<std::uint16_t> words) noexcept {
    alignas(32) S_Frame coefficients;
    const int nShift = Transforms::Forward(state.history, samples, coefficients);
    const int nRegions = configuration.nRegions;

    C_WordWriter writer;
    S_Envelope envelope = Measure(coefficients, nShift, nRegions);
    ShapeEnvelope(envelope, nRegions);
    Write(writer, envelope, nRegions);

    const int nAvailable = configuration.nBitsPerFrame - writer.BitsPut() - kControlBits;
    C_RateChoice choice(CategoriseValid(nAvailable, envelope, nRegions));
    for (int r = 0; r < nRegions; ++r) {
      choice.Add(r, Coefficients(coefficients, r),
                 envelope[Index(r)] + 2 * nShift + kPowerIndexZero);
    }
    choice.Run(nAvailable);

    writer.Put(static_cast<std::uint32_t>(choice.Control()), kControlBits);
    for (int r = 0; r < nRegions; ++r) {
      Write(writer, choice.Region(r), Coefficients(coefficients, r));
    }
    writer.Finish(words.first(Index(configuration.nWordsPerFrame)));
  }

  static bool Decode(S_DecoderState& state, const S_Configuration& configuration,
                     std::span<const std::uint16_t> words,
                     std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
    alignas(32) S_Frame coefficients;
    int nShift = 0;
    const bool bGood = Unpack(state, configuration, words, coefficients, nShift);
    if (bGood) [[likely]] {
      Transforms::Inverse(state.overlap, coefficients, nShift, samples);
    } else {
      Repeat(state, samples);
    }
    return bGood;
  }

  static bool Skip(S_DecoderState& state, const S_Configuration& configuration,
                   std::span<const std::uint16_t> words) noexcept {
    alignas(32) S_Frame coefficients;
    int nShift = 0;
    const bool bGood = Unpack(state, configuration, words, coefficients, nShift);
    if (!bGood) state.lastGood = {};
    return bGood;
  }

 private:
  // Twenty coefficients and the four that RegionLanes.h touches after them.
  static constexpr std::size_t kLongRegion = 24;

  // NextNoise for all of a frame: the seeds in one number, the newest lowest.
  class C_FastNoise {
   public:
    VCM_LANES_INLINE explicit C_FastNoise(const S_NoiseGenerator& generator) {
      for (std::size_t i = 4; i-- > 0;) {
        m_qwSeeds = m_qwSeeds << 16 | static_cast<std::uint16_t>(generator.seeds[i]);
      }
    }
    VCM_LANES_INLINE std::uint32_t Next() {
      const auto wSum = static_cast<std::uint16_t>(m_qwSeeds + (m_qwSeeds >> 48));
      // One more where the sum is negative.
      const auto wNext = static_cast<std::uint16_t>(wSum + (wSum >> 15));
      m_qwSeeds = m_qwSeeds << 16 | wNext;
      return wNext;
    }
    VCM_LANES_INLINE void Put(S_NoiseGenerator& generator) const {
      for (std::size_t i = 0; i < 4; ++i) {
        generator.seeds[i] = Wrap16(static_cast<std::int32_t>(m_qwSeeds >> (16 * i) & 0xFFFF));
      }
    }

   private:
    std::uint64_t m_qwSeeds = 0;
  };

  // A region as it is written.
  struct S_ChosenRegion {
    int nCategory;  // a real one
    int nBits;
    alignas(16) std::uint16_t vectors[16];
  };

  template <typename Frame>
  VCM_LANES_INLINE static auto* Coefficients(Frame& frame, int nRegion) {
    return frame.data() + Index(nRegion * kRegionSize);
  }

  // ---- encoding ----

  // RegionPower, without counting step by step.
  VCM_LANES_INLINE static int Power(std::int64_t nEnergy, int nShift) {
    const auto dwEnergy = static_cast<std::uint32_t>(std::min<std::int64_t>(nEnergy, 0x7FFFFFFF));
    const int nUnscaled = 11 - 2 * nShift;
    if (dwEnergy == 0) return nUnscaled - 16;
    const int nZeros = std::countl_zero(dwEnergy);
    const auto nMantissa = static_cast<std::int32_t>(dwEnergy << nZeros >> 16);
    return nUnscaled + 16 - nZeros + (nMantissa >> 1 >= kRoundPowerUpFrom ? 1 : 0);
  }

  VCM_LANES_INLINE static S_Envelope Measure(const S_Frame& coefficients, int nShift,
                                             int nRegions) {
    S_Envelope envelope{};
    for (int r = 0; r < nRegions; ++r) {
      envelope[Index(r)] = Power(Regions::Energy(Coefficients(coefficients, r)), nShift);
    }
    return envelope;
  }

  VCM_LANES_INLINE static void Write(C_WordWriter& writer, S_Envelope& envelope, int nRegions) {
    writer.Put(static_cast<std::uint32_t>(envelope[0] + kFirstPowerOffset), kFirstPowerBits);
    for (std::size_t r = 1; r < Index(nRegions); ++r) {
      const int nStep = std::max(envelope[r] - envelope[r - 1], kLowestPowerStep);
      const S_Code code = kPowerStepCodes[r - 1][Index(nStep - kLowestPowerStep)];
      writer.Put(code.wWord, code.byBits);
      envelope[r] = envelope[r - 1] + nStep;
    }
  }

  // RateControl.h with thresholds, and with code words looked up at the end only.
  class C_RateChoice {
   public:
    VCM_LANES_INLINE explicit C_RateChoice(const S_Categorisation& categorisation)
        : m_categorisation(categorisation) {
      ApplyFirst(m_categorisation);
    }

    VCM_LANES_INLINE void Add(int nRegion, const std::int16_t* pCoefficients, int nPowerEntry) {
      const int nDown = std::max((nPowerEntry - (kHighestPowerEntry - 1)) >> 1, 0);
      Regions::Magnitudes(pCoefficients, nDown, m_magnitudes[nRegion]);
      m_pThresholds[nRegion] =
          kThresholds[Index(nPowerEntry - 2 * nDown - kLowestPowerEntry)].data();
      Code(nRegion);
    }

    VCM_LANES_INLINE void Run(int nAvailableBits) {
      while (m_nBits < nAvailableBits && m_nControl > 0) {
        Step(m_categorisation.balances[Index(--m_nControl)], -1);
      }
      while (m_nBits > nAvailableBits && m_nControl < kControlValues - 1) {
        Step(m_categorisation.balances[Index(m_nControl++)], 1);
      }
    }

    [[nodiscard]] VCM_LANES_INLINE int Control() const { return m_nControl; }
    [[nodiscard]] VCM_LANES_INLINE const S_ChosenRegion& Region(int nRegion) const {
      return m_regions[nRegion];
    }

   private:
    VCM_LANES_INLINE static void ApplyFirst(S_Categorisation& categorisation) {
      for (std::size_t n = 0; n < kFirstControl; ++n) {
        ++categorisation.categories[Index(categorisation.balances[n])];
      }
    }

    VCM_LANES_INLINE void Step(int nRegion, int nSteps) {
      m_categorisation.categories[Index(nRegion)] += nSteps;
      m_nBits -= m_regions[nRegion].nBits;
      Code(nRegion);
    }

    // One copy is enough.
    [[gnu::noinline]] void Code(int nRegion) {
      const int nCategory =
          std::clamp(m_categorisation.categories[Index(nRegion)], 0, kNoiseCategory);
      switch (nCategory) {
        case 0:
          return CodeAs<0>(nRegion);
        case 1:
          return CodeAs<1>(nRegion);
        case 2:
          return CodeAs<2>(nRegion);
        case 3:
          return CodeAs<3>(nRegion);
        case 4:
          return CodeAs<4>(nRegion);
        case 5:
          return CodeAs<5>(nRegion);
        case 6:
          return CodeAs<6>(nRegion);
        default:
          m_regions[nRegion].nCategory = kNoiseCategory;
          m_regions[nRegion].nBits = 0;
      }
    }
    template <std::size_t nCategory>
    VCM_LANES_INLINE void CodeAs(int nRegion) {
      S_ChosenRegion& region = m_regions[nRegion];
      Regions::template Quantise<nCategory>(m_magnitudes[nRegion],
                                            m_pThresholds[nRegion] + kFirstThreshold[nCategory],
                                            region.vectors);
      const std::uint8_t* pBits = kVectorBits.data() + kFirstVector[nCategory];
      int nBits = 0;
      for (int n = 0; n < kVectorsPerRegion[nCategory]; ++n) nBits += pBits[region.vectors[n]];
      region.nCategory = nCategory;
      region.nBits = nBits;
      m_nBits += nBits;
    }

    S_Categorisation m_categorisation;
    int m_nControl = kFirstControl;
    int m_nBits = 0;
    const std::int16_t* m_pThresholds[kMaxRegions];
    S_ChosenRegion m_regions[kMaxRegions];
    alignas(32) std::int16_t m_magnitudes[kMaxRegions][kLongRegion];
  };

  VCM_LANES_INLINE static void Write(C_WordWriter& writer, const S_ChosenRegion& region,
                                     const std::int16_t* pCoefficients) {
    if (region.nCategory == kNoiseCategory) return;
    switch (kVectorDimension[Index(region.nCategory)]) {
      case 2:
        return WriteVectors<2>(writer, region, pCoefficients);
      case 4:
        return WriteVectors<4>(writer, region, pCoefficients);
      default:
        return WriteVectors<5>(writer, region, pCoefficients);
    }
  }
  template <int nDimension>
  VCM_LANES_INLINE static void WriteVectors(C_WordWriter& writer, const S_ChosenRegion& region,
                                            const std::int16_t* pCoefficients) {
    alignas(16) std::uint16_t positives[16];
    Regions::template Positives<nDimension>(pCoefficients, positives);
    const C_WrittenVector* pVectors =
        kWrittenVectors.data() + kFirstVector[Index(region.nCategory)];
    for (int n = 0; n < kRegionSize / nDimension; ++n) {
      const C_WrittenVector vector = pVectors[region.vectors[n]];
      writer.Put(vector.Word() | kGatheredSigns[vector.Nonzero()][positives[n]], vector.Bits());
    }
  }

  // ---- decoding ----

  // Reads a frame, which becomes the last good one unless it is damaged. False if it is. One copy
  // is enough.
  [[gnu::noinline]] static bool Unpack(S_DecoderState& state, const S_Configuration& configuration,
                                       std::span<const std::uint16_t> words, S_Frame& coefficients,
                                       int& nShift) {
    words = words.first(Index(configuration.nWordsPerFrame));
    C_WordReader reader(words);
    S_Envelope envelope;
    if (!ReadEnvelope(reader, configuration.nRegions, envelope)) [[unlikely]] {
      // The frame is damaged, and only the noise that it would have used matters.
      UnpackFrame(words, configuration.nRegions, state.noise);
      return false;
    }
    if (!UnpackRegions(state.noise, configuration.nRegions, words, reader, envelope, coefficients,
                       nShift)) {
      return false;
    }
    std::memcpy(&state.lastGood.coefficients, &coefficients, sizeof coefficients);
    state.lastGood.nShift = nShift;
    return true;
  }

  // False if an index is not valid.
  VCM_LANES_INLINE static bool ReadEnvelope(C_WordReader& reader, int nRegions,
                                            S_Envelope& envelope) {
    int nPower = static_cast<int>(reader.Next() >> (64 - kFirstPowerBits)) - kFirstPowerOffset;
    reader.Skip(kFirstPowerBits);
    envelope[0] = nPower;
    int nLowest = nPower;
    int nHighest = nPower;
    for (std::size_t r = 1; r < Index(nRegions); ++r) {
      const std::uint64_t qwNext = reader.Next();
      const S_LookedUpStep found =
          kPowerStepLookUps[r - 1][static_cast<std::size_t>(qwNext >> (64 - kPowerStepLookUpBits))];
      int nSymbol = found.bySymbolOrNode;
      int nBits = found.byBits;
      if (nBits == 0) [[unlikely]] {
        nSymbol =
            FinishLookUp<kPowerStepLookUpBits>(kPowerStepTrees[r - 1], nSymbol, qwNext, nBits);
      }
      nPower += nSymbol + kLowestPowerStep;
      envelope[r] = nPower;
      nLowest = std::min(nLowest, nPower);
      nHighest = std::max(nHighest, nPower);
      reader.Skip(nBits);
    }
    return nLowest >= kLowestPower && nHighest <= kHighestPower;
  }

  // The symbol of a code word that is longer than a look-up, and its length.
  template <int nLookUpBits>
  VCM_LANES_INLINE static int FinishLookUp(const auto& tree, int nNode, std::uint64_t qwNext,
                                           int& nBits) {
    nBits = nLookUpBits;
    do {
      nNode = tree[Index(nNode)][static_cast<std::size_t>(qwNext >> (63 - nBits++) & 1)];
    } while (nNode > 0);
    return -nNode;
  }
  [[gnu::noinline]] static C_LookedUpVector FindLongVector(std::size_t nCategory, int nNode,
                                                           std::uint64_t qwNext) {
    int nBits = 0;
    const int nVector =
        FinishLookUp<kVectorLookUpBits>(kVectorTrees[nCategory], nNode, qwNext, nBits);
    const std::size_t n = kFirstVector[nCategory] + Index(nVector);
    return {n, nBits, kWrittenVectors[n].Nonzero()};
  }

  // What was read of a region, but for its levels.
  struct S_ReadSigns {
    bool bEnough = true;
    std::uint32_t dwPositive = 0;  // bit i: coefficient i has a positive sign
    std::uint32_t dwNonzero = 0;   // bit i: coefficient i has a sign
  };

  // When the bits run out, the reader stands where C_BitReader would.
  template <int nDimension>
  VCM_LANES_INLINE static S_ReadSigns ReadVectors(C_WordReader& reader, std::size_t nCategory,
                                                  std::int16_t* pLevels) {
    constexpr std::size_t kCopied = nDimension == 5 ? 8 : nDimension;
    const auto& lookUp = kVectorLookUps[nCategory];
    S_ReadSigns signs;
    std::uint64_t qwNext = 0;
#pragma GCC unroll 10
    for (int n = 0; n < kRegionSize / nDimension; ++n) {
      // Two vectors have at most 42 bits.
      if (n % 2 == 0) qwNext = reader.Next();
      C_LookedUpVector found = lookUp[static_cast<std::size_t>(qwNext >> (64 - kVectorLookUpBits))];
      if (found.Bits() == 0) [[unlikely]] {
        found = FindLongVector(nCategory, static_cast<int>(found.VectorOrNode()), qwNext);
      }
      if (reader.BitsLeft() < found.Bits()) [[unlikely]] {
        const int nWord = found.Bits() - kCounts[found.Nonzero()];
        reader.Skip(std::min(nWord, std::max(reader.BitsLeft(), 0)));
        signs.bEnough = false;
        return signs;
      }
      const std::uint64_t qwWritten = qwNext >> (64 - found.Bits());
      qwNext <<= found.Bits();
      reader.Skip(found.Bits());
      const int nFirst = n * nDimension;
      signs.dwPositive |=
          std::uint32_t{kSpreadSigns[found.Nonzero()][static_cast<std::size_t>(qwWritten % kSets)]}
          << nFirst;
      signs.dwNonzero |= found.Nonzero() << nFirst;
      std::memcpy(pLevels + nFirst, kVectorLevels[found.VectorOrNode()].data(),
                  kCopied * sizeof(std::int16_t));
    }
    return signs;
  }

  VCM_LANES_INLINE static S_ReadSigns ReadVectors(C_WordReader& reader, std::size_t nCategory,
                                                  std::int16_t* pLevels) {
    switch (kVectorDimension[nCategory]) {
      case 2:
        return ReadVectors<2>(reader, nCategory, pLevels);
      case 4:
        return ReadVectors<4>(reader, nCategory, pLevels);
      default:
        return ReadVectors<5>(reader, nCategory, pLevels);
    }
  }

  // The signs of noise. One random number is for each half of the region, its lowest bit for the
  // first of the coefficients that take noise.
  VCM_LANES_INLINE static std::uint32_t NoiseSigns(C_FastNoise& noise, std::uint32_t dwNonzero) {
    std::uint32_t dwPositive = 0;
    for (int nHalf = 0; nHalf < kRegionSize; nHalf += kRegionSize / 2) {
      const std::uint32_t dwNoise = noise.Next();
      const std::uint32_t dwFirst = ~(dwNonzero >> nHalf) & 0x1F;
      const std::uint32_t dwSecond = ~(dwNonzero >> (nHalf + 5)) & 0x1F;
      dwPositive |= std::uint32_t{kSpreadNoise[dwFirst][dwNoise & 0x1F]} << nHalf |
                    std::uint32_t{kSpreadNoise[dwSecond][dwNoise >> kCounts[dwFirst] & 0x1F]}
                        << (nHalf + 5);
    }
    return dwPositive;
  }
  // The same where all coefficients take noise.
  VCM_LANES_INLINE static std::uint32_t NoiseSigns(C_FastNoise& noise) {
    const std::uint32_t dwFirst = noise.Next() & 0x3FF;
    return dwFirst | (noise.Next() & 0x3FF) << 10;
  }

  // ScaleOf, for a valid envelope.
  VCM_LANES_INLINE static S_Scale Scale(const S_Envelope& envelope, int nRegions) {
    int nSum = 0;
    int nTop = 0;
    for (int r = 0; r < nRegions; ++r) {
      const int nEntry = envelope[Index(r)] + kPowerIndexZero;
      nSum += kStandardDeviation[Index(nEntry)];
      nTop = std::max(nTop, nEntry);
    }
    // A sum that is limited at each step is limited once at the end: nothing in it is negative.
    nSum = std::min(nSum, 32767);
    S_Scale scale;
    scale.nShift = kHighestShift;
    for (; scale.nShift >= 0 && (nSum >= 8 || nTop > 28); --scale.nShift, nTop -= 2) nSum >>= 1;
    for (int r = 0; r < nRegions; ++r) {
      scale.deviation[Index(r)] =
          kDeviationsOfPowers[Index(envelope[Index(r)] + kPowerIndexZero + 2 * scale.nShift)];
    }
    return scale;
  }

  // Whether every bin but 0 comes out as a positive number.
  VCM_LANES_INLINE static bool AreLevelsPositive(std::size_t nCategory, std::int16_t nDeviation) {
    return nDeviation >= kDeviations[nCategory].nLeast &&
           nDeviation <= kDeviations[nCategory].nMost;
  }

  // False if the frame is damaged.
  VCM_LANES_INLINE static bool UnpackRegions(S_NoiseGenerator& generator, int nRegions,
                                             std::span<const std::uint16_t> words,
                                             C_WordReader& reader, const S_Envelope& envelope,
                                             S_Frame& coefficients, int& nShift) {
    const S_Scale scale = Scale(envelope, nRegions);
    const auto nControl = static_cast<int>(reader.Next() >> (64 - kControlBits));
    reader.Skip(kControlBits);
    S_Categorisation categorisation = CategoriseValid(reader.BitsLeft(), envelope, nRegions);
    for (int n = 0; n < nControl; ++n) {
      ++categorisation.categories[Index(categorisation.balances[Index(n)])];
    }

    C_FastNoise noise(generator);
    bool bEnough = true;
    for (int r = 0; r < nRegions; ++r) {
      const int nCategory = std::clamp(categorisation.categories[Index(r)], 0, kNoiseCategory);
      bEnough = ReadRegion(reader, words, bEnough ? nCategory : kNoiseCategory, bEnough,
                           scale.deviation[Index(r)], noise, Coefficients(coefficients, r));
    }
    noise.Put(generator);
    std::fill(Coefficients(coefficients, nRegions), coefficients.data() + coefficients.size(),
              std::int16_t{0});
    nShift = scale.nShift;
    return IsValidEnd(reader, bEnough, nControl);
  }

  VCM_LANES_INLINE static bool ReadRegion(C_WordReader& reader,
                                          std::span<const std::uint16_t> words, int nCategory,
                                          bool bEnough, std::int16_t nDeviation, C_FastNoise& noise,
                                          std::int16_t* pRegion) {
    if (nCategory < kNoiseCategory) {
      if (!AreLevelsPositive(Index(nCategory), nDeviation)) [[unlikely]] {
        return ReadPlainly(reader, words, nCategory, nDeviation, noise, pRegion);
      }
      alignas(32) std::int16_t levels[kLongRegion + 4];
      const S_ReadSigns signs = ReadVectors(reader, Index(nCategory), levels);
      if (signs.bEnough) [[likely]] {
        if (nCategory < kFirstNoiseFillCategory) {
          Regions::Dequantise(levels, nDeviation, signs.dwPositive, pRegion);
        } else {
          Regions::DequantiseAndFill(levels, nDeviation, NoiseLevel(nDeviation, nCategory),
                                     signs.dwPositive | NoiseSigns(noise, signs.dwNonzero),
                                     pRegion);
        }
        return true;
      }
      bEnough = false;
    }
    Regions::Fill(NoiseLevel(nDeviation, kNoiseCategory), NoiseSigns(noise), pRegion);
    return bEnough;
  }
  VCM_LANES_INLINE static std::int16_t NoiseLevel(std::int16_t nDeviation, int nCategory) {
    return MulQ15(nDeviation, kNoiseFillFactor[Index(nCategory - kFirstNoiseFillCategory)]);
  }

  // For deviations so small that a bin may come out as 0.
  [[gnu::noinline]] static bool ReadPlainly(C_WordReader& reader,
                                            std::span<const std::uint16_t> words, int nCategory,
                                            std::int16_t nDeviation, C_FastNoise& noise,
                                            std::int16_t* pRegion) {
    C_BitReader bits(words, reader.BitsTaken());
    const S_Region region(pRegion, kRegionSize);
    const bool bEnough = kestrel::ReadRegion(bits, nCategory, nDeviation, region);
    S_NoiseGenerator generator;
    noise.Put(generator);
    FillWithNoise(generator, bEnough ? nCategory : kNoiseCategory, nDeviation, region);
    noise = C_FastNoise(generator);
    reader.Skip(reader.BitsLeft() - bits.BitsLeft());
    return bEnough;
  }

  // See IsValidEnd in Decoder.cpp.
  VCM_LANES_INLINE static bool IsValidEnd(C_WordReader& reader, bool bEnough, int nControl) {
    int nLeft = reader.BitsLeft() - (bEnough ? 0 : 1);
    if (nLeft < 0) return nControl == kControlValues - 1;
    constexpr int kAtOnce = 56;
    for (; nLeft > 0; nLeft -= kAtOnce) {
      const int nBits = std::min(nLeft, kAtOnce);
      if (~reader.Next() >> (64 - nBits) != 0) return false;
      reader.Skip(nBits);
    }
    return true;
  }

  // Plays the last good frame once, then silence.
  [[gnu::noinline]] static void Repeat(S_DecoderState& state,
                                       std::span<std::int16_t, kSamplesPerFrame> samples) {
    const S_Spectrum spectrum = std::exchange(state.lastGood, S_Spectrum{});
    Transforms::Inverse(state.overlap, spectrum.coefficients, spectrum.nShift, samples);
  }
};

}  // namespace kestrel
