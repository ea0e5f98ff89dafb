// SPDX-License-Identifier: Apache-2.0
#include "stream/StreamInput.h"

#include <algorithm>
#include <array>
#include <utility>

namespace api {

namespace {

// The first bytes, as many as can be read before a failure. A source does not say how far it came,
// so this halves its way to the place.
std::size_t ReadBeforeFailure(I_ByteSource& source, std::uint64_t qwAt,
                              std::span<std::uint8_t> bytes) {
  std::size_t cbGood = 0;
  std::size_t cbRest = bytes.size();  // the first byte that cannot be read is among these
  while (cbRest > 1) {
    const std::size_t cbHalf = cbRest / 2;
    try {
      cbGood += source.ReadSome(qwAt + cbGood, bytes.subspan(cbGood, cbHalf));
      cbRest -= cbHalf;
    } catch (const C_Failure&) {
      cbRest = cbHalf;
    }
  }
  return cbGood;
}

}  // namespace

std::size_t C_StreamInput::Read(std::uint64_t qwAt, std::span<std::uint8_t> bytes) {
  if (bytes.empty() || Failed()) return 0;
  std::size_t cbRead = 0;
  try {
    cbRead = m_source.ReadSome(qwAt, bytes);
  } catch (const C_Failure& failure) {
    m_failure = failure;
    cbRead = ReadBeforeFailure(m_source, qwAt, bytes);
  }
  m_qwReadTo = std::max(m_qwReadTo, qwAt + cbRead);
  return cbRead;
}

void C_StreamInput::ThrowFailure() {
  if (!m_failure) return;
  throw C_Failure(*std::exchange(m_failure, std::nullopt));
}

void C_StreamInput::CheckWayBack(std::uint64_t qwAt) {
  if (m_source.CanGoBack() || qwAt >= m_qwReadTo) return;
  std::array<std::uint8_t, 1> bytes{};
  m_source.ReadSome(qwAt, bytes);
}

}  // namespace api
