// SPDX-License-Identifier: Apache-2.0
//
// Loads any bytes as a VEF container, as stored and decoded. What was loaded is written and loaded
// again, and must be the same.
//
//   scripts/fuzz.sh 60 vef
//
// Input: a whole file. Seeds: containers of our own writer with a Kestrel stream, events and a cue
// point of the user's.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FuzzFile.h"
#include "Require.h"
#include "SoundsAreEqual.h"
#include "file/KestrelFile.h"
#include "file/VefFile.h"
#include "interface/I_WavDataInfo.h"

namespace {

template <typename File, typename Source>
bool Load(File& file, const Source& source, bool bKeepEncoded) {
  return file.LoadByName(source.Path(), bKeepEncoded, nullptr, nullptr);
}
bool Write(C_VefFile& file, const C_FuzzFile& bytes) {
  return file.WriteFile(bytes.Path(), false, true, nullptr, false, 0);
}

// Claimed lengths beyond the file are believed up to a bound. Filling megabytes with zeros shows
// nothing that a few kilobytes do not, so only a few files of a certain length may claim them.
bool IsSlow(I_WavInfo& info, std::size_t cbFile) {
  constexpr std::size_t kQuick = 1U << 13;
  return info.GetByteLength() > cbFile + kQuick && cbFile % 256 != 0;
}

std::vector<unsigned int> EventData(I_WavFile& file) {
  std::vector<unsigned int> data;
  I_CLArray<I_EventTag*>& events = *file.GetWavData()->GetEventTagMgr()->GetEventList();
  data.reserve(static_cast<std::size_t>(events.GetSize()));
  for (int i = 0; i < events.GetSize(); ++i) data.push_back(events.GetItemByIndex(i)->GetData());
  return data;
}

std::vector<std::pair<unsigned int, std::string>> Labels(I_WavFile& file) {
  void* pInfo = nullptr;
  Require(file.GetDataInfo(WAV_DATA_INFO_LIST, &pInfo));
  auto& list = *static_cast<I_WavDataListInfo*>(pInfo);
  std::vector<std::pair<unsigned int, std::string>> labels;
  for (int i = 0; i < list.GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const char* pszText = list.GetLabelByIndex(i, &dwID);
    labels.emplace_back(dwID, pszText);
  }
  return labels;
}

// The sound is the same after it is written and read. Written once more, the file is the same too.
void CheckRoundTrip(C_VefFile& file) {
  const C_FuzzFile first;
  const C_FuzzFile second;
  if (!Write(file, first)) {
    // Samples of 12 bits that are stored in 12 bits cannot be converted to the 16 that would be
    // written.
    Require(file.GetWavInfo()->GetBitsPerSample() == 12);
    return;
  }
  C_VefFile again;
  Require(Load(again, first, true));
  Require(again.GetCodingType() == file.GetCodingType());
  Require(SoundsAreEqual(*file.GetWavData(), *again.GetWavData()));
  Require(EventData(file) == EventData(again) && Labels(file) == Labels(again));
  Require(Write(again, second) && first.Bytes() == second.Bytes());
}

void CheckKestrel(const C_FuzzFile& bytes, bool bVefLoads, unsigned int dwCodingType) {
  C_KestrelFile stored;
  const bool bForeign = kHeronTypes.Has(dwCodingType);
  Require(Load(stored, bytes, true) == (bVefLoads && !bForeign));
  C_KestrelFile decoded;
  if (!Load(decoded, bytes, false)) return;
  Require(!bForeign && decoded.GetWavInfo()->GetChannels() == 1);
  Require(decoded.GetWavData()->GetBufferLength() % 640 == 0);
  Require(EventData(decoded) == EventData(stored));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const C_FuzzFile bytes({pData, cbData});
  C_VefFile file;
  // Files that are not containers are of no interest here. Other fuzzers handle SP headers.
  if (!file.OpenByName(bytes.Path())) return 0;
  if (IsSlow(*file.GetWavInfo(), cbData)) return 0;
  Require(file.CheckFormat(bytes.Path(), false));
  Require(file.GetWavDataBuffer() == nullptr);
  const bool bLoads = file.LoadData(true, nullptr, nullptr);
  // Opening the file three more times takes more time than everything else.
  if (cbData % 4 == 0) CheckKestrel(bytes, bLoads, file.GetCodingType());
  std::unique_ptr<unsigned char[]> pbyStream;
  unsigned int dwLength = 0;
  if (file.LoadVDATChunk(bytes.Path(), &pbyStream, &dwLength)) {
    Require((pbyStream != nullptr) == (dwLength > 0) && dwLength < cbData);
  }
  if (bLoads) CheckRoundTrip(file);
  return 0;
}
