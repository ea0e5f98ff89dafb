// SPDX-License-Identifier: Apache-2.0
//
// Kestrel files in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FolderTest.h"
#include "KestrelBytes.h"
#include "SpBytes.h"
#include "codec/KestrelCodec.h"
#include "file/KestrelFile.h"

using Bytes = std::vector<std::uint8_t>;

inline Bytes Stream(std::size_t nFrames) { return C_KestrelBytes(16000).Voice(nFrames).Take(); }

inline Bytes BytesOfEncBuffer(I_WavData* pIWavData) {
  const std::uint8_t* pbyData = pIWavData->GetEncBuffer();
  return {pbyData, pbyData + pIWavData->GetEncBufferLen()};
}

// What the codec makes of a sound that is already 16-bit mono.
inline Bytes EncodedBy(I_WavData* pIWavData, unsigned int dwBitRate) {
  C_KestrelCodec codec;
  codec.LoadCodec(dwBitRate);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  EXPECT_TRUE(codec.Encode(pIWavData, dwBitRate, &pbyStream, &dwLength, nullptr));
  Bytes stream(pbyStream, pbyStream + dwLength);
  delete[] pbyStream;
  return stream;
}

class KestrelFile : public C_FolderTest {
 protected:
  std::string WriteKestrel(const std::string& strName, const Bytes& stream) {
    return Write(strName, C_SpBytes().Stream(stream).Take());
  }
  // Saves a sound with WriteFile, encoded and without a codec head.
  bool Save(C_KestrelFile& file, const std::string& strName, bool bForceEncode) {
    return file.WriteFile(Path(strName).c_str(), true, false, nullptr, bForceEncode, 0);
  }
  bool Load(C_KestrelFile& file, const std::string& strName) {
    return file.LoadByName(Path(strName).c_str(), true, nullptr, nullptr);
  }
};
