// SPDX-License-Identifier: Apache-2.0
#include "stream/KestrelStream.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "ByteReader.h"
#include "base/CopyTo.h"
#include "base/Failure.h"
#include "stream/CodedLength.h"
#include "stream/DamageCount.h"
#include "stream/KestrelCursor.h"
#include "stream/PieceStream.h"

namespace api {
namespace {

constexpr std::size_t kLengthField = 4;
constexpr std::size_t kHeadBytes = 6;
constexpr std::uint64_t kWordBytes = 2;
constexpr std::uint64_t kSamples = kestrel::kSamplesPerFrame;
// A length field that claims more than this many times the bytes after it is not that of a Kestrel
// stream.
constexpr std::uint64_t kMaxClaim = 16;

[[noreturn]] void Refuse(voxplay_status eStatus, const std::string& strReason) {
  throw C_Failure(eStatus, "Kestrel stream: " + strReason);
}

// ---- opening

struct S_Head {
  std::uint32_t dwClaimed = 0;  // bytes after the length field
  std::uint32_t dwBitRate = 0;
};

S_Head ReadHead(I_ByteSource& source, S_ByteRange range) {
  std::array<std::uint8_t, kHeadBytes> bytes{};
  if (range.qwSize < kHeadBytes || source.ReadSome(range.qwAt, bytes) < kHeadBytes) {
    Refuse(VOXPLAY_DAMAGED, "it ends within its head of 6 bytes");
  }
  vcm::C_ByteReader reader(bytes);
  S_Head head;
  head.dwClaimed = reader.U32();
  head.dwBitRate = reader.U16();
  return head;
}

void CheckClaim(const S_Head& head, std::uint64_t qwHeld) {
  const std::uint64_t qwAfter = qwHeld - kLengthField;
  if ((head.dwClaimed + kMaxClaim - 1) / kMaxClaim <= qwAfter) return;
  Refuse(VOXPLAY_DAMAGED, "its length field claims " + std::to_string(head.dwClaimed) +
                              " bytes, but only " + std::to_string(qwAfter) + " follow");
}

kestrel::S_Configuration ConfigurationOf(const S_Head& head) {
  const auto configuration = kestrel::Configure(head.dwBitRate);
  if (configuration.nResult != kestrel::kRateAsRequested) {
    Refuse(VOXPLAY_UNSUPPORTED, "its bit rate of " + std::to_string(head.dwBitRate) +
                                    " is not a multiple of 800 from 4800 to 32000");
  }
  return configuration;
}

// Kept: a length field that claims part of a frame is refused, as the codec refuses it. Pinned by
// ClaimsOfPartsOfAFrame_AreRefused.
std::uint64_t ClaimedFrames(const S_Head& head, std::uint64_t qwWordsPerFrame) {
  const std::uint64_t qwWords = head.dwClaimed / kWordBytes;
  if (qwWords == 0 || (qwWords - 1) % qwWordsPerFrame != 0) {
    Refuse(VOXPLAY_DAMAGED,
           "its length field of " + std::to_string(head.dwClaimed) + " does not end with a frame");
  }
  return (qwWords - 1) / qwWordsPerFrame;
}

// The frames that are claimed, as far as they are there.
S_ByteRange FrameRange(std::uint64_t qwClaimed, S_ByteRange held, std::uint64_t cbFrame) {
  return {held.qwAt + kHeadBytes, std::min(qwClaimed * cbFrame, held.qwSize - kHeadBytes)};
}

// ---- reading

class C_KestrelStream final : public C_PieceStream {
 public:
  // bKnown: whether all of the frames are there.
  C_KestrelStream(const C_KestrelFrames& frames, const kestrel::S_Configuration& configuration,
                  std::uint64_t qwFrames, bool bKnown)
      : m_cursor(frames, configuration), m_qwCount(qwFrames * kSamples), m_bKnown(bKnown) {}

  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return 1; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override {
    return m_bKnown ? std::optional(m_qwCount) : std::nullopt;
  }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return m_damage.Frames(); }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_qwPosition; }
  void Seek(std::uint64_t qwFrame) override;

 protected:
  std::size_t ReadPiece(std::span<std::int16_t> samples) override;

 private:
  static constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();

  std::size_t ReadHeld(std::span<std::int16_t> samples);
  bool Decode(C_KestrelCursor::S_Samples samples);
  void Move(std::uint64_t qwFrame);
  void EndHere();
  void Passed(std::size_t nSamples);

