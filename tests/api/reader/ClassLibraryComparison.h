// SPDX-License-Identifier: Apache-2.0
//
// Opens bytes by the reader and by the class library: the same samples and events, and the same
// refusals, except for what only the reader takes or only the class library does.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ReadMore.h"
#include "ReadSounds.h"
#include "RiffBytes.h"
#include "SpBytes.h"
#include "SweepFile.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "file/KestrelFile.h"
#include "riff/RiffScan.h"

namespace api::test {

inline C_WavFilePtr OpenedByClass(const C_Bytes& bytes, bool bKeepEncoded) {
  const C_SweepFile file(bytes);
  C_WavFileFormat format;
  return C_WavFilePtr(
      format.CreateWavFile(file.Path().c_str(), true, bKeepEncoded, nullptr, nullptr));
}

// What the player does with a file that no class opens.
inline C_WavFilePtr OpenedAsBareKestrel(const C_Bytes& bytes) {
  const C_SweepFile file(C_SpBytes().Stream(bytes).Take());
  auto kestrel = std::make_unique<C_KestrelFile>();
  if (!kestrel->LoadByName(file.Path().c_str(), true, nullptr, nullptr)) return nullptr;
  return C_WavFilePtr(kestrel.release());
}

struct S_Attempt {
  C_ReaderPtr reader;
  voxplay_status eStatus = VOXPLAY_OK;
  std::string strText;
};

inline S_Attempt OpenedByReader(const C_Bytes& bytes, std::uint32_t dwFlags) {
  S_Attempt attempt;
  const auto failed = FailureOf([&] {
    attempt.reader = OpenBytes(bytes, dwFlags);
    return 0;
  });
  attempt.eStatus = failed.eStatus;
  attempt.strText = failed.strText;
  return attempt;
}

// The PCM of the class library in full scale, in as much room as the reader says.
inline std::vector<std::int32_t> FullScale(I_WavFile& file, std::uint32_t dwStoredBits) {
  const std::vector<std::uint8_t> pcm = PcmOf(file);
  const std::size_t cbSample = dwStoredBits / 8;
  std::vector<std::int32_t> samples;
  for (std::size_t n = 0; pcm.size() - n >= cbSample; n += cbSample) {
    std::uint32_t dwValue = 0;
    for (std::size_t i = cbSample; i > 0; --i) dwValue = dwValue << 8U | pcm[n + i - 1];
    if (cbSample == 1) dwValue -= 0x80U;
    samples.push_back(static_cast<std::int32_t>(dwValue << (32 - dwStoredBits)));
  }
  const std::size_t nChannels = file.GetWavInfo()->GetChannels();
  samples.resize(samples.size() / nChannels * nChannels);
  return samples;
}

inline void CompareSounds(I_WavFile& file, C_Reader& reader) {
  const voxplay_info info = reader.Info();
  EXPECT_EQ(info.sample_rate, file.GetWavInfo()->GetSampleRate());
  EXPECT_EQ(info.channels, file.GetWavInfo()->GetChannels());
  const std::uint32_t dwStoredBits = info.stored_bits == 0 ? 16 : info.stored_bits;
  const auto expected = FullScale(file, dwStoredBits);
  EXPECT_EQ(info.frames, expected.size() / info.channels);
  EXPECT_EQ(SamplesOf<std::int32_t>(reader), expected);
}

inline void CompareEvents(I_WavFile& file, const S_Notes& notes) {
  // The class library counts in time, and has no events in a sound without a rate.
  if (file.GetWavInfo()->GetSampleRate() == 0) return;
  std::vector<S_EventSeen> seen;
  for (const S_NoteEvent& event : notes.events) {
    seen.push_back({event.wMain, event.wSub, static_cast<unsigned int>(event.qwFrame)});
  }
  EXPECT_EQ(seen, EventsOf(file));
}

// Forms that the class library does not know: RF64 and the extensible one.
inline bool IsOfOthers(const C_Bytes& bytes) {
  const auto source = OpenMemorySource(bytes);
  const auto contents = ScanRiff(*source);
  if (!contents) return false;
  const S_FoundChunk* const pFormat = contents->Find("fmt ");
  std::array<std::uint8_t, 2> tag{};
  const bool bExtensible = pFormat != nullptr && ReadExact(*source, pFormat->payload.qwAt, tag) &&
                           tag == std::array<std::uint8_t, 2>{0xFE, 0xFF};
  return contents->bRf64 || bExtensible;
}

inline bool IsExtra(const voxplay_info& info) {
  return info.container == VOXPLAY_CONTAINER_HEAD || info.codec == VOXPLAY_CODEC_FLOAT;
}

// The only files that the reader refuses by itself.
inline bool IsWide(I_WavFile& file) { return file.GetWavInfo()->GetBitsPerSample() > 32; }

struct S_Counts {
  int nBoth = 0;
  int nNone = 0;
  int nExtra = 0;
  int nWide = 0;
};

inline void Compare(const C_Bytes& bytes, std::uint32_t dwFlags, S_Counts& counts) {
  const bool bStream = (dwFlags & VOXPLAY_READ_STREAM) != 0;
  C_WavFilePtr file = OpenedByClass(bytes, !bStream);
  if (!file && (dwFlags & VOXPLAY_READ_NO_BARE) == 0) file = OpenedAsBareKestrel(bytes);
  const S_Attempt attempt = OpenedByReader(bytes, dwFlags);
  if (IsReadMoreOf(bytes) ||
      (attempt.reader && (IsExtra(attempt.reader->Info()) || IsOfOthers(bytes)))) {
    ++counts.nExtra;
  } else if (attempt.reader && file) {
    ++counts.nBoth;
    CompareSounds(*file, *attempt.reader);
    CompareEvents(*file, attempt.reader->Notes());
  } else if (file) {
    EXPECT_TRUE(IsWide(*file)) << attempt.strText;
    ++counts.nWide;
  } else {
    EXPECT_FALSE(attempt.reader) << "the class library refuses this";
    ++counts.nNone;
  }
}

}  // namespace api::test
