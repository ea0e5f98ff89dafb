// SPDX-License-Identifier: Apache-2.0
#include "codec/KestrelCodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "ByteReader.h"
#include "StdioFile.h"
#include "TempFile.h"
#include "VcmAssert.h"
#include "codec/TempStream.h"
#include "interface/I_WavData.h"
#include "kestrel/FrameCoder.h"
#include "sound/HeldBytes.h"
#include "sound/MonoSamples.h"
#include "sound/WavData.h"

// The argument checks of this codec are for developers: a release build returns false instead.
#ifdef NDEBUG
#define CODEC_ASSERT(bHolds, pszFunction, nLine, pszText) static_cast<void>(0)
#else
#define CODEC_ASSERT(bHolds, pszFunction, nLine, pszText) \
  VCM_ASSERT(bHolds, pszFunction, "WaveFileLib/KestrelCodec", nLine, pszText)
#endif

namespace {

// Kept: encoding takes only eight rates, although the coder and decoding take every multiple of 800
// from 4800 to 32000. These eight are the ones that devices in the field were tested with. Pinned
// by IsSupportedBitRate_HoldsForEightRatesOnly.
constexpr std::array<unsigned int, 8> kEncodeRates = {7200,  9600,  12000, 14400,
                                                      16000, 20000, 24000, 32000};
constexpr std::size_t kLengthField = 4;
constexpr std::int64_t kWordBytes = 2;
constexpr std::int64_t kSampleBytes = 2;
// A length field that claims more than this many times the bytes after it is not that of a Kestrel
// stream.
constexpr std::uint64_t kMaxClaim = 16;

// Buffers for one frame; their sizes come from the coder's init function.
struct S_Frame {
  std::vector<unsigned short> words;
  std::vector<short> samples;
};

// Empty when the coder refuses the rate.
std::optional<S_Frame> StartCoder(C_VXAudioCodec::PFN_Init pfnInit, unsigned int dwBitRate) {
  int nWords = 0;
  int nSamples = 0;
  if (pfnInit(dwBitRate, &nWords, &nSamples) != 0) return std::nullopt;
  return S_Frame{std::vector<unsigned short>(static_cast<std::size_t>(nWords)),
                 std::vector<short>(static_cast<std::size_t>(nSamples))};
}

// ---- decoding

// What the head of a stream claims, and the frames after it.
struct S_Stream {
  unsigned int dwBitRate;
  std::int64_t nWords;  // words that the length claims after the head; negative: not even a head
  vcm::C_ByteReader frames;
};

std::optional<S_Stream> ReadHead(std::span<const std::uint8_t> bytes) {
  vcm::C_ByteReader reader(bytes);
  const std::uint32_t dwClaimed = reader.U32();
  const unsigned int dwBitRate = reader.U16();
  if (!reader.Ok()) return std::nullopt;
  if ((bytes.size() - kLengthField) * kMaxClaim < dwClaimed) return std::nullopt;
  return S_Stream{dwBitRate, std::int64_t{dwClaimed / kWordBytes} - 1, reader};
}

// The number of frames to decode: as many as claimed, but none that begins after the last byte.
std::int64_t CountFrames(const S_Stream& stream, std::int64_t nWordsPerFrame) {
  const std::int64_t cbFrame = nWordsPerFrame * kWordBytes;
  const auto cbHeld = static_cast<std::int64_t>(stream.frames.Remaining());
  return std::min(stream.nWords / nWordsPerFrame, (cbHeld + cbFrame - 1) / cbFrame);
}

// After the last byte the reader returns 0, so a frame that the end cuts short is completed with
// zeros.
void TakeWords(vcm::C_ByteReader& reader, std::span<unsigned short> words) {
  for (unsigned short& wWord : words) wWord = reader.U16();
}

// Writes samples or words, 16 bits each.
template <typename Unit>
bool WriteUnits(std::FILE* pFile, std::span<const Unit> units) {
  std::array<std::uint8_t, 1024> piece;
  while (!units.empty()) {
    const auto part = units.first(std::min(units.size(), piece.size() / 2));
    std::size_t nAt = 0;
    for (const Unit unit : part) {
      piece[nAt++] = static_cast<std::uint8_t>(unit);
      piece[nAt++] = static_cast<std::uint8_t>(static_cast<unsigned int>(unit) >> 8U);
    }
    if (!vcm::WriteExact(pFile, std::span(piece).first(nAt))) return false;
    units = units.subspan(part.size());
  }
  return true;
}

bool DecodeFrames(C_VXAudioCodec::PFN_DecodeFrame pfnDecodeFrame, S_Stream& stream, S_Frame& frame,
                  std::FILE* pFile, PFN_DecodedData pfnData) {
  const auto nWords = static_cast<std::int64_t>(frame.words.size());
  const std::int64_t cbFrame = static_cast<std::int64_t>(frame.samples.size()) * kSampleBytes;
  const std::int64_t nFrames = CountFrames(stream, nWords);
  if (nFrames > std::numeric_limits<std::uint32_t>::max() / cbFrame) return false;
  for (std::int64_t i = 0; i < nFrames; ++i) {
    TakeWords(stream.frames, frame.words);
    if (pfnDecodeFrame(frame.words.data(), frame.samples.data()) != 0) return false;
    if (!WriteUnits<short>(pFile, frame.samples)) return false;
    if (pfnData != nullptr) pfnData(frame.samples.data(), static_cast<unsigned int>(cbFrame));
  }
  // Kept: a length that ends within a frame makes decoding fail, although all whole frames were
  // decoded and reported by then. Files cut by faulty tools are noticed this way. Pinned by
  // LengthThatLeavesAPartialFrame_FailsAfterAllWholeFrames.
  return stream.nWords >= 0 && stream.nWords % nWords == 0;
}

// ---- encoding

// The PCM of a 16-bit mono sound; empty when it has fewer bytes than its format claims.
std::span<const std::uint8_t> MonoPcm(I_WavData* piWavData) {
  const std::uint8_t* pbyPcm = piWavData->GetBuffer();
  const std::uint64_t qwSamples = piWavData->GetWavInfo()->GetSampleSize();
  const std::uint64_t qwBytes = qwSamples * kSampleBytes;
  if (pbyPcm == nullptr || qwBytes > piWavData->GetBufferLength()) return {};
  if (!vcm::HoldsItsBytes(*piWavData)) return {};
  return {pbyPcm, static_cast<std::size_t>(qwBytes)};
}

void Report(PFN_CodecProgress pfnProgress, unsigned int dwKind, unsigned int dwSamples) {
  if (pfnProgress == nullptr) return;
  S_CodecProgress progress;
  progress.dwKind = dwKind;
  progress.dwValue = dwSamples;
  pfnProgress(&progress);
}

// Writes the head and the frames of one stream.
class C_FrameWriter {
 public:
  C_FrameWriter(C_VXAudioCodec::PFN_EncodeFrame pfnEncodeFrame, S_Frame frame, std::FILE* pFile)
      : m_pfnEncodeFrame(pfnEncodeFrame), m_frame(std::move(frame)), m_pFile(pFile) {}

