// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "file/FileDescriptor.h"

namespace toolbox {

// The file from some byte on, as the decoders read it: one piece after the other, with a position
// of its own. The file outlives the stream.
class C_FileStream {
 public:
  // With `cbAhead`, so many bytes are read at once and kept, for a decoder that asks for a few
  // bytes at a time.
  C_FileStream(const C_FileDescriptor& file, UInt64 qwBegin, std::size_t cbAhead = 0)
      : m_file(file), m_qwBegin(qwBegin), m_ahead(cbAhead) {}

  // Returns the number of bytes copied. Fewer than wanted are copied at the end of the file and on
  // a read error, and none as long as the file remembers an error.
  std::size_t Read(void* pBuffer, std::size_t cbWanted);
  // Takes SEEK_SET, SEEK_CUR or SEEK_END. Returns the new position, or -1 for one before the first
  // byte or too large for a number; the position stays the same then.
  SInt64 Seek(SInt64 nOffset, int nWhence);
  [[nodiscard]] SInt64 Tell() const noexcept { return m_nPosition; }
  // The position in the file.
  [[nodiscard]] UInt64 FileOffset() const noexcept {
    return m_qwBegin + static_cast<UInt64>(m_nPosition);
  }
  [[nodiscard]] SInt64 Size() const noexcept;

 private:
  std::size_t ReadAhead(void* pBuffer, std::size_t cbWanted);

  const C_FileDescriptor& m_file;
  const UInt64 m_qwBegin;
  SInt64 m_nPosition = 0;
  // What was read ahead lies at the start of this buffer.
  std::vector<char> m_ahead;
  UInt64 m_qwAheadOffset = 0;
  std::size_t m_cbAhead = 0;
};

}  // namespace toolbox
