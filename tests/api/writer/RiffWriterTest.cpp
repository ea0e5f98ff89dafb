// SPDX-License-Identifier: Apache-2.0
#include "writer/RiffWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <array>
#include <memory>

#include "WriterSupport.h"
#include "file/VefFile.h"

namespace {

using namespace api::test;

struct S_SndClose {
  void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using C_SndPtr = std::unique_ptr<SNDFILE, S_SndClose>;

struct S_SndRead {
  SF_INFO info{};
  std::vector<int> values;
};

// What another program's library reads from a file with these bytes.
S_SndRead ReadBySndfile(const Bytes& file) {
  const C_TempFolder folder;
  S_SndRead read;
  const C_SndPtr opened(sf_open(folder.Write("a.wav", file).c_str(), SFM_READ, &read.info));
  if (opened == nullptr) {
    ADD_FAILURE() << sf_strerror(nullptr);
    return read;
  }
  read.values.resize(static_cast<std::size_t>(read.info.frames * read.info.channels));
  EXPECT_EQ(sf_readf_int(opened.get(), read.values.data(), read.info.frames), read.info.frames);
  return read;
}

Bytes WrittenWithin(const voxplay_format& format, const Samples& samples, std::uint64_t qwMost) {
  C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  api::C_RiffWriter writer(*target, format, qwMost);
  writer.Begin({}, format.frames);
  writer.MakeRoom(samples.size() / format.channels);
  writer.Frames().Put(std::span<const std::int16_t>(samples));
  writer.End({}, samples.size() / format.channels);
  return output.Content();
}

TEST(RiffWriter, AnnotatedSounds_AreThoseOfTheClassLibrary) {
  for (const unsigned short wChannels : std::to_array<unsigned short>({1, 2, 5})) {
    const auto voice = TestVoice(std::size_t{1001} * wChannels);
    const auto sound = SoundOf(voice, 22050, wChannels);
    AddAnnotations(*sound);
    for (const auto& [dwContainer, eType] : {std::pair{VOXPLAY_CONTAINER_WAV, AUDIO_FILE_WAVE},
                                             std::pair{VOXPLAY_CONTAINER_VEMD, AUDIO_FILE_VEMD}}) {
      const auto format = PcmFormat(dwContainer, 16, wChannels, 22050);
      EXPECT_EQ(WithoutPads(Written(format, voice, ExampleNotes())), ByClassLibrary(*sound, eType));
    }
  }
}

TEST(RiffWriter, WidthsOfTheClassLibrary_HaveItsBytes) {
  for (const unsigned short wBits : std::to_array<unsigned short>({8, 16, 32})) {
    const auto sound = ExampleSound({8000, 2, wBits, wBits}, 333);
    std::vector<std::int32_t> samples;
    vcm::C_ByteReader pcm({sound->GetBuffer(), sound->GetBufferLength()});
    for (int i = 0; i < 666; ++i) {
      const std::uint32_t dwValue = wBits == 8    ? (pcm.U8() ^ 0x80U) << 24
                                    : wBits == 16 ? std::uint32_t{pcm.U16()} << 16
                                                  : pcm.U32();
      samples.push_back(static_cast<std::int32_t>(dwValue));
    }
    EXPECT_EQ(WithoutPads(Written(PcmFormat(VOXPLAY_CONTAINER_WAV, wBits, 2, 8000), samples)),
              ByClassLibrary(*sound, AUDIO_FILE_WAVE));
  }
}

TEST(RiffWriter, EveryWidth_IsReadByOthers) {
  std::vector<std::int32_t> samples;
  for (std::uint32_t i = 0; i < 999; ++i) {
    samples.push_back(static_cast<std::int32_t>(i * 2654435761U));
  }
  for (const std::uint32_t dwBits : {8U, 16U, 24U, 32U}) {
    const auto read = ReadBySndfile(Written(PcmFormat(VOXPLAY_CONTAINER_WAV, dwBits, 3), samples));
    EXPECT_EQ(read.info.frames, 333);
    EXPECT_EQ(read.info.channels, 3);
    EXPECT_EQ(read.info.samplerate, 16000);
    ASSERT_EQ(read.values.size(), 999u);
    for (std::size_t i = 0; i < 999; ++i) {
      EXPECT_EQ(read.values[i], samples[i] >> (32 - dwBits) << (32 - dwBits));
    }
  }
}

TEST(RiffWriter, Float_IsReadByOthers) {
  const std::vector<float> samples = {0.25F, -1.0F, 0.0F, 1.5F, 0.1F};
  voxplay_format format = PcmFormat(VOXPLAY_CONTAINER_WAV, 32);
  format.codec = VOXPLAY_CODEC_FLOAT;
  const Bytes file = Written(format, samples);
  const C_TempFolder folder;
  SF_INFO info{};
  const C_SndPtr opened(sf_open(folder.Write("a.wav", file).c_str(), SFM_READ, &info));
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_FLOAT);
  std::vector<float> read(5);
  ASSERT_EQ(sf_readf_float(opened.get(), read.data(), 5), 5);
  EXPECT_EQ(read, samples);
  // "fmt " of 18 bytes, then "fact" with the number of frames.
  EXPECT_EQ(file[16], 18);
  EXPECT_EQ(std::string(file.begin() + 38, file.begin() + 42), "fact");
  EXPECT_EQ(file[46], 5);
}

TEST(RiffWriter, OddPayloads_HaveAPadByte) {
  const Samples samples = {0, 256, -256};
  api::S_Notes notes;
  notes.chunks = {{{'o', 'd', 'd', ' '}, {7}}};
  const Bytes file = Written(PcmFormat(VOXPLAY_CONTAINER_WAV, 8), samples, notes);
  ASSERT_EQ(file.size(), 44u + 4 + 10);
  EXPECT_EQ(file[4], file.size() - 8);
  EXPECT_EQ(file[40], 3);
  EXPECT_EQ(Bytes(file.begin() + 44, file.end()),
            (Bytes{128, 129, 127, 0, 'o', 'd', 'd', ' ', 1, 0, 0, 0, 7, 0}));
}

TEST(RiffWriter, OutputThatOnlyGoesForward_GetsTheSameBytes) {
  const auto samples = Stereo(1000);
  voxplay_format flagged = PcmFormat(VOXPLAY_CONTAINER_WAV, 24, 2);
  flagged.flags = VOXPLAY_WRITE_RF64;
  for (const auto& format :
       {PcmFormat(VOXPLAY_CONTAINER_WAV, 16, 2), PcmFormat(VOXPLAY_CONTAINER_VEMD, 8, 2),
        PcmFormat(VOXPLAY_CONTAINER_VEF, 16, 2), flagged}) {
    EXPECT_EQ(WrittenForward(format, samples, ExampleNotes()),
              Written(format, samples, ExampleNotes()));
  }
}

TEST(RiffWriter, SoundWithoutFrames_IsAFile) {
  const Bytes file = Written(PcmFormat(VOXPLAY_CONTAINER_WAV, 16), Samples());
  ASSERT_EQ(file.size(), 44u);
  EXPECT_EQ(file[4], 36);
  EXPECT_EQ(file[40], 0);
}

TEST(RiffWriter, RoomForRf64_IsAJunkChunkWhileItIsNotNeeded) {
  voxplay_format format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.flags = VOXPLAY_WRITE_RF64;
  const auto voice = TestVoice(500);
  const Bytes file = Written(format, voice);
  EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "RIFF");
  EXPECT_EQ(std::string(file.begin() + 12, file.begin() + 16), "JUNK");
  EXPECT_EQ(file[16], 28);
  EXPECT_EQ(Bytes(file.begin() + 20, file.begin() + 48), Bytes(28));
  EXPECT_EQ(ReadBySndfile(file).info.frames, 500);
}

