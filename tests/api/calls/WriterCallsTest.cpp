// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "TempFolder.h"
#include "voxplay.hpp"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const voxplay_format kWav = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16);

class WriterCallsTest : public testing::Test {
 protected:
  ~WriterCallsTest() override { voxplay_writer_free(m_pWriter); }

  voxplay_status Open(const std::string& strName, const voxplay_format& format = kWav) {
    return voxplay_writer_open_file(m_pWriter, m_folder.Path(strName).c_str(), &format,
                                    sizeof format);
  }
  [[nodiscard]] std::string Message() const { return voxplay_writer_message(m_pWriter); }

  C_TempFolder m_folder;
  voxplay_writer* m_pWriter = voxplay_writer_new();
  std::vector<std::int16_t> m_samples = PublicSamples(1000);
};

TEST_F(WriterCallsTest, NullPointers_AreBadArguments) {
  const voxplay_output output{};
  EXPECT_EQ(voxplay_writer_open_file(nullptr, "x", &kWav, sizeof kWav), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_open_file(m_pWriter, nullptr, &kWav, sizeof kWav), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_open_file(m_pWriter, "x", nullptr, sizeof kWav), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_open_file(m_pWriter, "x", &kWav, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_open_output(m_pWriter, nullptr, &kWav, sizeof kWav),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_open_output(m_pWriter, &output, &kWav, sizeof kWav),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_write_s16(nullptr, m_samples.data(), 1), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_write_s16(m_pWriter, nullptr, 1), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_finish(nullptr), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_set_notes(nullptr, nullptr), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_on_progress(nullptr, nullptr, nullptr), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_writer_lost_count(nullptr), 0U);
  EXPECT_EQ(voxplay_writer_lost(nullptr, 0), nullptr);
  EXPECT_STREQ(voxplay_writer_message(nullptr), "");
  voxplay_writer_abandon(nullptr);
  voxplay_writer_free(nullptr);
}

TEST_F(WriterCallsTest, NothingOpen_IsTheWrongState) {
  EXPECT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data(), 1), VOXPLAY_WRONG_STATE);
  EXPECT_EQ(voxplay_writer_set_notes(m_pWriter, nullptr), VOXPLAY_WRONG_STATE);
  EXPECT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_WRONG_STATE);
  EXPECT_THAT(Message(), HasSubstr("nothing is open"));
}

TEST_F(WriterCallsTest, TheFile_AppearsWholeAtTheEnd) {
  ASSERT_EQ(Open("a.wav"), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data(), 600), VOXPLAY_OK);
  EXPECT_FALSE(m_folder.Has("a.wav"));
  ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data() + 600, 400), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
  EXPECT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_WRONG_STATE);
  voxplay::Reader reader(m_folder.Path("a.wav"));
  EXPECT_EQ(ReadRest(reader), m_samples);
}

TEST_F(WriterCallsTest, AbandonedFile_NeverAppears) {
  m_folder.Write("a.wav", {1, 2, 3});
  ASSERT_EQ(Open("a.wav"), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data(), 1000), VOXPLAY_OK);
  voxplay_writer_abandon(m_pWriter);
  EXPECT_EQ(m_folder.Read("a.wav"), (std::vector<std::uint8_t>{1, 2, 3}));
  std::filesystem::remove(m_folder.Path("a.wav"));
  EXPECT_TRUE(m_folder.IsEmpty());
}

TEST_F(WriterCallsTest, OpeningAgain_AbandonsWhatWasOpen) {
  ASSERT_EQ(Open("a.wav"), VOXPLAY_OK);
  ASSERT_EQ(Open("b.wav"), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
  EXPECT_FALSE(m_folder.Has("a.wav"));
  EXPECT_TRUE(m_folder.Has("b.wav"));
}

TEST_F(WriterCallsTest, FolderThatIsMissing_IsNamedInTheMessage) {
  EXPECT_EQ(Open("nowhere/a.wav", kWav), VOXPLAY_CANNOT_OPEN);
  EXPECT_THAT(Message(), testing::StartsWith(m_folder.Path("nowhere/a.wav") + ": "));
}

TEST_F(WriterCallsTest, SomethingElseThanAFile_IsRefused) {
  EXPECT_EQ(voxplay_writer_open_file(m_pWriter, "/dev/null", &kWav, sizeof kWav),
            VOXPLAY_CANNOT_OPEN);
  EXPECT_EQ(voxplay_writer_open_file(m_pWriter, m_folder.Path().c_str(), &kWav, sizeof kWav),
            VOXPLAY_CANNOT_OPEN);
}

TEST_F(WriterCallsTest, FormatsThatCannotBe_AreRefusedWithAReason) {
  std::array<char, 200> text{};
  const auto fnProblem = [&](const voxplay_format& format) {
    EXPECT_EQ(voxplay_format_check(&format, sizeof format, text.data(), text.size()),
              VOXPLAY_UNSUPPORTED);
    EXPECT_EQ(Open("x", format), VOXPLAY_UNSUPPORTED);
    EXPECT_EQ(Message(), m_folder.Path("x") + ": " + text.data());
    return std::string(text.data());
  };
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_KESTREL)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_MULAW)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 12)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 0)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 16000, 0)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 16000, 65)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 2)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 3999)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 48001)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_KESTREL, 0, 65536)), "");
  EXPECT_NE(fnProblem(FormatOf(VOXPLAY_CONTAINER_NONE, VOXPLAY_CODEC_PCM, 16)), "");
  voxplay_format format = FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL);
  format.bit_rate = 8000;
  EXPECT_THAT(fnProblem(format), HasSubstr("bit rates of 7200"));
  EXPECT_EQ(voxplay_format_check(&kWav, sizeof kWav, text.data(), text.size()), VOXPLAY_OK);
  EXPECT_STREQ(text.data(), "");
  EXPECT_TRUE(m_folder.IsEmpty());
}

