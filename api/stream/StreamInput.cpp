// SPDX-License-Identifier: Apache-2.0
#include "stream/StreamInput.h"

#include <utility>

namespace api {

std::span<const std::uint8_t> C_StreamInput::InMemory(std::uint64_t qwAt,
                                                      std::size_t cbBytes) const noexcept {
  const auto memory = m_source.InMemory();
  if (qwAt > memory.size() || cbBytes > memory.size() - qwAt) return {};
  return memory.subspan(static_cast<std::size_t>(qwAt), cbBytes);
}

std::size_t C_StreamInput::Read(std::uint64_t qwAt, std::span<std::uint8_t> bytes) {
  if (bytes.empty() || Failed()) return 0;
  S_BytesRead result = m_source.ReadToFailure(qwAt, bytes);
  m_failure = std::move(result.failure);
  return result.cbRead;
}

void C_StreamInput::ThrowFailure() {
  if (!m_failure) return;
  throw C_Failure(*std::exchange(m_failure, std::nullopt));
}

void C_StreamInput::CheckWayBack(std::uint64_t qwAt) const {
  if (m_source.CanReadFrom(qwAt)) return;
  throw C_Failure(VOXPLAY_CANNOT_SEEK, "seek: the input only goes forward");
}

}  // namespace api
