// SPDX-License-Identifier: Apache-2.0
#include "sound/ByteCopy.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <vector>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::uint64_t kPieceBytes = std::uint64_t{1} << 20U;

}  // namespace

C_FileBytes OpenBytes(const std::string& strPath) {
  C_Descriptor file(open(strPath.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0) throw C_Failure(strPath, "cannot be opened", SystemReason(errno));
  return C_FileBytes(std::move(file));
}

void CopyBytes(C_FileBytes& from, std::uint64_t qwAt, std::uint64_t qwBytes, I_NewFile& to,
               const std::string& strName) {
  std::vector<std::byte> piece(static_cast<std::size_t>(std::min(qwBytes, kPieceBytes)));
  from.Seek(qwAt);
  while (qwBytes > 0) {
    const auto wanted =
        std::span(piece).first(static_cast<std::size_t>(std::min(qwBytes, kPieceBytes)));
    const std::int64_t nRead = from.Read(wanted.data(), wanted.size());
    if (nRead < 0) throw C_Failure(strName, "cannot be read", SystemReason(from.Error()));
    if (nRead == 0) throw C_Failure(strName, "cannot be read", "it ends too early");
    to.Write(wanted.first(static_cast<std::size_t>(nRead)));
    qwBytes -= static_cast<std::uint64_t>(nRead);
  }
}

}  // namespace tool
