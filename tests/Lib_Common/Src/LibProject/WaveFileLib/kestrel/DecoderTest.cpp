// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "VectorFiles.h"
#include "kestrel/Encoder.h"
#include "kestrel/Envelope.h"
#include "kestrel/TablesVectorCodes.h"

namespace kestrel {
namespace {

using test::C_Stages;
using test::ReadWords;

// Frames of one speech stream.
class C_SpeechFrames {
 public:
  explicit C_SpeechFrames(std::uint32_t dwRate)
      : m_words(ReadWords("speech_" + std::to_string(dwRate) + ".bits")),
        m_nPerFrame(static_cast<std::size_t>(Configure(dwRate).nWordsPerFrame)) {}

  [[nodiscard]] std::vector<std::uint16_t> Frame(int nFrame) const {
    const auto first = m_words.begin() + nFrame * static_cast<std::ptrdiff_t>(m_nPerFrame);
    return {first, first + static_cast<std::ptrdiff_t>(m_nPerFrame)};
  }

 private:
  std::vector<std::uint16_t> m_words;
  std::size_t m_nPerFrame;
};

S_Frame Decode(C_Decoder& decoder, const std::vector<std::uint16_t>& words) {
  S_Frame samples{};
  decoder.Decode(words, samples);
  return samples;
}

class DecoderAtRate : public testing::TestWithParam<std::uint32_t> {};

TEST_P(DecoderAtRate, FramesOfSpeech_GiveTheirSpectrumAndSamples) {
  const C_Stages stages(GetParam());
  const C_SpeechFrames speech(GetParam());
  const auto wanted = stages.Frames();
  C_Decoder decoder;
  decoder.Init(GetParam());
  S_NoiseGenerator noise;
  S_Spectrum lastGood;
  for (int nFrame = 0; nFrame <= wanted.back(); ++nFrame) {
    const auto words = speech.Frame(nFrame);
    const auto spectrum =
        Conceal(UnpackFrame(words, stages.Configuration().nRegions, noise), lastGood);
    const S_Frame samples = Decode(decoder, words);
    if (std::find(wanted.begin(), wanted.end(), nFrame) == wanted.end()) continue;
    EXPECT_EQ(spectrum.nShift, stages.Value(nFrame, "decoded_mag_shift")) << nFrame;
    EXPECT_EQ(spectrum.coefficients, stages.Frame(nFrame, "decoded_mlt")) << nFrame;
    EXPECT_EQ(samples, stages.Frame(nFrame, "pcm")) << nFrame;
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, DecoderAtRate, testing::ValuesIn(test::kStageRates));

// Most bits of a silent frame are padding, so its last bit is easy to falsify.
std::vector<std::uint16_t> QuietFrame() {
  C_Encoder encoder;
  std::vector<std::uint16_t> words(20);
  encoder.Encode(S_Frame{}, words);
  return words;
}

S_UnpackedFrame Unpack(const std::vector<std::uint16_t>& words, int nRegions = 14) {
  S_NoiseGenerator noise;
  return UnpackFrame(words, nRegions, noise);
}

TEST(UnpackFrame, AZeroInThePadding_IsDamage) {
  auto words = QuietFrame();
  EXPECT_FALSE(Unpack(words).bDamaged);
  words.back() = 0xFFFE;
  EXPECT_TRUE(Unpack(words).bDamaged);
  words.back() = 0x7FFF;
  EXPECT_TRUE(Unpack(words).bDamaged);
}

TEST(UnpackFrame, AnIndexOutOfRange_IsDamageWhereverItStands) {
  for (const std::size_t nRegion : {std::size_t{1}, std::size_t{7}, std::size_t{13}}) {
    for (const int nPower : {24, 25}) {
      S_Envelope envelope{};
      std::fill(envelope.begin(), envelope.end(), 20);
      envelope[nRegion] = nPower;
      std::vector<std::uint16_t> words(20);
      C_BitWriter writer(words);
      WriteEnvelope(writer, envelope, 14);
      // With control 15, the position where the bits of the vectors end matters only for the
      // padding.
      writer.PadWithOnes();
      EXPECT_EQ(Unpack(words).bDamaged, nPower == 25) << nRegion;
    }
  }
}

TEST(UnpackFrame, EnvelopeBeyondTheEnd_IsDamageAtTheLowestRate) {
  // The envelope with the longest code words takes 103 bits, but a frame has only 96.
  S_Envelope envelope = {-6, 2, 13, 24, 12, 1, 12, 23};
  std::vector<std::uint16_t> words(6);
  C_BitWriter writer(words);
  WriteEnvelope(writer, envelope, 8);
  ASSERT_EQ(writer.BitsPut(), 103);
  EXPECT_TRUE(Unpack(words, 8).bDamaged);
}

TEST(UnpackFrame, AFrameOfZeros_IsDamagedAndAFrameOfOnesIsNot) {
  for (std::uint32_t dwRate = 4800; dwRate <= 32000; dwRate += 800) {
    const S_Configuration configuration = Configure(dwRate);
    const auto nWords = static_cast<std::size_t>(configuration.nWordsPerFrame);
    const std::vector<std::uint16_t> zeros(nWords, 0);
    const std::vector<std::uint16_t> ones(nWords, 0xFFFF);
    EXPECT_TRUE(Unpack(zeros, configuration.nRegions).bDamaged) << dwRate;
    EXPECT_FALSE(Unpack(ones, configuration.nRegions).bDamaged) << dwRate;
  }
}

void Put(C_BitWriter& writer, const S_Code& code) { writer.Put(code.wWord, code.byBits); }

// A frame of 4800 bit/s whose last vector has five signs, of which only the given three bits fit.
// The flat envelope gives region 0 category 5, the others category 6.
std::vector<std::uint16_t> CutInsideSigns(std::uint32_t dwThreeSigns) {
  const S_Code fullest = kVectorCodes[6].back();
  std::vector<std::uint16_t> words(6);
  C_BitWriter writer(words);
  S_Envelope envelope{};
  WriteEnvelope(writer, envelope, 8);
  writer.Put(0, 4);
  for (int n = 0; n < 4; ++n) Put(writer, kVectorCodes[5][0]);
  const int nLastVector = 96 - 3 - fullest.byBits;
  while (writer.BitsPut() + fullest.byBits + 5 <= nLastVector) {
    Put(writer, fullest);
    writer.Put(0b11111, 5);
  }
  while (writer.BitsPut() < nLastVector) Put(writer, kVectorCodes[6][0]);
  Put(writer, fullest);
  EXPECT_EQ(writer.BitsPut(), 93);
  writer.Put(dwThreeSigns, 3);
  return words;
}

TEST(UnpackFrame, SignsThatDoNotFit_AreTakenForPaddingButForTheLast) {
  EXPECT_FALSE(Unpack(CutInsideSigns(0b111), 8).bDamaged);
  EXPECT_FALSE(Unpack(CutInsideSigns(0b110), 8).bDamaged);
  EXPECT_TRUE(Unpack(CutInsideSigns(0b101), 8).bDamaged);
  EXPECT_TRUE(Unpack(CutInsideSigns(0b011), 8).bDamaged);
}

TEST(UnpackFrame, ADamagedFrame_MovesTheGeneratorAsAGoodOneDoes) {
  auto words = QuietFrame();
  S_NoiseGenerator good;
  UnpackFrame(words, 14, good);
  words.back() = 0;
  S_NoiseGenerator damaged;
  EXPECT_TRUE(UnpackFrame(words, 14, damaged).bDamaged);
  EXPECT_EQ(damaged.seeds, good.seeds);
  EXPECT_NE(good.seeds, S_NoiseGenerator{}.seeds);
}

TEST(UnpackFrame, RegionsAboveTheCodedOnes_AreZero) {
  std::mt19937 random(3);
  S_NoiseGenerator noise;
  for (const std::uint32_t dwRate : {4800u, 7200u, 9600u, 12000u, 16000u, 32000u}) {
    const S_Configuration configuration = Configure(dwRate);
    std::vector<std::uint16_t> words(static_cast<std::size_t>(configuration.nWordsPerFrame));
    bool bCodedOnes = false;
    for (int n = 0; n < 200; ++n) {
      for (auto& wWord : words) wWord = static_cast<std::uint16_t>(random());
      const auto& coefficients =
          UnpackFrame(words, configuration.nRegions, noise).spectrum.coefficients;
      const auto above = coefficients.begin() + configuration.nRegions * kRegionSize;
      ASSERT_TRUE(std::all_of(above, coefficients.end(), [](int c) { return c == 0; })) << dwRate;
      bCodedOnes |= std::any_of(coefficients.begin(), above, [](int c) { return c != 0; });
    }
    EXPECT_TRUE(bCodedOnes) << dwRate;
  }
}

TEST(Conceal, ADamagedFrame_RepeatsTheLastGoodOneOnceAndThenIsSilent) {
  S_UnpackedFrame good;
  good.spectrum.coefficients.fill(11);
  good.spectrum.nShift = 5;
  S_UnpackedFrame damaged;
  damaged.spectrum.coefficients.fill(99);
  damaged.spectrum.nShift = 3;
  damaged.bDamaged = true;

  S_Spectrum lastGood;
  EXPECT_EQ(Conceal(damaged, lastGood).coefficients, S_Frame{});
  EXPECT_EQ(Conceal(good, lastGood).coefficients[0], 11);
  const S_Spectrum repeated = Conceal(damaged, lastGood);
  EXPECT_EQ(repeated.coefficients, good.spectrum.coefficients);
  EXPECT_EQ(repeated.nShift, 5);
  const S_Spectrum silent = Conceal(damaged, lastGood);
  EXPECT_EQ(silent.coefficients, S_Frame{});
  EXPECT_EQ(silent.nShift, 0);
  EXPECT_EQ(Conceal(good, lastGood).coefficients[0], 11);
}

// What the bias of the transform makes of silence.
S_Frame SteadySilence() {
  S_Overlap overlap{};
  S_Frame samples;
  for (int n = 0; n < 2; ++n) InverseTransform(overlap, S_Frame{}, 0, samples);
  EXPECT_LT(*std::max_element(samples.begin(), samples.end()), 32);
  return samples;
}

TEST(Decoder, AfterTwoDamagedFrames_FallsSilentAndComesBack) {
  const C_SpeechFrames speech(16000);
  const std::vector<std::uint16_t> damaged(20, 0);
  C_Decoder decoder;
  for (int nFrame = 0; nFrame <= 31; ++nFrame) Decode(decoder, speech.Frame(nFrame));
  EXPECT_NE(Decode(decoder, damaged), S_Frame{});
  Decode(decoder, damaged);
  // The overlap of the repeated frame has faded out by now.
  EXPECT_EQ(Decode(decoder, damaged), SteadySilence());
  Decode(decoder, speech.Frame(31));
  const S_Frame back = Decode(decoder, speech.Frame(32));
  EXPECT_GT(*std::max_element(back.begin(), back.end()), 1000);
}

TEST(Decoder, Decode_TellsDamagedFramesFromGoodOnes) {
  const C_SpeechFrames speech(16000);
  C_Decoder decoder;
  S_Frame samples;
  EXPECT_TRUE(decoder.Decode(speech.Frame(31), samples));
  EXPECT_FALSE(decoder.Decode(std::vector<std::uint16_t>(20, 0), samples));
  EXPECT_TRUE(decoder.Decode(speech.Frame(32), samples));
}

TEST(Decoder, ALostFrame_IsReplacedLikeADamagedOneButForTheNoise) {
  const C_SpeechFrames speech(16000);
  // The envelope of this frame is not valid, and its regions still use up noise.
  const std::vector<std::uint16_t> damaged(20, 0);
  C_Decoder lost;
  C_Decoder other;
  for (int nFrame = 0; nFrame <= 31; ++nFrame) {
    Decode(lost, speech.Frame(nFrame));
    Decode(other, speech.Frame(nFrame));
  }
  for (int n = 0; n < 3; ++n) {
    S_Frame samples;
    lost.DecodeLost(samples);
    EXPECT_EQ(samples, Decode(other, damaged)) << n;
  }
  // The generator stays where it was: the next frame has the noise of the one that follows it.
  S_NoiseGenerator noise;
  for (int nFrame = 0; nFrame <= 31; ++nFrame) UnpackFrame(speech.Frame(nFrame), 14, noise);
  const auto next = UnpackFrame(speech.Frame(32), 14, noise);
  S_Overlap overlap{};
  S_Frame wanted;
  for (int n = 0; n < 3; ++n) InverseTransform(overlap, S_Frame{}, 0, wanted);
  InverseTransform(overlap, next.spectrum.coefficients, next.spectrum.nShift, wanted);
  EXPECT_EQ(Decode(lost, speech.Frame(32)), wanted);
  EXPECT_NE(Decode(other, speech.Frame(32)), wanted);
}

TEST(Decoder, BeforeInit_RunsAt16000) {
  const C_Decoder decoder;
  EXPECT_EQ(decoder.Configuration().dwBitRate, 16000u);
  EXPECT_EQ(decoder.Configuration().nWordsPerFrame, 20);
}

TEST(Decoder, Init_RestoresEverything) {
  const C_SpeechFrames speech(16000);
  C_Decoder used;
  for (int nFrame = 0; nFrame < 40; ++nFrame) Decode(used, speech.Frame(nFrame));
  used.Init(16000);
  C_Decoder fresh;
  // The damaged frame shows whether a last good frame was left over.
  const std::vector<std::uint16_t> damaged(20, 0);
  EXPECT_EQ(Decode(used, damaged), Decode(fresh, damaged));
  for (int nFrame = 31; nFrame < 40; ++nFrame) {
    EXPECT_EQ(Decode(used, speech.Frame(nFrame)), Decode(fresh, speech.Frame(nFrame))) << nFrame;
  }
}

TEST(Decoder, Decode_ReadsTheWordsOfAFrameAndNoMore) {
  C_Decoder a;
  C_Decoder b;
  a.Init(7200);
  b.Init(7200);
  auto words = C_SpeechFrames(7200).Frame(31);
  const S_Frame samples = Decode(a, words);
  words.resize(40, 0x5555);
  EXPECT_EQ(Decode(b, words), samples);
}

}  // namespace
}  // namespace kestrel
