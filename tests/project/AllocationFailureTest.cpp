// SPDX-License-Identifier: Apache-2.0
//
// Every allocation fails in turn. An operation returns false or lets std::bad_alloc through, leaks
// nothing, loses nothing, and works the next time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "FaultyNew.h"
#include "PrivateTemp.h"
#include "SweptOperations.h"

namespace {

constexpr int kMaxAllocations = 200000;

bool RunUnharmed(C_SweptOperation& operation) {
  try {
    return operation.Run();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// False when the operation makes fewer than nCall allocations.
bool RunWithFault(C_SweptOperation& operation, int nCall, bool bFromThenOn) {
  operation.Prepare();
  const std::ptrdiff_t nLiving = C_FaultyNew::Living();
  C_FaultyNew faults(nCall, bFromThenOn);
  const bool bRet = RunUnharmed(operation);
  faults.Stop();
  if (bRet) {
    EXPECT_TRUE(operation.IsWhole());
  } else {
    EXPECT_TRUE(faults.WasHit());
    EXPECT_TRUE(operation.IsEverythingKept());
    EXPECT_TRUE(operation.Run());
    EXPECT_TRUE(operation.IsWhole());
  }
  // Preparing again releases everything that the run made, so the number of living allocations must
  // be the same as before the run.
  operation.Prepare();
  EXPECT_EQ(C_FaultyNew::Living(), nLiving);
  return faults.WasHit();
}

class AllocationFailureTest : public testing::TestWithParam<C_Sweep> {
 protected:
  C_PrivateTemp m_temp;
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(AllocationFailureTest, EachAllocationFailing_LeaksAndLosesNothing) {
  const auto& [strName, bFromThenOn] = GetParam();
  const auto operation = MakeSweptOperation(strName, m_folder);
  int nCall = 1;
  while (nCall < kMaxAllocations && RunWithFault(*operation, nCall, bFromThenOn)) {
    ASSERT_FALSE(HasFailure()) << "at allocation " << nCall;
    ++nCall;
  }
  // Stripping a header copies through a buffer on the stack.
  EXPECT_GT(nCall, strName == "StripHeader" ? 0 : 1) << "no allocation is seen";
  EXPECT_LT(nCall, kMaxAllocations);
  EXPECT_THAT(m_temp.NewFiles(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, AllocationFailureTest,
                         testing::Combine(testing::ValuesIn(SweptOperationNames()),
                                          testing::Bool()),
                         NameOfSweep);

}  // namespace
