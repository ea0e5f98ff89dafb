// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataCueInfo.h"

#include <algorithm>
#include <memory>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "VcmAssert.h"
#include "chunk/WavDataChunk.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavDataInfo";
constexpr std::uint32_t kCountLength = 4;
using C_CuePoint = C_WavDataCueInfo::C_CuePoint;

C_CuePoint::Record MakeRecord(std::initializer_list<unsigned int> fields) {
  vcm::C_ByteWriter writer;
  for (const unsigned int dwField : fields) writer.U32(dwField);
  C_CuePoint::Record record{};
  std::copy_n(writer.Data().begin(), record.size(), record.begin());
  return record;
}

}  // namespace

C_CuePoint::C_CuePoint(const Record& record, I_WavInfo* pIWavInfo)
    : m_record(record), m_pIWavInfo(pIWavInfo) {}

unsigned int C_CuePoint::Field(std::size_t nField) const {
  constexpr std::size_t kFieldLength = 4;
  return vcm::C_ByteReader(std::span(m_record).subspan(nField * kFieldLength)).U32();
}

void C_CuePoint::SetCuePointID(unsigned int dwID) {
  for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i) {
    m_record[i] = static_cast<std::uint8_t>(dwID >> (8 * i));
  }
}

void C_WavDataCueInfo::Reset() {
  ForgetFrom(0);
  m_cuePoints.RemoveAll();
}

I_WavDataCuePoint* C_WavDataCueInfo::GetCuePointByIndex(int nIndex) {
  return m_cuePoints.GetItemByIndex(nIndex);
}

I_WavDataCuePoint* C_WavDataCueInfo::FindCuePointByID(unsigned int dwID, int* pnIndex) {
  const int nIndex = FindIndex(dwID);
  if (nIndex < 0) return nullptr;
  if (pnIndex != nullptr) *pnIndex = nIndex;
  return m_cuePoints.GetAt(nIndex);
}

bool C_WavDataCueInfo::AddCuePoint(unsigned int dwID, unsigned int dwPosition,
                                   unsigned int dwDataChunkID, unsigned int dwChunkStart,
                                   unsigned int dwBlockStart, unsigned int dwSampleOffset) {
  const auto record =
      MakeRecord({dwID, dwPosition, dwDataChunkID, dwChunkStart, dwBlockStart, dwSampleOffset});
  const int nIndex = FindIndex(dwID);
  if (nIndex >= 0) {
    m_cuePoints.GetAt(nIndex)->SetRecord(record);
  } else {
    Append(record);
  }
  return true;
}

bool C_WavDataCueInfo::RemoveCuePointByIndex(int nIndex) {
  if (nIndex < 0 || nIndex >= m_cuePoints.GetCount()) return false;
  ForgetFrom(nIndex);
  m_cuePoints.RemoveAt(nIndex, 1);
  return true;
}

bool C_WavDataCueInfo::RemoveCuePointByID(unsigned int dwID) {
  return RemoveCuePointByIndex(FindIndex(dwID));
}

unsigned int C_WavDataCueInfo::GetChunkLength() {
  const auto qwPoints = static_cast<std::uint64_t>(m_cuePoints.GetCount());
  return vcm::CheckedBytes(qwPoints, C_CuePoint::kRecordLength, kCountLength).value_or(0);
}

bool C_WavDataCueInfo::LoadInfo(I_RiffChunk* pChunk) {
  const std::uint32_t cbPayload = pChunk->GetDataLength();
  if (cbPayload < kCountLength) return true;
  const auto count = vcm::ReadField<kCountLength>(*pChunk, 0);
  if (!count) return false;
  Reset();
  const std::uint32_t dwPoints = vcm::WholeRecords(vcm::C_ByteReader(*count).U32(), cbPayload,
                                                   kCountLength, C_CuePoint::kRecordLength);
  for (std::uint32_t i = 0; i < dwPoints; ++i) {
    const auto record = vcm::ReadField<C_CuePoint::kRecordLength>(
        *pChunk, kCountLength + std::uint64_t{C_CuePoint::kRecordLength} * i);
    if (!record) return false;
    Append(*record);
  }
  return true;
}

bool C_WavDataCueInfo::SaveInfo(I_RiffChunk* pChunk) {
  vcm::C_ByteWriter writer;
  writer.U32(static_cast<std::uint32_t>(m_cuePoints.GetCount()));
  for (int i = 0; i < m_cuePoints.GetCount(); ++i) {
    const C_CuePoint* pCuePoint = m_cuePoints.GetAt(i);
    VCM_ASSERT(pCuePoint != nullptr, "SaveInfo", kSource, __LINE__, "pCuePoint != NULL");
    writer.Bytes({pCuePoint->GetCuePointBuffer(), C_CuePoint::kRecordLength});
  }
  return vcm::SavePayload(*pChunk, writer.Data());
}

void C_WavDataCueInfo::Renumber(const vcm::C_NewID& newID) {
  ForgetFrom(0);
  vcm::KeepIf(m_cuePoints, [&newID](C_CuePoint* pCuePoint) {
    const std::optional<unsigned int> dwID = newID(pCuePoint->GetCuePointID());
    if (dwID) pCuePoint->SetCuePointID(*dwID);
    return dwID.has_value();
  });
}

// Finds the same point as a walk from the front. Such a walk stops at the first match, so this
// function does not look at points after the match either.
int C_WavDataCueInfo::FindIndex(unsigned int dwID) {
  const auto known = m_firstByID.find(dwID);
  if (known != m_firstByID.end()) return known->second;
  while (m_nIndexed < m_cuePoints.GetCount()) {
    C_CuePoint* pCuePoint = m_cuePoints.GetAt(m_nIndexed);
    VCM_ASSERT(pCuePoint != nullptr, "FindCuePointByID", kSource, __LINE__, "pCuePoint != NULL");
    const unsigned int dwPointID = pCuePoint->GetCuePointID();
    m_firstByID.try_emplace(dwPointID, m_nIndexed);
    ++m_nIndexed;
    if (dwPointID == dwID) return m_nIndexed - 1;
  }
  return -1;
}

void C_WavDataCueInfo::Append(const C_CuePoint::Record& record) {
  vcm::AddOwned(m_cuePoints, std::make_unique<C_CuePoint>(record, m_pIWavInfo));
}

void C_WavDataCueInfo::ForgetFrom(int nIndex) {
  for (int i = nIndex; i < m_nIndexed; ++i) {
    const auto known = m_firstByID.find(m_cuePoints.GetAt(i)->GetCuePointID());
    if (known != m_firstByID.end() && known->second == i) m_firstByID.erase(known);
  }
  m_nIndexed = std::min(m_nIndexed, nIndex);
}
