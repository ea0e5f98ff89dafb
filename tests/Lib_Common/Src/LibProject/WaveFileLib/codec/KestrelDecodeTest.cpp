// SPDX-License-Identifier: Apache-2.0
//
// The codec from stream to sound, especially with streams that make false claims.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "KestrelBytes.h"
#include "TestSound.h"
#include "codec/KestrelCodec.h"
#include "kestrel/FrameCoder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::Each;
using testing::IsEmpty;

// The pieces that the callback received, one after the other, and their lengths.
Bytes g_pieces;
std::vector<unsigned int> g_lengths;

void RecordPiece(void* pData, unsigned int dwLength) {
  const auto* pbyData = static_cast<const std::uint8_t*>(pData);
  g_pieces.insert(g_pieces.end(), pbyData, pbyData + dwLength);
  g_lengths.push_back(dwLength);
}

struct S_Decoded {
  bool bResult = false;
  std::vector<short> samples;
};

S_Decoded Decode(const Bytes& stream, PFN_DecodedData pfnData = RecordPiece) {
  // A copy of exactly this size, so that reading past the end is noticed.
  const auto pbyExact = std::make_unique<unsigned char[]>(stream.size());
  std::copy(stream.begin(), stream.end(), pbyExact.get());
  g_pieces.clear();
  g_lengths.clear();
  const C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(16000, 0, 1, 16, 16, true);
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  S_Decoded decoded;
  decoded.bResult =
      codec.Decode(pbyExact.get(), static_cast<unsigned int>(stream.size()), sound.get(), pfnData);
  decoded.samples = SamplesOf(sound.get());
  return decoded;
}

// ---- whole streams

TEST(KestrelDecode, Every800thRateFrom4800To32000_DecodesAsTheBareCoderDoes) {
  int nRates = 0;
  for (unsigned int dwBitRate = 4800; dwBitRate <= 32000; dwBitRate += 800, ++nRates) {
    const auto stream = C_KestrelBytes(dwBitRate).Voice(12);
    const auto decoded = Decode(stream.Take());
    EXPECT_TRUE(decoded.bResult) << dwBitRate;
    EXPECT_EQ(decoded.samples, kestrel::test::DecodeWords(dwBitRate, stream.GetWords()))
        << dwBitRate;
    EXPECT_EQ(decoded.samples.size(), 12u * 320) << dwBitRate;
  }
  EXPECT_EQ(nRates, 35);
}

bool IsDecodableRate(unsigned int dwBitRate) {
  return dwBitRate % 800 == 0 && dwBitRate >= 4800 && dwBitRate <= 32000;
}

TEST(KestrelDecode, AllStoredRates_AreAcceptedOrRefusedByTheCoder) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  for (unsigned int dwBitRate = 0; dwBitRate < 65536; ++dwBitRate) {
    int nWords = 0;
    int nSamples = 0;
    ASSERT_EQ(codec.GetDecoderInit()(dwBitRate, &nWords, &nSamples) == 0,
              IsDecodableRate(dwBitRate))
        << dwBitRate;
  }
}

TEST(KestrelDecode, RatesThatTheCoderRefuses_AreRefused) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  const C_SoundPtr sound(new C_WavData);
  for (unsigned int dwBitRate = 0; dwBitRate < 65536;
       dwBitRate += dwBitRate % 800U < 2U ? 1U : 133U) {
    const auto stream = C_KestrelBytes(dwBitRate).Take();
    ASSERT_EQ(codec.Decode(stream.data(), 6, sound.get(), nullptr), IsDecodableRate(dwBitRate))
        << dwBitRate;
  }
}

TEST(KestrelDecode, RateThatIsRefused_FailsBeforeTheFirstFrame) {
  for (const unsigned int dwBitRate : {0u, 4000u, 7300u, 32800u, 65535u}) {
    EXPECT_FALSE(
        Decode(C_KestrelBytes(dwBitRate).Words(std::vector<std::uint16_t>(80)).Take()).bResult);
    EXPECT_THAT(g_lengths, IsEmpty());
  }
}

