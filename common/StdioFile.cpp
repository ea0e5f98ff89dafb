// SPDX-License-Identifier: Apache-2.0
#include "StdioFile.h"

#include <sys/types.h>

#include <limits>

#include "VCM.h"

namespace vcm {

C_FilePtr OpenFile(const char* pszPath, const char* pszMode) {
  return C_FilePtr(pszPath == nullptr ? nullptr : VCM_tfopen(pszPath, pszMode));
}

bool CloseChecked(C_FilePtr file) noexcept {
  if (!file) return false;
  const bool bClean = std::ferror(file.get()) == 0;
  return std::fclose(file.release()) == 0 && bClean;
}

bool ReadExact(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept {
  return ReadSome(pFile, bytes) == bytes.size();
}

bool WriteExact(std::FILE* pFile, std::span<const std::uint8_t> bytes) noexcept {
  if (bytes.empty()) return true;
  return std::fwrite(bytes.data(), 1, bytes.size(), pFile) == bytes.size();
}

std::size_t ReadSome(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept {
  if (bytes.empty()) return 0;
  return std::fread(bytes.data(), 1, bytes.size(), pFile);
}

bool SeekTo(std::FILE* pFile, std::uint64_t qwPosition) noexcept {
  if (qwPosition > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return false;
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
  // A directory opens for reading and reports an absurd end; no file of ours is that long.
  constexpr std::uint64_t qwAbsurd = std::uint64_t{1} << 62;
  if (!qwSize || *qwSize >= qwAbsurd) return std::nullopt;
  return qwSize;
}

}  // namespace vcm
