// SPDX-License-Identifier: Apache-2.0
#include "codec/HeronCodec.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "LargeMemory.h"
#include "StdioFile.h"
#include "TempFile.h"
#include "codec/HeronDots.h"
#include "codec/HeronEventStream.h"
#include "codec/HeronStream.h"
#include "codec/TempStream.h"
#include "heron/Configuration.h"
#include "heron/Decoder.h"
#include "heron/SoundCoder.h"
#include "interface/I_WavData.h"
#include "sound/MonoMix.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kGroupFrames = 32;
constexpr std::uint32_t kSampleBytes = 2;
// The frame coder's rate control counts the bytes of the head.
static_assert(heronstream::kHeadBytes == heron::kHeadBytes);

// The sound's rate in the type that the frame coder expects; empty for a rate that it does not
// support.
std::optional<int> CoderRate(I_WavData& wavData) {
  const unsigned int dwSampleRate = wavData.GetWavInfo()->GetSampleRate();
  const auto nSampleRate = static_cast<int>(std::min(dwSampleRate, unsigned{INT_MAX}));
  return heron::IsSupportedSampleRate(nSampleRate) ? std::optional(nSampleRate) : std::nullopt;
}

// Reports how far the encoder is, to the callback and, if verbose, on standard output.
class C_Progress {
 public:
  C_Progress(bool bVerbose, PFN_CodecProgress pfnProgress)
      : m_dots(bVerbose), m_pfnProgress(pfnProgress) {}

  void Begin(unsigned int dwFrames) { m_dwFrames = dwFrames; }
  // Reports only whole groups, and no number twice. The last group is left to End.
  void Advance(unsigned int dwFramesDone) {
    m_dots.Advance(dwFramesDone, m_dwFrames);
    const unsigned int dwGroups = dwFramesDone / kGroupFrames;
    if (dwGroups <= m_dwGroups || dwGroups >= CountGroups()) return;
    m_dwGroups = dwGroups;
    Report(dwGroups);
  }
  void End(bool bDone) {
    m_dots.End(bDone);
    if (bDone) Report(CountGroups());
  }

 private:
  [[nodiscard]] unsigned int CountGroups() const {
    return m_dwFrames / kGroupFrames + (m_dwFrames % kGroupFrames == 0 ? 0 : 1);
  }
  void Report(unsigned int dwGroups) {
    if (m_pfnProgress == nullptr) return;
    S_CodecProgress progress;
    progress.dwKind = S_CodecProgress::kProgress;
    progress.dwValue = dwGroups;
    m_pfnProgress(&progress);
  }

  C_HeronDots m_dots;
  PFN_CodecProgress m_pfnProgress;
  unsigned int m_dwFrames = 0;  // frames of the sound
  unsigned int m_dwGroups = 0;  // groups reported so far
};

// What is to be encoded, and as which variant.
struct S_Task {
  heronstream::S_Variant variant;
  monomix::C_Samples samples;
  int nSampleRate;
  unsigned int dwSamplesPerFrame;

  [[nodiscard]] unsigned int CountFrames() const {
    return static_cast<unsigned int>((samples.View().size() + dwSamplesPerFrame - 1) /
                                     dwSamplesPerFrame);
  }
};

std::optional<S_Task> MakeTask(I_WavData& wavData, unsigned int dwTypeCode) {
  const auto variant = heronstream::VariantOfType(dwTypeCode);
  const auto nSampleRate = CoderRate(wavData);
  if (!variant || !nSampleRate) return std::nullopt;
  auto samples = monomix::C_Samples::Of(wavData);
  if (!samples || samples->View().empty()) return std::nullopt;
  return S_Task{*variant, std::move(*samples), *nSampleRate,
                static_cast<unsigned int>(heron::FrameLength(*nSampleRate))};
}

// Writes the coded audio after a placeholder for the head, which is not known yet.
bool WriteAudio(const S_Task& task, C_Progress& progress, std::FILE* pFile) {
  const auto fnFrames = [&](unsigned int dwDone) { progress.Advance(dwDone); };
  const auto fnWrite = [&](std::span<const std::uint8_t> bytes) {
    return vcm::WriteExact(pFile, bytes);
  };
  progress.Begin(task.CountFrames());
  vcm::C_ByteWriter placeholder;
  placeholder.Zeros(heronstream::kHeadBytes);
  return vcm::WriteExact(pFile, placeholder.Data()) &&
         heron::EncodeSamples(task.samples.View(), task.nSampleRate, task.variant.nBitDepth,
                              fnWrite, fnFrames);
}

bool WriteEvents(const S_Task& task, I_EventTagMgr& eventMgr, std::FILE* pFile) {
  const auto events = heroneventstream::EventsOf(eventMgr, task.dwSamplesPerFrame);
  if (events.empty()) return true;
  vcm::C_ByteWriter writer;
  unsigned int dwGroups = 0;
  heroneventstream::WriteEventStream({0, task.CountFrames()}, events, &dwGroups, &writer);
  return vcm::WriteExact(pFile, writer.Data());
}

// Writes the events after the audio, and the head over its placeholder.
bool Complete(const heronstream::S_Variant& variant, std::span<const std::uint8_t> events,
              std::FILE* pFile) {
  const auto qwAudioEnd = vcm::Tell(pFile);
  const auto dwHead =
      qwAudioEnd ? heronstream::MakeHead(variant, *qwAudioEnd, events.size()) : std::nullopt;
  if (!dwHead) return false;
  vcm::C_ByteWriter head;
  head.U32(*dwHead);
  return vcm::WriteExact(pFile, events) && vcm::SeekTo(pFile, 0) &&
         vcm::WriteExact(pFile, head.Data());
}

