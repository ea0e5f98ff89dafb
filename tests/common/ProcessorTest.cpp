// SPDX-License-Identifier: Apache-2.0
#include "Processor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using vcm::tagInstructions;

// What a limit does to the choice; the limit of the environment is put back afterwards.
class ProcessorTest : public testing::Test {
 protected:
  ~ProcessorTest() override { vcm::LimitInstructions(m_eBefore); }

 private:
  tagInstructions m_eBefore = vcm::UsableInstructions();
};

TEST_F(ProcessorTest, NoLimit_AllThatTheProcessorHasIsUsable) {
  vcm::LimitInstructions(tagInstructions::kAvx2);
  EXPECT_EQ(vcm::UsableInstructions(), vcm::ProcessorInstructions());
}

TEST_F(ProcessorTest, EachLimit_NothingWiderIsUsable) {
  for (const auto eWidest :
       {tagInstructions::kPlain, tagInstructions::kBase, tagInstructions::kAvx2}) {
    vcm::LimitInstructions(eWidest);
    EXPECT_EQ(vcm::UsableInstructions(), std::min(eWidest, vcm::ProcessorInstructions()));
  }
}

TEST_F(ProcessorTest, KindOfProcessor_HasItsBaseAtLeast) {
#if defined(__x86_64__) || defined(__aarch64__)
  EXPECT_GE(vcm::ProcessorInstructions(), tagInstructions::kBase);
#else
  EXPECT_EQ(vcm::ProcessorInstructions(), tagInstructions::kPlain);
#endif
}

}  // namespace
