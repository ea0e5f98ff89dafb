// SPDX-License-Identifier: Apache-2.0
#include "base/Failure.h"

#include <cerrno>
#include <system_error>

namespace tool {

C_Failure::C_Failure(const std::string& strFile, std::string_view what, std::string_view why)
    : std::runtime_error(strFile + ": " + std::string(what) + ": " + std::string(why)) {}

std::string SystemReason(int nError) { return std::generic_category().message(nError); }

bool IsOfDisk(int nError) noexcept {
  return nError == ENOSPC || nError == EDQUOT || nError == EROFS || nError == EIO;
}

}  // namespace tool