std::optional<tempstream::S_Written> EncodeStream(I_WavData& wavData, unsigned int dwTypeCode,
                                                  C_Progress& progress) {
  vcm::C_TempFile audioFile("", "temp_enc");
  vcm::C_TempFile eventFile("", "temp_evt");
  if (audioFile.Stream() == nullptr || eventFile.Stream() == nullptr) return std::nullopt;
  const auto task = MakeTask(wavData, dwTypeCode);
  if (!task || !WriteAudio(*task, progress, audioFile.Stream()) ||
      !WriteEvents(*task, *wavData.GetEventTagMgr(), eventFile.Stream())) {
    return std::nullopt;
  }
  const auto events = tempstream::ReadBack(eventFile);
  if (!events || !Complete(task->variant, events->View(), audioFile.Stream())) return std::nullopt;
  return tempstream::Reopen(audioFile);
}

// Whether the bytes can hold as many samples, at the smallest depth.
bool CanHold(std::size_t cbCoded, std::size_t nSamples) {
  return nSamples / 8 <= cbCoded / static_cast<std::size_t>(heron::kMinBitDepth);
}

bool HasGoodBlock(heron::C_Decoder& decoder) {
  std::vector<short> samples(decoder.Length());
  for (std::size_t n = 0; n < decoder.BlockCount(); ++n) {
    const std::size_t nLeft = decoder.SampleCount() - n * decoder.Length();
    const std::size_t nCount = std::min(decoder.Length(), nLeft);
    if (decoder.Run(n) && decoder.DecodeBlock(n, std::span(samples).first(nCount))) return true;
  }
  return false;
}

// Decodes straight into the memory that becomes the PCM of the sound, which stays as it is when
// that fails.
bool DecodeInPlace(heron::C_Decoder& decoder, unsigned int dwLength, C_WavData& wavData) {
  auto pbyPcm = vcm::NewBytes(dwLength);
  auto* const pSamples = static_cast<std::int16_t*>(static_cast<void*>(pbyPcm.get()));
  if (!decoder.DecodeAll({pSamples, decoder.SampleCount()})) return false;
  wavData.TakeBuffer(std::move(pbyPcm), dwLength);
  wavData.SetWavInfoData(wavData.GetWavInfo()->GetSampleRate(), dwLength, 1, 16, 16, true);
  return true;
}

// Replaces the PCM of the sound by 16-bit mono samples, little-endian on every machine. The sample
// rate stays.
bool DecodeAndCopy(heron::C_Decoder& decoder, unsigned int dwLength, I_WavData& wavData) {
  std::vector<short> samples(decoder.SampleCount());
  if (!decoder.DecodeAll(samples)) return false;
  unsigned char* pbyPcm = wavData.AllocBuffer(dwLength);
  if (pbyPcm == nullptr) return false;
  for (const short nSample : samples) {
    const auto wSample = static_cast<std::uint16_t>(nSample);
    *pbyPcm++ = static_cast<unsigned char>(wSample);
    *pbyPcm++ = static_cast<unsigned char>(wSample >> 8U);
  }
  wavData.SetWavInfoData(wavData.GetWavInfo()->GetSampleRate(), dwLength, 1, 16, 16, true);
  return true;
}

// The decoder counts only blocks that it has found, and those before them. Silence and missing
// blocks take hardly any bytes, so long sounds may come from a few bytes: then memory is taken once
// a block has turned out to be right.
bool DecodeSound(std::span<const std::uint8_t> coded, int nSampleRate, I_WavData& wavData) {
  auto decoder = heron::C_Decoder::Open(coded, nSampleRate);
  if (!decoder) return false;
  const auto dwLength = vcm::CheckedBytes(decoder->SampleCount(), kSampleBytes);
  if (!dwLength || decoder->IsMostlyMissing()) return false;
  if (!CanHold(coded.size(), decoder->SampleCount()) && !HasGoodBlock(*decoder)) return false;
  C_WavData* const pWavData = AsOurOwn(wavData);
  const bool bInPlace = pWavData != nullptr && std::endian::native == std::endian::little;
  return bInPlace ? DecodeInPlace(*decoder, *dwLength, *pWavData)
                  : DecodeAndCopy(*decoder, *dwLength, wavData);
}

}  // namespace

bool C_HeronCodec::Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen,
                          I_WavData* piWavData) {
  if (pbyEncData == nullptr || piWavData == nullptr) return false;
  const auto audio = heronstream::FindAudio({pbyEncData, dwEncDataLen});
  const auto nSampleRate = CoderRate(*piWavData);
  return audio && nSampleRate && DecodeSound(audio->coded, *nSampleRate, *piWavData);
}

bool C_HeronCodec::Encode(I_WavData* piWavData, unsigned int dwTypeCode,
                          I_AudioCodecParam* /*piParam*/, PFN_CodecProgress pfnProgress,
                          unsigned char** ppbyEncData, unsigned int* pdwEncDataLen) {
  if (ppbyEncData == nullptr || pdwEncDataLen == nullptr) return false;
  *ppbyEncData = nullptr;
  *pdwEncDataLen = 0;
  const auto written = EncodeToFile(piWavData, dwTypeCode, pfnProgress);
  if (!written) return false;
  return tempstream::HandOver(tempstream::ReadAll(*written), ppbyEncData, pdwEncDataLen);
}

std::optional<tempstream::S_Written> C_HeronCodec::EncodeToFile(I_WavData* piWavData,
                                                                unsigned int dwTypeCode,
                                                                PFN_CodecProgress pfnProgress) {
  if (piWavData == nullptr) return std::nullopt;
  C_Progress progress(m_bVerbose, pfnProgress);
  auto written = EncodeStream(*piWavData, dwTypeCode, progress);
  progress.End(written.has_value());
  return written;
}
