// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "Failed.h"
#include "TestInput.h"
#include "source/ByteSource.h"

namespace {

using api::C_ByteSourcePtr;
using api::I_ByteSource;
using api::OpenInputSource;
using api::test::C_TestInput;
using api::test::FailureOf;

std::uint8_t ByteAt(std::size_t n) { return static_cast<std::uint8_t>(n * 31 + (n >> 8)); }

std::vector<std::uint8_t> Bytes(std::size_t cbCount) {
  std::vector<std::uint8_t> bytes(cbCount);
  for (std::size_t i = 0; i < cbCount; ++i) bytes[i] = ByteAt(i);
  return bytes;
}

// Whether cbRead bytes from qwAt on are those of Bytes, as many as there are of cbAll.
void ExpectRead(I_ByteSource& source, std::uint64_t qwAt, std::size_t cbRead, std::size_t cbAll) {
  std::vector<std::uint8_t> read(cbRead);
  const std::size_t cbThere =
      std::min<std::size_t>(cbRead, cbAll - std::min<std::size_t>(cbAll, qwAt));
  ASSERT_EQ(source.ReadSome(qwAt, read), cbThere) << "at " << qwAt;
  for (std::size_t i = 0; i < cbThere; ++i) {
    ASSERT_EQ(read[i], ByteAt(static_cast<std::size_t>(qwAt) + i)) << "at " << qwAt << " + " << i;
  }
}

// A reader's way through a file: heads, some samples, back to the beginning, the end.
void ReadHereAndThere(I_ByteSource& source, std::size_t cbAll) {
  ExpectRead(source, 0, 12, cbAll);
  ExpectRead(source, 12, 8, cbAll);
  ExpectRead(source, 20, 16, cbAll);
  ExpectRead(source, 30000, 10000, cbAll);
  ExpectRead(source, 4, 5, cbAll);
  ExpectRead(source, cbAll - 3, 100, cbAll);
  ExpectRead(source, cbAll, 100, cbAll);
  ExpectRead(source, cbAll + 7, 1, cbAll);
}

}  // namespace

TEST(InputSource, InputWithAllFunctions_IsReadAtAnyPosition) {
  C_TestInput input(Bytes(50000));
  const auto source = OpenInputSource(input.Record());
  EXPECT_EQ(source->Length(), 50000u);
  EXPECT_TRUE(source->CanGoBack());
  ReadHereAndThere(*source, 50000);
}

TEST(InputSource, ReadsThatGiveLessThanAsked_AreContinued) {
  C_TestInput input(Bytes(50000));
  input.AtMost(77);
  const auto source = OpenInputSource(input.Record());
  ReadHereAndThere(*source, 50000);
}

TEST(InputSource, PositionThatTellSays_IsWhereTheSoundBegins) {
  std::vector<std::uint8_t> bytes(100, 0xEE);
  for (const std::uint8_t byByte : Bytes(40000)) bytes.push_back(byByte);
  C_TestInput input(bytes);
  input.At(100);
  const auto source = OpenInputSource(input.Record());
  EXPECT_EQ(source->Length(), 40000u);
  ReadHereAndThere(*source, 40000);
}

TEST(InputSource, InputWithoutTell_BeginsAtPositionZero) {
  C_TestInput input(Bytes(50000));
  input.WithoutTell().At(333);
  const auto source = OpenInputSource(input.Record());
  ReadHereAndThere(*source, 50000);
}

TEST(InputSource, InputThatSeeksButHasNoSize_IsMeasured) {
  C_TestInput input(Bytes(150000));
  input.WithoutSize();
  const auto source = OpenInputSource(input.Record());
  EXPECT_EQ(source->Length(), 150000u);
  ReadHereAndThere(*source, 150000);
}

TEST(InputSource, SmallReads_DoNotCallEachTime) {
  C_TestInput input(Bytes(50000));
  const auto source = OpenInputSource(input.Record());
  for (std::uint64_t qwAt = 0; qwAt < 4096; qwAt += 8) ExpectRead(*source, qwAt, 8, 50000);
  EXPECT_EQ(input.Reads(), 1);
}

