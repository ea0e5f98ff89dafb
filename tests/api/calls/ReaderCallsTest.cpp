// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "ReadKinds.h"
#include "TempFolder.h"
#include "voxplay.hpp"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::vector<std::int16_t> kSamples = PublicSamples(1000);

std::vector<std::uint8_t> Wav() {
  return WrittenBytes(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16), kSamples);
}

class ReaderCallsTest : public testing::Test {
 protected:
  ~ReaderCallsTest() override { voxplay_reader_free(m_pReader); }

  voxplay_status OpenWav() {
    return voxplay_reader_open_memory(m_pReader, m_wav.data(), m_wav.size(), 0);
  }
  [[nodiscard]] std::string Message() const { return voxplay_reader_message(m_pReader); }

  std::vector<std::uint8_t> m_wav = Wav();
  voxplay_reader* m_pReader = voxplay_reader_new();
  std::array<std::int16_t, 100> m_samples{};
  std::size_t m_nDone = 7;
};

TEST_F(ReaderCallsTest, NullPointers_AreBadArguments) {
  voxplay_info info{};
  voxplay_headers headers{};
  const voxplay_input input{};
  EXPECT_EQ(voxplay_reader_open_file(nullptr, "x", 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_open_file(m_pReader, nullptr, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_open_memory(nullptr, "x", 1, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_open_memory(m_pReader, nullptr, 1, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_open_input(m_pReader, nullptr, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_open_input(m_pReader, &input, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_info(nullptr, &info, sizeof info), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_info(m_pReader, nullptr, sizeof info), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_headers(m_pReader, &headers, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_seek(nullptr, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_read_s16(nullptr, m_samples.data(), 1, &m_nDone), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(m_nDone, 0U);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 1, nullptr), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_tell(nullptr), 0U);
  EXPECT_EQ(voxplay_reader_notes(nullptr), nullptr);
  EXPECT_STREQ(voxplay_reader_message(nullptr), "");
  voxplay_reader_close(nullptr);
  voxplay_reader_free(nullptr);
}

TEST_F(ReaderCallsTest, NothingOpen_IsTheWrongState) {
  voxplay_info info{};
  EXPECT_EQ(voxplay_reader_info(m_pReader, &info, sizeof info), VOXPLAY_WRONG_STATE);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 1, &m_nDone), VOXPLAY_WRONG_STATE);
  EXPECT_EQ(m_nDone, 0U);
  EXPECT_EQ(voxplay_reader_seek(m_pReader, 0), VOXPLAY_WRONG_STATE);
  EXPECT_EQ(voxplay_reader_tell(m_pReader), 0U);
  EXPECT_EQ(voxplay_reader_notes(m_pReader), nullptr);
  EXPECT_THAT(Message(), HasSubstr("nothing is open"));
}

TEST_F(ReaderCallsTest, MissingFile_IsNamedInTheMessage) {
  EXPECT_EQ(voxplay_reader_open_file(m_pReader, "/nowhere/speech.kst", 0), VOXPLAY_CANNOT_OPEN);
  EXPECT_THAT(Message(), StartsWith("/nowhere/speech.kst: "));
}

TEST_F(ReaderCallsTest, BadArgument_ClosesNothingAndSaysWhatIsWrong) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  EXPECT_EQ(voxplay_reader_open_memory(m_pReader, m_wav.data(), m_wav.size(), 0x80),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_THAT(Message(), HasSubstr("flags"));
  EXPECT_EQ(voxplay_reader_open_file(m_pReader, nullptr, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_THAT(Message(), HasSubstr("path"));
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, nullptr, 1, &m_nDone), VOXPLAY_BAD_ARGUMENT);
  EXPECT_THAT(Message(), HasSubstr("samples"));
  EXPECT_NE(voxplay_reader_notes(m_pReader), nullptr);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, nullptr, 0, &m_nDone), VOXPLAY_OK);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 1, &m_nDone), VOXPLAY_OK);
  EXPECT_EQ(m_nDone, 1U);
}

// The path may be a text that goes with what was open.
TEST_F(ReaderCallsTest, PathFromTheOpenNotes_IsUsedBeforeTheyGo) {
  const C_TempFolder folder;
  const std::string strPath = folder.Write("named in its own notes, in a text that is long", m_wav);
  voxplay::Notes notes;
  notes.add(voxplay::Chunk{{'p', 'a', 't', 'h'}, strPath.c_str(), strPath.size() + 1});
  const auto named =
      WrittenBytes(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16), kSamples, notes);
  ASSERT_EQ(voxplay_reader_open_memory(m_pReader, named.data(), named.size(), 0), VOXPLAY_OK);
  const voxplay::Chunk chunk = voxplay::NotesView(voxplay_reader_notes(m_pReader)).chunks()[0];
  EXPECT_EQ(voxplay_reader_open_file(m_pReader, static_cast<const char*>(chunk.data), 0),
            VOXPLAY_OK);
}

