// SPDX-License-Identifier: Apache-2.0
#include "stream/HeronCoded.h"

#include <algorithm>

#include "base/Failure.h"

namespace api {

C_HeronCoded::C_HeronCoded(I_ByteSource& source, S_ByteRange range)
    : m_source(source), m_range(range), m_bInMemory(!source.InMemory().empty()) {}

std::span<const std::uint8_t> C_HeronCoded::View(std::uint64_t qwAt, std::size_t nLeast,
                                                 std::size_t nMost) {
  const auto nThere =
      static_cast<std::size_t>(std::min<std::uint64_t>(nMost, m_range.qwSize - qwAt));
  if (m_bInMemory) {
    return m_source.InMemory().subspan(static_cast<std::size_t>(m_range.qwAt + qwAt), nThere);
  }
  // Runs may be empty, wherever the window is.
  if (nThere == 0) return {};
  const std::size_t nNeeded = std::max<std::size_t>(std::min(nLeast, nThere), 1);
  if (LoadedAt(qwAt) < nNeeded) Load(qwAt, nThere);
  const auto nBefore = static_cast<std::size_t>(qwAt - m_qwWindow);
  return std::span(m_window).subspan(nBefore, std::min(nThere, m_nLoaded - nBefore));
}

std::span<const std::uint8_t> C_HeronCoded::Whole(const heron::S_Run& run) {
  const auto nBytes = static_cast<std::size_t>(run.qwBytes);
  return View(run.qwAt, nBytes, nBytes);
}

// Bytes of the window from qwAt on.
std::size_t C_HeronCoded::LoadedAt(std::uint64_t qwAt) const noexcept {
  if (qwAt < m_qwWindow || qwAt - m_qwWindow > m_nLoaded) return 0;
  return m_nLoaded - static_cast<std::size_t>(qwAt - m_qwWindow);
}

void C_HeronCoded::Load(std::uint64_t qwAt, std::size_t nBytes) {
  m_nLoaded = 0;
  m_qwWindow = qwAt;
  if (m_window.size() < nBytes) m_window.resize(nBytes);
  if (m_source.ReadSome(m_range.qwAt + qwAt, std::span(m_window).first(nBytes)) < nBytes) {
    throw C_Failure(VOXPLAY_CANNOT_READ, "Heron stream: the input has become shorter");
  }
  m_nLoaded = nBytes;
}

}  // namespace api
