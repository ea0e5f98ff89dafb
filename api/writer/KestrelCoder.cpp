// SPDX-License-Identifier: Apache-2.0
#include "writer/KestrelCoder.h"

#include <algorithm>

#include "ByteReader.h"
#include "base/Failure.h"
#include "notes/RiffNotes.h"
#include "stream/CodedLength.h"

namespace api {
namespace {

constexpr std::size_t kFrame = kestrel::kSamplesPerFrame;
constexpr std::uint64_t kLengthField = 4;
constexpr std::size_t kWordBytes = 2;
constexpr std::size_t kWrittenAtOnce = 8192;

// Of a stream of so many samples: all but the first whole one, and one of silence.
std::uint64_t FrameCount(std::uint64_t qwSamples) {
  const std::uint64_t qwWhole = qwSamples / kFrame;
  return qwWhole - std::min<std::uint64_t>(qwWhole, 1) + (qwSamples % kFrame == 0 ? 0 : 1) + 1;
}

// bytes has room for all words.
void StoreWords(std::span<const std::uint16_t> words, std::span<std::uint8_t> bytes) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    bytes[2 * i] = static_cast<std::uint8_t>(words[i]);
    bytes[2 * i + 1] = static_cast<std::uint8_t>(words[i] >> 8);
  }
}

void AppendLength(vcm::C_ByteWriter& writer, std::uint64_t qwStreamBytes) {
  writer.U32(static_cast<std::uint32_t>(qwStreamBytes - kLengthField));
}

}  // namespace

C_KestrelCoder::C_KestrelCoder(I_ByteTarget& target, std::uint32_t dwBitRate)
    : m_target(target),
      m_nWords(static_cast<std::size_t>(m_encoder.Init(dwBitRate).nWordsPerFrame)) {
  m_bytes.reserve(kWrittenAtOnce + kWordBytes * kestrel::kMaxWordsPerFrame);
}

std::uint64_t C_KestrelCoder::StreamBytes(std::uint64_t qwSamples,
                                          std::uint32_t dwBitRate) noexcept {
  const auto nWords = static_cast<std::uint64_t>(kestrel::Configure(dwBitRate).nWordsPerFrame);
  return kLengthField + kWordBytes * (1 + FrameCount(qwSamples) * nWords);
}

void C_KestrelCoder::CheckLength(std::uint64_t qwSamples) const {
  if (FrameCount(qwSamples) <= kMostCodedSamples / kFrame) return;
  throw C_Failure(VOXPLAY_TOO_LARGE, "Kestrel: a sound has at most 2,147,483,520 samples");
}

void C_KestrelCoder::Begin(std::uint64_t qwAnnounced) {
  CheckLength(qwAnnounced);
  m_qwStart = m_target.Length();
  vcm::C_ByteWriter head;
  AppendLength(head, StreamBytes(std::max<std::uint64_t>(qwAnnounced, 1), BitRate()));
  head.U16(static_cast<std::uint16_t>(BitRate()));
  m_target.Write(head.Data());
}

void C_KestrelCoder::Put(std::span<const std::int16_t> samples) {
  m_qwSamples += samples.size();
  CheckLength(m_qwSamples);
  while (!samples.empty()) {
    if (m_nBegun == 0 && samples.size() >= kFrame) {
      EncodeWhole(samples.first<kFrame>());
      samples = samples.subspan(kFrame);
      continue;
    }
    const auto taken = samples.first(std::min(samples.size(), kFrame - m_nBegun));
    std::ranges::copy(taken, m_begun.begin() + static_cast<std::ptrdiff_t>(m_nBegun));
    m_nBegun += taken.size();
    samples = samples.subspan(taken.size());
    if (m_nBegun < kFrame) break;
    EncodeWhole(m_begun);
    m_nBegun = 0;
  }
}

void C_KestrelCoder::End(const S_Notes& /*notes*/) {
  if (m_qwSamples == 0) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, "Kestrel: a stream has at least one sample");
  }
  if (m_nBegun > 0) {
    std::ranges::fill(std::span(m_begun).subspan(m_nBegun), std::int16_t{0});
    Encode(m_begun, true);
  }
  constexpr std::array<std::int16_t, kFrame> kSilence{};
  Encode(kSilence, true);
  Flush();
  if (!m_target.CanGoBack()) return;
  vcm::C_ByteWriter length;
  AppendLength(length, kLengthField + kWordBytes * m_qwWords);
  m_target.WriteAt(m_qwStart, length.Data());
}

std::vector<std::string> C_KestrelCoder::Lost(const S_Notes& notes,
                                              const std::string& strHolder) const {
  return AllLost(notes, strHolder);
}

// The first whole frame is not written.
void C_KestrelCoder::EncodeWhole(S_Samples samples) {
  Encode(samples, m_bBegunStream);
  m_bBegunStream = true;
}

void C_KestrelCoder::Encode(S_Samples samples, bool bWritten) {
  std::array<std::uint16_t, kestrel::kMaxWordsPerFrame> words;
  m_encoder.Encode(samples, words);
  if (!bWritten) return;
  m_qwWords += m_nWords;
  m_bytes.resize(m_bytes.size() + kWordBytes * m_nWords);
  StoreWords(std::span(words).first(m_nWords), std::span(m_bytes).last(kWordBytes * m_nWords));
  if (m_bytes.size() >= kWrittenAtOnce) Flush();
}

void C_KestrelCoder::Flush() {
  m_target.Write(m_bytes);
  m_bytes.clear();
}

}  // namespace api
