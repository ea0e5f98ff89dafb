// SPDX-License-Identifier: Apache-2.0
//
// The chunks of a sound file that nothing else reads, kept verbatim.
#pragma once

#include <cstdint>
#include <memory>

#include "CLArray.h"
#include "interface/I_WavDataInfo.h"

class C_WavDataExtraChunk : public I_WavDataExtraChunk {
 public:
  static constexpr std::size_t kNameLength = 4;

  // Takes ownership of the payload. pszName points to four characters.
  C_WavDataExtraChunk(const char* pszName, std::unique_ptr<std::uint8_t[]> data,
                      unsigned int dwLength);

  const char* GetChunkName() override { return m_szName; }
  // ppbyData may be null.
  unsigned int GetChunkData(unsigned char** ppbyData) override;

 private:
  char m_szName[kNameLength + 1] = {};
  std::unique_ptr<std::uint8_t[]> m_pbyData;
  unsigned int m_dwLength;
};

class C_WavDataExtraChunkInfo
    : public C_CLCustomArray<I_WavDataExtraChunkInfo, C_WavDataExtraChunk*, I_WavDataExtraChunk*,
                             true> {
 public:
  bool AddChunk(const char* pszName, const void* pData, unsigned int dwLength) override;
  bool DelChunkByName(const char* pszName) override;
  // An empty chunk is kept without a buffer. False when the payload cannot be read completely;
  // nothing is added then.
  bool AddRiffChunk(const char* pszName, I_RiffChunk* pChunk) override;
  I_WavDataExtraChunk* GetChunkByName(const char* pszName) override;

 private:
  int FindIndex(const char* pszName, const char* pszFunction) const;
  void Append(const char* pszName, std::unique_ptr<std::uint8_t[]> data, unsigned int dwLength);
};
