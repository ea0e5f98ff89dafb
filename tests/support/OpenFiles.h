// SPDX-License-Identifier: Apache-2.0
//
// Counts the files that a test leaves open.
#pragma once

#include <filesystem>
#include <iterator>

// Descriptors open in this process now. Compare two counts; each includes the listing's own.
inline std::ptrdiff_t CountOpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}
