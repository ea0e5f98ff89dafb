// SPDX-License-Identifier: Apache-2.0
#include "stream/HeronStream.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "ByteReader.h"
#include "base/CopyTo.h"
#include "base/Failure.h"
#include "codec/HeronStream.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"
#include "stream/CodedLength.h"
#include "stream/DamageCount.h"
#include "stream/HeronBlocks.h"
#include "stream/PieceStream.h"

namespace api {
namespace {

[[noreturn]] void Refuse(voxplay_status eStatus, const std::string& strReason) {
  throw C_Failure(eStatus, "Heron stream: " + strReason);
}

// ---- opening

int CoderRate(std::uint32_t dwSampleRate) {
  if (dwSampleRate < heron::kMinSampleRate || dwSampleRate > heron::kMaxSampleRate) {
    Refuse(VOXPLAY_UNSUPPORTED,
           "its sample rate of " + std::to_string(dwSampleRate) + " Hz is not 4000 to 48000 Hz");
  }
  return static_cast<int>(dwSampleRate);
}

void CheckWay(const I_ByteSource& source) {
  if (source.CanGoBack()) return;
  Refuse(VOXPLAY_CANNOT_SEEK, "the input only goes forward, and has to go back for this codec");
}

S_ByteRange After(S_ByteRange range, std::uint64_t qwBytes) {
  return {range.qwAt + qwBytes, range.qwSize - qwBytes};
}

struct S_Audio {
  int nBitDepth = 0;
  S_ByteRange coded;
  bool bCut = false;
};

S_Audio FindAudio(I_ByteSource& source, S_ByteRange held) {
  std::array<std::uint8_t, heronstream::kHeadBytes> bytes{};
  if (held.qwSize < bytes.size() || source.ReadSome(held.qwAt, bytes) < bytes.size()) {
    Refuse(VOXPLAY_DAMAGED, "it ends within its head of 4 bytes");
  }
  const std::uint32_t dwHead = vcm::C_ByteReader(bytes).U32();
  const auto end = heronstream::FindAudioEnd(dwHead, held.qwSize);
  if (!end) {
    Refuse(VOXPLAY_DAMAGED, "its head has mode " + std::to_string(dwHead & 0xFF) +
                                ", and its events begin at " + std::to_string(dwHead >> 8));
  }
  return {end->variant.nBitDepth, After({held.qwAt, end->qwEnd}, bytes.size()),
          heronstream::EventsAt(dwHead) > held.qwSize};
}

heron::S_Count ReadCount(I_ByteSource& source, S_ByteRange coded) {
  std::array<std::uint8_t, heron::kMostCountBytes> bytes{};
  const auto nMost = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), coded.qwSize));
  const std::size_t nRead = source.ReadSome(coded.qwAt, std::span(bytes).first(nMost));
  const auto count = heron::ReadCount(std::span(bytes).first(nRead));
  if (!count || !heron::IsPossible(*count)) Refuse(VOXPLAY_DAMAGED, "it has no count of samples");
  return *count;
}

C_HeronBlocks OpenBlocks(I_ByteSource& source, S_ByteRange coded, const heron::S_Count& count,
                         int nSampleRate) {
  return {source, After(coded, count.nBytes), static_cast<std::size_t>(count.qwCount), nSampleRate};
}

// ---- reading

class C_HeronStream final : public C_PieceStream {
 public:
  // Throws C_Failure for a sound that is too long or has no good block.
  C_HeronStream(I_ByteSource& source, S_ByteRange coded, const heron::S_Count& count,
                int nSampleRate);

  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return 1; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override {
    return m_blocks.SampleCount();
  }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return m_damage.Frames(); }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_qwPosition; }
  void Seek(std::uint64_t qwFrame) override;

 protected:
  std::size_t ReadPiece(std::span<std::int16_t> samples) override;

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  void CheckLength();
  void FindGoodBlock();
  void Hold(std::size_t nBlock);
  [[nodiscard]] bool IsAtEnd() const noexcept { return m_qwPosition >= m_blocks.SampleCount(); }
  [[nodiscard]] std::size_t BlockAt(std::uint64_t qwFrame) const noexcept {
    return static_cast<std::size_t>(qwFrame / m_blocks.Length());
  }

  C_HeronBlocks m_blocks;
  std::uint64_t m_qwPosition = 0;
  C_DamageCount m_damage;
  std::vector<std::int16_t> m_samples;  // of the block that is held
  std::size_t m_nHeld = kNone;
  bool m_bGood = false;
};

C_HeronStream::C_HeronStream(I_ByteSource& source, S_ByteRange coded, const heron::S_Count& count,
                             int nSampleRate)
    : m_blocks(OpenBlocks(source, coded, count, nSampleRate)) {
  CheckLength();
  FindGoodBlock();
}

void C_HeronStream::CheckLength() {
  if (m_blocks.SampleCount() > kMostCodedSamples) m_blocks.CheckUpTo(m_blocks.Count() - 1);
  if (m_blocks.SampleCount() > kMostCodedSamples) {
    Refuse(VOXPLAY_TOO_LARGE, "its samples would take 4 GiB or more");
  }
}

void C_HeronStream::FindGoodBlock() {
  for (std::size_t n = 0; n < m_blocks.Count() && !m_bGood; ++n) Hold(n);
  if (!m_bGood) Refuse(VOXPLAY_DAMAGED, "none of its blocks is there and right");
}

// Decodes a block that there may turn out to be not.
void C_HeronStream::Hold(std::size_t nBlock) {
  if (nBlock == m_nHeld) return;
  m_blocks.CheckUpTo(nBlock);
  if (nBlock >= m_blocks.Count()) return;
  m_nHeld = kNone;
  m_samples.resize(m_blocks.SamplesOf(nBlock));
  m_bGood = m_blocks.Decode(nBlock, m_samples);
  m_nHeld = nBlock;
}

std::size_t C_HeronStream::ReadPiece(std::span<std::int16_t> samples) {
  if (IsAtEnd()) return 0;
  Hold(BlockAt(m_qwPosition));
  m_qwPosition = std::min(m_qwPosition, m_blocks.SampleCount());
  if (IsAtEnd()) return 0;
  const auto nAt = static_cast<std::size_t>(m_qwPosition % m_blocks.Length());
  const auto rest = std::span(m_samples).subspan(nAt);
  const auto part = rest.first(std::min(rest.size(), samples.size()));
  CopyTo(part, samples);
  m_damage.Read(m_qwPosition, m_qwPosition + part.size(), !m_bGood);
  m_qwPosition += part.size();
  return part.size();
}

void C_HeronStream::Seek(std::uint64_t qwFrame) {
  if (qwFrame > m_blocks.SampleCount()) ThrowAfterEnd(qwFrame, m_blocks.SampleCount());
  if (qwFrame < m_blocks.SampleCount()) m_blocks.CheckUpTo(BlockAt(qwFrame));
  ForgetFailure();
  m_qwPosition = std::min(qwFrame, m_blocks.SampleCount());
}

}  // namespace

S_HeronStream OpenHeronStream(I_ByteSource& source, S_ByteRange range, std::uint32_t dwSampleRate) {
  CheckWay(source);
  const int nSampleRate = CoderRate(dwSampleRate);
  const S_Audio audio = FindAudio(source, Held(source, range));
  const heron::S_Count count = ReadCount(source, audio.coded);
  return {std::make_unique<C_HeronStream>(source, audio.coded, count, nSampleRate), audio.nBitDepth,
          count.qwCount, audio.bCut};
}

}  // namespace api
