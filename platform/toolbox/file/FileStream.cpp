// SPDX-License-Identifier: Apache-2.0
#include "file/FileStream.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace toolbox {

std::size_t C_FileStream::Read(void* pBuffer, std::size_t cbWanted) {
  // No later read may hide that one has failed.
  if (m_file.HasReadError()) return 0;
  auto* pbyTo = static_cast<char*>(pBuffer);
  std::size_t cbDone = 0;
  while (cbDone < cbWanted) {
    const std::size_t cbRead = m_ahead.empty()
                                   ? m_file.ReadAt(FileOffset(), pbyTo + cbDone, cbWanted - cbDone)
                                   : ReadAhead(pbyTo + cbDone, cbWanted - cbDone);
    if (cbRead == 0) break;
    cbDone += cbRead;
    m_nPosition += static_cast<SInt64>(cbRead);
  }
  return cbDone;
}

// Copies what the buffer holds from the position on, after filling it if it holds nothing from
// there.
std::size_t C_FileStream::ReadAhead(void* pBuffer, std::size_t cbWanted) {
  const UInt64 qwOffset = FileOffset();
  if (qwOffset < m_qwAheadOffset || qwOffset - m_qwAheadOffset >= m_cbAhead) {
    m_cbAhead = m_file.ReadAt(qwOffset, m_ahead.data(), m_ahead.size());
    m_qwAheadOffset = qwOffset;
    // Nobody may want the bytes that could not be read. Whoever does comes here again.
    if (m_cbAhead != 0) m_file.ForgetReadError();
  }
  const auto cbSkip = static_cast<std::size_t>(qwOffset - m_qwAheadOffset);
  const std::size_t cbTake = std::min(cbWanted, m_cbAhead - cbSkip);
  std::copy_n(m_ahead.data() + cbSkip, cbTake, static_cast<char*>(pBuffer));
  return cbTake;
}

SInt64 C_FileStream::Seek(SInt64 nOffset, int nWhence) {
  SInt64 nBase = 0;
  if (nWhence == SEEK_CUR) nBase = m_nPosition;
  if (nWhence == SEEK_END) nBase = Size();
  if (nOffset < -nBase || nOffset > std::numeric_limits<SInt64>::max() - nBase) return -1;
  m_nPosition = nBase + nOffset;
  return m_nPosition;
}

SInt64 C_FileStream::Size() const noexcept {
  return static_cast<SInt64>(m_file.Size() - m_qwBegin);
}

}  // namespace toolbox
