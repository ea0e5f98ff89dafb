// SPDX-License-Identifier: Apache-2.0
#include "base/SentFile.h"

#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::size_t kPieceBytes = 65536;
constexpr const char* kName = "standard output";
constexpr const char* kTemporary = "temporary file";

C_Descriptor MakeUnlessTerminal() {
  if (isatty(STDOUT_FILENO) == 1) {
    throw C_UsageFailure(kName, "is a terminal, and sounds are no text",
                         "name a file, or a pipe to another program");
  }
  return MakePrivateFile();
}

}  // namespace

C_SentFile::C_SentFile()
    : m_file(MakeUnlessTerminal()), m_strPath("/dev/fd/" + std::to_string(m_file.Get())) {}

void C_SentFile::Write(std::span<const std::byte> bytes) {
  WriteAll(m_file.Get(), bytes, kTemporary);
}

void C_SentFile::TakePlace() {
  if (lseek(m_file.Get(), 0, SEEK_SET) != 0) {
    throw C_Failure(kTemporary, "cannot be read", SystemReason(errno));
  }
  std::array<std::byte, kPieceBytes> piece;
  while (const std::size_t cbRead = ReadSome(m_file.Get(), piece, kTemporary)) {
    WriteAll(STDOUT_FILENO, std::span(piece).first(cbRead), kName);
  }
}

}  // namespace tool
