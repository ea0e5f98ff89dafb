// SPDX-License-Identifier: Apache-2.0
//
// The blocks of a Heron stream in a source, through a window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Block.h"
#include "heron/CodedBytes.h"
#include "source/ByteSource.h"

namespace api {

class C_HeronCoded final : public heron::C_CodedBytes {
 public:
  // The range lies in the source, which must outlive the object.
  C_HeronCoded(I_ByteSource& source, S_ByteRange range);

  [[nodiscard]] std::uint64_t Size() const noexcept override { return m_range.qwSize; }
  // Throws C_Failure.
  std::span<const std::uint8_t> View(std::uint64_t qwAt, std::size_t nLeast,
                                     std::size_t nMost) override;
  // All bytes of a run, which lies in the coded bytes. The window grows for it. Valid until the
  // next call; views of its bytes do not read again. Throws C_Failure.
  std::span<const std::uint8_t> Whole(const heron::S_Run& run);

 private:
  [[nodiscard]] std::size_t LoadedAt(std::uint64_t qwAt) const noexcept;
  void Load(std::uint64_t qwAt, std::size_t nBytes);

  I_ByteSource& m_source;
  S_ByteRange m_range;
  bool m_bInMemory;
  std::vector<std::uint8_t> m_window;
  std::uint64_t m_qwWindow = 0;  // counted from the start of the range
  std::size_t m_nLoaded = 0;
};

}  // namespace api