  [[nodiscard]] std::size_t SamplesPerFrame() const { return m_frame.samples.size(); }

  // The length is not known yet, so spaces hold its place.
  bool WriteHead(unsigned int dwBitRate) {
    vcm::C_ByteWriter writer;
    writer.Text("    ", kLengthField);
    writer.U16(static_cast<std::uint16_t>(dwBitRate));
    return vcm::WriteExact(m_pFile, writer.Data());
  }

  // Encodes the next frame of samples. When too few samples are left, silence fills the frame.
  bool Encode(C_MonoSamples& samples) {
    samples.Read(m_frame.samples);
    return m_pfnEncodeFrame(m_frame.samples.data(), m_frame.words.data()) == 0;
  }

  bool Write() {
    m_dwWords += static_cast<std::uint32_t>(m_frame.words.size());
    return WriteUnits<unsigned short>(m_pFile, m_frame.words);
  }

  bool WriteLength() {
    vcm::C_ByteWriter writer;
    writer.U32(m_dwWords * 2);
    return vcm::SeekTo(m_pFile, 0) && vcm::WriteExact(m_pFile, writer.Data());
  }

 private:
  C_VXAudioCodec::PFN_EncodeFrame m_pfnEncodeFrame;
  S_Frame m_frame;
  std::FILE* m_pFile;
  std::uint32_t m_dwWords = 1;  // the bit rate counts as one
};

// Kept: the first whole frame is encoded but not written, and one frame of silence ends the stream.
// The coder is one frame late, so decoding puts the sound back in its place. Pinned by
// EncodeThenDecode_IsAlignedInTime.
bool EncodeFrames(C_FrameWriter& writer, C_MonoSamples& samples, PFN_CodecProgress pfnProgress) {
  const std::size_t dwSamples = samples.Count();
  const std::size_t dwPerFrame = writer.SamplesPerFrame();
  std::size_t dwDone = 0;
  for (; dwSamples - dwDone >= dwPerFrame; dwDone += dwPerFrame) {
    Report(pfnProgress, S_CodecProgress::kProgress, static_cast<unsigned int>(dwDone));
    if (!writer.Encode(samples) || (dwDone > 0 && !writer.Write())) return false;
  }
  if (dwDone < dwSamples && !(writer.Encode(samples) && writer.Write())) return false;
  C_MonoSamples silence(std::span<const std::uint8_t>{});
  return writer.Encode(silence) && writer.Write();
}

}  // namespace