TEST_F(WriterCallsTest, Progress_RisesToAllFrames) {
  struct S_Heard {
    std::vector<std::uint64_t> done;
    std::uint64_t qwAll = 0;
  } heard;
  for (auto kind : PublicKinds()) {
    SCOPED_TRACE(kind.strName);
    heard = {};
    kind.format.frames = 20000;
    ASSERT_EQ(Open("a", kind.format), VOXPLAY_OK);
    const auto fnHear = [](void* pUser, std::uint64_t qwDone, std::uint64_t qwAll) {
      static_cast<S_Heard*>(pUser)->done.push_back(qwDone);
      static_cast<S_Heard*>(pUser)->qwAll = qwAll;
      return 0;
    };
    ASSERT_EQ(voxplay_writer_on_progress(m_pWriter, fnHear, &heard), VOXPLAY_OK);
    const auto samples = PublicSamples(20000, kind.format.channels);
    ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, samples.data(), 20000), VOXPLAY_OK);
    ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
    ASSERT_GT(heard.done.size(), 1U);
    EXPECT_TRUE(std::is_sorted(heard.done.begin(), heard.done.end()));
    EXPECT_EQ(heard.done.back(), 20000U);
    EXPECT_EQ(heard.qwAll, 20000U);
  }
}

TEST_F(WriterCallsTest, CancelledWriting_LeavesNothing) {
  for (const auto& kind : PublicKinds()) {
    SCOPED_TRACE(kind.strName);
    ASSERT_EQ(Open("a", kind.format), VOXPLAY_OK);
    const auto fnCancel = [](void*, std::uint64_t, std::uint64_t) { return 1; };
    ASSERT_EQ(voxplay_writer_on_progress(m_pWriter, fnCancel, nullptr), VOXPLAY_OK);
    const auto samples = PublicSamples(20000, kind.format.channels);
    voxplay_status eStatus = voxplay_writer_write_s16(m_pWriter, samples.data(), 20000);
    if (eStatus == VOXPLAY_OK) eStatus = voxplay_writer_finish(m_pWriter);
    EXPECT_EQ(eStatus, VOXPLAY_CANCELLED);
    voxplay_writer_abandon(m_pWriter);
    EXPECT_TRUE(m_folder.IsEmpty());
    ASSERT_EQ(voxplay_writer_on_progress(m_pWriter, nullptr, nullptr), VOXPLAY_OK);
  }
}

// A button that cancels may well try to abandon.
TEST_F(WriterCallsTest, FunctionsCalledFromProgress_AreRefused) {
  ASSERT_EQ(Open("a.wav"), VOXPLAY_OK);
  const auto fnMeddle = [](void* pUser, std::uint64_t, std::uint64_t) {
    auto* const pWriter = static_cast<voxplay_writer*>(pUser);
    const std::int16_t nSample = 0;
    voxplay_writer_abandon(pWriter);
    EXPECT_EQ(voxplay_writer_write_s16(pWriter, &nSample, 1), VOXPLAY_WRONG_STATE);
    EXPECT_EQ(voxplay_writer_finish(pWriter), VOXPLAY_WRONG_STATE);
    EXPECT_EQ(voxplay_writer_open_file(pWriter, "/tmp/x", &kWav, sizeof kWav), VOXPLAY_WRONG_STATE);
    EXPECT_EQ(voxplay_writer_on_progress(pWriter, nullptr, nullptr), VOXPLAY_WRONG_STATE);
    EXPECT_STREQ(
        voxplay_writer_message(pWriter) + std::string(voxplay_writer_message(pWriter)).rfind(':'),
        ": one of its functions is still working");
    return 0;
  };
  ASSERT_EQ(voxplay_writer_on_progress(m_pWriter, fnMeddle, m_pWriter), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data(), 1000), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
  voxplay::Reader reader(m_folder.Path("a.wav"));
  EXPECT_EQ(ReadRest(reader), m_samples);
}

