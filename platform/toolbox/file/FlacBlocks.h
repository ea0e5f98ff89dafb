// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "file/FileDescriptor.h"

namespace toolbox {

// False for a FLAC file with a metadata block that claims more bytes than the file holds, or more
// comments than fit into it. The decoder would allocate what is claimed. True for files of every
// other kind.
[[nodiscard]] bool HoldsItsFlacBlocks(const C_FileDescriptor& file);

}  // namespace toolbox
