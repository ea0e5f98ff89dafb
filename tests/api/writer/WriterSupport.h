// SPDX-License-Identifier: Apache-2.0
//
// Sounds that are written through the public interface and by the class library, to be compared.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "CallerOutput.h"
#include "ExampleSound.h"
#include "FailureOf.h"
#include "FileBytes.h"
#include "TempFolder.h"
#include "TestSound.h"
#include "TestVoice.h"
#include "writer/Writer.h"

namespace api::test {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

constexpr voxplay_format PcmFormat(std::uint32_t dwContainer, std::uint32_t dwBits,
                                   std::uint32_t dwChannels = 1, std::uint32_t dwRate = 16000) {
  voxplay_format format{};
  format.container = dwContainer;
  format.codec = VOXPLAY_CODEC_PCM;
  format.sample_rate = dwRate;
  format.channels = dwChannels;
  format.bits_per_sample = dwBits;
  return format;
}

constexpr voxplay_format KestrelFormat(std::uint32_t dwContainer, std::uint32_t dwBitRate = 16000) {
  voxplay_format format = PcmFormat(dwContainer, 0);
  format.codec = VOXPLAY_CODEC_KESTREL;
  format.bit_rate = dwBitRate;
  return format;
}

constexpr voxplay_format HeronFormat(std::uint32_t dwContainer, std::uint32_t dwBits,
                                     std::uint32_t dwRate = 16000) {
  voxplay_format format = PcmFormat(dwContainer, dwBits, 1, dwRate);
  format.codec = VOXPLAY_CODEC_HERON;
  return format;
}

// What a caller gets that has an output.
template <typename Sample>
Bytes Written(const voxplay_format& format, const std::vector<Sample>& samples,
              const S_Notes& notes = {}, std::vector<std::string>* pLost = nullptr) {
  C_CallerOutput output;
  const auto writer = C_Writer::Open(OpenOutputTarget(output.Record()), format);
  writer->SetNotes(notes);
  // Pieces that have nothing to do with frames of codecs.
  const std::size_t nPiece = std::size_t{777} * format.channels;
  for (std::size_t n = 0; n < samples.size(); n += nPiece) {
    writer->Write(std::span(samples).subspan(n, std::min(nPiece, samples.size() - n)));
  }
  writer->Finish();
  if (pLost != nullptr) *pLost = writer->Lost();
  return output.Content();
}

// The same through an output that only goes forward. The format announces its frames.
template <typename Sample>
Bytes WrittenForward(voxplay_format format, const std::vector<Sample>& samples,
                     const S_Notes& notes = {}) {
  C_CallerOutput output;
  output.OnlyForward();
  format.frames = samples.size() / format.channels;
  const auto writer = C_Writer::Open(OpenOutputTarget(output.Record()), format);
  writer->SetNotes(notes);
  writer->Write(std::span(samples));
  writer->Finish();
  return output.Content();
}

// A sound of the class library with these interleaved samples.
inline C_SoundPtr SoundOf(const Samples& samples, unsigned int dwRate, unsigned short wChannels) {
  C_SoundPtr sound = MonoSound(samples, dwRate);
  sound->SetWavInfoData(dwRate, static_cast<unsigned int>(samples.size() * 2), wChannels, 16, 16,
                        true);
  return sound;
}

// What the class library writes as a file of that type.
inline Bytes ByClassLibrary(I_WavData& sound, tagAudioFileType eType, bool bEncode = false,
                            bool bHead = false) {
  const C_TempFolder folder;
  const std::string strPath = folder.Path("written");
  EXPECT_TRUE(sound.Convert(eType, strPath.c_str(), bEncode, bHead, nullptr, true, 0));
  return FileBytes(strPath);
}

// A RIFF file with its pad bytes taken out, as the class library writes files.
inline Bytes WithoutPads(const Bytes& file) {
  Bytes bare(file.begin(), file.begin() + 12);
  std::size_t nAt = 12;
  while (nAt + 8 <= file.size()) {
    const std::size_t cbSize = vcm::C_ByteReader(std::span(file).subspan(nAt + 4)).U32();
    const auto first = file.begin() + static_cast<std::ptrdiff_t>(nAt);
    EXPECT_LE(nAt + 8 + cbSize + cbSize % 2, file.size());
    bare.insert(bare.end(), first, first + static_cast<std::ptrdiff_t>(8 + cbSize));
    nAt += 8 + cbSize + cbSize % 2;
  }
  EXPECT_EQ(nAt, file.size());
  EXPECT_EQ(vcm::C_ByteReader(std::span(file).subspan(4)).U32(), file.size() - 8);
  vcm::C_ByteWriter size;
  size.U32(static_cast<std::uint32_t>(bare.size() - 8));
  std::copy(size.Data().begin(), size.Data().end(), bare.begin() + 4);
  return bare;
}

// What AddAnnotations gives to a sound of the class library.
inline S_Notes ExampleNotes() {
  S_Notes notes;
  notes.events = {{48, 3, 7, 0, ""}, {96, 1, 2, 0, ""}};
  notes.silence = {{100, 50}};
  notes.regions = {{200, 100}};
  notes.loops = {{1, 0, 10, 20, 0, 2}};
  const std::string strText = "kept as it is";
  notes.chunks = {{{'n', 'o', 't', 'e'}, {strText.begin(), strText.end()}}};
  return notes;
}

inline Samples Stereo(std::size_t nFrames) {
  const auto voice = TestVoice(nFrames + 100);
  Samples samples;
  for (std::size_t i = 0; i < nFrames; ++i) {
    samples.push_back(voice[i]);
    samples.push_back(static_cast<std::int16_t>(voice[i + 100] / 2));
  }
  return samples;
}

}  // namespace api::test
