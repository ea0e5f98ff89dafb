// SPDX-License-Identifier: Apache-2.0
#include "compressed/MSAdpcmCodec.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "CodecSupport.h"
#include "VTable.h"
#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"

namespace {

static_assert(std::has_virtual_destructor_v<C_MSAdpcmCodec>);
static_assert(std::is_base_of_v<C_MSAdpcmCodec, C_DVIAdpcmCodec>);
static_assert(std::is_base_of_v<C_MSAdpcmCodec, C_DVIAdpcm3BitCodec>);
static_assert(!std::is_base_of_v<C_DVIAdpcmCodec, C_DVIAdpcm3BitCodec>);
static_assert(std::is_base_of_v<C_MSAdpcmCodec, C_G711Codec>);
static_assert(std::is_base_of_v<C_G711Codec, C_MuLawCodec>);
static_assert(std::is_base_of_v<C_G711Codec, C_ALawCodec>);

// Records what the block loop asks for.
class C_RecordingCodec : public C_MSAdpcmCodec {
 public:
  struct S_Call {
    std::ptrdiff_t nFrom;
    std::ptrdiff_t nSample;
    unsigned int dwBytes;
    unsigned int dwCapacity;
    friend bool operator==(const S_Call&, const S_Call&) = default;
  };
  bool DecodeBlock(const C_WavFileCodecInfo& /*codecInfo*/, const unsigned char* pbyBlock,
                   short* pSamples, unsigned int dwBlockBytes, unsigned int dwCapacity) override {
    m_calls.push_back({pbyBlock - m_pbyFirst, pSamples - m_pFirst, dwBlockBytes, dwCapacity});
    return false;
  }
  std::vector<S_Call> CallsOf(const C_WavFileCodecInfo& info, unsigned int dwBytes,
                              unsigned int dwCapacity) {
    const C_Bytes encoded(dwBytes);
    C_Samples samples(dwCapacity / 2 + 1);
    m_pbyFirst = encoded.data();
    m_pFirst = samples.data();
    m_calls.clear();
    EXPECT_TRUE(Decode(info, encoded.data(), dwBytes, samples.data(), dwCapacity));
    return m_calls;
  }

 private:
  std::vector<S_Call> m_calls;
  const unsigned char* m_pbyFirst = nullptr;
  const short* m_pFirst = nullptr;
};
void PrintTo(const C_RecordingCodec::S_Call& call, std::ostream* pStream) {
  *pStream << "{" << call.nFrom << " -> " << call.nSample << ", " << call.dwBytes << " bytes into "
           << call.dwCapacity << "}";
}
using C_Calls = std::vector<C_RecordingCodec::S_Call>;

S_Blocks Ms(std::uint16_t wChannels, std::uint16_t wBlockAlign, std::uint16_t wSamplesPerBlock) {
  return {WAVE_TAG_MS_ADPCM, wChannels, wBlockAlign, wSamplesPerBlock};
}
const C_WavFileCodecInfo& Mono() {
  static const C_WavFileCodecInfo info = InfoOf(Ms(1, 256, 500));
  return info;
}
const C_Bytes kMonoBlock = Join({{0}, Shorts({16, 100, 50}), {0x1F, 0x78}});
const C_Samples kMonoSamples = {50, 100, 116, 100, 212, -92};

C_Samples Block(const C_WavFileCodecInfo& info, const C_Bytes& block, unsigned int dwCapacity) {
  C_MSAdpcmCodec codec;
  return DecodeBlock(codec, info, block, dwCapacity);
}
std::optional<unsigned int> Size(const S_Blocks& blocks, unsigned int dwBytes) {
  return C_MSAdpcmCodec().GetDecodedSize(InfoOf(blocks), dwBytes);
}

}  // namespace

// --- Sizes

