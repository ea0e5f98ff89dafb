// SPDX-License-Identifier: Apache-2.0
//
// The codec from sound to stream.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>

#include "KestrelBytes.h"
#include "TestSound.h"
#include "codec/KestrelCodec.h"
#include "kestrel/FrameCoder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::array<unsigned int, 8> kRates = {7200,  9600,  12000, 14400,
                                                16000, 20000, 24000, 32000};

struct S_Encoded {
  bool bResult = false;
  Bytes stream;
};

S_Encoded EncodeSound(I_WavData* piWavData, unsigned int dwBitRate,
                      PFN_CodecProgress pfnProgress = nullptr) {
  C_KestrelCodec codec;
  codec.LoadCodec(dwBitRate);
  unsigned char* pbyEncData = reinterpret_cast<unsigned char*>(&codec);
  unsigned int dwEncDataLen = 4711;
  S_Encoded encoded;
  encoded.bResult = codec.Encode(piWavData, dwBitRate, &pbyEncData, &dwEncDataLen, pfnProgress);
  EXPECT_EQ(pbyEncData != nullptr, encoded.bResult);
  EXPECT_EQ(dwEncDataLen != 0, encoded.bResult);
  if (pbyEncData != nullptr) encoded.stream.assign(pbyEncData, pbyEncData + dwEncDataLen);
  delete[] pbyEncData;
  return encoded;
}

S_Encoded EncodeVoice(std::size_t dwSamples, unsigned int dwBitRate,
                      PFN_CodecProgress pfnProgress = nullptr) {
  return EncodeSound(MonoSound(TestVoice(dwSamples)).get(), dwBitRate, pfnProgress);
}

unsigned int PayloadOf(const Bytes& stream) { return vcm::C_ByteReader(stream).U32(); }

// ---- binding

TEST(KestrelCodec, LoadCodec_FillsTheFourEntries_WhichAreNullBefore) {
  C_KestrelCodec codec;
  EXPECT_EQ(codec.GetEncoderInit(), nullptr);
  EXPECT_EQ(codec.GetEncodeFrame(), nullptr);
  EXPECT_EQ(codec.GetDecoderInit(), nullptr);
  EXPECT_EQ(codec.GetDecodeFrame(), nullptr);
  EXPECT_TRUE(codec.LoadCodec(0));
  EXPECT_EQ(codec.GetEncoderInit(), &KestrelEncoderInit);
  EXPECT_EQ(codec.GetEncodeFrame(), &KestrelEncodeFrame);
  EXPECT_EQ(codec.GetDecoderInit(), &KestrelDecoderInit);
  EXPECT_EQ(codec.GetDecodeFrame(), &KestrelDecodeFrame);
}