TEST(KestrelDecode, Callback_GetsEachFrameOnceAndInOrder) {
  const auto decoded = Decode(C_KestrelBytes(16000).Voice(50).Take());
  ASSERT_TRUE(decoded.bResult);
  EXPECT_EQ(g_lengths.size(), 50u);
  EXPECT_THAT(g_lengths, Each(640u));
  ASSERT_EQ(g_pieces.size(), decoded.samples.size() * 2);
  EXPECT_EQ(std::memcmp(decoded.samples.data(), g_pieces.data(), g_pieces.size()), 0);
}

TEST(KestrelDecode, WithoutACallback_GivesTheSame) {
  const auto stream = C_KestrelBytes(9600).Voice(5).Take();
  EXPECT_EQ(Decode(stream, nullptr).samples, Decode(stream).samples);
}

void SpoilPiece(void* pData, unsigned int dwLength) { std::memset(pData, 0x55, dwLength); }

TEST(KestrelDecode, CallbackThatChangesItsPiece_DoesNotChangeTheSound) {
  const auto stream = C_KestrelBytes(16000).Voice(5).Take();
  EXPECT_EQ(Decode(stream, SpoilPiece).samples, Decode(stream).samples);
}

TEST(KestrelDecode, FormatOfTheSound_StaysAndItsLengthIsThatOfTheFrames) {
  const auto stream = C_KestrelBytes(16000).Voice(3).Take();
  const C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(8000, 12345, 1, 16, 16, true);
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  ASSERT_TRUE(
      codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(), nullptr));
  EXPECT_EQ(sound->GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(sound->GetBufferLength(), 3u * 640);
  EXPECT_EQ(sound->GetWavInfo()->GetSampleSize(), 960u);
}

TEST(KestrelDecode, HeadOnly_DecodesToNoSamples) {
  const auto stream = C_KestrelBytes(16000).Take();
  const auto sound = MonoSound(TestVoice(100));
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  EXPECT_TRUE(codec.Decode(stream.data(), 6, sound.get(), RecordPiece));
  EXPECT_EQ(sound->GetBufferLength(), 0u);
  EXPECT_NE(sound->GetBuffer(), nullptr);
}

TEST(KestrelDecode, AgainAfterAnyHistory_GivesTheSameSamples) {
  const auto stream = C_KestrelBytes(24000).Voice(8).Take();
  const auto expected = Decode(stream).samples;
  Decode(C_KestrelBytes(4800).Words(std::vector<std::uint16_t>(60, 0xFFFF)).Take());
  EXPECT_FALSE(Decode(C_KestrelBytes(7300).Voice(2).Take()).bResult);
  EXPECT_EQ(Decode(stream).samples, expected);
}

TEST(KestrelDecode, AnEncodeBetweenItsFrames_ChangesNothing) {
  const auto stream = C_KestrelBytes(16000).Voice(6).Take();
  const auto expected = Decode(stream).samples;
  const auto encodeInBetween = [](void*, unsigned int) {
    kestrel::test::EncodeWords(32000, TestVoice(640));
  };
  EXPECT_EQ(Decode(stream, encodeInBetween).samples, expected);
}

// ---- lengths that lie

TEST(KestrelDecode, FewerThanSixBytes_AreRefusedWithoutReadingOn) {
  for (std::size_t cbSize = 0; cbSize < 6; ++cbSize) {
    EXPECT_FALSE(Decode(C_KestrelBytes(16000).Take(cbSize)).bResult) << cbSize;
  }
}

TEST(KestrelDecode, NullBytes_AreRefused) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  const auto sound = MonoSound({});
  EXPECT_FALSE(codec.Decode(nullptr, 0, sound.get(), nullptr));
  EXPECT_FALSE(codec.Decode(nullptr, 100, sound.get(), nullptr));
}

TEST(KestrelDecode, Length0Or1_Fails) {
  for (const std::uint32_t dwClaim : {0u, 1u}) {
    EXPECT_FALSE(Decode(C_KestrelBytes(16000).Voice(2).Claim(dwClaim).Take()).bResult) << dwClaim;
    EXPECT_THAT(g_lengths, IsEmpty());
  }
}