TEST(MSAdpcmCodec, Size_IsThatOfTheWholeBlocksAndTheRest) {
  const S_Blocks blocks = Ms(1, 256, 500);
  EXPECT_EQ(Size(blocks, 0), 0u);
  EXPECT_EQ(Size(blocks, 256), 1000u);
  EXPECT_EQ(Size(blocks, 512), 2000u);
  EXPECT_EQ(Size(blocks, 262), 1000u);
  EXPECT_EQ(Size(blocks, 263), 1004u);
  EXPECT_EQ(Size(blocks, 100), 376u);
  EXPECT_EQ(Size(Ms(2, 512, 500), 1024), 4000u);
  EXPECT_EQ(Size(Ms(2, 512, 500), 512 + 13), 2004u);
}

TEST(MSAdpcmCodec, RestShorterThanItsHeader_TakesSamplesAway) {
  EXPECT_EQ(Size(Ms(1, 256, 500), 257), 980u);
  EXPECT_EQ(Size(Ms(1, 256, 500), 512 + 5), 1996u);
  EXPECT_EQ(Size(Ms(2, 512, 500), 513), 1956u);
}

TEST(MSAdpcmCodec, SizeBelowZero_IsZero) {
  for (unsigned int dwBytes = 1; dwBytes <= 6; ++dwBytes) {
    EXPECT_EQ(Size(Ms(1, 256, 500), dwBytes), 0u) << dwBytes;
  }
  EXPECT_EQ(Size(Ms(65535, 2, 0), 0xFFFFFFFF), 0u);
}

TEST(MSAdpcmCodec, SizeWithoutChannelsOrBlocks_IsZero) {
  const C_WavFileCodecInfo nothing;
  EXPECT_EQ(C_MSAdpcmCodec().GetDecodedSize(nothing, 1000), 0u);
  // A plain record may have the block align 0.
  const auto noBlocks = InfoOf(S_Blocks{WAVE_TAG_MULAW, 1, 0, 0, 8});
  EXPECT_EQ(C_MSAdpcmCodec().GetDecodedSize(noBlocks, 1000), 0u);
}

TEST(MSAdpcmCodec, Sizes_AreComputedIn64Bits) {
  EXPECT_EQ(Size(Ms(1, 1, 1), 0x7FFFFFFF), 0xFFFFFFFEu);
  EXPECT_EQ(Size(Ms(1, 1, 1), 0x80000000), std::nullopt);
  EXPECT_EQ(Size(Ms(1, 256, 65535), 256 * 32768), 0xFFFF0000u);
  EXPECT_EQ(Size(Ms(1, 256, 65535), 256 * 32769), std::nullopt);
  // 65535 * 65535 * (2^32 - 1) samples take more bytes than 64 bits can count.
  EXPECT_EQ(Size(Ms(65535, 1, 65535), 0xFFFFFFFF), std::nullopt);
  // 65536 * 65535 samples can be counted in 32 bits. Their bytes, twice as many, cannot: in 32 bits
  // they would wrap to 0xFFFE0000.
  EXPECT_EQ(Size(Ms(65535, 1, 32768), 2), std::nullopt);
}

// A size that is just too large for 32 bits fits again when an incomplete block takes samples away.
TEST(MSAdpcmCodec, SizeJustBeyond32Bits_IsBroughtBackByTheRest) {
  EXPECT_EQ(Size(Ms(1, 2, 1), 0xFFFFFFFF), 0xFFFFFFFEu - 20u);
  EXPECT_EQ(Size(Ms(2, 65535, 65535), 65535u * 16384), 0xFFFF0000u);
  EXPECT_EQ(Size(Ms(1, 4096, 32768), 4096 * 65536 + 1), 0x100000000u - 20);
  EXPECT_EQ(Size(Ms(1, 4096, 32768), 4096 * 65536 + 6), std::nullopt);
}

// --- The block loop

TEST(MSAdpcmCodec, WholeBlocks_AreDecodedOneByOne) {
  C_RecordingCodec codec;
  EXPECT_EQ(codec.CallsOf(Mono(), 768, 3000),
            (C_Calls{{0, 0, 256, 1000}, {256, 500, 256, 1000}, {512, 1000, 256, 1000}}));
  EXPECT_EQ(codec.CallsOf(InfoOf(Ms(2, 64, 50)), 128, 500),
            (C_Calls{{0, 0, 64, 200}, {64, 100, 64, 200}}));
}