TEST_F(WriterCallsTest, NotesThatAreLost_AreListed) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{100, 3, 7, 0, nullptr});
  notes.add(voxplay::Chunk{{'L', 'I', 'S', 'T'}, "INFOINAM\4\0\0\0abc", 16});
  ASSERT_EQ(Open("a.kst", FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL)), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_set_notes(m_pWriter, notes.view().get()), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_write_s16(m_pWriter, m_samples.data(), 1000), VOXPLAY_OK);
  EXPECT_EQ(voxplay_writer_lost_count(m_pWriter), 0U);
  ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_lost_count(m_pWriter), 2U);
  EXPECT_THAT(voxplay_writer_lost(m_pWriter, 0), HasSubstr("event 1 at frame 100"));
  EXPECT_THAT(voxplay_writer_lost(m_pWriter, 1), HasSubstr("LIST"));
  EXPECT_EQ(voxplay_writer_lost(m_pWriter, 2), nullptr);
  ASSERT_EQ(Open("b.wav"), VOXPLAY_OK);
  EXPECT_EQ(voxplay_writer_lost_count(m_pWriter), 0U);
}

// Whatever sizes the pieces have, the bytes are the same.
TEST_F(WriterCallsTest, Pieces_MakeNoDifference) {
  for (const auto& kind : PublicKinds()) {
    SCOPED_TRACE(kind.strName);
    const std::size_t nChannels = kind.format.channels;
    const auto samples = PublicSamples(1500, nChannels);
    const auto expected = WrittenBytes(kind.format, samples);
    for (const std::size_t nPiece : {std::size_t{1}, std::size_t{319}, std::size_t{700}}) {
      C_MemoryOutput output;
      voxplay::Writer writer(output.Record(), kind.format);
      for (std::size_t nAt = 0; nAt < 1500; nAt += nPiece) {
        const std::size_t nCount = std::min<std::size_t>(nPiece, 1500 - nAt) * nChannels;
        writer.write(std::span(samples).subspan(nAt * nChannels, nCount));
      }
      writer.finish();
      EXPECT_EQ(output.Bytes(), expected);
    }
  }
}

TEST_F(WriterCallsTest, EachCallOfAnOutputFailing_IsAPlainFailure) {
  const auto samples = PublicSamples(1500);
  for (const auto& kind : PublicKinds()) {
    SCOPED_TRACE(kind.strName);
    if (kind.format.channels != 1) continue;
    int nFailures = 0;
    for (int nFailing = 1; nFailing < 1000; ++nFailing) {
      C_MemoryOutput output(true, nFailing);
      try {
        voxplay::Writer writer(output.Record(), kind.format);
        writer.write(std::span(samples));
        writer.finish();
      } catch (const voxplay::Error& error) {
        EXPECT_EQ(error.status(), VOXPLAY_CANNOT_WRITE) << error.what();
        ++nFailures;
      }
      if (output.Calls() < nFailing) break;
    }
    EXPECT_GT(nFailures, 0);
  }
}

TEST_F(WriterCallsTest, OutputsThatOnlyGoForward_GetTheSameBytes) {
  for (auto kind : PublicKinds()) {
    SCOPED_TRACE(kind.strName);
    const auto samples = PublicSamples(1500, kind.format.channels);
    const auto expected = WrittenBytes(kind.format, samples);
    kind.format.frames = 1500;
    C_MemoryOutput output(false);
    voxplay::Writer writer(output.Record(), kind.format);
    writer.write(std::span(samples));
    writer.finish();
    EXPECT_EQ(output.Bytes(), expected);
  }
}

TEST_F(WriterCallsTest, OutputThatOnlyGoesForwardWithoutALength_IsRefused) {
  C_MemoryOutput output(false);
  const voxplay_output record = output.Record();
  EXPECT_EQ(voxplay_writer_open_output(m_pWriter, &record, &kWav, sizeof kWav),
            VOXPLAY_CANNOT_SEEK);
  EXPECT_THAT(output.Bytes(), IsEmpty());
}

// Samples of all kinds at the edges of their ranges.
TEST_F(WriterCallsTest, FloatsBeyondTheRange_AreLimited) {
  const std::vector<float> samples = {1.0F,
                                      -1.0F,
                                      7.0F,
                                      -7.0F,
                                      std::numeric_limits<float>::quiet_NaN(),
                                      std::numeric_limits<float>::infinity(),
                                      0.5F,
                                      -0.25F};
  ASSERT_EQ(Open("a.wav"), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_write_f32(m_pWriter, samples.data(), samples.size()), VOXPLAY_OK);
  ASSERT_EQ(voxplay_writer_finish(m_pWriter), VOXPLAY_OK);
  voxplay::Reader reader(m_folder.Path("a.wav"));
  EXPECT_EQ(ReadRest(reader),
            (std::vector<std::int16_t>{32767, -32768, 32767, -32768, 0, 32767, 16384, -8192}));
}

}  // namespace
