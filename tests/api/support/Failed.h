// SPDX-License-Identifier: Apache-2.0
//
// What something throws.
#pragma once

#include <string>

#include "base/Failure.h"

namespace api::test {

struct S_Failed {
  voxplay_status eStatus = VOXPLAY_OK;
  std::string strText;
};

// VOXPLAY_OK when it does not fail.
template <typename Work>
S_Failed FailureOf(Work&& work) {
  try {
    static_cast<void>(work());
    return {};
  } catch (const C_Failure& failure) {
    return {failure.Status(), failure.Text()};
  }
}

}  // namespace api::test