TEST(InputSource, LargeRead_GoesStraightToTheCaller) {
  C_TestInput input(Bytes(50000));
  const auto source = OpenInputSource(input.Record());
  ExpectRead(*source, 1000, 40000, 50000);
  EXPECT_EQ(input.Reads(), 1);
}

TEST(InputSource, ForwardInput_GivesItsFirstBytesAgain) {
  C_TestInput input(Bytes(200000));
  input.WithoutSeek().WithoutSize();
  const auto source = OpenInputSource(input.Record());
  EXPECT_FALSE(source->CanGoBack());
  EXPECT_EQ(source->Length(), std::nullopt);
  ExpectRead(*source, 0, 12, 200000);
  ExpectRead(*source, 60000, 5536, 200000);
  ExpectRead(*source, 6, 40000, 200000);
  ExpectRead(*source, 0, 65536, 200000);
}

TEST(InputSource, ForwardInput_SkipsButDoesNotGoBack) {
  C_TestInput input(Bytes(200000));
  input.WithoutSeek().WithoutSize().AtMost(1000);
  const auto source = OpenInputSource(input.Record());
  ExpectRead(*source, 100000, 50000, 200000);
  ExpectRead(*source, 150000, 10, 200000);
  ExpectRead(*source, 190000, 20000, 200000);
  const auto failed = FailureOf([&] {
    std::array<std::uint8_t, 4> read{};
    return source->ReadSome(120000, read);
  });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(failed.strText, "it only goes forward, and byte 120000 has gone by");
}

TEST(InputSource, ForwardInputThatEndsBeforeAPosition_GivesNothingThere) {
  C_TestInput input(Bytes(1000));
  input.WithoutSeek().WithoutSize();
  const auto source = OpenInputSource(input.Record());
  ExpectRead(*source, 5000, 10, 1000);
  ExpectRead(*source, 990, 100, 1000);
}

TEST(InputSource, ForwardInputWithASize_KnowsItsLength) {
  C_TestInput input(Bytes(1000));
  input.WithoutSeek();
  const auto source = OpenInputSource(input.Record());
  EXPECT_EQ(source->Length(), 1000u);
  EXPECT_FALSE(source->CanGoBack());
}

TEST(InputSource, ReadOfMoreThanAsked_IsAFailure) {
  C_TestInput input(Bytes(1000));
  input.Overreading();
  const auto source = OpenInputSource(input.Record());
  const auto failed = FailureOf([&] {
    std::array<std::uint8_t, 4> read{};
    return source->ReadSome(0, read);
  });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_READ);
  EXPECT_EQ(failed.strText, "it gives more bytes than it was asked for");
}

TEST(InputSource, RecordWithoutRead_IsABadArgument) {
  EXPECT_EQ(FailureOf([] { return OpenInputSource({}); }).eStatus, VOXPLAY_BAD_ARGUMENT);
}

// A size that is not told is no failure: then the input is measured.
TEST(InputSource, EachFailingCall_IsAFailureOrChangesNothing) {
  for (const bool bSize : {true, false}) {
    for (const bool bSeek : {true, false}) {
      int nFailures = 0;
      for (int nCall = 1;; ++nCall) {
        C_TestInput input(Bytes(50000));
        if (!bSize) input.WithoutSize();
        if (!bSeek) input.WithoutSeek();
        input.AtMost(9000).FailingAt(nCall);
        const auto failed = FailureOf([&] {
          const auto source = OpenInputSource(input.Record());
          ReadHereAndThere(*source, 50000);
          return 0;
        });
        if (!input.HasFailed()) break;
        if (failed.eStatus == VOXPLAY_OK) continue;
        EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_READ) << nCall;
        ++nFailures;
      }
      EXPECT_GE(nFailures, 5);
    }
  }
}

TEST(InputSource, AfterAFailedRead_TheSamePlaceCanBeReadAgain) {
  C_TestInput input(Bytes(50000));
  input.FailingAt(4).AtMost(2000);
  const auto source = OpenInputSource(input.Record());
  std::vector<std::uint8_t> read(6000);
  EXPECT_EQ(FailureOf([&] { return source->ReadSome(100, read); }).eStatus, VOXPLAY_CANNOT_READ);
  ExpectRead(*source, 100, 6000, 50000);
}