TEST(MSAdpcmCodec, OneByteAfterWholeBlocks_IsABlockOfItsOwn) {
  C_RecordingCodec codec;
  EXPECT_EQ(codec.CallsOf(Mono(), 257, 1010), (C_Calls{{0, 0, 256, 1000}, {256, 500, 1, 10}}));
  EXPECT_EQ(codec.CallsOf(Mono(), 257, 980), (C_Calls{{0, 0, 256, 980}, {256, 490, 1, 0}}));
  EXPECT_EQ(codec.CallsOf(Mono(), 1, 4), (C_Calls{{0, 0, 1, 4}}));
}

TEST(MSAdpcmCodec, Rest_GetsAllTheRoomThatIsLeft) {
  C_RecordingCodec codec;
  EXPECT_EQ(codec.CallsOf(Mono(), 300, 5000), (C_Calls{{0, 0, 256, 1000}, {256, 500, 44, 4000}}));
}

TEST(MSAdpcmCodec, Block_GetsNoMoreRoomThanIsLeft) {
  C_RecordingCodec codec;
  EXPECT_EQ(codec.CallsOf(Mono(), 768, 1500),
            (C_Calls{{0, 0, 256, 1000}, {256, 500, 256, 500}, {512, 750, 256, 0}}));
  EXPECT_EQ(codec.CallsOf(Mono(), 256, 7), (C_Calls{{0, 0, 256, 7}}));
  EXPECT_EQ(codec.CallsOf(InfoOf(Ms(65535, 1, 65535)), 2, 10),
            (C_Calls{{0, 0, 1, 10}, {1, 5, 1, 0}}));
}

TEST(MSAdpcmCodec, WithoutInputChannelsOrBlocks_NothingIsDecoded) {
  C_RecordingCodec codec;
  EXPECT_EQ(codec.CallsOf(Mono(), 0, 1000), C_Calls{});
  EXPECT_EQ(codec.CallsOf(C_WavFileCodecInfo(), 1000, 1000), C_Calls{});
  EXPECT_EQ(codec.CallsOf(InfoOf(S_Blocks{WAVE_TAG_MULAW, 1, 0, 0, 8}), 1000, 1000), C_Calls{});
}

TEST(MSAdpcmCodec, Decode_IsTrueWhateverTheBlocksSay) {
  C_RecordingCodec codec;  // its blocks return false, CallsOf expects true
  EXPECT_EQ(codec.CallsOf(Mono(), 256, 0).size(), 1u);
}

// --- Blocks

TEST(MSAdpcmCodec, FirstPair_PredictsTheLastSample) {
  EXPECT_EQ(Block(Mono(), kMonoBlock, 12), kMonoSamples);
}

TEST(MSAdpcmCodec, SecondPair_GoesOnStraight) {
  const C_Bytes block = Join({{1}, Shorts({32, 1000, 900}), {0x01, 0xFE}});
  EXPECT_EQ(Block(Mono(), block, 12), (C_Samples{900, 1000, 1100, 1228, 1331, 1390}));
}

TEST(MSAdpcmCodec, Channels_TakeTurnsInEveryField) {
  const auto info = InfoOf(Ms(2, 64, 50));
  const C_Bytes block = Join({{0, 1}, Shorts({16, 32, 100, 1000, 50, 900}), {0x1F, 0x78}});
  EXPECT_EQ(Block(info, block, 16), (C_Samples{50, 900, 100, 1000, 116, 1068, 228, 912}));
}

TEST(MSAdpcmCodec, NegativePredictions_AreShiftedDown) {
  const C_Bytes block = Join({{6}, Shorts({16, -101, 77}), {0x00}});
  EXPECT_EQ(Block(Mono(), block, 8), (C_Samples{77, -101, -225, -253}));
}

TEST(MSAdpcmCodec, HighHalf_ComesFirst) {
  const C_Bytes block = Join({{2}, Shorts({100, 0, 0}), {0x10}});
  EXPECT_EQ(Block(Mono(), block, 8), (C_Samples{0, 0, 100, 0}));
}

