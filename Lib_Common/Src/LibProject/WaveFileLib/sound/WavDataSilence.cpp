// SPDX-License-Identifier: Apache-2.0
//
// Silence: finding it, keeping it as segments, muting the segments. Also the uncompressed regions,
// whose list follows the same rules.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "VcmAssert.h"
#include "annotation/SampleRangeList.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kMaxThreshold = 2047;  // the largest value of the 12-bit scale
constexpr unsigned int kThresholdBits = 12;

int ScaledThreshold(unsigned int dwThreshold, unsigned short wBits) {
  if (wBits < kThresholdBits) return static_cast<int>(dwThreshold >> (kThresholdBits - wBits));
  return static_cast<int>(dwThreshold << ((wBits - kThresholdBits) & 31U));
}

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
  bool bInRun = false;
  unsigned int dwRunStart = 0;
  for (std::uint64_t qwSample = dwStartSample; qwSample <= dwEndSample; ++qwSample) {
    const auto dwSample = static_cast<unsigned int>(qwSample);
    const int nMean = MeanValue(dwSample, wFirstChannel, wLastChannel);
    // The lower bound is the complement, because two's complement has one more value below zero.
    const bool bQuiet = ~nThreshold <= nMean && nMean <= nThreshold;
    if (bQuiet && !bInRun) dwRunStart = dwSample;
    if (!bQuiet && bInRun && dwSample - dwRunStart >= dwMinLength) {
      vcm::AppendRange(m_silenceSegments, dwRunStart, dwSample - 1);
    }
    bInRun = bQuiet;
  }
  // Kept: a run that reaches the end must be one sample longer than a run that ends before it.
  // Segments in existing files were found this way. Pinned by RunUpToTheEnd_NeedsOneSampleMore.
  if (bInRun && dwEndSample - dwRunStart >= dwMinLength) {
    vcm::AppendRange(m_silenceSegments, dwRunStart, dwEndSample);
  }
}

// Kept: the sum wraps in 32 bits and opposite channels cancel out; the threshold has always been
// applied to this mean. Pinned by OppositeChannels_AreQuiet.
int C_WavData::MeanValue(unsigned int dwSamplePos, unsigned short wFirstChannel,
                         unsigned short wLastChannel) {
  unsigned int dwSum = 0;
  for (unsigned int dwChannel = wFirstChannel; dwChannel <= wLastChannel; ++dwChannel) {
    dwSum += static_cast<unsigned int>(
        m_pcmBuffer.GetSampleValueInt(dwSamplePos, static_cast<unsigned short>(dwChannel)));
  }
  return static_cast<int>(dwSum) / (wLastChannel - wFirstChannel + 1);
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
    for (unsigned int dwSample = range.dwStart; dwSample < dwSamples && dwSample <= range.dwEnd;
         ++dwSample) {
      for (unsigned int dwChannel = 0; dwChannel < m_wavInfo.GetChannels(); ++dwChannel) {
        m_pcmBuffer.SetSampleValueInt(dwSample, 0, static_cast<unsigned short>(dwChannel));
      }
    }
  }
}