TEST(InputSource, ForwardInput_CanBeReadFromWhatItStillHolds) {
  C_TestInput input(Bytes(200000));
  input.WithoutSeek().WithoutSize().AtMost(1000);
  const auto source = OpenInputSource(input.Record());
  ExpectRead(*source, 0, 65536, 200000);
  EXPECT_TRUE(source->CanReadFrom(0));
  EXPECT_TRUE(source->CanReadFrom(150000));
  // 66,000 bytes have come. What comes with the next call leaves a gap behind the first bytes.
  ExpectRead(*source, 66000, 10, 200000);
  EXPECT_FALSE(source->CanReadFrom(0));
  EXPECT_FALSE(source->CanReadFrom(65535));
  EXPECT_FALSE(source->CanReadFrom(65999));
  EXPECT_TRUE(source->CanReadFrom(66000));
  ExpectRead(*source, 66000, 10000, 200000);
}

TEST(InputSource, InputThatSeeks_CanBeReadFromEverywhere) {
  C_TestInput input(Bytes(200000));
  const auto source = OpenInputSource(input.Record());
  ExpectRead(*source, 150000, 10, 200000);
  EXPECT_TRUE(source->CanReadFrom(0));
}

TEST(InputSource, ForwardInputThatFails_GivesWhatCameBefore) {
  for (const std::size_t cbAtOnce : {7u, 1000u, 4096u}) {
    C_TestInput input(Bytes(200000));
    input.WithoutSeek().WithoutSize().WithoutTell().AtMost(cbAtOnce).FailingAt(30);
    const auto source = OpenInputSource(input.Record());
    std::vector<std::uint8_t> read(150000);
    const api::S_BytesRead result = source->ReadToFailure(0, read);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->Status(), VOXPLAY_CANNOT_READ);
    EXPECT_EQ(result.failure->Text(), "it cannot be read");
    EXPECT_EQ(result.cbRead, 29 * cbAtOnce);
    for (std::size_t i = 0; i < result.cbRead; ++i) ASSERT_EQ(read[i], ByteAt(i)) << i;
    // The last bytes before the failure are still there.
    ExpectRead(*source, 29 * cbAtOnce - 5, 2000, 200000);
  }
}

TEST(InputSource, InputThatSeeksAndFails_GivesWhatCameBefore) {
  C_TestInput input(Bytes(50000));
  input.WithoutTell().AtMost(9000).FailingAt(4);
  const auto source = OpenInputSource(input.Record());
  std::vector<std::uint8_t> read(40000);
  const api::S_BytesRead result = source->ReadToFailure(0, read);
  EXPECT_TRUE(result.failure);
  EXPECT_EQ(result.cbRead, 9000u);
  ExpectRead(*source, 0, 40000, 50000);
}

TEST(InputSource, ReadThatThrowsOnItsWay_LeavesNoFalsePosition) {
  struct S_Throwing {
    C_TestInput input{Bytes(50000)};
    voxplay_input record = input.Record();
    bool bThrows = false;
  } throwing;
  voxplay_input record{};
  record.user = &throwing;
  record.size = [](void*) { return std::int64_t{50000}; };
  record.seek = [](void* pUser, std::uint64_t qwAt) {
    const auto& inner = static_cast<S_Throwing*>(pUser)->record;
    return inner.seek(inner.user, qwAt);
  };
  record.read = [](void* pUser, void* pBytes, std::size_t cbSize) {
    auto& state = *static_cast<S_Throwing*>(pUser);
    const std::int64_t nRead = state.record.read(state.record.user, pBytes, cbSize);
    if (state.bThrows) throw std::runtime_error("a mistake of the caller's");
    return nRead;
  };
  const auto source = OpenInputSource(record);
  ExpectRead(*source, 0, 10000, 50000);
  throwing.bThrows = true;
  std::vector<std::uint8_t> read(10000);
  EXPECT_THROW(source->ReadSome(10000, read), std::runtime_error);
  throwing.bThrows = false;
  ExpectRead(*source, 10000, 10000, 50000);
}
