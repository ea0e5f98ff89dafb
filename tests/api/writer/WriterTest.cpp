// SPDX-License-Identifier: Apache-2.0
#include "writer/Writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "WriterSupport.h"

namespace {

using namespace api::test;
using testing::ElementsAre;

std::vector<voxplay_format> OneOfEachKind() {
  return {PcmFormat(VOXPLAY_CONTAINER_WAV, 16),   PcmFormat(VOXPLAY_CONTAINER_VEMD, 24),
          PcmFormat(VOXPLAY_CONTAINER_VEF, 8),    KestrelFormat(VOXPLAY_CONTAINER_VEF),
          HeronFormat(VOXPLAY_CONTAINER_VEF, 3),  KestrelFormat(VOXPLAY_CONTAINER_SP),
          HeronFormat(VOXPLAY_CONTAINER_SP, 4),   KestrelFormat(VOXPLAY_CONTAINER_HEAD),
          HeronFormat(VOXPLAY_CONTAINER_HEAD, 2), KestrelFormat(VOXPLAY_CONTAINER_BARE),
          HeronFormat(VOXPLAY_CONTAINER_BARE, 6)};
}

class Writer : public C_FolderTest {
 protected:
  [[nodiscard]] std::unique_ptr<api::C_Writer> Open(const std::string& strName,
                                                    const voxplay_format& format) const {
    return api::C_Writer::Open(api::OpenFileTarget(Path(strName).c_str()), format);
  }
  static void Write(api::C_Writer& writer, const Samples& samples) {
    writer.Write(std::span<const std::int16_t>(samples));
  }
  const Samples m_voice = TestVoice(20000);
  const Bytes m_old = {'o', 'l', 'd'};
};

TEST_F(Writer, Files_HaveTheBytesThatOutputsGet) {
  for (const auto& format : OneOfEachKind()) {
    const auto writer = Open("a", format);
    Write(*writer, m_voice);
    writer->SetNotes(ExampleNotes());
    EXPECT_THAT(writer->Lost(), ElementsAre());
    writer->Finish();
    EXPECT_EQ(Content("a"), Written(format, m_voice, ExampleNotes()));
    EXPECT_THAT(Entries(), ElementsAre("a"));
  }
}

TEST_F(Writer, FormatWithAProblem_IsRefused) {
  const auto failure =
      FailureOf([this] { static_cast<void>(Open("a", PcmFormat(VOXPLAY_CONTAINER_WAV, 12))); });
  EXPECT_EQ(failure.eStatus, VOXPLAY_UNSUPPORTED);
  EXPECT_EQ(failure.strText, "format: PCM is written with 8, 16, 24 or 32 bits per sample");
  EXPECT_THAT(Entries(), ElementsAre());
}

TEST_F(Writer, AbandonedSound_LeavesTheOldFile) {
  for (const auto& format : OneOfEachKind()) {
    C_FolderTest::Write("a", m_old);
    Write(*Open("a", format), m_voice);
    EXPECT_EQ(Content("a"), m_old);
    EXPECT_THAT(Entries(), ElementsAre("a"));
  }
}

TEST_F(Writer, Progress_RisesInStepsOf4096FramesToAllOfThem) {
  for (auto format : OneOfEachKind()) {
    for (const std::uint64_t qwAnnounced : {std::uint64_t{0}, std::uint64_t{20000}}) {
      format.frames = qwAnnounced;
      const auto writer = Open("a", format);
      std::vector<std::pair<std::uint64_t, std::uint64_t>> reports;
      writer->OnProgress([&](std::uint64_t qwDone, std::uint64_t qwAll) {
        reports.emplace_back(qwDone, qwAll);
        return true;
      });
      Write(*writer, m_voice);
      ASSERT_GE(reports.size(), 4u);
      EXPECT_EQ(reports.back().second, qwAnnounced);
      writer->Finish();
      EXPECT_EQ(reports.back(), std::pair(std::uint64_t{20000}, std::uint64_t{20000}));
      std::uint64_t qwBefore = 0;
      for (const auto& [qwDone, qwAll] : reports) {
        EXPECT_GE(qwDone, qwBefore);
        EXPECT_LE(qwDone, qwBefore + 4096);
        EXPECT_TRUE(qwAll == 20000 || qwAll == qwAnnounced);
        qwBefore = qwDone;
      }
    }
  }
}

TEST_F(Writer, HeronProgress_HasItsSecondHalfWhileItIsCoded) {
  auto format = HeronFormat(VOXPLAY_CONTAINER_SP, 4);
  format.frames = 20000;
  const auto writer = Open("a", format);
  std::uint64_t qwLast = 0;
  std::size_t nReports = 0;
  writer->OnProgress([&](std::uint64_t qwDone, std::uint64_t) {
    qwLast = qwDone;
    ++nReports;
    return true;
  });
  Write(*writer, m_voice);
  EXPECT_EQ(qwLast, 10000u);
  nReports = 0;
  writer->Finish();
  EXPECT_EQ(qwLast, 20000u);
  EXPECT_GE(nReports, 10u);
}

TEST_F(Writer, Progress_ForgetsAnAnnouncementThatIsExceeded) {
  auto format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.frames = 5000;
  const auto writer = Open("a", format);
  std::vector<std::uint64_t> alls;
  writer->OnProgress([&](std::uint64_t, std::uint64_t qwAll) {
    alls.push_back(qwAll);
    return true;
  });
  Write(*writer, m_voice);
  writer->Finish();
  EXPECT_THAT(alls, ElementsAre(5000, 0, 0, 0, 0, 20000));
}

TEST_F(Writer, CancelAtAnyReport_LeavesTheOldFile) {
  for (const auto& format : OneOfEachKind()) {
    bool bCancelled = true;
    for (int nReport = 1; bCancelled; ++nReport) {
      C_FolderTest::Write("a", m_old);
      int nLeft = nReport;
      const auto failure = FailureOf([&] {
        const auto writer = Open("a", format);
        writer->OnProgress([&](std::uint64_t, std::uint64_t) { return --nLeft != 0; });
        Write(*writer, m_voice);
        writer->Finish();
      });
      bCancelled = failure.eStatus == VOXPLAY_CANCELLED;
      EXPECT_EQ(failure.eStatus, bCancelled ? VOXPLAY_CANCELLED : VOXPLAY_OK);
      EXPECT_EQ(Content("a") == m_old, bCancelled);
      EXPECT_THAT(Entries(), ElementsAre("a"));
    }
  }
}

TEST_F(Writer, OutputThatFailsAtAnyCall_EndsTheWriting) {
  for (const auto& format : OneOfEachKind()) {
    const Bytes whole = Written(format, m_voice, ExampleNotes());
    bool bFailed = true;
    for (int nCall = 1; bFailed; ++nCall) {
      C_CallerOutput output;
      output.FailAt(nCall);
      const auto writer = api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
      writer->SetNotes(ExampleNotes());
      const auto failure = FailureOf([&] {
        Write(*writer, m_voice);
        writer->Finish();
      });
      bFailed = failure.eStatus != VOXPLAY_OK;
      if (bFailed) {
        EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_WRITE);
        EXPECT_EQ(FailureOf([&] { Write(*writer, m_voice); }).eStatus, VOXPLAY_WRONG_STATE);
        EXPECT_EQ(FailureOf([&] { writer->Finish(); }).eStatus, VOXPLAY_WRONG_STATE);
        EXPECT_THAT(writer->Lost(), ElementsAre());
      } else {
        EXPECT_EQ(output.Content(), whole);
        EXPECT_EQ(output.Calls(), nCall - 1);
      }
    }
  }
}

