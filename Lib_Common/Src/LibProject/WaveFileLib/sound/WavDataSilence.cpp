// SPDX-License-Identifier: Apache-2.0
//
// Silence: finding it, keeping it as segments, muting the segments. Also the uncompressed regions,
// whose list follows the same rules.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "VcmAssert.h"
#include "annotation/SampleRangeList.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kMaxThreshold = 2047;  // the largest value of the 12-bit scale
constexpr unsigned int kThresholdBits = 12;
constexpr std::size_t kBlock = 1024;  // samples that are looked at together

int ScaledThreshold(unsigned int dwThreshold, unsigned short wBits) {
  if (wBits < kThresholdBits) return static_cast<int>(dwThreshold >> (kThresholdBits - wBits));
  return static_cast<int>(dwThreshold << ((wBits - kThresholdBits) & 31U));
}

// The sums of channels whose mean is quiet. There are none when the lowest is above the highest.
struct S_QuietSums {
  int nLowest = 0;
  int nHighest = -1;
};

// The mean of a sum is rounded toward zero. The lowest mean is the complement of the threshold,
// because two's complement has one more value below zero.
S_QuietSums QuietSums(int nThreshold, unsigned int nChannels) {
  if (nThreshold < 0) return {};
  const std::int64_t qnBeyond = std::int64_t{nThreshold} + 1;
  constexpr std::int64_t qnMin = std::numeric_limits<int>::min();
  constexpr std::int64_t qnMax = std::numeric_limits<int>::max();
  return {static_cast<int>(std::max(-(qnBeyond + 1) * nChannels + 1, qnMin)),
          static_cast<int>(std::min(qnBeyond * nChannels - 1, qnMax))};
}

// Finds the quiet runs in blocks of sums, one after the other.
template <typename Found>
class C_QuietRuns {
 public:
  // Calls fnFound with the first and the last position of each run.
  C_QuietRuns(unsigned int dwStart, unsigned int dwMinLength, Found fnFound)
      : m_dwPosition(dwStart), m_dwMinLength(dwMinLength), m_fnFound(std::move(fnFound)) {}

  // At most kBlock sums.
  void Take(const S_QuietSums& quiet, std::span<const int> sums) {
    const auto [nLowest, nHighest] = quiet;
    std::array<unsigned char, kBlock> flags{};
    for (std::size_t i = 0; i < sums.size(); ++i) {
      const int nInside = int{sums[i] >= nLowest} & int{sums[i] <= nHighest};
      flags[i] = static_cast<unsigned char>(nInside);
    }
    TakeFlags(std::span(flags).first(sums.size()));
  }
  // Kept: a run that reaches the end must be one sample longer than a run that ends before it.
  // Segments in existing files were found this way. Pinned by RunUpToTheEnd_NeedsOneSampleMore.
  void End() {
    if (m_bInRun && m_dwPosition - 1 - m_dwRunStart >= m_dwMinLength) {
      m_fnFound(m_dwRunStart, m_dwPosition - 1);
    }
  }

 private:
  static constexpr unsigned char kLoud = 0;
  static constexpr unsigned char kQuiet = 1;

  void TakeFlags(std::span<const unsigned char> flags) {
    while (!flags.empty()) {
      const void* const pOther = std::memchr(flags.data(), m_bInRun ? kLoud : kQuiet, flags.size());
      const auto nSame =
          pOther == nullptr
              ? flags.size()
              : static_cast<std::size_t>(static_cast<const unsigned char*>(pOther) - flags.data());
      m_dwPosition += static_cast<unsigned int>(nSame);
      if (pOther != nullptr) Turn();
      flags = flags.subspan(nSame);
    }
  }
  void Turn() {
    if (m_bInRun && m_dwPosition - m_dwRunStart >= m_dwMinLength) {
      m_fnFound(m_dwRunStart, m_dwPosition - 1);
    }
    m_bInRun = !m_bInRun;
    m_dwRunStart = m_dwPosition;
  }

  unsigned int m_dwPosition;
  unsigned int m_dwMinLength;
  Found m_fnFound;
  bool m_bInRun = false;
  unsigned int m_dwRunStart = 0;
};

}  // namespace

C_WavData::SilenceList* C_WavData::DetectSilence(unsigned int dwThreshold, unsigned int dwMinLength,
                                                 bool bReplace) {
  return DetectSilenceRange(dwThreshold, dwMinLength, 0, LastSample(), 0, LastChannel(), bReplace);
}

