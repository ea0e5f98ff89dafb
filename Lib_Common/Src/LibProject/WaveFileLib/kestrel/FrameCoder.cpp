// SPDX-License-Identifier: Apache-2.0
#include "kestrel/FrameCoder.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

static_assert(std::is_same_v<short, std::int16_t> && std::is_same_v<unsigned short, std::uint16_t>);

namespace {

constinit kestrel::C_Encoder g_encoder;
constinit kestrel::C_Decoder g_decoder;

int Report(const kestrel::S_Configuration& configuration, int* pnWordsPerFrame,
           int* pnSamplesPerFrame) {
  *pnWordsPerFrame = configuration.nWordsPerFrame;
  *pnSamplesPerFrame = kestrel::kSamplesPerFrame;
  return configuration.nResult;
}

std::size_t WordsPerFrame(const kestrel::S_Configuration& configuration) {
  return static_cast<std::size_t>(configuration.nWordsPerFrame);
}

}  // namespace

int KestrelEncoderInit(unsigned int dwBitRate, int* pnWordsPerFrame, int* pnSamplesPerFrame) {
  return Report(g_encoder.Init(dwBitRate), pnWordsPerFrame, pnSamplesPerFrame);
}

int KestrelEncodeFrame(const short* pSamples320, unsigned short* pwFrameWords) {
  g_encoder.Encode(
      std::span<const short, kestrel::kSamplesPerFrame>(pSamples320, kestrel::kSamplesPerFrame),
      {pwFrameWords, WordsPerFrame(g_encoder.Configuration())});
  return 0;
}

int KestrelDecoderInit(unsigned int dwBitRate, int* pnWordsPerFrame, int* pnSamplesPerFrame) {
  return Report(g_decoder.Init(dwBitRate), pnWordsPerFrame, pnSamplesPerFrame);
}

int KestrelDecodeFrame(const unsigned short* pwFrameWords, short* pSamples320) {
  g_decoder.Decode(
      {pwFrameWords, WordsPerFrame(g_decoder.Configuration())},
      std::span<short, kestrel::kSamplesPerFrame>(pSamples320, kestrel::kSamplesPerFrame));
  return 0;
}

void KestrelPrintTable(std::FILE* pFile, std::span<const short> table, int nColumns) {
  int nInRow = 0;
  for (const short nValue : table) {
    std::fprintf(pFile, "%6d,", nValue);
    if (++nInRow != nColumns) continue;
    std::fputc('\n', pFile);
    nInRow = 0;
  }
  if (nInRow != 0) std::fputc('\n', pFile);
}