TEST(KestrelDecode, Length2Or3_IsOnlyTheHead) {
  for (const std::uint32_t dwClaim : {2u, 3u}) {
    const auto decoded = Decode(C_KestrelBytes(16000).Voice(2).Claim(dwClaim).Take());
    EXPECT_TRUE(decoded.bResult) << dwClaim;
    EXPECT_THAT(decoded.samples, IsEmpty());
  }
}

TEST(KestrelDecode, OddLength_IsRoundedDownToWords) {
  const auto decoded = Decode(C_KestrelBytes(16000).Voice(1).Claim(43).Take());
  EXPECT_TRUE(decoded.bResult);
  EXPECT_EQ(decoded.samples.size(), 320u);
}

TEST(KestrelDecode, LengthBelowTheBytes_DecodesWhatItClaims) {
  const auto whole = Decode(C_KestrelBytes(16000).Voice(50).Take());
  const auto decoded = Decode(C_KestrelBytes(16000).Voice(50).Claim(1962).Take());
  EXPECT_TRUE(decoded.bResult);
  ASSERT_EQ(decoded.samples.size(), 49u * 320);
  EXPECT_TRUE(std::equal(decoded.samples.begin(), decoded.samples.end(), whole.samples.begin()));
}

TEST(KestrelDecode, LengthThatLeavesAPartialFrame_FailsAfterAllWholeFrames) {
  for (std::uint32_t dwMore = 2; dwMore < 40; dwMore += 2) {
    const auto bytes = C_KestrelBytes(16000).Voice(3).Claim(2 + 3 * 40 + dwMore);
    const auto decoded = Decode(bytes.Take());
    EXPECT_FALSE(decoded.bResult) << dwMore;
    EXPECT_THAT(decoded.samples, IsEmpty()) << dwMore;
    EXPECT_EQ(g_lengths.size(), 3u) << dwMore;
  }
}

TEST(KestrelDecode, LengthThatLeavesAPartialFrame_FailsAlsoWhereTheBytesEndEarlier) {
  EXPECT_FALSE(Decode(C_KestrelBytes(16000).Voice(3).Claim(2 + 6 * 40 + 2).Take()).bResult);
  EXPECT_EQ(g_lengths.size(), 3u);
}

TEST(KestrelDecode, LengthAbove65535_IsReadWhole) {
  const std::uint32_t dwClaim = 2 + 1750 * 40;  // 70002 = 0x11172
  const auto decoded =
      Decode(C_KestrelBytes(16000).Words(std::vector<std::uint16_t>(35000)).Claim(dwClaim).Take());
  EXPECT_TRUE(decoded.bResult);
  EXPECT_EQ(decoded.samples.size(), 1750u * 320);
}

// The samples of a stream of 3 frames that is cut at cbSize bytes: whole words up to there, then
// zeros.
std::vector<short> ExpectedOfCut(const C_KestrelBytes& stream, std::size_t cbSize) {
  auto words = stream.GetWords();
  const std::size_t dwHeld = (cbSize - 6) / 2;
  std::fill(words.begin() + static_cast<std::ptrdiff_t>(dwHeld), words.end(), std::uint16_t{0});
  words.resize((cbSize - 6 + 39) / 40 * 20);
  return kestrel::test::DecodeWords(16000, words);
}

TEST(KestrelDecode, StreamCutAtEveryByte_PlaysWhatItHolds) {
  const auto stream = C_KestrelBytes(16000).Voice(3);
  for (std::size_t cbSize = 6 + 8; cbSize <= 126; ++cbSize) {
    const auto decoded = Decode(stream.Take(cbSize));
    EXPECT_TRUE(decoded.bResult) << cbSize;
    EXPECT_EQ(decoded.samples, ExpectedOfCut(stream, cbSize)) << cbSize;
    EXPECT_EQ(g_lengths.size(), (cbSize - 6 + 39) / 40) << cbSize;
  }
}

