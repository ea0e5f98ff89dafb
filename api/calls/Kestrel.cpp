// SPDX-License-Identifier: Apache-2.0
//
// The Kestrel frame coders of voxplay.h.
#include <cstdint>
#include <new>
#include <span>

#include "kestrel/Configuration.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"
#include "voxplay.h"

static_assert(VOXPLAY_KESTREL_FRAME == kestrel::kSamplesPerFrame);
static_assert(VOXPLAY_KESTREL_MAX_WORDS == kestrel::kMaxWordsPerFrame);

struct voxplay_kestrel_encoder {
  std::uint32_t dwBitRate;
  kestrel::C_Encoder coder;
};

struct voxplay_kestrel_decoder {
  std::uint32_t dwBitRate;
  kestrel::C_Decoder coder;
};

namespace {

// A coder that is configured; null for a rate that is none, and without memory.
template <typename Coder>
Coder* NewCoder(std::uint32_t dwBitRate) {
  if (voxplay_kestrel_words(dwBitRate) == 0) return nullptr;
  auto* const pCoder = new (std::nothrow) Coder{dwBitRate, {}};
  if (pCoder != nullptr) pCoder->coder.Init(dwBitRate);
  return pCoder;
}

std::span<const std::int16_t, kestrel::kSamplesPerFrame> Frame(const int16_t* pSamples) {
  return std::span<const std::int16_t, kestrel::kSamplesPerFrame>(pSamples,
                                                                  kestrel::kSamplesPerFrame);
}

}  // namespace

size_t voxplay_kestrel_words(uint32_t bit_rate) {
  const auto configuration = kestrel::Configure(bit_rate);
  if (configuration.nResult != kestrel::kRateAsRequested) return 0;
  return static_cast<size_t>(configuration.nWordsPerFrame);
}

voxplay_kestrel_encoder* voxplay_kestrel_encoder_new(uint32_t bit_rate) {
  return NewCoder<voxplay_kestrel_encoder>(bit_rate);
}

void voxplay_kestrel_encoder_free(voxplay_kestrel_encoder* encoder) { delete encoder; }

void voxplay_kestrel_encoder_reset(voxplay_kestrel_encoder* encoder) {
  if (encoder != nullptr) encoder->coder.Init(encoder->dwBitRate);
}

voxplay_status voxplay_kestrel_encode(voxplay_kestrel_encoder* encoder, const int16_t* samples,
                                      uint16_t* words) {
  if (encoder == nullptr || samples == nullptr || words == nullptr) return VOXPLAY_BAD_ARGUMENT;
  encoder->coder.Encode(Frame(samples), {words, voxplay_kestrel_words(encoder->dwBitRate)});
  return VOXPLAY_OK;
}

voxplay_kestrel_decoder* voxplay_kestrel_decoder_new(uint32_t bit_rate) {
  return NewCoder<voxplay_kestrel_decoder>(bit_rate);
}

void voxplay_kestrel_decoder_free(voxplay_kestrel_decoder* decoder) { delete decoder; }

void voxplay_kestrel_decoder_reset(voxplay_kestrel_decoder* decoder) {
  if (decoder != nullptr) decoder->coder.Init(decoder->dwBitRate);
}

voxplay_status voxplay_kestrel_decode(voxplay_kestrel_decoder* decoder, const uint16_t* words,
                                      int16_t* samples) {
  if (decoder == nullptr || samples == nullptr) return VOXPLAY_BAD_ARGUMENT;
  const std::span<std::int16_t, kestrel::kSamplesPerFrame> frame(samples,
                                                                 kestrel::kSamplesPerFrame);
  if (words == nullptr) {
    decoder->coder.DecodeLost(frame);
    return VOXPLAY_OK;
  }
  const bool bGood =
      decoder->coder.Decode({words, voxplay_kestrel_words(decoder->dwBitRate)}, frame);
  return bGood ? VOXPLAY_OK : VOXPLAY_DAMAGED;
}
