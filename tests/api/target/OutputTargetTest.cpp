// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "CallerOutput.h"
#include "FailureOf.h"
#include "target/SpooledTarget.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using api::test::C_CallerOutput;
using api::test::FailureOf;

const Bytes kSome = {1, 2, 3, 4, 5};
const Bytes kOther = {9, 8};

TEST(OutputTarget, Pieces_GoToTheCallerInOrder) {
  C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  EXPECT_TRUE(target->CanGoBack());
  target->Write(kSome);
  target->Write({});
  target->WriteAt(1, kOther);
  target->Write(kOther);
  target->Finish();
  EXPECT_EQ(target->Length(), 7u);
  EXPECT_EQ(output.Content(), (Bytes{1, 9, 8, 4, 5, 9, 8}));
}

TEST(OutputTarget, OutputThatOnlyGoesForward_IsNeverMoved) {
  C_CallerOutput output;
  output.OnlyForward();
  const auto target = api::OpenOutputTarget(output.Record());
  EXPECT_FALSE(target->CanGoBack());
  target->Write(kSome);
  EXPECT_EQ(FailureOf([&] { target->WriteAt(0, kOther); }).eStatus, VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(output.Content(), kSome);
}

TEST(OutputTarget, FailingFunctions_AreReported) {
  C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  target->Write(kSome);
  for (int nCall = 1; nCall <= 3; ++nCall) {
    output.FailAt(nCall);
    const auto failure = FailureOf([&] { target->WriteAt(0, kOther); });
    EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_WRITE);
    EXPECT_EQ(failure.strText, nCall == 2 ? "output: the function that writes has failed"
                                          : "output: the function that moves has failed");
  }
}

TEST(OutputTarget, RecordWithoutAFunctionThatWrites_IsRefused) {
  EXPECT_EQ(FailureOf([] { api::OpenOutputTarget({}); }).eStatus, VOXPLAY_BAD_ARGUMENT);
}

TEST(SpooledTarget, Finish_SendsEverythingForward) {
  C_CallerOutput output;
  output.OnlyForward();
  api::C_SpooledTarget target(api::OpenOutputTarget(output.Record()));
  EXPECT_TRUE(target.CanGoBack());
  target.Write(Bytes(40000, 1));
  target.WriteAt(39999, std::vector<std::uint8_t>{9});
  EXPECT_EQ(output.Content(), Bytes());
  target.Finish();
  EXPECT_EQ(output.Content().size(), 40000u);
  EXPECT_EQ(output.Content()[39998], 1);
  EXPECT_EQ(output.Content()[39999], 9);
}

}  // namespace
