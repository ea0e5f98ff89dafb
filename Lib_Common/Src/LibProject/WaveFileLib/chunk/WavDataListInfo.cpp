// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataListInfo.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "VCM.h"
#include "chunk/WavDataChunk.h"

namespace {

constexpr std::uint32_t kIDLength = 4;
constexpr std::size_t kPurposeLength = C_WavDataListInfo::kPurposeLength;
constexpr std::uint32_t kSubHeaderLength = 8;
constexpr std::uint32_t kLtxtLength = 20;
constexpr std::string_view kListType = "adtl";
constexpr std::string_view kLabel = "labl";
constexpr std::string_view kLtxt = "ltxt";

// Bytes of the text and its terminating zero, plus one more zero when that makes an odd number.
std::uint32_t StoredTextLength(const char* pszText) {
  return static_cast<std::uint32_t>(std::strlen(pszText) + 2) & ~1u;
}

bool IsID(std::span<const std::uint8_t> bytes, std::string_view id) {
  return std::equal(bytes.begin(), bytes.end(), id.begin(), id.end(),
                    [](std::uint8_t byIn, char chID) { return static_cast<char>(byIn) == chID; });
}

void WriteLtxt(vcm::C_ByteWriter& writer, const C_WavDataListInfo::S_Ltxt& ltxt) {
  writer.Text(kLtxt, kIDLength);
  writer.U32(kLtxtLength);
  writer.U32(ltxt.dwCuePointID);
  writer.U32(ltxt.dwSampleLength);
  writer.Text({ltxt.szPurpose, kPurposeLength}, kPurposeLength);
  for (const unsigned short wField :
       {ltxt.wCountry, ltxt.wLanguage, ltxt.wDialect, ltxt.wCodePage}) {
    writer.U16(wField);
  }
}

void WriteLabel(vcm::C_ByteWriter& writer, const C_WavDataListInfo::S_Label& label) {
  const std::uint32_t cbText = StoredTextLength(label.szText);
  writer.Text(kLabel, kIDLength);
  writer.U32(kIDLength + cbText);
  writer.U32(label.dwCuePointID);
  writer.Text(label.szText, cbText);
}

}  // namespace

unsigned int C_WavDataListInfo::GetChunkLength() {
  std::uint64_t qwLength = kIDLength;
  for (int i = 0; i < m_labels.GetCount(); ++i) {
    qwLength += kSubHeaderLength + kIDLength + StoredTextLength(m_labels.GetAt(i)->szText);
  }
  const auto qwLtxts = static_cast<std::uint64_t>(m_ltxts.GetCount());
  return vcm::CheckedBytes(qwLtxts, kSubHeaderLength + kLtxtLength, qwLength).value_or(0);
}

const char* C_WavDataListInfo::GetLabelByIndex(int nIndex, unsigned int* pdwID) {
  const S_Label* pLabel = m_labels.GetAt(nIndex);
  if (pdwID != nullptr) *pdwID = pLabel->dwCuePointID;
  return pLabel->szText;
}

bool C_WavDataListInfo::AddLabel(unsigned int dwID, const char* pszText) {
  S_Label label{dwID, {}};
  if (pszText != nullptr) VCM_tcsncpy(label.szText, pszText, kMaxLabelText);
  vcm::AddOwned(m_labels, std::make_unique<S_Label>(label));
  return true;
}

const char* C_WavDataListInfo::GetLtxtByIndex(int nIndex, unsigned int* pdwID,
                                              unsigned int* pdwSampleLength) {
  const S_Ltxt* pLtxt = m_ltxts.GetAt(nIndex);
  if (pdwID != nullptr) *pdwID = pLtxt->dwCuePointID;
  if (pdwSampleLength != nullptr) *pdwSampleLength = pLtxt->dwSampleLength;
  return pLtxt->szPurpose;
}

bool C_WavDataListInfo::AddLtxt(unsigned int dwID, unsigned int dwSampleLength,
                                const char* pszPurpose) {
  S_Ltxt ltxt{dwID, dwSampleLength, {}, 0, 0, 0, 0};
  if (pszPurpose != nullptr) VCM_strncpy(ltxt.szPurpose, pszPurpose, kPurposeLength);
  vcm::AddOwned(m_ltxts, std::make_unique<S_Ltxt>(ltxt));
  return true;
}