TEST(RiffWriter, SoundBeyondTheSizes_BecomesAnRf64File) {
  voxplay_format flagged = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  flagged.flags = VOXPLAY_WRITE_RF64;
  voxplay_format announced = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  announced.frames = 500;
  const auto voice = TestVoice(500);
  for (const auto& format : {flagged, announced}) {
    const Bytes file = WrittenWithin(format, voice, 1000);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "RF64");
    EXPECT_EQ(Bytes(file.begin() + 4, file.begin() + 8), Bytes(4, 0xFF));
    EXPECT_EQ(std::string(file.begin() + 12, file.begin() + 16), "ds64");
    vcm::C_ByteReader sizes{std::span(file).subspan(20)};
    EXPECT_EQ(sizes.U32(), file.size() - 8);
    EXPECT_EQ(sizes.U32(), 0u);
    EXPECT_EQ(sizes.U32(), 1000u);
    EXPECT_EQ(sizes.U32(), 0u);
    EXPECT_EQ(sizes.U32(), 500u);
    EXPECT_EQ(Bytes(file.begin() + 76, file.begin() + 80), Bytes(4, 0xFF));
    const auto read = ReadBySndfile(file);
    EXPECT_EQ(read.info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_RF64);
    ASSERT_EQ(read.values.size(), 500u);
    EXPECT_EQ(read.values[499], voice[499] * 65536);
  }
}

