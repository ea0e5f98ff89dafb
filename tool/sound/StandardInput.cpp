// SPDX-License-Identifier: Apache-2.0
#include "sound/StandardInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
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

C_Descriptor CopyOf(int nFile, const std::string& strName) {
  C_Descriptor copy = MakePrivateFile();
  std::array<std::byte, kPieceBytes> piece;
  while (const std::size_t cbRead = ReadSome(nFile, piece, strName)) {
    WriteAll(copy.Get(), std::span(piece).first(cbRead), strName);
  }
  return copy;
}

}  // namespace

C_Descriptor TakeStandardInput() {
  static std::atomic<bool> bTaken = false;
  const std::string strName = "standard input";
  if (bTaken.exchange(true)) throw C_UsageFailure(strName + ": it can be named only once");
  if (IsAtStartOfAFile(STDIN_FILENO)) return C_Descriptor(STDIN_FILENO);
  return CopyOf(STDIN_FILENO, strName);
}

C_Descriptor TakePipe(const std::string& strPath) {
  // Opening it otherwise would wait for somebody who writes. The first read does.
  const C_Descriptor pipe(open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (pipe.Get() < 0) throw C_Failure(strPath, "cannot be opened", SystemReason(errno));
  return CopyOf(pipe.Get(), strPath);
}

}  // namespace tool