// With the pair (0, 0), a sample is delta times code. The next sample, coded as 1, shows the delta.
TEST(MSAdpcmCodec, EveryCode_AdaptsTheDeltaByItsFactor) {
  const int factors[] = {230, 230, 230, 230, 307, 409, 512, 614,
                         768, 614, 512, 409, 307, 230, 230, 230};
  for (int nCode = 0; nCode < 16; ++nCode) {
    const C_Bytes block =
        Join({{2}, Shorts({1000, 0, 0}), {static_cast<std::uint8_t>(nCode << 4 | 1)}});
    const int nSigned = nCode < 8 ? nCode : nCode - 16;
    EXPECT_EQ(Block(Mono(), block, 8), (C_Samples{0, 0, static_cast<short>(1000 * nSigned),
                                                  static_cast<short>(1000 * factors[nCode] >> 8)}));
  }
}

TEST(MSAdpcmCodec, Delta_IsAtLeast16FromTheSecondCodeOn) {
  for (const int nDelta : {0, 1, 15, 16, -1, -16, -32768}) {
    const C_Bytes block = Join({{2}, Shorts({nDelta, 0, 0}), {0x11}});
    EXPECT_EQ(Block(Mono(), block, 8), (C_Samples{0, 0, static_cast<short>(nDelta), 16})) << nDelta;
  }
}

TEST(MSAdpcmCodec, Samples_AreClamped) {
  EXPECT_EQ(Block(Mono(), Join({{1}, Shorts({32767, 32767, 0}), {0x78}}), 8),
            (C_Samples{0, 32767, 32767, -32768}));
  EXPECT_EQ(Block(Mono(), Join({{1}, Shorts({32767, -32768, 0}), {0x88}}), 8),
            (C_Samples{0, -32768, -32768, -32768}));
}

TEST(MSAdpcmCodec, DeltaThatGrowsForever_StaysWithin32Bits) {
  const C_Bytes growing = Join({{0}, Shorts({32767, 0, 0}), C_Bytes(200, 0x88)});
  C_Samples expected(402, -32768);
  expected[0] = expected[1] = 0;
  EXPECT_EQ(Block(Mono(), growing, 804), expected);
  const C_Bytes both = Join({{0}, Shorts({32767, 0, 0}), C_Bytes(200, 0x87)});
  const C_Samples samples = Block(Mono(), both, 804);
  for (std::size_t i = 2; i < samples.size(); ++i) {
    EXPECT_EQ(samples[i], i % 2 == 0 ? -32768 : 32767) << i;
  }
}

TEST(MSAdpcmCodec, LargestCoefficients_DoNotOverflow) {
  const auto info = InfoOf(BlockFmt(Ms(1, 256, 500), Shorts({-32768, -32768, 32767, 32767})));
  EXPECT_EQ(Block(info, Join({{0}, Shorts({16, -32768, -32768}), {0x00}}), 8),
            (C_Samples{-32768, -32768, 32767, 128}));
  EXPECT_EQ(Block(info, Join({{1}, Shorts({16, -32768, -32768}), {0x00}}), 8),
            (C_Samples{-32768, -32768, -32768, -32768}));
}

TEST(MSAdpcmCodec, PredictorsBeyondTheTable_PredictNothing) {
  for (const int nPredictor : {7, 8, 100, 255}) {
    const C_Bytes block =
        Join({{static_cast<std::uint8_t>(nPredictor)}, Shorts({100, 5000, 6000}), {0x10}});
    EXPECT_EQ(Block(Mono(), block, 8), (C_Samples{6000, 5000, 100, 0})) << nPredictor;
  }
}

TEST(MSAdpcmCodec, EveryPredictor_FindsItsPair) {
  C_Bytes pairs;
  for (int i = 0; i < 300; ++i) pairs = Join({pairs, Shorts({i, -i})});
  const auto info = InfoOf(BlockFmt(Ms(1, 256, 500), pairs));
  const S_MSAdpcmInfo whole = info.GetMSADPCMInfo();
  for (int i = 0; i < 256; ++i) {
    const auto pair = info.GetMSADPCMCoefficients(static_cast<std::uint8_t>(i));
    EXPECT_EQ(pair.nFirst, i);
    EXPECT_EQ(pair.nSecond, -i);
    EXPECT_EQ(pair.nFirst, whole.coefficients[static_cast<std::size_t>(i)].nFirst);
  }
}

