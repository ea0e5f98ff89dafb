// SPDX-License-Identifier: Apache-2.0
//
// Memory for whole sounds. The system hands out large memory page by page when it is first written,
// and for a long sound that takes longer than reading the file. Where the system has larger pages,
// it is asked to use them.
#pragma once

#include <cstddef>
#include <memory>

namespace vcm {

// New bytes, not cleared. Throws std::bad_alloc as new does.
[[nodiscard]] std::unique_ptr<unsigned char[]> NewBytes(std::size_t cbLength);

}  // namespace vcm
