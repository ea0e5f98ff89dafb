// SPDX-License-Identifier: Apache-2.0
#include "stream/KestrelMarks.h"

#include <algorithm>

namespace api {

bool C_KestrelMarks::Wants(std::uint64_t qwFrame) const noexcept {
  return qwFrame == m_marks.size() * m_qwDistance;
}

void C_KestrelMarks::Offer(const S_KestrelMark& mark) {
  if (!Wants(mark.qwFrame)) return;
  if (m_marks.size() == kMost) Thin();
  m_marks.push_back(mark);
}

// An even number of marks keeps its half, so the next mark stays where it was.
void C_KestrelMarks::Thin() {
  for (std::size_t n = 1; n < kMost / 2; ++n) m_marks[n] = m_marks[2 * n];
  m_marks.resize(kMost / 2);
  m_qwDistance *= 2;
}

const S_KestrelMark& C_KestrelMarks::Before(std::uint64_t qwFrame) const {
  return m_marks[static_cast<std::size_t>(
      std::min<std::uint64_t>(qwFrame / m_qwDistance, m_marks.size() - 1))];
}

}  // namespace api
