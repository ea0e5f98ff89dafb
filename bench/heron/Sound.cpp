// SPDX-License-Identifier: Apache-2.0
#include "heron/Sound.h"

#include <stdexcept>

#include "ByteReader.h"
#include "WavFileFormat.h"
#include "file/WavFile.h"

namespace {

bool Is16BitMono(I_WavInfo& info) {
  return info.GetChannels() == 1 && info.GetBitsPerSample() == 16 &&
         info.GetStoreBitsPerSample() == 16 && info.IsValueSigned();
}

}  // namespace

S_Sound ReadSound(const std::string& strPath) {
  C_WavFileFormat format;
  const C_WavFilePtr file(
      format.CreateWavFile(strPath.c_str(), /*bLoadData=*/true, false, nullptr, nullptr));
  if (!file || file->GetWavInfo() == nullptr || !Is16BitMono(*file->GetWavInfo())) {
    throw std::runtime_error(strPath + ": not a 16-bit mono sound");
  }
  S_Sound sound{static_cast<int>(file->GetWavInfo()->GetSampleRate()), {}};
  sound.samples.resize(file->GetWavInfo()->GetSampleSize());
  vcm::C_ByteReader pcm({file->GetWavDataBuffer(), sound.samples.size() * 2});
  for (std::int16_t& nSample : sound.samples) nSample = pcm.I16();
  return sound;
}

void WriteSound(const S_Sound& sound, const std::string& strPath) {
  const C_WavFilePtr file(new C_WavFile);
  vcm::C_ByteWriter pcm;
  for (const std::int16_t nSample : sound.samples) pcm.U16(static_cast<std::uint16_t>(nSample));
  const auto cbPcm = static_cast<unsigned int>(pcm.Data().size());
  const bool bWritten =
      file->SetBuffer(pcm.Data().data(), cbPcm) &&
      (file->SetWavInfoData(static_cast<unsigned int>(sound.nSampleRate), 1, 16, 16, true),
       file->Convert(AUDIO_FILE_WAVE, strPath.c_str(), true, false, nullptr, false, 0));
  if (!bWritten) throw std::runtime_error(strPath + ": cannot be written");
}
