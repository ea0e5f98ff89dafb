// SPDX-License-Identifier: Apache-2.0
//
// Sound file objects that are owned, and access to their parts without casts.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "file/WavFile.h"
#include "interface/I_WavDataInfo.h"

using C_WavObjectPtr = std::unique_ptr<C_WavFile, S_WavFileReleaser>;

inline C_WavObjectPtr MakeWav() { return C_WavObjectPtr(new C_WavFile); }

// A loaded file. When it does not load, the test fails and the object has no samples.
inline C_WavObjectPtr LoadWav(const std::string& strPath) {
  C_WavObjectPtr file = MakeWav();
  EXPECT_TRUE(file->LoadByName(strPath.c_str(), true, nullptr, nullptr)) << strPath;
  return file;
}

inline bool Loads(const std::string& strPath) {
  return MakeWav()->LoadByName(strPath.c_str(), true, nullptr, nullptr);
}
inline bool Opens(const std::string& strPath) { return MakeWav()->OpenByName(strPath.c_str()); }
inline bool Checks(const std::string& strPath) {
  return MakeWav()->CheckFormat(strPath.c_str(), false);
}

inline bool Write(I_WavFile& file, const std::string& strPath) {
  return file.WriteFile(strPath.c_str(), true, false, nullptr, false, 0);
}

template <typename Info>
Info& InfoOf(I_WavFile& file, tagWavDataInfo eType) {
  void* pInfo = nullptr;
  if (!file.GetDataInfo(eType, &pInfo)) throw std::runtime_error("no such info");
  return *static_cast<Info*>(pInfo);
}
inline I_WavDataCueInfo& Cues(I_WavFile& file) {
  return InfoOf<I_WavDataCueInfo>(file, WAV_DATA_INFO_CUE);
}
inline I_WavDataListInfo& List(I_WavFile& file) {
  return InfoOf<I_WavDataListInfo>(file, WAV_DATA_INFO_LIST);
}
inline I_WavDataSamplerInfo& Sampler(I_WavFile& file) {
  return InfoOf<I_WavDataSamplerInfo>(file, WAV_DATA_INFO_SAMPLER);
}
inline I_WavDataExtraChunkInfo& Extra(I_WavFile& file) {
  return InfoOf<I_WavDataExtraChunkInfo>(file, WAV_DATA_INFO_EXTRA_CHUNK);
}

struct S_EventSeen {
  unsigned int dwMain = 0;
  unsigned int dwSub = 0;
  unsigned int dwSamplePos = 0;

  friend bool operator==(const S_EventSeen&, const S_EventSeen&) = default;
};
inline void PrintTo(const S_EventSeen& event, std::ostream* pStream) {
  *pStream << "(" << event.dwMain << ", " << event.dwSub << " at " << event.dwSamplePos << ")";
}
inline std::vector<S_EventSeen> EventsOf(I_WavFile& file) {
  std::vector<S_EventSeen> seen;
  I_CLArray<I_EventTag*>& events = *file.GetWavData()->GetEventTagMgr()->GetEventList();
  for (int i = 0; i < events.GetSize(); ++i) {
    I_EventTag& event = *events.GetItemByIndex(i);
    seen.push_back({event.GetMainCommandIndex(), event.GetSubCommandIndex(), event.GetSamplePos()});
  }
  return seen;
}

// Start and end of each range, both inclusive.
using C_RangesSeen = std::vector<std::pair<unsigned int, unsigned int>>;
template <typename List>
C_RangesSeen RangesOf(List& list) {
  C_RangesSeen seen;
  for (int i = 0; i < list.GetSize(); ++i) {
    auto& range = *list.GetItemByIndex(i);
    seen.emplace_back(range.GetStartSamplePos(), range.GetEndSamplePos());
  }
  return seen;
}
inline C_RangesSeen SilenceOf(I_WavFile& file) {
  return RangesOf(*file.GetWavData()->GetSilenceSegmentList());
}
inline C_RangesSeen RegionsOf(I_WavFile& file) {
  return RangesOf(*file.GetWavData()->GetUncompressRegionList());
}

// Identifier and text of each label.
inline std::vector<std::pair<unsigned int, std::string>> LabelsOf(I_WavFile& file) {
  std::vector<std::pair<unsigned int, std::string>> seen;
  for (int i = 0; i < List(file).GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const char* pszText = List(file).GetLabelByIndex(i, &dwID);
    seen.emplace_back(dwID, pszText);
  }
  return seen;
}

inline std::vector<std::uint8_t> PcmOf(I_WavFile& file) {
  const unsigned char* pbyPcm = file.GetWavDataBuffer();
  if (pbyPcm == nullptr) return {};
  return {pbyPcm, pbyPcm + file.GetWavData()->GetBufferLength()};
}

// A new file object of kind eFormat with a sound in it.
inline C_WavObjectPtr MakeSound(tagAudioFileType eFormat, unsigned int dwRate,
                                unsigned short wChannels, unsigned short wBits,
                                unsigned short wStoreBits, bool bSigned,
                                const std::vector<std::uint8_t>& pcm) {
  C_WavObjectPtr file = MakeWav();
  file->SetFileFormat(eFormat);
  EXPECT_TRUE(file->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size())));
  file->SetWavInfoData(dwRate, wChannels, wBits, wStoreBits, bSigned);
  return file;
}
