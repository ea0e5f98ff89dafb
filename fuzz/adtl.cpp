// SPDX-License-Identifier: Apache-2.0
//
// Treats any bytes as the payload of a "LIST" chunk: loads labels and labelled texts, and saves
// them.
//
//   scripts/fuzz.sh 60 adtl
//
// Input: the payload, beginning with "adtl". Seeds: what our own writer saves.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Require.h"
#include "RiffFile.h"
#include "chunk/WavDataListInfo.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

bool Load(C_WavDataListInfo& info, const std::uint8_t* pData, std::size_t cbData) {
  C_RiffChunk chunk("LIST", static_cast<unsigned int>(cbData));
  chunk.SetData(pData);
  return info.LoadInfo(&chunk);
}

Bytes Save(C_WavDataListInfo& info) {
  C_RiffChunk chunk("LIST", info.GetChunkLength());
  Require(info.SaveInfo(&chunk));
  Bytes payload(chunk.GetDataLength());
  Require(chunk.GetData(payload.data(), chunk.GetDataLength(), 0));
  return payload;
}

void CheckEntries(C_WavDataListInfo& info, std::size_t cbData) {
  const auto nEntries = static_cast<std::size_t>(info.GetLabelCount()) +
                        static_cast<std::size_t>(info.GetLtxtCount());
  Require(nEntries * 12 <= cbData);
  for (int i = 0; i < info.GetLabelCount(); ++i) {
    Require(std::strlen(info.GetLabelByIndex(i, nullptr)) <= C_WavDataListInfo::kMaxLabelText);
  }
  for (int i = 0; i < info.GetLtxtCount(); ++i) {
    Require(info.GetLtxtByIndex(i, nullptr, nullptr) != nullptr);
  }
}

// What is added behind the others is there, with the text cut at its limit.
void CheckAdding(C_WavDataListInfo& info, const std::uint8_t* pData, std::size_t cbData) {
  const std::string strText(reinterpret_cast<const char*>(pData),
                            strnlen(reinterpret_cast<const char*>(pData), cbData));
  const auto dwID = static_cast<unsigned int>(cbData);
  const int nLabels = info.GetLabelCount();
  const int nLtxts = info.GetLtxtCount();
  const unsigned int dwLength = info.GetChunkLength();
  Require(info.AddLabel(dwID, strText.c_str()) && info.AddLtxt(dwID, dwID + 1, "abcd"));
  const std::string strExpected = strText.substr(0, C_WavDataListInfo::kMaxLabelText);
  Require(info.GetChunkLength() ==
          dwLength + 12 + ((strExpected.size() + 2) & ~std::size_t{1}) + 28);
  unsigned int dwFoundID = 0;
  unsigned int dwFoundLength = 0;
  Require(info.GetLabelByIndex(nLabels, &dwFoundID) == strExpected && dwFoundID == dwID);
  const char* pszPurpose = info.GetLtxtByIndex(nLtxts, &dwFoundID, &dwFoundLength);
  Require(std::strncmp(pszPurpose, "abcd", 4) == 0 && dwFoundLength == dwID + 1);
  info.RemoveAllLabels();
  info.RemoveAllLtxts();
  Require(info.GetLabelCount() == 0 && info.GetLtxtCount() == 0 && info.GetChunkLength() == 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_WavDataListInfo info;
  static_cast<void>(Load(info, pData, cbData));
  CheckEntries(info, cbData);
  const Bytes saved = Save(info);
  C_WavDataListInfo again;
  Require(Load(again, saved.data(), saved.size()));
  Require(Save(again) == saved);
  CheckAdding(again, pData, cbData);
  return 0;
}
