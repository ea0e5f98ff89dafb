// SPDX-License-Identifier: Apache-2.0
#include "stream/FrameBytes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "file/WavFileBase.h"

namespace api {

namespace {

constexpr std::uint64_t kEverything = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t kSkipBytes = 4096;  // that are passed over together

}  // namespace

C_FrameBytes::C_FrameBytes(I_ByteSource& source, const S_FrameRange& range, std::size_t cbFrame)
    : m_input(source),
      m_qwAt(range.qwAt),
      m_qwHeld(kEverything - range.qwAt),
      m_cbFrame(cbFrame),
      m_bZeros(range.bZeros) {
  if (!range.qwSize) return;
  const std::uint64_t qwSize = std::min(*range.qwSize, kEverything - range.qwAt);
  m_qwHeld = std::min(range.qwHeld, qwSize);
  m_qwFrames = (range.bZeros ? qwSize : m_qwHeld) / cbFrame;
}

std::size_t C_FrameBytes::Begin(std::size_t nFrames) {
  m_input.ThrowFailure();
  const std::uint64_t qwAll = m_qwFrames.value_or(m_qwHeld / m_cbFrame);
  const std::uint64_t qwLeft = qwAll - std::min(qwAll, m_qwPosition);
  return static_cast<std::size_t>(std::min<std::uint64_t>(nFrames, qwLeft));
}

std::size_t C_FrameBytes::Fill(std::uint64_t cbOffset, std::span<std::uint8_t> bytes) {
  const std::uint64_t qwFrom = m_qwPosition * m_cbFrame + cbOffset;
  const std::uint64_t qwHeld = m_qwHeld - std::min(m_qwHeld, qwFrom);
  const auto held =
      bytes.first(static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), qwHeld)));
  const std::size_t cbRead = m_input.Read(m_qwAt + qwFrom, held);
  if (cbRead == bytes.size() || m_input.Failed()) return cbRead;
  if (cbRead < held.size()) NoteEnd(qwFrom + cbRead);
  const std::uint64_t qwAll = m_qwFrames.value_or(0) * m_cbFrame;
  const auto cbFilled = static_cast<std::size_t>(
      std::min<std::uint64_t>(bytes.size(), qwAll - std::min(qwAll, qwFrom)));
  if (cbFilled > cbRead) std::ranges::fill(bytes.first(cbFilled).subspan(cbRead), std::uint8_t{0});
  return cbFilled;
}

std::span<const std::uint8_t> C_FrameBytes::Bytes(std::uint64_t cbOffset,
                                                  std::span<std::uint8_t> room) {
  const std::uint64_t qwFrom = m_qwPosition * m_cbFrame + cbOffset;
  if (qwFrom <= m_qwHeld && room.size() <= m_qwHeld - qwFrom) {
    const auto bytes = m_input.InMemory(m_qwAt + qwFrom, room.size());
    if (!bytes.empty()) return bytes;
  }
  return room.first(Fill(cbOffset, room));
}

std::size_t C_FrameBytes::End(std::size_t nFrames) {
  if (nFrames == 0) m_input.ThrowFailure();
  CountDamage(m_qwPosition + nFrames);
  m_qwPosition += nFrames;
  return nFrames;
}

void C_FrameBytes::Seek(std::uint64_t qwFrame) {
  if (m_qwFrames ? qwFrame > *m_qwFrames : !Reaches(qwFrame)) {
    throw C_Failure(VOXPLAY_BAD_ARGUMENT,
                    "sound: frame " + std::to_string(qwFrame) + " is after its end");
  }
  const std::uint64_t qwByte = qwFrame * m_cbFrame;
  if (qwByte < m_qwHeld) m_input.CheckWayBack(m_qwAt + qwByte);
  m_input.ForgetFailure();
  m_qwPosition = qwFrame;
}

// A sound of which little is missing keeps its length, as it does when that is known from the
// beginning.
void C_FrameBytes::NoteEnd(std::uint64_t qwBytes) {
  m_qwHeld = qwBytes;
  const bool bKeepsLength = m_bZeros && m_qwFrames &&
                            *m_qwFrames * m_cbFrame - qwBytes <= C_WavFileBase::kMaxMissingBytes;
  if (!bKeepsLength) m_qwFrames = std::max(qwBytes / m_cbFrame, m_qwPosition);
}

void C_FrameBytes::CountDamage(std::uint64_t qwEnd) {
  const std::uint64_t qwGood = std::clamp(m_qwHeld / m_cbFrame, m_qwPosition, qwEnd);
  m_damage.Read(m_qwPosition, qwGood, false);
  m_damage.Read(qwGood, qwEnd, true);
}

bool C_FrameBytes::Reaches(std::uint64_t qwFrame) {
  if (qwFrame <= m_qwPosition) return true;
  if (qwFrame > m_qwHeld / m_cbFrame) return false;
  const std::uint64_t qwTo = qwFrame * m_cbFrame;
  const std::uint64_t qwEnd = SkipTo(qwTo);
  m_input.ThrowFailure();
  if (qwEnd == qwTo) return true;
  NoteEnd(qwEnd);
  m_qwPosition = *m_qwFrames;
  return false;
}

// Reads on from the position to a byte of the sound, and returns how far it came.
std::uint64_t C_FrameBytes::SkipTo(std::uint64_t qwTo) {
  std::array<std::uint8_t, kSkipBytes> piece;
  std::uint64_t qwAt = m_qwPosition * m_cbFrame;
  while (qwAt < qwTo) {
    const auto cbPart = static_cast<std::size_t>(std::min<std::uint64_t>(kSkipBytes, qwTo - qwAt));
    const std::size_t cbRead = m_input.Read(m_qwAt + qwAt, std::span(piece).first(cbPart));
    qwAt += cbRead;
    if (cbRead < cbPart) break;
  }
  return qwAt;
}

}  // namespace api
