// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "CAXException.h"

namespace {

TEST(CAXExceptionTest, Exception_CarriesTheOperationAndTheStatus) {
  const CAXException thrown("AUGraphStart", -10867);
  EXPECT_STREQ(thrown.Operation(), "AUGraphStart");
  EXPECT_STREQ(thrown.what(), "AUGraphStart");
  EXPECT_EQ(thrown.Error(), -10867);
}

TEST(CAXExceptionTest, KeepsACopyOfTheText_CutAt255Characters) {
  std::string strText(300, 'x');
  const CAXException thrown(strText.c_str(), 1);
  strText.assign(300, 'y');
  EXPECT_EQ(thrown.Operation(), std::string(255, 'x'));
  EXPECT_STREQ(CAXException(nullptr, 1).Operation(), "");
}

TEST(CAXExceptionTest, EveryStatusButZero_Throws) {
  EXPECT_NO_THROW(XThrowIfError(0, "a"));
  EXPECT_THROW(XThrowIfError(1, "a"), CAXException);
  EXPECT_THROW(XThrowIfError(-1, "a"), CAXException);
}

}  // namespace
