// SPDX-License-Identifier: Apache-2.0
//
// Decodes any bytes as a Heron stream, at a sample rate chosen by the first byte: through the
// codec, and after an SP header through the file class.
//
//   scripts/fuzz.sh 60 heron_stream
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "FuzzFile.h"
#include "Require.h"
#include "codec/HeronCodec.h"
#include "file/HeronFile.h"
#include "sound/WavData.h"

namespace {

constexpr std::array<unsigned int, 6> kRates = {4000, 8000, 11025, 16000, 44100, 48000};
// One byte may stand for a whole frame. Longer streams take more time and show nothing new.
constexpr std::size_t kMaxStream = 160;

std::vector<std::uint8_t> Pcm(I_WavData* pIWavData) {
  return {pIWavData->GetBuffer(), pIWavData->GetBuffer() + pIWavData->GetBufferLength()};
}

bool DecodeBytes(std::span<const std::uint8_t> bytes, I_WavData* pIWavData) {
  C_HeronCodec codec;
  const bool bRet = codec.Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), pIWavData);
  Require(bRet == (pIWavData->GetBufferLength() > 0));
  return bRet;
}

std::vector<std::uint8_t> WithHeader(std::span<const std::uint8_t> stream, unsigned int dwRate) {
  vcm::C_ByteWriter writer;
  writer.U32(0xFF00FF00);
  writer.Text("VOXELTRONIC SP", 16);
  writer.U8(254);
  writer.U8(2);
  writer.U16(AUDIO_FILE_HERON_4BIT);
  writer.U16(16);
  writer.U32(dwRate);
  writer.Zeros(18);
  writer.Bytes(stream);
  return writer.Take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  if (cbData < 2) return 0;
  const unsigned int dwRate = kRates[pData[0] % kRates.size()];
  const std::span bytes(pData + 1, std::min(cbData - 1, kMaxStream));
  const C_WavDataPtr sound(new C_WavData);
  sound->SetWavInfoData(dwRate, 0, 1, 16, 16, true);
  const bool bDecoded = DecodeBytes(bytes, sound.get());
  const C_FuzzFile file(WithHeader(bytes, dwRate));
  C_Heron4BitFile heronFile;
  Require(heronFile.OpenByName(file.Path()));
  Require(heronFile.LoadData(false, nullptr, nullptr) == bDecoded);
  if (bDecoded) Require(Pcm(heronFile.GetWavData()) == Pcm(sound.get()));
  return 0;
}
