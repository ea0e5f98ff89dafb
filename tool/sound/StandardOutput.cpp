// SPDX-License-Identifier: Apache-2.0
#include "sound/StandardOutput.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <string>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::size_t kPieceBytes = 65536;
constexpr const char* kName = "standard output";
constexpr const char* kTemporary = "temporary file";

void SeekTo(int nFile, std::uint64_t qwPosition) {
  if (lseek(nFile, static_cast<off_t>(qwPosition), SEEK_SET) >= 0) return;
  throw C_Failure(kTemporary, "cannot be used", SystemReason(errno));
}

}  // namespace

void RefuseTerminal() {
  if (isatty(STDOUT_FILENO) != 1) return;
  throw C_UsageFailure(kName, "is a terminal", "a file or another program has to take the bytes");
}

C_StandardOutput::C_StandardOutput(bool bAtOnce) {
  if (!bAtOnce) m_file.emplace(MakePrivateFile());
}

voxplay_output C_StandardOutput::Record() {
  voxplay_output output{};
  output.write = [](void* pUser, const void* pBytes, std::size_t cbBytes) {
    return static_cast<C_StandardOutput*>(pUser)->Write(pBytes, cbBytes);
  };
  if (m_file) {
    output.seek = [](void* pUser, std::uint64_t qwPosition) {
      return static_cast<C_StandardOutput*>(pUser)->Seek(qwPosition);
    };
  }
  output.user = this;
  return output;
}

void C_StandardOutput::Finish() {
  if (!m_file) return;
  SeekTo(m_file->Get(), 0);
  std::array<std::byte, kPieceBytes> piece;
  while (const std::size_t cbRead = ReadSome(m_file->Get(), piece, kTemporary)) {
    WriteAll(STDOUT_FILENO, std::span(piece).first(cbRead), kName);
  }
}

void C_StandardOutput::ThrowFailure() const {
  if (m_failure) std::rethrow_exception(m_failure);
}

int C_StandardOutput::Write(const void* pBytes, std::size_t cbBytes) noexcept {
  try {
    const std::span bytes(static_cast<const std::byte*>(pBytes), cbBytes);
    m_file ? WriteAll(m_file->Get(), bytes, kTemporary) : WriteAll(STDOUT_FILENO, bytes, kName);
    return 0;
  } catch (...) {
    m_failure = std::current_exception();
    return -1;
  }
}

int C_StandardOutput::Seek(std::uint64_t qwPosition) noexcept {
  try {
    SeekTo(m_file->Get(), qwPosition);
    return 0;
  } catch (...) {
    m_failure = std::current_exception();
    return -1;
  }
}

}  // namespace tool