TEST_F(ReaderCallsTest, ForeignBytes_AreUnknownAndSaySo) {
  const std::string strText = "These words are no sound.";
  EXPECT_EQ(voxplay_reader_open_memory(m_pReader, strText.data(), strText.size(), 0),
            VOXPLAY_UNKNOWN);
  EXPECT_THAT(Message(), StartsWith("memory: "));
  EXPECT_THAT(Message(), HasSubstr("RIFF"));
  EXPECT_THAT(Message(), HasSubstr("SP header"));
  EXPECT_EQ(voxplay_reader_open_memory(m_pReader, nullptr, 0, 0), VOXPLAY_UNKNOWN);
}

TEST_F(ReaderCallsTest, Info_IsFilledAsFarAsTheCallerKnows) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  voxplay_info info{};
  ASSERT_EQ(voxplay_reader_info(m_pReader, &info, sizeof info), VOXPLAY_OK);
  EXPECT_EQ(info.container, VOXPLAY_CONTAINER_WAV);
  EXPECT_EQ(info.codec, VOXPLAY_CODEC_PCM);
  EXPECT_EQ(info.sample_rate, 16000U);
  EXPECT_EQ(info.channels, 1U);
  EXPECT_EQ(info.frames, 1000U);
  EXPECT_EQ(info.bits_per_sample, 16U);
  EXPECT_EQ(info.stored_bits, 16U);
  EXPECT_EQ(info.damaged_frames, 0U);
  voxplay_info older{};
  older.channels = 77;
  ASSERT_EQ(voxplay_reader_info(m_pReader, &older, offsetof(voxplay_info, channels)), VOXPLAY_OK);
  EXPECT_EQ(older.sample_rate, 16000U);
  EXPECT_EQ(older.channels, 77U);
}

TEST_F(ReaderCallsTest, ReadsAndSeeks_GiveTheFramesOfTheirPlaces) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  ASSERT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 100, &m_nDone), VOXPLAY_OK);
  EXPECT_EQ(m_nDone, 100U);
  EXPECT_EQ(m_samples[99], kSamples[99]);
  EXPECT_EQ(voxplay_reader_tell(m_pReader), 100U);
  ASSERT_EQ(voxplay_reader_seek(m_pReader, 950), VOXPLAY_OK);
  ASSERT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 100, &m_nDone), VOXPLAY_OK);
  EXPECT_EQ(m_nDone, 50U);
  EXPECT_EQ(m_samples[0], kSamples[950]);
  ASSERT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 100, &m_nDone), VOXPLAY_OK);
  EXPECT_EQ(m_nDone, 0U);
  EXPECT_EQ(voxplay_reader_seek(m_pReader, 1000), VOXPLAY_OK);
  EXPECT_EQ(voxplay_reader_seek(m_pReader, 1001), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_tell(m_pReader), 1000U);
  EXPECT_THAT(Message(), HasSubstr("1000"));
}

TEST_F(ReaderCallsTest, AllKindsOfSamples_AreTheSameSound) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  std::array<std::int32_t, 10> wide{};
  std::array<float, 10> real{};
  ASSERT_EQ(voxplay_reader_read_s32(m_pReader, wide.data(), 10, &m_nDone), VOXPLAY_OK);
  ASSERT_EQ(voxplay_reader_seek(m_pReader, 0), VOXPLAY_OK);
  ASSERT_EQ(voxplay_reader_read_f32(m_pReader, real.data(), 10, &m_nDone), VOXPLAY_OK);
  for (std::size_t n = 0; n < 10; ++n) {
    EXPECT_EQ(wide[n], kSamples[n] * 65536);
    EXPECT_EQ(real[n], static_cast<float>(kSamples[n]) / 32768.0F);
  }
}

TEST_F(ReaderCallsTest, CountBeyondAnyBuffer_IsABadArgument) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), SIZE_MAX, &m_nDone),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(m_nDone, 0U);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, nullptr, 1, &m_nDone), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(ReaderCallsTest, OpeningAgain_ClosesWhatWasOpen) {
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  EXPECT_EQ(voxplay_reader_open_file(m_pReader, "/nowhere", 0), VOXPLAY_CANNOT_OPEN);
  EXPECT_EQ(voxplay_reader_read_s16(m_pReader, m_samples.data(), 1, &m_nDone), VOXPLAY_WRONG_STATE);
  ASSERT_EQ(OpenWav(), VOXPLAY_OK);
  EXPECT_EQ(Message(), "");
  voxplay_reader_close(m_pReader);
  EXPECT_EQ(voxplay_reader_notes(m_pReader), nullptr);
}

class EveryKindTest : public testing::TestWithParam<S_PublicKind> {};