TEST(RiffWriter, SoundBeyondTheSizes_FailsBeforeItIsWritten) {
  C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  for (const std::uint32_t dwContainer : {VOXPLAY_CONTAINER_WAV, VOXPLAY_CONTAINER_VEF}) {
    api::C_RiffWriter writer(*target, PcmFormat(dwContainer, 16), 1000);
    writer.MakeRoom(482);  // 36 + 964 bytes
    const auto failure = FailureOf([&] { writer.MakeRoom(483); });
    EXPECT_EQ(failure.eStatus, VOXPLAY_TOO_LARGE);
    EXPECT_EQ(failure.strText, "RIFF: 483 frames do not fit in its sizes");
    EXPECT_EQ(FailureOf([&] { writer.MakeRoom(UINT64_MAX); }).eStatus, VOXPLAY_TOO_LARGE);
  }
  EXPECT_EQ(output.Calls(), 0);
}

TEST(RiffWriter, NotesThatDoNotFit_FailBeforeTheyAreWritten) {
  C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  api::C_RiffWriter writer(*target, PcmFormat(VOXPLAY_CONTAINER_WAV, 16), 1000);
  const auto voice = TestVoice(482);
  writer.Begin({}, 0);
  writer.Frames().Put(std::span<const std::int16_t>(voice));
  EXPECT_EQ(FailureOf([&] { writer.End(ExampleNotes(), 482); }).eStatus, VOXPLAY_TOO_LARGE);
  EXPECT_EQ(output.Content().size(), 44u + 964);
}

TEST(RiffWriter, AnnouncedLengths_DecideAboutRf64BeforeTheFirstFrame) {
  voxplay_format format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.frames = 0x80000000;
  C_CallerOutput output;
  output.OnlyForward();
  const auto writer = api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
  writer->Write(std::span<const std::int16_t>(TestVoice(1)));
  EXPECT_EQ(std::string(output.Content().begin(), output.Content().begin() + 4), "RF64");
  for (const std::uint32_t dwContainer : {VOXPLAY_CONTAINER_VEMD, VOXPLAY_CONTAINER_VEF}) {
    format.container = dwContainer;
    EXPECT_EQ(FailureOf([&] {
                api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
              }).eStatus,
              VOXPLAY_TOO_LARGE);
  }
  format.container = VOXPLAY_CONTAINER_WAV;
  format.frames = UINT64_MAX;
  EXPECT_EQ(FailureOf([&] {
              api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
            }).eStatus,
            VOXPLAY_TOO_LARGE);
}

TEST(RiffWriter, Vef_IsReadByTheClassLibrary) {
  const auto samples = Stereo(700);
  const C_TempFolder folder;
  const auto strPath = folder.Write(
      "a.vef", Written(PcmFormat(VOXPLAY_CONTAINER_VEF, 16, 2), samples, ExampleNotes()));
  C_VefFile file;
  ASSERT_TRUE(file.OpenByName(strPath.c_str()));
  ASSERT_TRUE(file.LoadData(true, nullptr, nullptr));
  EXPECT_EQ(SamplesOf(file.GetWavData()), samples);
  EXPECT_EQ(file.GetWavData()->GetEventTagMgr()->GetEventList()->GetSize(), 2);
}

}  // namespace