TEST(MSAdpcmCodec, Block_EndsWithItsBytesWithinTheTurnsOfTheChannels) {
  const auto info = InfoOf(Ms(3, 64, 50));
  const C_Bytes block = Join({{2, 2, 2}, Shorts({1, 2, 3, 0, 0, 0, 0, 0, 0}), {0x11}});
  EXPECT_EQ(Block(info, block, 20), (C_Samples{0, 0, 0, 0, 0, 0, 1, 2, kUntouched, kUntouched}));
}

TEST(MSAdpcmCodec, Room_MayEndAnywhere) {
  for (unsigned int dwRoom = 0; dwRoom <= 12; ++dwRoom) {
    const C_Samples expected(kMonoSamples.begin(), kMonoSamples.begin() + dwRoom / 2);
    EXPECT_EQ(Block(Mono(), kMonoBlock, dwRoom), expected) << dwRoom;
  }
}

TEST(MSAdpcmCodec, BlockShorterThanItsHeader_GivesNothing) {
  for (std::ptrdiff_t cb = 0; cb < 7; ++cb) {
    const C_Bytes cut(kMonoBlock.begin(), kMonoBlock.begin() + cb);
    EXPECT_EQ(Block(Mono(), cut, 4), (C_Samples{kUntouched, kUntouched})) << cb;
  }
  const C_Bytes head(kMonoBlock.begin(), kMonoBlock.begin() + 7);
  EXPECT_EQ(Block(Mono(), head, 6), (C_Samples{50, 100, kUntouched}));
  EXPECT_EQ(Block(InfoOf(Ms(65535, 64, 50)), C_Bytes(64, 1), 2), C_Samples{kUntouched});
}

TEST(MSAdpcmCodec, WithoutChannels_ThereAreNoBlocks) {
  EXPECT_EQ(Block(C_WavFileCodecInfo(), kMonoBlock, 2), C_Samples{kUntouched});
}

TEST(MSAdpcmCodec, WholeSound_IsDecodedAsBlocksAndARest) {
  const auto info = InfoOf(Ms(1, 9, 6));
  C_MSAdpcmCodec codec;
  const C_Bytes encoded =
      Join({kMonoBlock, kMonoBlock, {kMonoBlock.begin(), kMonoBlock.begin() + 8}});
  const auto dwSize = codec.GetDecodedSize(info, 26);
  ASSERT_EQ(dwSize, 32u);
  C_Samples expected = kMonoSamples;
  expected.insert(expected.end(), kMonoSamples.begin(), kMonoSamples.end());
  expected.insert(expected.end(), kMonoSamples.begin(), kMonoSamples.begin() + 4);
  EXPECT_EQ(Decode(codec, info, encoded, *dwSize), expected);
}

TEST(MSAdpcmCodec, Operations_StandInTheirSlots) {
  using C_Size = std::optional<unsigned int>;
  auto* pCodec = new C_MSAdpcmCodec;
  const auto info = InfoOf(Ms(1, 9, 6));
  C_Room loop(24);
  C_Room block(12);
  EXPECT_EQ((CallSlot<C_Size, const C_WavFileCodecInfo&, unsigned int>(pCodec, 2, info, 18u)),
            C_Size(24u));
  const C_Bytes twice = Join({kMonoBlock, kMonoBlock});
  EXPECT_TRUE((CallSlot<bool, const C_WavFileCodecInfo&, const unsigned char*, unsigned int, short*,
                        unsigned int>(pCodec, 3, info, twice.data(), 18u, loop.Data(), 24u)));
  EXPECT_EQ(loop.Samples().back(), -92);
  EXPECT_TRUE((CallSlot<bool, const C_WavFileCodecInfo&, const unsigned char*, short*, unsigned int,
                        unsigned int>(pCodec, 4, info, twice.data(), block.Data(), 9u, 12u)));
  EXPECT_EQ(block.Samples(), kMonoSamples);
  CallSlot<void>(pCodec, 1);  // the deleting destructor; leaks are reported
}
