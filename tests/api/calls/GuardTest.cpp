// SPDX-License-Identifier: Apache-2.0
#include "calls/Guard.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "base/Failure.h"

namespace api {
namespace {

class GuardTest : public testing::Test {
 protected:
  template <typename Work>
  voxplay_status Run(Work work) {
    return Guarded(&m_strMessage, "speech.kst", work);
  }

  std::string m_strMessage = "before";
};

TEST_F(GuardTest, WorkThatSucceeds_LeavesTheMessage) {
  int nDone = 0;
  EXPECT_EQ(Run([&] { ++nDone; }), VOXPLAY_OK);
  EXPECT_EQ(Run([&] {
              ++nDone;
              return VOXPLAY_WRONG_STATE;
            }),
            VOXPLAY_WRONG_STATE);
  EXPECT_EQ(nDone, 2);
  EXPECT_EQ(m_strMessage, "before");
}

TEST_F(GuardTest, Failure_GivesItsStatusAndASentence) {
  EXPECT_EQ(Run([] { throw C_Failure(VOXPLAY_DAMAGED, "SP header: no length"); }), VOXPLAY_DAMAGED);
  EXPECT_EQ(m_strMessage, "speech.kst: SP header: no length");
}

TEST_F(GuardTest, FailureWithoutAName_GivesTheSentenceAlone) {
  EXPECT_EQ(Guarded(&m_strMessage, "", [] { throw C_Failure(VOXPLAY_UNKNOWN, "no test passed"); }),
            VOXPLAY_UNKNOWN);
  EXPECT_EQ(m_strMessage, "no test passed");
}

TEST_F(GuardTest, RefusedMemory_IsNoMemory) {
  EXPECT_EQ(Run([] { throw std::bad_alloc(); }), VOXPLAY_NO_MEMORY);
  EXPECT_EQ(m_strMessage, "memory was refused");
  EXPECT_EQ(Run([] { throw std::length_error("vector"); }), VOXPLAY_NO_MEMORY);
}

TEST_F(GuardTest, AnythingElse_IsInternal) {
  EXPECT_EQ(Run([] { throw 7; }), VOXPLAY_INTERNAL);
  EXPECT_EQ(m_strMessage, "speech.kst: a mistake in the library");
  EXPECT_EQ(Run([]() -> voxplay_status { throw std::out_of_range("index"); }), VOXPLAY_INTERNAL);
}

TEST_F(GuardTest, NoMessage_IsNoHindrance) {
  EXPECT_EQ(Guarded(nullptr, "x", [] { throw C_Failure(VOXPLAY_DAMAGED, "y"); }), VOXPLAY_DAMAGED);
}

}  // namespace
}  // namespace api