TEST_F(Writer, FinishedSound_TakesNothingMore) {
  const auto writer = Open("a", PcmFormat(VOXPLAY_CONTAINER_WAV, 16));
  writer->Finish();
  EXPECT_EQ(FailureOf([&] { Write(*writer, m_voice); }).eStatus, VOXPLAY_WRONG_STATE);
  EXPECT_EQ(FailureOf([&] { writer->Finish(); }).eStatus, VOXPLAY_WRONG_STATE);
  EXPECT_EQ(Content("a").size(), 44u);
}

TEST_F(Writer, PartsOfFrames_AreRefused) {
  const auto writer = Open("a", PcmFormat(VOXPLAY_CONTAINER_WAV, 16, 3));
  EXPECT_EQ(FailureOf([&] { Write(*writer, {1, 2, 3, 4}); }).eStatus, VOXPLAY_BAD_ARGUMENT);
  Write(*writer, {1, 2, 3});
  writer->Finish();
  EXPECT_EQ(Content("a").size(), 44u + 6);
}

TEST_F(Writer, OutputThatOnlyGoesForward_NeedsTheNumberOfFrames) {
  C_CallerOutput output;
  output.OnlyForward();
  for (auto format : OneOfEachKind()) {
    const auto open = [&] {
      return api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
    };
    EXPECT_EQ(FailureOf([&] { static_cast<void>(open()); }).eStatus, VOXPLAY_CANNOT_SEEK);
    format.frames = 100;
    const auto longer = open();
    Write(*longer, Samples(100));
    EXPECT_EQ(FailureOf([&] { Write(*longer, {1}); }).strText,
              "output: 100 frames were announced, and it cannot go back to say that there are "
              "more");
    const auto shorter = open();
    Write(*shorter, Samples(99));
    const auto failure = FailureOf([&] { shorter->Finish(); });
    EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_SEEK);
    EXPECT_EQ(failure.strText,
              "output: 100 frames were announced, and it cannot go back to say 99");
  }
}

TEST_F(Writer, OutputThatOnlyGoesForward_TakesNotesBeforeTheFirstFrameOnly) {
  C_CallerOutput output;
  output.OnlyForward();
  auto format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.frames = 20000;
  const auto writer = api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format);
  writer->SetNotes(ExampleNotes());
  Write(*writer, m_voice);
  EXPECT_EQ(FailureOf([&] { writer->SetNotes({}); }).eStatus, VOXPLAY_CANNOT_SEEK);
  writer->Finish();
  EXPECT_EQ(output.Content(), Written(format, m_voice, ExampleNotes()));
}

TEST_F(Writer, FullDisk_FailsAndKeepsTheOldFile) {
  for (const auto& format : OneOfEachKind()) {
    C_FolderTest::Write("a", m_old);
    const C_FileSizeLimit limit(500);
    const auto failure = FailureOf([&] {
      const auto writer = Open("a", format);
      Write(*writer, m_voice);
      writer->Finish();
    });
    EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_WRITE);
    EXPECT_EQ(Content("a"), m_old);
    EXPECT_THAT(Entries(), ElementsAre("a"));
  }
}

}  // namespace
