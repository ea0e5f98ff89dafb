// SPDX-License-Identifier: Apache-2.0
//
// Compares the format, the PCM and the annotations of two sounds, as far as a RIFF sound file can
// hold them.
#pragma once

#include <algorithm>

#include "interface/I_WavData.h"

template <typename List>
bool RangesAreEqual(List& a, List& b) {
  if (a.GetSize() != b.GetSize()) return false;
  for (int i = 0; i < a.GetSize(); ++i) {
    auto& first = *a.GetItemByIndex(i);
    auto& second = *b.GetItemByIndex(i);
    if (first.GetStartSamplePos() != second.GetStartSamplePos() ||
        first.GetEndSamplePos() != second.GetEndSamplePos()) {
      return false;
    }
  }
  return true;
}

inline bool EventsAreEqual(I_CLArray<I_EventTag*>& a, I_CLArray<I_EventTag*>& b) {
  if (a.GetSize() != b.GetSize()) return false;
  for (int i = 0; i < a.GetSize(); ++i) {
    I_EventTag& first = *a.GetItemByIndex(i);
    I_EventTag& second = *b.GetItemByIndex(i);
    if (first.GetSamplePos() != second.GetSamplePos() ||
        first.GetMainCommandIndex() != second.GetMainCommandIndex() ||
        first.GetSubCommandIndex() != second.GetSubCommandIndex()) {
      return false;
    }
  }
  return true;
}

inline bool FormatsAreEqual(I_WavInfo& a, I_WavInfo& b) {
  return a.GetSampleRate() == b.GetSampleRate() && a.GetByteLength() == b.GetByteLength() &&
         a.GetChannels() == b.GetChannels() && a.GetBitsPerSample() == b.GetBitsPerSample() &&
         a.GetStoreBitsPerSample() == b.GetStoreBitsPerSample() &&
         a.IsValueSigned() == b.IsValueSigned();
}

inline bool SoundsAreEqual(I_WavData& a, I_WavData& b) {
  return FormatsAreEqual(*a.GetWavInfo(), *b.GetWavInfo()) &&
         std::equal(a.GetBuffer(), a.GetBuffer() + a.GetBufferLength(), b.GetBuffer()) &&
         EventsAreEqual(*a.GetEventTagMgr()->GetEventList(), *b.GetEventTagMgr()->GetEventList()) &&
         RangesAreEqual(*a.GetSilenceSegmentList(), *b.GetSilenceSegmentList()) &&
         RangesAreEqual(*a.GetUncompressRegionList(), *b.GetUncompressRegionList());
}
