// SPDX-License-Identifier: Apache-2.0
#include "base/SystemReason.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace api {
namespace {

struct S_Reason {
  int nError;
  const char* pszText;
};

// Not the system's own texts, because these depend on the language of the process, and because not
// every system makes them in a way that several threads may use.
constexpr auto kReasons = std::to_array<S_Reason>({
    {EACCES, "it is not permitted"},
    {EPERM, "it is not permitted"},
    {EROFS, "the file system is read-only"},
    {ENOENT, "there is no such folder"},
    {ENOTDIR, "there is no such folder"},
    {EISDIR, "it is a folder"},
    {ELOOP, "its links lead in a circle"},
    {ENAMETOOLONG, "the name is too long"},
    {EILSEQ, "the file system does not take such a name"},
    {EEXIST, "another file has got this name in the meantime"},
    {ENOSPC, "the disk is full"},
    {EDQUOT, "the disk is full"},
    {EFBIG, "the file would become too large"},
    {EMFILE, "too many files are open"},
    {ENFILE, "too many files are open"},
    {ENOMEM, "memory was refused"},
    {EIO, "the disk reports an error"},
});

}  // namespace

std::string SystemReason(int nError) {
  const auto* const pFound = std::ranges::find(kReasons, nError, &S_Reason::nError);
  if (pFound != kReasons.end()) return pFound->pszText;
  return "the system reports error " + std::to_string(nError);
}

}  // namespace api
