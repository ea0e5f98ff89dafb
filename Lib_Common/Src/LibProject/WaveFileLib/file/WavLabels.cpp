// SPDX-License-Identifier: Apache-2.0
#include "file/WavLabels.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "CLArray.h"
#include "VcmAssert.h"
#include "annotation/EventTagMgr.h"
#include "annotation/SampleRangeList.h"
#include "annotation/SilenceSegment.h"
#include "annotation/UncompressRegion.h"
#include "file/CuedEvents.h"

namespace wavlabels {
namespace {

constexpr const char* kSource = "WaveFileLib/WavFile";
constexpr vcm::S_AssertSite kWriteSite{"WriteFile", kSource};
constexpr vcm::S_AssertSite kDecodeSite{"DecodeLabel", kSource};
constexpr const char* kRangePurpose = "rgn ";

using C_SilenceList = C_CLArray<C_SilenceSegment*, I_SilenceSegment*, true>;
using C_RegionList = C_CLArray<C_UncompressRegion*, I_UncompressRegion*, true>;

// Finds the characters of a pattern in their order, but not necessarily next to each other.
template <std::size_t nSize>
class C_PatternCursor {
 public:
  explicit C_PatternCursor(const char (&szPattern)[nSize + 1]) : m_pattern(szPattern, nSize) {}

  bool IsComplete() const { return m_nMatched == nSize; }
  bool Advance(char c, std::size_t nPosition) {
    if (c != m_pattern[m_nMatched]) return false;
    m_positions[m_nMatched++] = nPosition;
    return true;
  }
  std::size_t Position(std::size_t nCharacter) const { return m_positions[nCharacter]; }

 private:
  std::string_view m_pattern;
  std::size_t m_positions[nSize] = {};
  std::size_t m_nMatched = 0;
};

// The decimal number at the start of the text, as atoi reads it; at most 31 characters are read. A
// number beyond 32 bits keeps its low 32 bits; one beyond 64 bits is limited to 64 bits first.
int Number(std::string_view text) {
  const std::string strDigits(text.substr(0, 31));
  return static_cast<int>(std::strtoll(strDigits.c_str(), nullptr, 10));
}

S_LabelMeaning Event(int nMain, int nSub) {
  return {S_LabelMeaning::Kind::Event, static_cast<unsigned short>(nMain),
          static_cast<unsigned short>(nSub)};
}

// First and last sample of a range label. With length 0, the end lies before the start.
std::pair<unsigned int, unsigned int> Range(unsigned int dwStart, unsigned int dwLength) {
  return {dwStart, dwStart + dwLength - 1};
}

// The sample counts of the labelled texts.
class C_RangeLengths {
 public:
  explicit C_RangeLengths(I_WavDataListInfo& listInfo) {
    for (int i = 0; i < listInfo.GetLtxtCount(); ++i) {
      unsigned int dwID = 0;
      listInfo.GetLtxtByIndex(i, &dwID, &m_dwLast);
      m_lengths.Add(dwID, m_dwLast);
    }
    m_lengths.Sort();
  }
  // Kept: an identifier without a labelled text gets the length of the last one in the file, as
  // readers of these files have always done. Without any labelled text the length is 0. Pinned by
  // RangeWithoutItsLabelledText_TakesTheLastOne.
  [[nodiscard]] unsigned int Find(unsigned int dwID) const {
    return m_lengths.Find(dwID).value_or(m_dwLast);
  }

 private:
  cuedevents::C_ByID m_lengths;
  unsigned int m_dwLast = 0;
};

// Collects the annotations of a file label by label.
class C_AnnotationReader {
 public:
  C_AnnotationReader(I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo, bool bEvents,
                     bool bCutShort)
      : m_positions(cuedevents::Positions(cueInfo)),
        m_lengths(listInfo),
        m_bEvents(bEvents),
        m_bCutShort(bCutShort) {}

  void Read(const char* pszLabel, unsigned int dwID) {
    VCM_ASSERT(nullptr != pszLabel, "DecodeLabel", kSource, __LINE__, "NULL != pszLabel");
    const S_LabelMeaning label = ParseLabel(pszLabel);
    if (label.eKind == S_LabelMeaning::Kind::Other) return;
    if (label.eKind == S_LabelMeaning::Kind::Event && !m_bEvents) return;
    const std::optional<unsigned int> dwPosition = m_positions.Find(dwID);
    if (!dwPosition && m_bCutShort) return;
    VCM_ASSERT(dwPosition, "DecodeLabel", kSource, __LINE__, "NULL != pICuePoint");
    Place(label, *dwPosition, dwID);
  }

  void GiveTo(I_WavData& wavData, I_EventTagMgr& events) {
    cuedevents::AddEvents(events, m_events);
    wavData.SetSilenceSegmentList(&m_silence);
    wavData.SetUncompressRegionList(&m_regions);
  }

 private:
  void Place(const S_LabelMeaning& label, unsigned int dwPosition, unsigned int dwID) {
    if (label.eKind == S_LabelMeaning::Kind::Event) {
      m_events.push_back({dwPosition, label.wMain, label.wSub, 0});
      return;
    }
    const auto [dwStart, dwEnd] = Range(dwPosition, m_lengths.Find(dwID));
    if (label.eKind == S_LabelMeaning::Kind::Silence) {
      vcm::AppendRange(m_silence, dwStart, dwEnd);
    } else {
      vcm::AppendRange(m_regions, dwStart, dwEnd);
    }
  }