C_WavData::SilenceList* C_WavData::DetectSilenceRange(unsigned int dwThreshold,
                                                      unsigned int dwMinLength,
                                                      unsigned int dwStartSample,
                                                      unsigned int dwEndSample,
                                                      unsigned short wFirstChannel,
                                                      unsigned short wLastChannel, bool bReplace) {
  if (dwThreshold > kMaxThreshold || wFirstChannel > wLastChannel) return nullptr;
  if (bReplace) {
    const vcm::S_SampleRange range{dwStartSample, dwEndSample};
    vcm::KeepIf(m_silenceSegments, [&](C_SilenceSegment* pSegment) {
      return pSegment == nullptr || !(range.Holds(pSegment->GetStartSamplePos()) ||
                                      range.Holds(pSegment->GetEndSamplePos()));
    });
  }
  if (m_pcmBuffer.GetUnwrappedHeldSampleSize() > 0) {
    const unsigned int dwLastHeld = m_pcmBuffer.GetUnwrappedHeldSampleSize() - 1;
    AddQuietRuns(ScaledThreshold(dwThreshold, m_wavInfo.GetBitsPerSample()), dwMinLength,
                 dwStartSample, std::min(dwEndSample, dwLastHeld), wFirstChannel, wLastChannel);
  }
  MergeSilenceSegments();
  return &m_silenceSegments;
}

void C_WavData::AddQuietRuns(int nThreshold, unsigned int dwMinLength, unsigned int dwStartSample,
                             unsigned int dwEndSample, unsigned short wFirstChannel,
                             unsigned short wLastChannel) {
  const unsigned int nChannels = wLastChannel - wFirstChannel + 1U;
  const S_QuietSums quiet = QuietSums(nThreshold, nChannels);
  C_QuietRuns runs(dwStartSample, dwMinLength, [&](unsigned int dwStart, unsigned int dwEnd) {
    vcm::AppendRange(m_silenceSegments, dwStart, dwEnd);
  });
  std::array<int, kBlock> block{};
  for (std::uint64_t qwSample = dwStartSample; qwSample <= dwEndSample;) {
    const auto nSums = std::min<std::uint64_t>(kBlock, dwEndSample - qwSample + 1);
    const auto sums = std::span(block).first(static_cast<std::size_t>(nSums));
    SumChannels(static_cast<unsigned int>(qwSample), wFirstChannel, wLastChannel, sums);
    runs.Take(quiet, sums);
    qwSample += nSums;
  }
  runs.End();
}

// Kept: the sum wraps in 32 bits and opposite channels cancel out; the threshold has always been
// applied to this mean. Pinned by OppositeChannels_AreQuiet.
void C_WavData::SumChannels(unsigned int dwSamplePos, unsigned short wFirstChannel,
                            unsigned short wLastChannel, std::span<int> sums) {
  m_pcmBuffer.ReadChannel(dwSamplePos, wFirstChannel, sums);
  std::array<int, kBlock> block{};
  const auto values = std::span(block).first(sums.size());
  for (unsigned int dwChannel = wFirstChannel + 1U; dwChannel <= wLastChannel; ++dwChannel) {
    m_pcmBuffer.ReadChannel(dwSamplePos, static_cast<unsigned short>(dwChannel), values);
    for (std::size_t i = 0; i < sums.size(); ++i) {
      sums[i] = static_cast<int>(static_cast<unsigned int>(sums[i]) +
                                 static_cast<unsigned int>(values[i]));
    }
  }
}

C_WavData::SilenceList* C_WavData::AddSilenceSegment(unsigned int dwStart, unsigned int dwEnd) {
  m_silenceSegments.AppendAndMerge(dwStart, dwEnd);
  return &m_silenceSegments;
}

C_WavData::RegionList* C_WavData::AddUncompressRegion(unsigned int dwStart, unsigned int dwEnd) {
  m_uncompressRegions.AppendAndMerge(dwStart, dwEnd);
  return &m_uncompressRegions;
}

void C_WavData::MergeSilenceSegments() { m_silenceSegments.Merge(); }

void C_WavData::MergeUncompressRegions() { m_uncompressRegions.Merge(); }

void C_WavData::SetSilenceSegmentList(SilenceList* pList) {
  vcm::CopyItems(m_silenceSegments, pList);
}

void C_WavData::SetUncompressRegionList(RegionList* pList) {
  vcm::CopyItems(m_uncompressRegions, pList);
}

void C_WavData::MakeSilenceSegmentsMute() {
  std::vector<vcm::S_SampleRange> ranges;
  for (int i = 0; i < m_silenceSegments.GetCount(); ++i) {
    C_SilenceSegment* pSilenceSegment = m_silenceSegments.GetAt(i);
    VCM_ASSERT(pSilenceSegment != nullptr, "MakeSilenceSegmentsMute", "WaveFileLib/WavData", 1280,
               "pSilenceSegment != NULL");
    ranges.push_back({pSilenceSegment->GetStartSamplePos(), pSilenceSegment->GetEndSamplePos()});
  }
  // Each sample is written once, however many segments cover it and however far they reach.
  const unsigned int dwSamples = m_pcmBuffer.GetUnwrappedHeldSampleSize();
  for (const vcm::S_SampleRange& range : vcm::UnionOfSampleRanges(std::move(ranges))) {
    if (range.dwStart >= dwSamples) continue;
    m_pcmBuffer.MuteFrames(range.dwStart, std::min(range.dwEnd, dwSamples - 1) - range.dwStart + 1);
  }
}
