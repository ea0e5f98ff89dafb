// SPDX-License-Identifier: Apache-2.0
//
// Keeps exceptions inside the library: the functions of voxplay.h do their work in here.
#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "voxplay.h"

namespace api {

// The status of the exception that is being handled. The message, unless it is null, becomes
// "name: what went wrong"; without a name, only the latter. When there is no memory for that, it
// becomes shorter.
voxplay_status StatusOfException(std::string* pMessage, const std::string& strName) noexcept;

// Does work, which returns a status or nothing. What it throws becomes a status and a message. The
// message stays as it was when nothing is thrown.
template <typename Work>
voxplay_status Guarded(std::string* pMessage, const std::string& strName, Work&& work) noexcept {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
      std::forward<Work>(work)();
      return VOXPLAY_OK;
    } else {
      return std::forward<Work>(work)();
    }
  } catch (...) {
    return StatusOfException(pMessage, strName);
  }
}

}  // namespace api
