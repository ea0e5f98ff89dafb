// SPDX-License-Identifier: Apache-2.0
//
// Decodes any bytes as a Kestrel stream: through the codec, and after an SP header through the file
// class.
//
//   scripts/fuzz.sh 60 kestrel_stream
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "FuzzFile.h"
#include "Require.h"
#include "codec/KestrelCodec.h"
#include "file/KestrelFile.h"
#include "sound/WavData.h"

namespace {

constexpr std::size_t kMostBytes = 200;

std::size_t g_cbPieces = 0;
void CountPiece(void*, unsigned int dwLength) { g_cbPieces += dwLength; }

std::vector<std::uint8_t> Pcm(I_WavData* pIWavData) {
  return {pIWavData->GetBuffer(), pIWavData->GetBuffer() + pIWavData->GetBufferLength()};
}

bool DecodeBytes(std::span<const std::uint8_t> bytes, I_WavData* pIWavData) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  g_cbPieces = 0;
  const bool bRet =
      codec.Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), pIWavData, CountPiece);
  Require(!bRet || g_cbPieces == pIWavData->GetBufferLength());
  return bRet;
}

std::vector<std::uint8_t> WithHeader(std::span<const std::uint8_t> stream) {
  vcm::C_ByteWriter writer;
  writer.U32(0xFF00FF00);
  writer.Text("VOXELTRONIC SP", 16);
  writer.U8(254);
  writer.U8(2);
  writer.U16(AUDIO_FILE_KESTREL);
  writer.U16(16);
  writer.U32(16000);
  writer.Zeros(18);
  writer.Bytes(stream);
  return writer.Take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  // A stream at the lowest rate has 12 bytes in a frame. A few frames show as much as many.
  const std::span bytes(pData, std::min(cbData, kMostBytes));
  const C_WavDataPtr sound(new C_WavData);
  const bool bDecoded = DecodeBytes(bytes, sound.get());
  const C_FuzzFile file(WithHeader(bytes));
  C_KestrelFile kestrelFile;
  Require(kestrelFile.OpenByName(file.Path()));
  Require(kestrelFile.LoadData(true, nullptr, nullptr) == bDecoded);
  if (bDecoded) Require(Pcm(kestrelFile.GetWavData()) == Pcm(sound.get()));
  return 0;
}