// The same sound comes from a file, from memory, from functions, and from a pipe where that can be.
TEST_P(EveryKindTest, EveryInput_GivesTheSameSound) {
  const auto& kind = GetParam();
  const auto bytes = SoundBytes(kind, 3000);
  const C_TempFolder folder;
  voxplay::Reader fromFile(folder.Write("sound", bytes), kind.dwReadFlags);
  voxplay::Reader fromMemory(AsBytes(bytes), kind.dwReadFlags);
  C_MemoryInput input(bytes, 37);
  voxplay::Reader fromInput(input.Record(), kind.dwReadFlags);
  const auto expected = ReadRest(fromFile);
  EXPECT_EQ(fromFile.info().codec, kind.format.codec);
  EXPECT_EQ(fromFile.info().channels, kind.format.channels);
  EXPECT_EQ(expected.size() % kind.format.channels, 0U);
  EXPECT_GE(expected.size(), 3000 * kind.format.channels);
  EXPECT_EQ(fromFile.info().frames, expected.size() / kind.format.channels);
  EXPECT_EQ(ReadRest(fromMemory, 7), expected);
  EXPECT_EQ(ReadRest(fromInput, 333), expected);
  EXPECT_EQ(fromFile.info().damaged_frames, 0U);
}

TEST_P(EveryKindTest, AnInputThatBeginsElsewhere_IsReadFromThere) {
  const auto& kind = GetParam();
  const auto bytes = SoundBytes(kind, 900);
  std::vector<std::uint8_t> shifted(13, 0x55);
  shifted.insert(shifted.end(), bytes.begin(), bytes.end());
  C_MemoryInput input(shifted);
  input.StartAt(13);
  voxplay::Reader reader(input.Record(), kind.dwReadFlags);
  voxplay::Reader plain(AsBytes(bytes), kind.dwReadFlags);
  EXPECT_EQ(ReadRest(reader), ReadRest(plain));
}

TEST_P(EveryKindTest, EachCallOfAnInputFailing_IsAPlainFailure) {
  const auto& kind = GetParam();
  const auto bytes = SoundBytes(kind, 900);
  voxplay::Reader plain(AsBytes(bytes), kind.dwReadFlags);
  const auto expected = ReadRest(plain);
  int nFailures = 0;
  for (int nFailing = 1; nFailing < 10000; ++nFailing) {
    C_MemoryInput input(bytes, 200, nFailing);
    try {
      voxplay::Reader reader(input.Record(), kind.dwReadFlags);
      ASSERT_EQ(ReadRest(reader, 100), expected);
    } catch (const voxplay::Error& error) {
      EXPECT_EQ(error.status(), VOXPLAY_CANNOT_READ) << error.what();
    }
    if (input.Calls() < nFailing) break;
    ++nFailures;
  }
  EXPECT_GE(nFailures, 3);
}

TEST_P(EveryKindTest, Seeking_GivesTheSamplesOfReadingOn) {
  const auto& kind = GetParam();
  const auto bytes = SoundBytes(kind, 3000);
  voxplay::Reader reader(AsBytes(bytes), kind.dwReadFlags);
  const auto all = ReadRest(reader);
  const std::size_t nChannels = kind.format.channels;
  std::vector<std::int16_t> piece(11 * nChannels);
  std::uint32_t dwSeed = 1;
  for (int n = 0; n < 200; ++n) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    const std::size_t nFrame = dwSeed % (all.size() / nChannels);
    reader.seek(nFrame);
    EXPECT_EQ(reader.tell(), nFrame);
    const std::size_t nRead = reader.read(std::span(piece));
    ASSERT_EQ(nRead, std::min<std::size_t>(11, all.size() / nChannels - nFrame));
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(nFrame * nChannels);
    const auto nSamples = static_cast<std::ptrdiff_t>(nRead * nChannels);
    ASSERT_TRUE(std::equal(first, first + nSamples, piece.begin())) << "frame " << nFrame;
  }
}

INSTANTIATE_TEST_SUITE_P(All, EveryKindTest, testing::ValuesIn(ReadKinds()),
                         [](const auto& parameters) { return parameters.param.strName; });

// What a pipe can give: everything whose samples come in order.
TEST(PipeTest, WavAndKestrelFromAPipe_AreReadToTheirEnd) {
  for (const auto& kind : ReadKinds()) {
    if (kind.dwReadFlags != 0 || kind.format.codec == VOXPLAY_CODEC_HERON) continue;
    SCOPED_TRACE(kind.strName);
    const auto bytes = SoundBytes(kind, 2000);
    C_MemoryInput input(bytes, 100);
    voxplay::Reader piped(input.Pipe());
    voxplay::Reader plain(AsBytes(bytes));
    EXPECT_EQ(ReadRest(piped), ReadRest(plain));
  }
}

}  // namespace