TEST(KestrelCodec, LoadCodec_IsTrueForEveryRate) {
  C_KestrelCodec codec;
  for (const unsigned int dwBitRate : {0u, 1u, 7200u, 15000u, 65535u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(codec.LoadCodec(dwBitRate)) << dwBitRate;
  }
}

TEST(KestrelCodec, Base_HoldsATablePointerAndFourEntries) {
  EXPECT_EQ(sizeof(C_VXAudioCodec), 5 * sizeof(void*));
  EXPECT_TRUE(std::has_virtual_destructor_v<C_VXAudioCodec>);
}

TEST(KestrelCodec, IsSupportedBitRate_HoldsForEightRatesOnly) {
  const std::set<unsigned int> supported(kRates.begin(), kRates.end());
  const C_KestrelCodec codec;
  for (unsigned int dwBitRate = 0; dwBitRate < 140000; ++dwBitRate) {
    ASSERT_EQ(codec.IsSupportedBitRate(dwBitRate), supported.contains(dwBitRate)) << dwBitRate;
  }
  EXPECT_FALSE(codec.IsSupportedBitRate(0xFFFFFFFF));
}

// ---- sizes

TEST(KestrelEncode, OneSecond_HasTheSizeOfItsRate) {
  const std::map<unsigned int, unsigned int> payloads = {
      {7200, 902},   {9600, 1202},  {12000, 1502}, {14400, 1802},
      {16000, 2002}, {20000, 2502}, {24000, 3002}, {32000, 4002}};
  for (const auto& [dwBitRate, dwPayload] : payloads) {
    const auto encoded = EncodeVoice(16000, dwBitRate);
    ASSERT_TRUE(encoded.bResult) << dwBitRate;
    EXPECT_EQ(encoded.stream.size(), dwPayload + 4) << dwBitRate;
    vcm::C_ByteReader reader(encoded.stream);
    EXPECT_EQ(reader.U32(), dwPayload) << dwBitRate;
    EXPECT_EQ(reader.U16(), dwBitRate);
  }
}

TEST(KestrelEncode, BitRate0_Is16000) {
  EXPECT_EQ(EncodeVoice(2000, 0).stream, EncodeVoice(2000, 16000).stream);
}

TEST(KestrelEncode, OtherBitRates_AreRefused) {
  const std::set<unsigned int> supported(kRates.begin(), kRates.end());
  for (unsigned int dwBitRate = 800; dwBitRate <= 33600; dwBitRate += 800) {
    EXPECT_EQ(EncodeVoice(320, dwBitRate).bResult, supported.contains(dwBitRate)) << dwBitRate;
  }
  for (const unsigned int dwBitRate : {1u, 15000u, 15999u, 16001u, 65536u + 16000u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(EncodeVoice(320, dwBitRate).bResult) << dwBitRate;
  }
}

TEST(KestrelEncode, NumberOfFrames_IsThatOfStartedFramesAndTwoBelowOneFrame) {
  const std::map<std::size_t, std::size_t> frames = {
      {1, 2},   {2, 2},   {159, 2}, {318, 2}, {319, 2}, {320, 1},    {321, 2},
      {639, 2}, {640, 2}, {641, 3}, {960, 3}, {961, 4}, {16000, 50}, {16001, 51}};
  for (const auto& [dwSamples, dwFrames] : frames) {
    EXPECT_EQ(PayloadOf(EncodeVoice(dwSamples, 16000).stream), 2 + dwFrames * 40) << dwSamples;
  }
}

// ---- content

// The stream that the bare coder makes.
Bytes Expected(const std::vector<short>& samples, unsigned int dwBitRate) {
  std::vector<short> padded = samples;
  padded.resize((samples.size() + 319) / 320 * 320 + 320);
  auto words = kestrel::test::EncodeWords(dwBitRate, padded);
  const auto nWords = static_cast<std::ptrdiff_t>(dwBitRate / 800);
  if (samples.size() >= 320) words.erase(words.begin(), words.begin() + nWords);
  return C_KestrelBytes(dwBitRate).Words(words).Take();
}

TEST(KestrelEncode, WritesTheCodersWords_WithoutTheFirstWholeFrameAndWithOneOfSilence) {
  for (const unsigned int dwBitRate : kRates) {
    for (const std::size_t dwSamples : {1u, 319u, 320u, 321u, 640u, 1000u}) {
      const auto voice = TestVoice(dwSamples);
      EXPECT_EQ(EncodeSound(MonoSound(voice).get(), dwBitRate).stream, Expected(voice, dwBitRate))
          << dwBitRate << ", " << dwSamples;
    }
  }
}

TEST(KestrelEncode, SampleRateOfTheSound_HasNoInfluence) {
  const auto voice = TestVoice(1500);
  const auto expected = EncodeSound(MonoSound(voice).get(), 16000).stream;
  for (const unsigned int dwSampleRate : {0u, 8000u, 44100u, 0xFFFFFFFFu}) {
    EXPECT_EQ(EncodeSound(MonoSound(voice, dwSampleRate).get(), 16000).stream, expected)
        << dwSampleRate;
  }
}

TEST(KestrelEncode, AgainAfterAnyHistory_GivesTheSameBytes) {
  const auto expected = EncodeVoice(3000, 24000).stream;
  EncodeVoice(777, 7200);
  EXPECT_FALSE(EncodeVoice(777, 4800).bResult);
  const std::vector<short> loud(640, -32768);
  EncodeSound(MonoSound(loud).get(), 32000);
  EXPECT_EQ(EncodeVoice(3000, 24000).stream, expected);
}

TEST(KestrelEncode, ExtremeSamples_GiveAStreamOfTheRightSize) {
  for (const short nSample : {short{-32768}, short{32767}, short{0}, short{-1}}) {
    const std::vector<short> samples(961, nSample);
    for (const unsigned int dwBitRate : kRates) {
      EXPECT_EQ(EncodeSound(MonoSound(samples).get(), dwBitRate).stream.size(),
                6 + 4 * dwBitRate / 400);
    }
  }
}

// ---- what cannot be encoded

TEST(KestrelEncode, WithoutSamples_IsFalse) {
  EXPECT_FALSE(EncodeSound(MonoSound({}).get(), 16000).bResult);
  const C_SoundPtr fresh(new C_WavData);
  EXPECT_FALSE(EncodeSound(fresh.get(), 16000).bResult);
  const C_SoundPtr unbuffered(new C_WavData);
  unbuffered->SetWavInfoData(16000, 6400, 1, 16, 16, true);
  EXPECT_FALSE(EncodeSound(unbuffered.get(), 16000).bResult);
}

TEST(KestrelEncode, SamplesOfLessThan16Bits_AreNotReadBeyondTheirEnd) {
  const C_SoundPtr sound(new C_WavData);
  const Bytes pcm(1000, 0x80);
  sound->SetBuffer(pcm.data(), 1000);
  sound->SetWavInfoData(16000, 1000, 1, 8, 8, false);
  EXPECT_FALSE(EncodeSound(sound.get(), 16000).bResult);
}

TEST(KestrelEncode, WithoutLoadCodec_IsFalse) {
  C_KestrelCodec codec;
  unsigned char* pbyEncData = nullptr;
  unsigned int dwEncDataLen = 0;
  EXPECT_FALSE(
      codec.Encode(MonoSound(TestVoice(320)).get(), 16000, &pbyEncData, &dwEncDataLen, nullptr));
}

TEST(KestrelEncode, NullArgument_StopsTheProgramOrIsFalseInARelease) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  const auto sound = MonoSound(TestVoice(320));
  unsigned char* pbyEncData = nullptr;
  unsigned int dwEncDataLen = 0;
#ifdef NDEBUG
  EXPECT_FALSE(codec.Encode(nullptr, 16000, &pbyEncData, &dwEncDataLen, nullptr));
  EXPECT_FALSE(codec.Encode(sound.get(), 16000, nullptr, &dwEncDataLen, nullptr));
  EXPECT_FALSE(codec.Encode(sound.get(), 16000, &pbyEncData, nullptr, nullptr));
#else
  const char* pszLine =
      "Encode: WaveFileLib/KestrelCodec:[0-9]+: assertion failed: \\(NULL != piWavData\\) && "
      "\\(NULL != ppbyEncData\\) && \\(NULL != pdwEncDataLen\\)";
  EXPECT_DEATH(codec.Encode(nullptr, 16000, &pbyEncData, &dwEncDataLen, nullptr), pszLine);
  EXPECT_DEATH(codec.Encode(sound.get(), 16000, nullptr, &dwEncDataLen, nullptr), pszLine);
  EXPECT_DEATH(codec.Encode(sound.get(), 16000, &pbyEncData, nullptr, nullptr), pszLine);
#endif
}

// ---- progress

std::vector<std::pair<unsigned int, unsigned int>> g_reports;

void RecordProgress(const S_CodecProgress* pProgress) {
  g_reports.emplace_back(pProgress->dwKind, pProgress->dwValue);
  EXPECT_THAT(pProgress->szText, testing::Each('\0'));
}

TEST(KestrelEncodeProgress, Record_IsKindThen256BytesThenValue) {
  EXPECT_EQ(sizeof(S_CodecProgress), 264u);
  EXPECT_EQ(offsetof(S_CodecProgress, dwKind), 0u);
  EXPECT_EQ(offsetof(S_CodecProgress, szText), 4u);
  EXPECT_EQ(offsetof(S_CodecProgress, dwValue), 260u);
}

TEST(KestrelEncodeProgress, Progress_IsSentAtTheStartBeforeEachWholeFrameAndAtTheEnd) {
  g_reports.clear();
  EXPECT_TRUE(EncodeVoice(700, 16000, RecordProgress).bResult);
  EXPECT_THAT(g_reports, ElementsAre(Pair(3, 700), Pair(4, 0), Pair(4, 320), Pair(4, 700)));
  g_reports.clear();
  EXPECT_TRUE(EncodeVoice(320, 16000, RecordProgress).bResult);
  EXPECT_THAT(g_reports, ElementsAre(Pair(3, 320), Pair(4, 0), Pair(4, 320)));
  g_reports.clear();
  EXPECT_TRUE(EncodeVoice(100, 16000, RecordProgress).bResult);
  EXPECT_THAT(g_reports, ElementsAre(Pair(3, 100), Pair(4, 100)));
}

TEST(KestrelEncodeProgress, Progress_IsNotSentForWhatIsRefused) {
  g_reports.clear();
  EXPECT_FALSE(EncodeVoice(700, 8000, RecordProgress).bResult);
  EXPECT_FALSE(EncodeSound(MonoSound({}).get(), 16000, RecordProgress).bResult);
  EXPECT_THAT(g_reports, IsEmpty());
}

int g_nCallsUntilThrow = 0;

void ThrowingProgress(const S_CodecProgress*) {
  if (--g_nCallsUntilThrow == 0) throw std::runtime_error("from the callback");
}

TEST(KestrelEncodeProgress, CallbackThatThrows_LeavesNothingBehind) {
  const auto expected = EncodeVoice(700, 16000).stream;
  for (int nCall = 1; nCall <= 4; ++nCall) {
    g_nCallsUntilThrow = nCall;
    EXPECT_THROW(EncodeVoice(700, 16000, ThrowingProgress), std::runtime_error) << nCall;
    EXPECT_EQ(EncodeVoice(700, 16000).stream, expected) << nCall;
  }
}

// ---- a coder that gives up

int g_nFramesLeft = 0;

class C_TiringEncoder : public C_KestrelCodec {
 public:
  C_TiringEncoder() {
    LoadCodec(0);
    m_pfnEncodeFrame = [](const short* pSamples, unsigned short* pwWords) {
      return g_nFramesLeft-- > 0 ? KestrelEncodeFrame(pSamples, pwWords) : 1;
    };
  }
  void RefuseEveryRate() {
    m_pfnEncoderInit = [](unsigned int /*dwBitRate*/, int* pnWords, int* pnSamples) {
      *pnWords = 20;
      *pnSamples = 320;
      return 1;
    };
  }
};

bool Encodes(C_TiringEncoder& codec, std::size_t dwSamples, int nFrames) {
  g_nFramesLeft = nFrames;
  const C_SoundPtr sound = MonoSound(TestVoice(dwSamples));
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 1;
  const bool bRet = codec.Encode(sound.get(), 16000, &pbyStream, &dwLength, nullptr);
  EXPECT_EQ(dwLength, bRet ? 6 + 40 * ((dwSamples + 319) / 320) : 0u);
  EXPECT_EQ(pbyStream != nullptr, bRet);
  delete[] pbyStream;
  return bRet;
}

TEST(KestrelEncode, FrameThatTheCoderRefuses_EndsTheEncoding) {
  C_TiringEncoder codec;
  // Three whole frames, what is left of the sound, and silence.
  for (int nFrames = 0; nFrames < 5; ++nFrames) EXPECT_FALSE(Encodes(codec, 1000, nFrames));
  EXPECT_TRUE(Encodes(codec, 1000, 5));
}

TEST(KestrelEncode, RateThatTheCoderRefuses_IsRefused) {
  C_TiringEncoder codec;
  codec.RefuseEveryRate();
  EXPECT_FALSE(Encodes(codec, 1000, 5));
}

}  // namespace
