// SPDX-License-Identifier: Apache-2.0
#include "play/PlayClock.h"

#include <algorithm>

namespace tool {

void C_PlayClock::Given(std::chrono::duration<double> length, std::uint64_t qwEnd, Time now) {
  // The sound has begun anew.
  if (qwEnd < m_qwEnd) m_qwFloor = m_qwBegin;
  m_qwEnd = qwEnd;
  m_heard = std::max(m_heard, now) + std::chrono::duration_cast<Time::duration>(length);
}

void C_PlayClock::Jump(std::uint64_t qwFrame) { m_qwFloor = m_qwEnd = qwFrame; }

std::uint64_t C_PlayClock::Frame(Time now) const {
  const std::chrono::duration<double> ahead = std::max(m_heard - now, Time::duration::zero());
  const auto qwAhead = static_cast<std::uint64_t>(ahead.count() * m_dwRate);
  return m_qwEnd - std::min(qwAhead, m_qwEnd - m_qwFloor);
}

}  // namespace tool
