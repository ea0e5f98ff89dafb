// SPDX-License-Identifier: Apache-2.0
//
// What a call that must fail throws.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/Failure.h"

namespace api::test {

struct S_Failed {
  voxplay_status eStatus = VOXPLAY_OK;
  std::string strText;
};

template <typename Work>
S_Failed FailureOf(Work fnWork) {
  try {
    fnWork();
  } catch (const C_Failure& failure) {
    return {failure.Status(), failure.Text()};
  }
  return {};
}

}  // namespace api::test
