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

// Whether there is certainly nothing of that name.
[[nodiscard]] bool IsGone(const std::string& strPath) noexcept;

// Whether two names lead to the same file.
[[nodiscard]] bool AreSameFile(const std::string& strPath, const std::string& strOther) noexcept;

}  // namespace tool
