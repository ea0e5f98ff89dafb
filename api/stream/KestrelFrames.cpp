// SPDX-License-Identifier: Apache-2.0
#include "stream/KestrelFrames.h"

#include <algorithm>

#include "base/Failure.h"

namespace api {

C_KestrelFrames::C_KestrelFrames(I_ByteSource& source, S_ByteRange range, std::size_t cbFrame)
    : m_source(source),
      m_range(range),
      m_cbFrame(cbFrame),
      m_bInMemory(!source.InMemory().empty()) {}

std::span<const std::uint8_t> C_KestrelFrames::Frame(std::uint64_t qwFrame) {
  if (qwFrame > m_range.qwSize / m_cbFrame) return {};
  const std::uint64_t qwAt = qwFrame * m_cbFrame;
  const auto cbWanted =
      static_cast<std::size_t>(std::min<std::uint64_t>(m_cbFrame, m_range.qwSize - qwAt));
  if (m_bInMemory) return InMemory(qwAt, cbWanted);
  if (!IsLoaded(qwAt, cbWanted)) Load(qwAt, cbWanted);
  const std::size_t cbBefore = std::min(static_cast<std::size_t>(qwAt - m_qwWindow), m_cbHeld);
  return std::span(m_window).subspan(cbBefore, std::min(cbWanted, m_cbHeld - cbBefore));
}

std::span<const std::uint8_t> C_KestrelFrames::InMemory(std::uint64_t qwAt,
                                                        std::size_t cbWanted) const {
  const auto bytes = m_source.InMemory();
  if (m_range.qwAt > bytes.size() || qwAt > bytes.size() - m_range.qwAt) return {};
  const auto rest = bytes.subspan(static_cast<std::size_t>(m_range.qwAt + qwAt));
  return rest.first(std::min(rest.size(), cbWanted));
}

bool C_KestrelFrames::IsLoaded(std::uint64_t qwAt, std::size_t cbWanted) const noexcept {
  return qwAt >= m_qwWindow && cbWanted <= m_cbAsked && qwAt - m_qwWindow <= m_cbAsked - cbWanted;
}

void C_KestrelFrames::Load(std::uint64_t qwAt, std::size_t cbFrameHere) {
  if (!m_source.CanGoBack()) return LoadBytes(qwAt, cbFrameHere);
  const auto cbBlock =
      static_cast<std::size_t>(std::min<std::uint64_t>(kFrames * m_cbFrame, m_range.qwSize - qwAt));
  try {
    LoadBytes(qwAt, cbBlock);
  } catch (const C_Failure&) {
    // Where a block cannot be read, the frames before that place still may.
    if (cbBlock == cbFrameHere) throw;
    LoadBytes(qwAt, cbFrameHere);
  }
}

void C_KestrelFrames::LoadBytes(std::uint64_t qwAt, std::size_t cbWanted) {
  m_cbAsked = 0;
  m_cbHeld = m_source.ReadSome(m_range.qwAt + qwAt, std::span(m_window).first(cbWanted));
  m_cbAsked = cbWanted;
  m_qwWindow = qwAt;
}

}  // namespace api
