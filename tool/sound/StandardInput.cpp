// SPDX-License-Identifier: Apache-2.0
#include "sound/StandardInput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <span>
#include <string>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::size_t kPieceBytes = 65536;

bool IsAtStartOfAFile(int nFile) {
  struct stat status {};
  return fstat(nFile, &status) == 0 && S_ISREG(status.st_mode) && lseek(nFile, 0, SEEK_CUR) == 0;
}

}  // namespace

C_Descriptor TakeStandardInput() {
  static std::atomic<bool> bTaken = false;
  const std::string strName = "standard input";
  if (bTaken.exchange(true)) throw C_UsageFailure(strName + ": it can be named only once");
  if (IsAtStartOfAFile(STDIN_FILENO)) return C_Descriptor(STDIN_FILENO);
  C_Descriptor copy = MakePrivateFile();
  std::array<std::byte, kPieceBytes> piece;
  while (const std::size_t cbRead = ReadSome(STDIN_FILENO, piece, strName)) {
    WriteAll(copy.Get(), std::span(piece).first(cbRead), strName);
  }
  return copy;
}

}  // namespace tool
