// SPDX-License-Identifier: Apache-2.0
#include "stream/AdpcmStream.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "base/CopyTo.h"
#include "compressed/CompressedWav.h"
#include "compressed/SampleBytes.h"

namespace api {

namespace {

// What is decoded together, at most, unless a single block is larger.
constexpr std::size_t kTogetherBytes = 32768;
constexpr std::size_t kTogetherSamples = 131072;
// A remainder takes fewer frames than this from the whole blocks before it: at most 6 bytes of each
// channel, which count as 8 samples for 3 bytes.
constexpr std::size_t kMostLost = 16;
// A byte holds fewer samples than this.
constexpr std::size_t kSamplesPerByte = 3;
// Frames of a block that its bytes do not account for: those in its header, and those of a last
// group that only some channels have.
constexpr std::size_t kFramesBeyond = 40;
constexpr std::size_t kLeastHeader = 4;  // bytes of each channel
constexpr std::uint64_t kNoEnd = std::numeric_limits<std::uint64_t>::max();

std::size_t MostFrames(std::size_t cbBlock, std::size_t nChannels) {
  if (cbBlock / kLeastHeader < nChannels) return 0;
  return kSamplesPerByte * cbBlock / nChannels + kFramesBeyond;
}

// How many blocks have at least nFrames frames.
std::size_t BlocksOf(std::size_t nFrames, std::size_t nBlockFrames) {
  return nBlockFrames == 0 ? 0 : (nFrames + nBlockFrames - 1) / nBlockFrames;
}

// The product of two 16-bit numbers may need 64 bits where there are 32.
std::size_t BlocksTogether(std::size_t cbBlock, std::uint64_t qwBlockSamples) {
  const std::uint64_t qwBySamples = kTogetherSamples / std::max<std::uint64_t>(qwBlockSamples, 1);
  const std::uint64_t qwBlocks = std::min<std::uint64_t>(kTogetherBytes / cbBlock, qwBySamples);
  return std::max<std::size_t>(static_cast<std::size_t>(qwBlocks), 1);
}

// Whether the decoder gives all samples of a block. Which ones it gives depends on the format
// alone.
bool DecodesWholeBlocks(const S_EncodedWav& wav, std::size_t cbBlock, std::size_t nSamples) {
  // No block of zeros has a sample this low.
  constexpr std::int16_t kLeftAlone = std::numeric_limits<std::int16_t>::min();
  const std::vector<std::uint8_t> zeros(cbBlock);
  std::vector<std::int16_t> samples(nSamples, kLeftAlone);
  wav.decoder->Decode(wav.codecInfo, zeros.data(), static_cast<unsigned int>(cbBlock),
                      samples.data(), static_cast<unsigned int>(nSamples * sizeof(std::int16_t)));
  return std::ranges::find(samples, kLeftAlone) == samples.end();
}

}  // namespace

C_AdpcmStream::C_AdpcmStream(I_ByteSource& source, S_EncodedWav wav)
    : m_wav(std::move(wav)),
      m_input(source),
      m_nChannels(m_wav.codecInfo.GetPCMWAVEFORMAT().wChannels),
      m_cbBlock(m_wav.codecInfo.GetPCMWAVEFORMAT().wBlockAlign),
      m_nBlockFrames(m_wav.codecInfo.GetSamplesPerBlock()),
      m_nMostFrames(MostFrames(m_cbBlock, m_nChannels)),
      m_nTogether(BlocksTogether(m_cbBlock, std::uint64_t{m_nChannels} * m_nBlockFrames)),
      m_nNear(BlocksOf(kMostLost, m_nBlockFrames)),
      m_bEndKnown(m_wav.bLengthKnown) {
  // What blocks do not hold is not decoded with them, so each has to be by itself.
  if (m_nBlockFrames > m_nMostFrames) m_nTogether = 1;
  const auto dwNear = static_cast<unsigned int>((m_nNear + 1) * m_cbBlock);
  if (!m_bEndKnown && !m_wav.decoder->GetDecodedSize(m_wav.codecInfo, dwNear)) {
    throw C_Failure(VOXPLAY_TOO_LARGE, "format: a few blocks decode to 4 GiB or more");
  }
  m_bWholeBlocks = m_nBlockFrames <= m_nMostFrames &&
                   DecodesWholeBlocks(m_wav, m_cbBlock, m_nBlockFrames * m_nChannels);
  m_encoded.resize((m_nTogether + (m_bEndKnown ? 0 : m_nNear)) * m_cbBlock);
  if (m_wav.qwSize) m_qwFrames = FramesOf(*m_wav.qwSize);
}

std::size_t C_AdpcmStream::Read(std::span<std::int16_t> samples) {
  if (!IsInWindow(m_qwPosition)) m_input.ThrowFailure();
  const std::size_t nFrames = samples.size() / m_nChannels;
  std::size_t nDone = 0;
  while (nDone < nFrames && !IsAtEnd()) {
    if (!IsInWindow(m_qwPosition) && (m_input.Failed() || !MoveWindow(m_qwPosition))) break;
    nDone += Copy(samples.subspan(nDone * m_nChannels, (nFrames - nDone) * m_nChannels));
  }
  if (nDone == 0) m_input.ThrowFailure();
  return nDone;
}

void C_AdpcmStream::Seek(std::uint64_t qwFrame) {
  if (!Reaches(qwFrame)) {
    throw C_Failure(VOXPLAY_BAD_ARGUMENT,
                    "sound: frame " + std::to_string(qwFrame) + " is after its end");
  }
  if (!IsInWindow(qwFrame)) {
    const std::uint64_t qwOffset = BlockOf(qwFrame) * m_cbBlock;
    if (qwOffset < m_qwEncodedAt) m_input.CheckWayBack(m_wav.qwAt + qwOffset);
    m_input.ForgetFailure();
  }
  m_qwPosition = qwFrame;
}

bool C_AdpcmStream::Reaches(std::uint64_t qwFrame) {
  if (m_qwFrames) return qwFrame <= *m_qwFrames;
  if (qwFrame <= m_qwPosition || IsInWindow(qwFrame - 1)) return true;
  GoTo(BlockOf(qwFrame - 1) * m_cbBlock);
  const bool bThere = MoveWindow(qwFrame - 1);
  m_input.ThrowFailure();
  if (bThere && (!m_qwFrames || qwFrame <= *m_qwFrames)) return true;
  m_qwPosition = m_qwFrames.value_or(m_qwPosition);
  return false;
}

// The blocks far from the end count as they are; the decoder counts the others, by its own rule.
std::uint64_t C_AdpcmStream::FramesOf(std::uint64_t qwBytes) const {
  const std::uint64_t qwBlocks = qwBytes / m_cbBlock;
  const std::uint64_t qwNear = std::min<std::uint64_t>(qwBlocks, m_nNear);
  const std::uint64_t qwEnd = qwBytes % m_cbBlock + qwNear * m_cbBlock;
  const auto dwSize =
      m_wav.decoder->GetDecodedSize(m_wav.codecInfo, static_cast<unsigned int>(qwEnd));
  const std::uint64_t qwSamples = dwSize.value_or(0) / sizeof(std::int16_t);
  return (qwBlocks - qwNear) * m_nBlockFrames + qwSamples / m_nChannels;
}

void C_AdpcmStream::NoteEnd(std::uint64_t qwBytes) {
  m_bEndKnown = true;
  m_wav.qwSize = qwBytes;
  m_qwFrames = std::max(FramesOf(qwBytes), m_qwPosition);
}

std::uint64_t C_AdpcmStream::MostBytes() const noexcept {
  return m_wav.qwSize.value_or(std::numeric_limits<std::uint64_t>::max() - m_wav.qwAt);
}

std::span<const std::uint8_t> C_AdpcmStream::Encoded(std::uint64_t qwOffset) {
  const std::uint64_t qwThere = MostBytes() - qwOffset;
  const auto cbAll = static_cast<std::size_t>(std::min<std::uint64_t>(m_encoded.size(), qwThere));
  if (const auto bytes = m_input.InMemory(m_wav.qwAt + qwOffset, cbAll); !bytes.empty()) {
    return bytes;
  }
  ForgetEncoded(qwOffset);
  const auto room = std::span(m_encoded).first(cbAll).subspan(m_cbEncoded);
  m_cbEncoded += m_input.Read(m_wav.qwAt + qwOffset + m_cbEncoded, room);
  if (m_cbEncoded == qwThere) m_bEndKnown = true;
  if (m_cbEncoded < cbAll && !m_input.Failed()) NoteEnd(qwOffset + m_cbEncoded);
  return std::span(m_encoded).first(m_cbEncoded);
}

void C_AdpcmStream::ForgetEncoded(std::uint64_t qwOffset) {
  const std::uint64_t qwForget = qwOffset - m_qwEncodedAt;  // a large number when it goes back
  const auto held = std::span(m_encoded).first(m_cbEncoded);
  const auto kept =
      held.subspan(static_cast<std::size_t>(std::min<std::uint64_t>(qwForget, held.size())));
  std::ranges::copy(kept, m_encoded.begin());
  m_cbEncoded = kept.size();
  m_qwEncodedAt = qwOffset;
}

void C_AdpcmStream::GoTo(std::uint64_t qwTo) {
  while (!m_bEndKnown && !m_input.Failed() && m_qwEncodedAt + m_cbEncoded < qwTo) {
    Encoded(m_qwEncodedAt + m_cbEncoded / m_cbBlock * m_cbBlock);
  }
}

// A source that ends before its claimed end may have a few frames more than the claim counts as.
bool C_AdpcmStream::IsAtEnd() const noexcept {
  return m_bEndKnown && m_qwPosition >= m_qwFrames.value_or(0);
}

bool C_AdpcmStream::IsInWindow(std::uint64_t qwFrame) const noexcept {
  return qwFrame >= m_window.qwFirst && qwFrame - m_window.qwFirst < m_window.qwFrames;
}

// What is left after the whole blocks may have more frames than a block, and counts as one.
std::uint64_t C_AdpcmStream::BlockOf(std::uint64_t qwFrame) const noexcept {
  const std::uint64_t qwBlocks = MostBytes() / m_cbBlock;
  return m_nBlockFrames == 0 ? qwBlocks : std::min(qwBlocks, qwFrame / m_nBlockFrames);
}

bool C_AdpcmStream::MoveWindow(std::uint64_t qwFrame) {
  m_window.qwFrames = 0;
  // Of blocks without frames, only what is left after them is a sound.
  if (m_nBlockFrames == 0) GoTo(kNoEnd);
  if (m_input.Failed()) return false;
  const std::uint64_t qwBlock = BlockOf(qwFrame);
  const auto bytes = Encoded(qwBlock * m_cbBlock);
  m_window.qwFirst = qwBlock * m_nBlockFrames;
  if (bytes.size() >= m_cbBlock) {
    DecodeBlocks(qwBlock, bytes);
  } else if (!m_input.Failed()) {
    DecodeRest(bytes);
  }
  return IsInWindow(qwFrame);
}

void C_AdpcmStream::DecodeBlocks(std::uint64_t qwBlock, std::span<const std::uint8_t> bytes) {
  std::size_t nBlocks = bytes.size() / m_cbBlock;
  if (!m_bEndKnown) nBlocks -= std::min(nBlocks, m_nNear);
  nBlocks = std::min(nBlocks, m_nTogether);
  if (!AreAccountedFor(qwBlock + nBlocks)) {
    m_input.Fail({VOXPLAY_DAMAGED,
                  "data: its blocks are too short for the samples that the "
                  "format says they have"});
    return;
  }
  m_window.qwFrames = std::uint64_t{nBlocks} * m_nBlockFrames;
  Decode(bytes.first(nBlocks * m_cbBlock), nBlocks * std::min(m_nBlockFrames, m_nMostFrames));
}

void C_AdpcmStream::DecodeRest(std::span<const std::uint8_t> bytes) {
  const std::uint64_t qwFrames = m_qwFrames.value_or(0);
  m_window.qwFrames = qwFrames - std::min(qwFrames, m_window.qwFirst);
  Decode(bytes,
         static_cast<std::size_t>(std::min<std::uint64_t>(m_window.qwFrames, m_nMostFrames)));
}

void C_AdpcmStream::Decode(std::span<const std::uint8_t> bytes, std::size_t nFrames) {
  std::vector<std::int16_t>& samples = m_window.samples;
  samples.resize(nFrames * m_nChannels);
  // Decoders leave samples alone that a block does not have.
  const bool bAllGiven = m_bWholeBlocks && bytes.size() % m_cbBlock == 0;
  if (!bAllGiven) std::ranges::fill(samples, std::int16_t{0});
  m_wav.decoder->Decode(m_wav.codecInfo, bytes.data(), static_cast<unsigned int>(bytes.size()),
                        samples.data(),
                        static_cast<unsigned int>(samples.size() * sizeof(std::int16_t)));
  for (std::int16_t& nSample : samples) nSample = samplebytes::LittleEndian(nSample);
}

// A source that tells its length was looked at when it was opened.
bool C_AdpcmStream::AreAccountedFor(std::uint64_t qwBlocks) const {
  if (m_wav.bLengthKnown) return true;
  // The products stay below 2^63, and beyond this many blocks the answer is the same.
  const std::uint64_t qwSome = std::min(qwBlocks, std::uint64_t{1} << 30U);
  const std::uint64_t qwPcm = qwSome * m_nBlockFrames * m_nChannels * sizeof(std::int16_t);
  return compressedwav::IsAccountedFor(qwPcm, qwSome * m_cbBlock);
}

std::size_t C_AdpcmStream::Copy(std::span<std::int16_t> samples) {
  const std::uint64_t qwAt = m_qwPosition - m_window.qwFirst;
  std::uint64_t qwFrames = m_window.qwFrames - qwAt;
  if (m_bEndKnown) qwFrames = std::min(qwFrames, m_qwFrames.value_or(0) - m_qwPosition);
  qwFrames = std::min<std::uint64_t>(qwFrames, samples.size() / m_nChannels);
  const auto copied = samples.first(static_cast<std::size_t>(qwFrames) * m_nChannels);
  const std::span<const std::int16_t> decoded = m_window.samples;
  const auto left = decoded.subspan(
      static_cast<std::size_t>(std::min<std::uint64_t>(decoded.size(), qwAt * m_nChannels)));
  const auto sound = left.first(std::min(left.size(), copied.size()));
  CopyTo(sound, copied);
  std::ranges::fill(copied.subspan(sound.size()), std::int16_t{0});
  m_qwPosition += qwFrames;
  return static_cast<std::size_t>(qwFrames);
}

}  // namespace api