  C_KestrelCursor m_cursor;
  std::uint64_t m_qwCount;  // samples of the sound
  bool m_bKnown;
  std::uint64_t m_qwPosition = 0;
  C_DamageCount m_damage;
  // The frame before that of the cursor, as long as it has not been read to its end.
  kestrel::S_Frame m_held{};
  std::uint64_t m_qwHeld = kNone;
  bool m_bDamaged = false;  // the frame at the position
};

std::size_t C_KestrelStream::ReadPiece(std::span<std::int16_t> samples) {
  if (m_qwPosition == m_qwCount) m_bKnown = true;
  if (m_qwPosition >= m_qwCount) return 0;
  if (m_qwHeld == m_qwPosition / kSamples) return ReadHeld(samples);
  if (m_qwPosition % kSamples != 0 || samples.size() < kSamples) {
    if (!Decode(m_held)) return 0;
    m_qwHeld = m_qwPosition / kSamples;
    return ReadHeld(samples);
  }
  m_qwHeld = kNone;
  if (!Decode(samples.first<kSamples>())) return 0;
  Passed(kSamples);
  return kSamples;
}

std::size_t C_KestrelStream::ReadHeld(std::span<std::int16_t> samples) {
  const auto rest = std::span(m_held).subspan(static_cast<std::size_t>(m_qwPosition % kSamples));
  const auto part = rest.first(std::min(rest.size(), samples.size()));
  CopyTo(part, samples);
  Passed(part.size());
  return part.size();
}

// False when the sound ends before this frame.
bool C_KestrelStream::Decode(C_KestrelCursor::S_Samples samples) {
  const E_KestrelFrame eFrame = m_cursor.Next(samples);
  m_bDamaged = eFrame == E_KestrelFrame::kDamaged;
  if (eFrame != E_KestrelFrame::kNone) return true;
  EndHere();
  return false;
}

void C_KestrelStream::EndHere() {
  m_bKnown = true;
  m_qwCount = m_cursor.Frame() * kSamples;
  m_qwPosition = std::min(m_qwPosition, m_qwCount);
}

void C_KestrelStream::Passed(std::size_t nSamples) {
  m_damage.Read(m_qwPosition, m_qwPosition + nSamples, m_bDamaged);
  m_qwPosition += nSamples;
}

void C_KestrelStream::Seek(std::uint64_t qwFrame) {
  const std::uint64_t qwCount = m_qwCount;  // or more than that, while it is not known
  if (qwFrame > qwCount) ThrowAfterEnd(qwFrame, qwCount);
  const bool bEnd = m_bKnown && qwFrame == qwCount;
  if (!bEnd && qwFrame / kSamples != m_qwHeld) Move(qwFrame);
  ForgetFailure();
  m_qwPosition = std::min(qwFrame, m_qwCount);
  if (qwFrame > m_qwCount) ThrowAfterEnd(qwFrame, m_qwCount);
}

void C_KestrelStream::Move(std::uint64_t qwFrame) {
  const std::uint64_t qwTo = qwFrame / kSamples;
  if (qwTo < m_cursor.Frame() && !m_cursor.CanGoBack()) {
    Refuse(VOXPLAY_CANNOT_SEEK, "the input only goes forward");
  }
  m_cursor.MoveTo(qwTo);
  m_qwHeld = kNone;
  if (m_cursor.Frame() != qwTo) return EndHere();
  // Whether there is a place within a frame shows only with the frame.
  if (!m_bKnown && qwFrame % kSamples != 0 && Decode(m_held)) m_qwHeld = qwTo;
}

}  // namespace

S_KestrelStream OpenKestrelStream(I_ByteSource& source, S_ByteRange range) {
  const S_ByteRange held = Held(source, range);
  const S_Head head = ReadHead(source, held);
  CheckClaim(head, held.qwSize);
  const auto configuration = ConfigurationOf(head);
  const auto nWords = static_cast<std::size_t>(configuration.nWordsPerFrame);
  const std::uint64_t qwClaimed = ClaimedFrames(head, nWords);
  const std::size_t cbFrame = nWords * kWordBytes;
  const S_ByteRange frames = FrameRange(qwClaimed, held, cbFrame);
  const std::uint64_t qwFrames = (frames.qwSize + cbFrame - 1) / cbFrame;
  if (qwFrames > kMostCodedSamples / kSamples) {
    Refuse(VOXPLAY_TOO_LARGE, "its samples would take 4 GiB or more");
  }
  return {std::make_unique<C_KestrelStream>(C_KestrelFrames(source, frames, cbFrame), configuration,
                                            qwFrames, source.Length().has_value()),
          head.dwBitRate, qwClaimed * kSamples, frames.qwSize < qwClaimed * cbFrame};
}

}  // namespace api
