// SPDX-License-Identifier: Apache-2.0
#include "StdioFile.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "VCM.h"

namespace vcm {
namespace {

constexpr std::size_t kCopyBytes = 16384;

// Opening a pipe blocks until somebody writes to it, and reading a terminal blocks until somebody
// types. Neither can hold a sound anyway, because a sound is read from several places in its file.
bool CanBeRead(const char* pszPath) {
  struct stat info {};
  return stat(pszPath, &info) != 0 || S_ISREG(info.st_mode) || S_ISDIR(info.st_mode);
}

}  // namespace

C_FilePtr OpenFile(const char* pszPath, const char* pszMode) {
  if (pszPath == nullptr || (*pszMode == 'r' && !CanBeRead(pszPath))) return {};
  return C_FilePtr(VCM_tfopen(pszPath, pszMode));
}

bool CloseChecked(C_FilePtr file) noexcept {
  if (!file) return false;
  const bool bClean = std::ferror(file.get()) == 0;
  return std::fclose(file.release()) == 0 && bClean;
}

bool CloseOnDisk(C_FilePtr file) noexcept {
  if (!file) return false;
  // Some file systems have no disk to bring it to.
  const bool bOnDisk =
      std::fflush(file.get()) == 0 &&
      (fsync(fileno(file.get())) == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP);
  return CloseChecked(std::move(file)) && bOnDisk;
}

bool ReadExact(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept {
  return bytes.empty() || std::fread(bytes.data(), 1, bytes.size(), pFile) == bytes.size();
}

bool WriteExact(std::FILE* pFile, std::span<const std::uint8_t> bytes) noexcept {
  if (bytes.empty()) return true;
  return std::fwrite(bytes.data(), 1, bytes.size(), pFile) == bytes.size();
}

std::optional<std::size_t> ReadSome(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept {
  if (bytes.empty()) return 0;
  std::size_t cbRead = 0;
  // A file that is still being recorded may have grown since its end was met.
  for (int nAttempt = 0; nAttempt < 2; ++nAttempt) {
    cbRead += std::fread(bytes.data() + cbRead, 1, bytes.size() - cbRead, pFile);
    if (cbRead == bytes.size() || IsAtEnd(pFile)) return cbRead;
    if (std::ferror(pFile) != 0) break;
    std::clearerr(pFile);
  }
  return std::nullopt;
}

bool IsAtEnd(std::FILE* pFile) noexcept {
  if (std::ferror(pFile) != 0) return false;
  // A stream in memory is no file of the system.
  if (fileno(pFile) < 0) return std::feof(pFile) != 0;
  struct stat info {};
  if (fstat(fileno(pFile), &info) != 0) return false;
  if (!S_ISREG(info.st_mode)) return std::feof(pFile) != 0;
  const auto qwPosition = Tell(pFile);
  return qwPosition && *qwPosition >= static_cast<std::uint64_t>(info.st_size);
}

bool CopyRest(std::FILE* pFrom, std::FILE* pTo) noexcept {
  std::array<std::uint8_t, kCopyBytes> piece;
  for (;;) {
    const auto cbRead = ReadSome(pFrom, piece);
    if (!cbRead || !WriteExact(pTo, std::span(piece).first(*cbRead))) return false;
    if (*cbRead < piece.size()) return true;
  }
}

bool SeekTo(std::FILE* pFile, std::uint64_t qwPosition) noexcept {
  if (qwPosition > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
    errno = EINVAL;
    return false;
  }
  return fseeko(pFile, static_cast<off_t>(qwPosition), SEEK_SET) == 0;
}

std::optional<std::uint64_t> Tell(std::FILE* pFile) noexcept {
  const off_t nPosition = ftello(pFile);
  if (nPosition < 0) return std::nullopt;
  return static_cast<std::uint64_t>(nPosition);
}

std::optional<std::uint64_t> SizeAndSeekEnd(std::FILE* pFile) noexcept {
  if (fseeko(pFile, 0, SEEK_END) != 0) return std::nullopt;
  const auto qwSize = Tell(pFile);
  // A directory can be opened for reading and then reports an absurd end position. None of our
  // files is that long.
  constexpr std::uint64_t qwAbsurd = std::uint64_t{1} << 62;
  if (!qwSize || *qwSize >= qwAbsurd) return std::nullopt;
  return qwSize;
}

}  // namespace vcm
