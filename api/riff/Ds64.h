// SPDX-License-Identifier: Apache-2.0
//
// The "ds64" chunk of an RF64 file: the sizes that do not fit in 32 bits. Little-endian:
//
//   offset size field
//   0      8    size of the file without its first 8 bytes
//   8      8    size of "data"
//   16     8    frames; not looked at
//   24     4    count of the entries that follow
//   28     12n  entries: identifier (4), size (8)
//
// A size in it counts only where the chunk itself claims 2^32-1 bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "notes/Notes.h"
#include "source/ByteSource.h"

namespace api {

class C_Ds64 {
 public:
  // The chunk whose payload is here. Fields that are missing say nothing; of very many entries, the
  // first ones count.
  static C_Ds64 Read(I_ByteSource& source, std::uint64_t qwAt, std::uint64_t qwSize);

  // Empty where the chunk says nothing: that is 0 and 2^64-1, too, as programs leave them that did
  // not come back to fill them in.
  [[nodiscard]] std::optional<std::uint64_t> RiffSize() const noexcept { return m_qwRiffSize; }
  [[nodiscard]] std::optional<std::uint64_t> SizeOf(const S_FourCC& id) const noexcept;

 private:
  struct S_Entry {
    S_FourCC id{};
    std::optional<std::uint64_t> qwSize;
  };

  std::optional<std::uint64_t> m_qwRiffSize;
  std::vector<S_Entry> m_entries;  // "data" is the first one
};

}  // namespace api
