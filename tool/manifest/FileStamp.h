// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// By what a changed file is told from the same one.
struct S_FileStamp {
  std::int64_t nBytes = 0;
  std::int64_t nModified = 0;  // nanoseconds since 1970

  bool operator==(const S_FileStamp&) const = default;
};

// Nothing where no file is.
[[nodiscard]] std::optional<S_FileStamp> StampOf(const std::string& strPath) noexcept;

}  // namespace tool