bool C_WavDataListInfo::LoadInfo(I_RiffChunk* pChunk) {
  const std::uint64_t qwEnd = pChunk->GetDataLength();
  if (qwEnd < kListType.size()) return true;
  const auto type = vcm::ReadField<kIDLength>(*pChunk, 0);
  if (!type) return false;
  if (!IsID(*type, kListType)) return true;
  RemoveAllLabels();
  RemoveAllLtxts();
  std::uint64_t qwPosition = kListType.size();
  // A header at the very end, with nothing after it, is ignored.
  while (qwPosition + kSubHeaderLength < qwEnd) {
    const auto header = vcm::ReadField<kSubHeaderLength>(*pChunk, qwPosition);
    if (!header) return false;
    qwPosition += kSubHeaderLength;
    vcm::C_ByteReader reader(*header);
    const auto id = reader.Bytes(kIDLength);
    const std::uint32_t cbSize = reader.U32();
    if (cbSize > qwEnd - qwPosition) return false;
    if (IsID(id, kLabel) && !LoadLabel(*pChunk, qwPosition, cbSize)) return false;
    if (IsID(id, kLtxt) && !LoadLtxt(*pChunk, qwPosition, cbSize)) return false;
    qwPosition += std::uint64_t{cbSize} + (cbSize & 1u);
  }
  return true;
}

// Kept: all texts come before all labels. Readers in the field want to know the length of a region
// when they reach its name. Pinned by SaveInfo_WritesTextsBeforeLabels.
bool C_WavDataListInfo::SaveInfo(I_RiffChunk* pChunk) {
  vcm::C_ByteWriter writer;
  writer.Text(kListType, kIDLength);
  for (int i = 0; i < m_ltxts.GetCount(); ++i) WriteLtxt(writer, *m_ltxts.GetAt(i));
  for (int i = 0; i < m_labels.GetCount(); ++i) WriteLabel(writer, *m_labels.GetAt(i));
  return vcm::SavePayload(*pChunk, writer.Data());
}

void C_WavDataListInfo::RemoveLabels(bool (*bRemove)(const char* pszText)) {
  vcm::KeepIf(m_labels, [bRemove](const S_Label* pLabel) { return !bRemove(pLabel->szText); });
}

void C_WavDataListInfo::Renumber(const vcm::C_NewID& newID) {
  const auto renumber = [&newID](auto* pItem) {
    const std::optional<unsigned int> dwID = newID(pItem->dwCuePointID);
    if (dwID) pItem->dwCuePointID = *dwID;
    return dwID.has_value();
  };
  vcm::KeepIf(m_labels, renumber);
  vcm::KeepIf(m_ltxts, renumber);
}

bool C_WavDataListInfo::LoadLabel(I_RiffChunk& chunk, std::uint64_t qwPosition,
                                  std::uint32_t cbSize) {
  if (cbSize < kIDLength) return false;
  const auto id = vcm::ReadField<kIDLength>(chunk, qwPosition);
  if (!id) return false;
  char szText[kMaxLabelText + 1] = {};
  const std::uint32_t cbText = std::min<std::uint32_t>(cbSize - kIDLength, kMaxLabelText);
  const auto dwTextOffset = static_cast<unsigned int>(qwPosition) + kIDLength;
  if (cbText > 0 && !chunk.GetData(szText, cbText, dwTextOffset)) return false;
  return AddLabel(vcm::C_ByteReader(*id).U32(), szText);
}

bool C_WavDataListInfo::LoadLtxt(I_RiffChunk& chunk, std::uint64_t qwPosition,
                                 std::uint32_t cbSize) {
  if (cbSize < kLtxtLength) return false;
  const auto bytes = vcm::ReadField<kLtxtLength>(chunk, qwPosition);
  if (!bytes) return false;
  vcm::C_ByteReader reader(*bytes);
  S_Ltxt ltxt{};
  ltxt.dwCuePointID = reader.U32();
  ltxt.dwSampleLength = reader.U32();
  std::memcpy(ltxt.szPurpose, reader.Bytes(kPurposeLength).data(), kPurposeLength);
  ltxt.wCountry = reader.U16();
  ltxt.wLanguage = reader.U16();
  ltxt.wDialect = reader.U16();
  ltxt.wCodePage = reader.U16();
  vcm::AddOwned(m_ltxts, std::make_unique<S_Ltxt>(ltxt));
  return true;
}