TEST(KestrelDecode, BytesBelowASixteenthOfTheLength_FailBeforeTheFirstFrame) {
  // 7 frames of 9 words claim 128 bytes; a sixteenth of that is 8 bytes.
  const auto stream = C_KestrelBytes(7200).Voice(7);
  EXPECT_TRUE(Decode(stream.Take(4 + 8)).bResult);
  EXPECT_EQ(g_lengths.size(), 1u);
  EXPECT_FALSE(Decode(stream.Take(4 + 7)).bResult);
  EXPECT_THAT(g_lengths, IsEmpty());
}

TEST(KestrelDecode, OneFrameHeld_IsEnoughForAClaimOf16FramesAndNotOf17) {
  // 42 bytes follow the length field; 16 times that is 672.
  EXPECT_TRUE(Decode(C_KestrelBytes(16000).Voice(1).Claim(2 + 16 * 40).Take()).bResult);
  EXPECT_EQ(g_lengths.size(), 1u);
  EXPECT_FALSE(Decode(C_KestrelBytes(16000).Voice(1).Claim(2 + 17 * 40).Take()).bResult);
  EXPECT_THAT(g_lengths, IsEmpty());
}

TEST(KestrelDecode, GreatestLengths_AreRefusedAtOnce) {
  for (const std::uint32_t dwClaim :
       {0xFFFFFFFFu, 0xFFFFFFFEu, 0x80000000u, 0x7FFFFFFFu, 0xFFFFFFF7u}) {
    EXPECT_FALSE(Decode(C_KestrelBytes(16000).Claim(dwClaim).Take()).bResult) << dwClaim;
    EXPECT_FALSE(Decode(C_KestrelBytes(4800).Voice(500).Claim(dwClaim).Take()).bResult) << dwClaim;
    EXPECT_THAT(g_lengths, IsEmpty()) << dwClaim;
  }
}

TEST(KestrelDecode, PcmThatDoesNotFit32Bits_IsRefusedBeforeTheFirstFrame) {
  constexpr std::uint32_t kTooManyFrames = 0xFFFFFFFF / 640 + 1;
  constexpr std::uint32_t kFrameBytes = 12;
  Bytes stream = C_KestrelBytes(4800).Claim(2 + kTooManyFrames * kFrameBytes).Take();
  stream.resize(stream.size() + std::size_t{kTooManyFrames} * kFrameBytes);
  EXPECT_FALSE(Decode(stream).bResult);
  EXPECT_THAT(g_lengths, IsEmpty());
}

TEST(KestrelDecode, FrameSize_ComesFromTheCoderNotFromTheStream) {
  // 40 bytes are two frames of 10 words at 8000 and a frame of 20 at 16000.
  const std::vector<std::uint16_t> words(20);
  EXPECT_EQ(Decode(C_KestrelBytes(8000).Words(words).Take()).samples.size(), 640u);
  EXPECT_EQ(Decode(C_KestrelBytes(16000).Words(words).Take()).samples.size(), 320u);
  EXPECT_FALSE(Decode(C_KestrelBytes(24000).Words(words).Take()).bResult);
}

TEST(KestrelDecode, Words_AreLittleEndian) {
  auto bytes = C_KestrelBytes(16000).Voice(1);
  const auto stream = bytes.Take();
  EXPECT_EQ(stream[6], bytes.GetWords()[0] & 0xFF);
  EXPECT_EQ(stream[7], bytes.GetWords()[0] >> 8);
  EXPECT_EQ(Decode(stream).samples, kestrel::test::DecodeWords(16000, bytes.GetWords()));
}

TEST(KestrelDecode, AnyWords_DecodeWithoutFault) {
  std::uint32_t dwNoise = 7;
  for (unsigned int dwBitRate = 4800; dwBitRate <= 32000; dwBitRate += 800) {
    std::vector<std::uint16_t> words(std::size_t{30} * (dwBitRate / 800));
    for (std::uint16_t& wWord : words) {
      dwNoise = dwNoise * 1664525u + 1013904223u;
      wWord = static_cast<std::uint16_t>(dwNoise >> 16);
    }
    EXPECT_TRUE(Decode(C_KestrelBytes(dwBitRate).Words(words).Take()).bResult) << dwBitRate;
    std::fill(words.begin(), words.end(), std::uint16_t{0xFFFF});
    EXPECT_TRUE(Decode(C_KestrelBytes(dwBitRate).Words(words).Take()).bResult) << dwBitRate;
    std::fill(words.begin(), words.end(), std::uint16_t{0});
    EXPECT_TRUE(Decode(C_KestrelBytes(dwBitRate).Words(words).Take()).bResult) << dwBitRate;
  }
}

