// SPDX-License-Identifier: Apache-2.0
//
// Kestrel frame coders take memory when they are made, and none after that.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "FaultyNew.h"
#include "voxplay.h"

namespace {

using Words = std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS>;
using Samples = std::array<std::int16_t, VOXPLAY_KESTREL_FRAME>;

constexpr std::array<std::uint32_t, 4> kBitRates = {4800, 7200, 16000, 32000};

Samples Ramp(int nStep) {
  Samples samples;
  for (std::size_t n = 0; n < samples.size(); ++n) {
    samples[n] = static_cast<std::int16_t>(static_cast<int>(n) * nStep % 20000 - 10000);
  }
  return samples;
}

// Every allocation fails while the work runs; true when it asked for one.
template <typename Work>
bool TakesMemory(Work fnWork) {
  C_FaultyNew faulty(1, true);
  fnWork();
  faulty.Stop();
  return faulty.WasHit();
}

TEST(KestrelMemory, WithoutMemory_ThereIsNoCoder) {
  voxplay_kestrel_encoder* pEncoder = nullptr;
  voxplay_kestrel_decoder* pDecoder = nullptr;
  EXPECT_TRUE(TakesMemory([&] { pEncoder = voxplay_kestrel_encoder_new(16000); }));
  EXPECT_TRUE(TakesMemory([&] { pDecoder = voxplay_kestrel_decoder_new(16000); }));
  EXPECT_EQ(pEncoder, nullptr);
  EXPECT_EQ(pDecoder, nullptr);
}

TEST(KestrelMemory, Encoder_TakesNoneAfterItIsMade) {
  for (const std::uint32_t dwBitRate : kBitRates) {
    auto* const pEncoder = voxplay_kestrel_encoder_new(dwBitRate);
    ASSERT_NE(pEncoder, nullptr);
    Words words{};
    EXPECT_FALSE(TakesMemory([&] {
      for (int nStep = 0; nStep < 40; ++nStep) {
        voxplay_kestrel_encode(pEncoder, Ramp(nStep * 97).data(), words.data());
        if (nStep == 20) voxplay_kestrel_encoder_reset(pEncoder);
      }
    })) << dwBitRate;
    EXPECT_NE(words, Words{});
    voxplay_kestrel_encoder_free(pEncoder);
  }
}

TEST(KestrelMemory, Decoder_TakesNoneForGoodDamagedAndLostFrames) {
  for (const std::uint32_t dwBitRate : kBitRates) {
    auto* const pEncoder = voxplay_kestrel_encoder_new(dwBitRate);
    auto* const pDecoder = voxplay_kestrel_decoder_new(dwBitRate);
    ASSERT_NE(pEncoder, nullptr);
    ASSERT_NE(pDecoder, nullptr);
    const Words zeros{};
    Words words{};
    Samples decoded{};
    std::array<int, 3> counts{};  // of good, damaged and lost frames
    EXPECT_FALSE(TakesMemory([&] {
      for (int nStep = 0; nStep < 40; ++nStep) {
        voxplay_kestrel_encode(pEncoder, Ramp(nStep * 97).data(), words.data());
        const auto* const pWords = nStep % 4 == 1 ? zeros.data() : words.data();
        const bool bLost = nStep % 4 == 3;
        const auto eStatus =
            voxplay_kestrel_decode(pDecoder, bLost ? nullptr : pWords, decoded.data());
        ++counts[bLost ? 2U : eStatus == VOXPLAY_OK ? 0U : 1U];
        if (nStep == 20) voxplay_kestrel_decoder_reset(pDecoder);
      }
    })) << dwBitRate;
    // A frame that the encoder had to cut off may count as damaged.
    EXPECT_GE(counts[0], 15) << dwBitRate;
    EXPECT_GE(counts[1], 10) << dwBitRate;
    EXPECT_EQ(counts[2], 10) << dwBitRate;
    voxplay_kestrel_decoder_free(pDecoder);
    voxplay_kestrel_encoder_free(pEncoder);
  }
}

}  // namespace
