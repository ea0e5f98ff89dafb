// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataExtraChunkInfo.h"

#include <cstring>
#include <utility>

#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavDataInfo";

std::unique_ptr<std::uint8_t[]> MakeBuffer(unsigned int dwLength) {
  if (dwLength == 0) return nullptr;
  return std::make_unique_for_overwrite<std::uint8_t[]>(dwLength);
}

}  // namespace

C_WavDataExtraChunk::C_WavDataExtraChunk(const char* pszName, std::unique_ptr<std::uint8_t[]> data,
                                         unsigned int dwLength)
    : m_pbyData(std::move(data)), m_dwLength(dwLength) {
  std::memcpy(m_szName, pszName, kNameLength);
}

unsigned int C_WavDataExtraChunk::GetChunkData(unsigned char** ppbyData) {
  if (ppbyData != nullptr) *ppbyData = m_pbyData.get();
  return m_dwLength;
}

bool C_WavDataExtraChunkInfo::AddChunk(const char* pszName, const void* pData,
                                       unsigned int dwLength) {
  if (dwLength > 0 && pData == nullptr) return false;
  auto data = MakeBuffer(dwLength);
  if (data) std::memcpy(data.get(), pData, dwLength);
  Append(pszName, std::move(data), dwLength);
  return true;
}

bool C_WavDataExtraChunkInfo::DelChunkByName(const char* pszName) {
  const int nIndex = FindIndex(pszName, "DelChunkByName");
  if (nIndex < 0) return false;
  RemoveAt(nIndex, 1);
  return true;
}

bool C_WavDataExtraChunkInfo::AddRiffChunk(const char* pszName, I_RiffChunk* pChunk) {
  const unsigned int dwLength = pChunk->GetDataLength();
  // Asking for zero bytes first shows whether the payload can be read, before memory is allocated
  // for it. A file may claim 4 GiB.
  std::uint8_t byUnused = 0;
  if (dwLength > 0 && !pChunk->GetData(&byUnused, 0, 0)) return false;
  auto data = MakeBuffer(dwLength);
  if (data && !pChunk->GetData(data.get(), dwLength, 0)) return false;
  Append(pszName, std::move(data), dwLength);
  return true;
}

I_WavDataExtraChunk* C_WavDataExtraChunkInfo::GetChunkByName(const char* pszName) {
  const int nIndex = FindIndex(pszName, "GetChunkByName");
  return nIndex < 0 ? nullptr : GetItemByIndex(nIndex);
}

int C_WavDataExtraChunkInfo::FindIndex(const char* pszName, const char* pszFunction) const {
  for (int i = 0; i < GetCount(); ++i) {
    C_WavDataExtraChunk* pChunk = GetAt(i);
    VCM_ASSERT(pChunk != nullptr, pszFunction, kSource, __LINE__, "NULL != pChunk");
    if (std::memcmp(pChunk->GetChunkName(), pszName, C_WavDataExtraChunk::kNameLength) == 0) {
      return i;
    }
  }
  return -1;
}

void C_WavDataExtraChunkInfo::Append(const char* pszName, std::unique_ptr<std::uint8_t[]> data,
                                     unsigned int dwLength) {
  vcm::AddOwned(*this, std::make_unique<C_WavDataExtraChunk>(pszName, std::move(data), dwLength));
}