  cuedevents::C_ByID m_positions;
  C_RangeLengths m_lengths;
  bool m_bEvents;
  bool m_bCutShort;
  std::vector<C_EventTagMgr::S_SampleEvent> m_events;
  C_SilenceList m_silence;
  C_RegionList m_regions;
};

// Writes annotations under identifiers that count from 1.
class C_AnnotationWriter {
 public:
  C_AnnotationWriter(I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo)
      : m_listInfo(listInfo), m_cueInfo(cueInfo) {
    m_cueInfo.Reset();
    m_listInfo.RemoveAllLabels();
    m_listInfo.RemoveAllLtxts();
  }

  void Event(I_EventTag& event) {
    const std::string strText = EventLabel(event.GetMainCommandIndex(), event.GetSubCommandIndex());
    Point(event.GetSamplePos(), strText.c_str());
  }
  void Range(unsigned int dwStart, unsigned int dwSamples, const char* pszLabel) {
    Point(dwStart, pszLabel);
    m_listInfo.AddLtxt(m_dwID, dwSamples, kRangePurpose);
  }

 private:
  void Point(unsigned int dwSamplePos, const char* pszLabel) {
    ++m_dwID;
    cuedevents::AddPoint(m_cueInfo, m_listInfo, m_dwID, dwSamplePos, pszLabel);
  }

  I_WavDataListInfo& m_listInfo;
  I_WavDataCueInfo& m_cueInfo;
  unsigned int m_dwID = 0;
};

void SaveEvents(C_AnnotationWriter& writer, I_WavData& wavData) {
  for (I_EventTag* pIEvent :
       cuedevents::EventsOf(cuedevents::ManagerOf(wavData, kWriteSite), kWriteSite)) {
    writer.Event(*pIEvent);
  }
}

void SaveSilence(C_AnnotationWriter& writer, I_WavData::SilenceList& list) {
  for (int i = 0; i < list.GetSize(); ++i) {
    I_SilenceSegment* piSilenceSegment = list.GetItemByIndex(i);
    VCM_ASSERT(nullptr != piSilenceSegment, "WriteFile", kSource, __LINE__,
               "NULL != piSilenceSegment");
    writer.Range(piSilenceSegment->GetStartSamplePos(), piSilenceSegment->GetSampleSize(),
                 kSilenceLabel);
  }
}

void SaveRegions(C_AnnotationWriter& writer, I_WavData::RegionList& list) {
  for (int i = 0; i < list.GetSize(); ++i) {
    I_UncompressRegion* piUncompressRegion = list.GetItemByIndex(i);
    VCM_ASSERT(nullptr != piUncompressRegion, "WriteFile", kSource, __LINE__,
               "NULL != piUncompressRegion");
    writer.Range(piUncompressRegion->GetStartSamplePos(), piUncompressRegion->GetSampleSize(),
                 kRegionLabel);
  }
}

}  // namespace

// Kept: the characters of "u__" and "e_" need not be next to each other, so ordinary words with a
// "u" and two underscores after it, or an "e" and one underscore, are events, too. Files in use
// rely on labels with such prefixes. Pinned by LabelTexts_MeanWhatTheirLettersSay.
S_LabelMeaning ParseLabel(const char* pszText) {
  const std::string_view text(pszText);
  C_PatternCursor<3> twoNumbers("u__");
  C_PatternCursor<2> oneNumber("e_");
  for (std::size_t i = 0; i < text.size() && !twoNumbers.IsComplete() && !oneNumber.IsComplete();
       ++i) {
    if (!twoNumbers.Advance(text[i], i)) oneNumber.Advance(text[i], i);
  }
  if (twoNumbers.IsComplete()) {
    const std::size_t nMain = twoNumbers.Position(1) + 1;
    const std::size_t nSub = twoNumbers.Position(2) + 1;
    return Event(Number(text.substr(nMain, nSub - 1 - nMain)), Number(text.substr(nSub)));
  }
  if (text == kSilenceLabel) return {.eKind = S_LabelMeaning::Kind::Silence};
  if (text == kRegionLabel) return {.eKind = S_LabelMeaning::Kind::Region};
  if (!oneNumber.IsComplete()) return {};
  // The older form with both indices in one number. It is read but never written.
  const int nBoth = Number(text.substr(oneNumber.Position(1) + 1));
  return Event(nBoth >> 16, nBoth);
}

std::string EventLabel(unsigned short wMain, unsigned short wSub) {
  return "u_" + std::to_string(wMain) + "_" + std::to_string(wSub);
}

void LoadAnnotations(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo,
                     bool bCutShort) {
  I_EventTagMgr& events = cuedevents::ManagerOf(wavData, kDecodeSite);
  C_AnnotationReader reader(listInfo, cueInfo, events.GetSampleRate() > 0, bCutShort);
  for (int i = 0; i < listInfo.GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const char* pszLabel = listInfo.GetLabelByIndex(i, &dwID);
    reader.Read(pszLabel, dwID);
  }
  reader.GiveTo(wavData, events);
}

void SaveAnnotations(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo) {
  C_AnnotationWriter writer(listInfo, cueInfo);
  SaveEvents(writer, wavData);
  SaveSilence(writer, *wavData.GetSilenceSegmentList());
  SaveRegions(writer, *wavData.GetUncompressRegionList());
}

}  // namespace wavlabels
