// SPDX-License-Identifier: Apache-2.0
#include "kestrel/VectorCoder.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "kestrel/BasicOperators.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/TablesThresholds.h"
#include "kestrel/TablesVectorCodes.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaxDimension = 5;

// Maps magnitudes to bins for one category and power. It holds the inverse of step * standard
// deviation in Q13 plus two more bits, and the rounding offset in the same two parts.
struct S_Quantiser {
  int nInverse;
  int nInverseLowBits;
  int nOffset;
  int nOffsetLowBits;
  int nMaxBin;

  S_Quantiser(int nCategory, int nPowerEntry) {
    const std::size_t k = Index(nCategory);
    const int nInverseQ15 =
        (kStepSizeInverse[k] * kStandardDeviationInverse[Index(nPowerEntry)] + 4096) >> 13;
    nInverse = nInverseQ15 >> 2;
    nInverseLowBits = nInverseQ15 & 3;
    nOffset = kDeadZone[k];
    nOffsetLowBits = kDeadZoneLowBits[k];
    nMaxBin = kMaxBin[k];
  }

  int Bin(std::int16_t nCoefficient) const {
    const int nMagnitude = Mag(nCoefficient);
    const int nLow = (nMagnitude * nInverseLowBits + nOffsetLowBits) >> 2;
    return std::min((nMagnitude * nInverse + nOffset + nLow) >> 13, nMaxBin);
  }
};

S_CodedRegion::S_Vector CodeVector(std::span<const std::int16_t> coefficients,
                                   const S_Quantiser& quantiser, std::span<const S_Code> codes) {
  int nIndex = 0;
  int nSignBits = 0;
  std::uint32_t dwSigns = 0;
  for (const std::int16_t nCoefficient : coefficients) {
    const int nBin = quantiser.Bin(nCoefficient);
    nIndex = nIndex * (quantiser.nMaxBin + 1) + nBin;
    if (nBin == 0) continue;
    dwSigns = dwSigns << 1 | (nCoefficient > 0 ? 1u : 0u);
    ++nSignBits;
  }
  const S_Code code = codes[Index(nIndex)];
  return {std::uint32_t{code.wWord} << nSignBits | dwSigns, code.byBits + nSignBits};
}

using S_Bins = std::array<int, kMaxDimension>;

// The digits of a vector index, most significant first; the first nDimension entries are used.
S_Bins SplitIndex(int nIndex, int nBase, std::size_t nDimension) {
  S_Bins bins{};
  for (std::size_t i = nDimension; i-- > 0; nIndex /= nBase) bins[i] = nIndex % nBase;
  return bins;
}

// The vector index, or nothing when the bits run out before its code word ends.
std::optional<int> ReadVectorIndex(C_BitReader& reader, std::span<const S_TreeNode> tree) {
  int nNode = 0;
  do {
    if (reader.BitsLeft() <= 0) return std::nullopt;
    nNode = tree[Index(nNode)][Index(reader.Bit())];
  } while (nNode > 0);
  return -nNode;
}

// Kept: a sign is used up by a value that is not 0, not by a bin that is not 0. With a small
// deviation a bin can come out as 0, and its sign then serves the next coefficient of the vector.
// Existing streams have been decoded that way from the start; a decoder that kept bins and signs
// together would play other samples. Pinned by ABinThatComesOutAsZero_LeavesItsSignToTheNext.
void Dequantise(const S_Bins& bins, int nSigns, int nSignBits, int nCategory,
                std::int16_t nDeviation, std::span<std::int16_t> coefficients) {
  for (std::size_t i = 0; i < coefficients.size(); ++i) {
    const int nCentroid = kCentroid[Index(nCategory)][Index(bins[i])];
    coefficients[i] = Wrap16(nDeviation * nCentroid >> 12);
    if (coefficients[i] == 0) continue;
    if ((nSigns >> --nSignBits & 1) == 0) coefficients[i] = Neg(coefficients[i]);
  }
}

bool ReadVector(C_BitReader& reader, int nCategory, std::int16_t nDeviation,
                std::span<std::int16_t> coefficients) {
  const auto nIndex = ReadVectorIndex(reader, kVectorTrees[Index(nCategory)]);
  if (!nIndex) return false;
  const S_Bins bins = SplitIndex(*nIndex, kMaxBin[Index(nCategory)] + 1, coefficients.size());
  const auto nSignBits =
      static_cast<int>(std::count_if(bins.begin(), bins.end(), [](int nBin) { return nBin != 0; }));
  if (reader.BitsLeft() < nSignBits) return false;
  Dequantise(bins, reader.Bits(nSignBits), nSignBits, nCategory, nDeviation, coefficients);
  return true;
}

}  // namespace

int RescaleRegion(S_Region region, int nPowerEntry) noexcept {
  const int nShift = (nPowerEntry - (kHighestPowerEntry - 1)) >> 1;
  if (nShift <= 0) return nPowerEntry;
  for (auto& nCoefficient : region) {
    nCoefficient = static_cast<std::int16_t>(nCoefficient >> nShift);
  }
  return nPowerEntry - 2 * nShift;
}

S_CodedRegion CodeRegion(S_ConstRegion region, int nCategory, int nPowerEntry) noexcept {
  S_CodedRegion coded;
  if (nCategory == kNoiseCategory) return coded;
  const S_Quantiser quantiser(nCategory, nPowerEntry);
  const std::size_t nDimension = Index(kVectorDimension[Index(nCategory)]);
  for (std::size_t nFirst = 0; nFirst < kRegionSize; nFirst += nDimension) {
    const auto vector = CodeVector(std::span(region).subspan(nFirst, nDimension), quantiser,
                                   kVectorCodes[Index(nCategory)]);
    coded.vectors[Index(coded.nVectors++)] = vector;
    coded.nBits += vector.nBits;
  }
  return coded;
}

void WriteRegion(C_BitWriter& writer, const S_CodedRegion& coded) noexcept {
  for (int n = 0; n < coded.nVectors; ++n) {
    writer.Put(coded.vectors[Index(n)].dwWord, coded.vectors[Index(n)].nBits);
  }
}

bool ReadRegion(C_BitReader& reader, int nCategory, std::int16_t nDeviation,
                S_Region region) noexcept {
  const std::size_t nDimension = Index(kVectorDimension[Index(nCategory)]);
  for (std::size_t nFirst = 0; nFirst < kRegionSize; nFirst += nDimension) {
    const auto vector = std::span(region).subspan(nFirst, nDimension);
    if (!ReadVector(reader, nCategory, nDeviation, vector)) return false;
  }
  return true;
}

}  // namespace kestrel
