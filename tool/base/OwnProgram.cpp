// SPDX-License-Identifier: Apache-2.0
#include "base/OwnProgram.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {
namespace {

// Both programs can be moved together. A system without /proc does not tell where this one is, and
// only the place where they are installed is left then.
std::vector<std::filesystem::path> Folders() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return {VOXTOOL_PROGRAMS};
  return {program.parent_path(), program.parent_path() / VOXTOOL_PROGRAMS_FROM_HERE};
}

}  // namespace

void ContinueAs(const std::string& strProgram, char* const* ppszArguments) {
  const C_HeldInterrupts held;
  ThrowIfInterrupted();
  for (const std::filesystem::path& folder : Folders()) {
    execv((folder / strProgram).c_str(), ppszArguments);
    if (errno != ENOENT) break;
  }
  throw C_Failure(strProgram, "cannot be run", SystemReason(errno));
}

}  // namespace tool