bool C_KestrelCodec::LoadCodec(unsigned int /*dwBitRate*/) {
  m_pfnEncoderInit = KestrelEncoderInit;
  m_pfnEncodeFrame = KestrelEncodeFrame;
  m_pfnDecoderInit = KestrelDecoderInit;
  m_pfnDecodeFrame = KestrelDecodeFrame;
  return true;
}

bool C_KestrelCodec::IsSupportedBitRate(unsigned int dwBitRate) const {
  return std::find(kEncodeRates.begin(), kEncodeRates.end(), dwBitRate) != kEncodeRates.end();
}

bool C_KestrelCodec::Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen,
                            I_WavData* piWavData, PFN_DecodedData pfnData) {
  CODEC_ASSERT(piWavData != nullptr, "Decode", __LINE__, "NULL != piWavData");
  if (piWavData == nullptr || m_pfnDecoderInit == nullptr) return false;
  vcm::C_TempFile pcmFile;
  if (pcmFile.Stream() == nullptr || pbyEncData == nullptr) return false;
  auto stream = ReadHead({pbyEncData, dwEncDataLen});
  if (!stream) return false;
  auto frame = StartCoder(m_pfnDecoderInit, stream->dwBitRate);
  if (!frame) return false;
  if (!DecodeFrames(m_pfnDecodeFrame, *stream, *frame, pcmFile.Stream(), pfnData)) return false;
  const auto pcm = tempstream::Reopen(pcmFile);
  if (!pcm) return false;
  unsigned char* pbyPcm = piWavData->AllocBuffer(pcm->dwSize);
  if (pbyPcm == nullptr) return false;
  if (vcm::ReadExact(pcm->file.get(), {pbyPcm, pcm->dwSize})) return true;
  // Most of the memory holds nothing yet.
  piWavData->AllocBuffer(0);
  return false;
}

bool C_KestrelCodec::Encode(I_WavData* piWavData, unsigned int dwBitRate,
                            unsigned char** ppbyEncData, unsigned int* pdwEncDataLen,
                            PFN_CodecProgress pfnProgress) {
  CODEC_ASSERT(piWavData != nullptr && ppbyEncData != nullptr && pdwEncDataLen != nullptr, "Encode",
               __LINE__, "(NULL != piWavData) && (NULL != ppbyEncData) && (NULL != pdwEncDataLen)");
  if (piWavData == nullptr || ppbyEncData == nullptr || pdwEncDataLen == nullptr) return false;
  *ppbyEncData = nullptr;
  *pdwEncDataLen = 0;
  auto pcm = MonoPcm(piWavData);
  // The callback may give the sound other memory.
  C_WavData* const pOwn = AsOurOwn(*piWavData);
  const auto kept = pOwn != nullptr ? pOwn->KeepBuffer() : nullptr;
  std::vector<std::uint8_t> copy;
  if (!kept) pcm = copy = {pcm.begin(), pcm.end()};
  C_MonoSamples samples(pcm);
  auto written = EncodeToFile(samples, dwBitRate, pfnProgress);
  if (!written) return false;
  return tempstream::HandOver(tempstream::ReadAll(*written), ppbyEncData, pdwEncDataLen);
}

std::optional<tempstream::S_Written> C_KestrelCodec::EncodeToFile(C_MonoSamples& samples,
                                                                  unsigned int dwBitRate,
                                                                  PFN_CodecProgress pfnProgress) {
  if (dwBitRate == 0) dwBitRate = kDefaultBitRate;
  if (!IsSupportedBitRate(dwBitRate) || m_pfnEncoderInit == nullptr) return std::nullopt;
  if (samples.Count() == 0) return std::nullopt;
  Report(pfnProgress, S_CodecProgress::kStart, samples.Count());
  auto frame = StartCoder(m_pfnEncoderInit, dwBitRate);
  vcm::C_TempFile streamFile;
  if (!frame || streamFile.Stream() == nullptr) return std::nullopt;
  C_FrameWriter writer(m_pfnEncodeFrame, std::move(*frame), streamFile.Stream());
  if (!writer.WriteHead(dwBitRate) || !EncodeFrames(writer, samples, pfnProgress)) {
    return std::nullopt;
  }
  if (!writer.WriteLength()) return std::nullopt;
  Report(pfnProgress, S_CodecProgress::kProgress, samples.Count());
  return tempstream::Reopen(streamFile);
}
