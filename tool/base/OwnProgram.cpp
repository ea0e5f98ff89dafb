// SPDX-License-Identifier: Apache-2.0
#include "base/OwnProgram.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/Failure.h"

namespace tool {

void ContinueAs(const std::string& strProgram, char* const* ppszArguments) {
  std::error_code error;
  const std::filesystem::path folder =
      std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  // The installed place is relative to this program, so that both can be moved.
  for (const char* const pszFolder : {".", VOXTOOL_PROGRAMS}) {
    execv((folder / pszFolder / strProgram).c_str(), ppszArguments);
    if (errno != ENOENT) break;
  }
  throw C_Failure(strProgram, "cannot be run", SystemReason(errno));
}

}  // namespace tool
