// SPDX-License-Identifier: Apache-2.0
//
// The platform's file copy, for machines that have none. Only the part that the player uses: it
// copies the whole of a regular file to a name that does not exist yet.
#pragma once

#include <cstdint>

using copyfile_state_t = struct OpaqueCopyfileState*;
using copyfile_flags_t = std::uint32_t;

enum : copyfile_flags_t {
  COPYFILE_ACL = 1U << 0,
  COPYFILE_STAT = 1U << 1,
  COPYFILE_XATTR = 1U << 2,
  COPYFILE_DATA = 1U << 3,
  COPYFILE_ALL = COPYFILE_ACL | COPYFILE_STAT | COPYFILE_XATTR | COPYFILE_DATA,
};

extern "C" {
// Copies the data, then the permission bits, the extended attributes and the times, as far as the
// target's file system accepts them. The target is created exclusively and has mode 0600 until the
// data is written; no link is followed there. Returns 0, or -1 with errno set and no new file left
// behind. It fails when the source is missing or is not a regular file (folders, pipes and devices
// are never read), when the target exists, when a write fails, or when the flags are not
// COPYFILE_ALL (ENOTSUP). The state is ignored.
int copyfile(const char* pszFrom, const char* pszTo, copyfile_state_t state,
             copyfile_flags_t dwFlags);
}