// ---- failures

TEST(KestrelDecode, Failure_LeavesThePcmThatTheSoundHad) {
  const auto voice = TestVoice(100);
  const auto sound = MonoSound(voice);
  const auto stream = C_KestrelBytes(16000).Voice(2).Claim(2 + 80 + 2).Take();
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  EXPECT_FALSE(
      codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(), nullptr));
  EXPECT_EQ(SamplesOf(sound.get()), voice);
}

class C_NoBufferSound : public C_WavData {
 public:
  unsigned char* AllocBuffer(unsigned int) override { return nullptr; }
};

TEST(KestrelDecode, SoundThatGivesNoBuffer_IsFalse) {
  const C_SoundPtr sound(new C_NoBufferSound);
  const auto stream = C_KestrelBytes(16000).Voice(2).Take();
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  EXPECT_FALSE(
      codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(), nullptr));
}

TEST(KestrelDecode, WithoutLoadCodec_IsFalse) {
  const auto stream = C_KestrelBytes(16000).Voice(2).Take();
  const auto sound = MonoSound({});
  C_KestrelCodec codec;
  EXPECT_FALSE(
      codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(), nullptr));
}

TEST(KestrelDecode, NullSound_StopsTheProgramOrIsFalseInARelease) {
  const auto stream = C_KestrelBytes(16000).Voice(1).Take();
  const auto cbStream = static_cast<unsigned int>(stream.size());
  C_KestrelCodec codec;
  codec.LoadCodec(0);
#ifdef NDEBUG
  EXPECT_FALSE(codec.Decode(stream.data(), cbStream, nullptr, nullptr));
#else
  EXPECT_DEATH(codec.Decode(stream.data(), cbStream, nullptr, nullptr),
               "Decode: WaveFileLib/KestrelCodec:[0-9]+: assertion failed: NULL != piWavData");
#endif
}

int g_nPiecesUntilThrow = 0;

void ThrowingPiece(void*, unsigned int) {
  if (--g_nPiecesUntilThrow == 0) throw std::runtime_error("from the callback");
}

TEST(KestrelDecode, CallbackThatThrows_PassesThroughAndTheNextDecodeWorks) {
  const auto stream = C_KestrelBytes(16000).Voice(3).Take();
  const auto expected = Decode(stream).samples;
  for (int nPiece = 1; nPiece <= 3; ++nPiece) {
    g_nPiecesUntilThrow = nPiece;
    EXPECT_THROW(Decode(stream, ThrowingPiece), std::runtime_error) << nPiece;
    EXPECT_EQ(Decode(stream).samples, expected) << nPiece;
  }
}

// ---- a coder that gives up

int g_nFramesLeft = 0;

class C_TiringDecoder : public C_KestrelCodec {
 public:
  C_TiringDecoder() {
    LoadCodec(0);
    m_pfnDecodeFrame = [](const unsigned short* pwWords, short* pSamples) {
      return g_nFramesLeft-- > 0 ? KestrelDecodeFrame(pwWords, pSamples) : 1;
    };
  }
};

TEST(KestrelDecode, FrameThatTheCoderRefuses_EndsTheDecoding) {
  const Bytes stream = C_KestrelBytes(16000).Voice(4).Take();
  const C_SoundPtr sound = MonoSound({});
  for (int nFrames = 0; nFrames <= 4; ++nFrames) {
    g_nFramesLeft = nFrames;
    g_lengths.clear();
    C_TiringDecoder codec;
    EXPECT_EQ(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(),
                           RecordPiece),
              nFrames == 4);
    EXPECT_EQ(g_lengths, std::vector<unsigned int>(static_cast<std::size_t>(nFrames), 640));
  }
}

}  // namespace
