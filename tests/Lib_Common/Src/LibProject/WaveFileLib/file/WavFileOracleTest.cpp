// SPDX-License-Identifier: Apache-2.0
//
// Compares other people's readers and writers of sound files with ours.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <memory>

#include "OtherPrograms.h"
#include "TempFolder.h"
#include "WavBytes.h"
#include "WavFileObject.h"

namespace {

struct S_SndClose {
  void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using C_SndPtr = std::unique_ptr<SNDFILE, S_SndClose>;

struct S_Shape {
  std::uint16_t wBits = 0;
  std::uint16_t wChannels = 0;
  int nSubFormat = 0;
};
void PrintTo(const S_Shape& shape, std::ostream* pStream) {
  *pStream << shape.wBits << " bits, " << shape.wChannels << " channels";
}

// Bytes without a pattern, the same in every run.
C_Bytes NoiseBytes(std::size_t cbCount) {
  C_Bytes bytes(cbCount);
  std::uint32_t dwState = 12345;
  for (std::uint8_t& by : bytes) {
    dwState = dwState * 1664525u + 1013904223u;
    by = static_cast<std::uint8_t>(dwState >> 24);
  }
  return bytes;
}

// PCM bytes as left-justified 32-bit values.
std::vector<int> ValuesOf(const C_Bytes& pcm, std::uint16_t wBits) {
  const std::size_t cbSample = wBits / 8;
  std::vector<int> values;
  for (std::size_t i = 0; i + cbSample <= pcm.size(); i += cbSample) {
    std::uint32_t dwValue = 0;
    for (std::size_t k = 0; k < cbSample; ++k) {
      dwValue = dwValue >> 8 | std::uint32_t{pcm[i + k]} << 24;
    }
    if (wBits == 8) dwValue ^= 0x80000000u;
    values.push_back(static_cast<int>(dwValue));
  }
  return values;
}

class WavFileOracle : public testing::TestWithParam<S_Shape> {
 protected:
  C_Bytes Run(const std::string& strCommand) { return RunIn(m_folder, strCommand); }
  // The cue points that sndfile finds in a file.
  SF_CUES CuesOf(const std::string& strName) {
    SF_INFO info{};
    const C_SndPtr snd(sf_open(m_folder.Path(strName).c_str(), SFM_READ, &info));
    SF_CUES cues{};
    EXPECT_NE(snd, nullptr) << sf_strerror(nullptr);
    EXPECT_EQ(snd ? sf_command(snd.get(), SFC_GET_CUE, &cues, sizeof cues) : SF_FALSE, SF_TRUE);
    return cues;
  }
  // A sound of 96 frames of noise, written by us.
  C_Bytes WriteOurs(const S_Shape& shape, const std::string& strName) {
    C_Bytes pcm = NoiseBytes(std::size_t{96} * shape.wChannels * (shape.wBits / 8));
    const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 22050, shape.wChannels, shape.wBits,
                                          shape.wBits, shape.wBits > 8, pcm);
    EXPECT_TRUE(Write(*file, m_folder.Path(strName)));
    return pcm;
  }

  C_TempFolder m_folder;
};

const S_Shape kShapes[] = {
    {8, 1, SF_FORMAT_PCM_U8},  {8, 2, SF_FORMAT_PCM_U8},  {16, 1, SF_FORMAT_PCM_16},
    {16, 2, SF_FORMAT_PCM_16}, {24, 1, SF_FORMAT_PCM_24}, {24, 2, SF_FORMAT_PCM_24},
    {32, 1, SF_FORMAT_PCM_32}, {32, 2, SF_FORMAT_PCM_32}, {16, 6, SF_FORMAT_PCM_16},
};

void ExpectShape(I_WavFile& file, const S_Shape& shape, unsigned int dwRate) {
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), dwRate);
  EXPECT_EQ(file.GetWavInfo()->GetChannels(), shape.wChannels);
  EXPECT_EQ(file.GetWavInfo()->GetBitsPerSample(), shape.wBits);
  EXPECT_EQ(file.GetWavInfo()->IsValueSigned(), shape.wBits > 8);
}

INSTANTIATE_TEST_SUITE_P(Shapes, WavFileOracle, testing::ValuesIn(kShapes));

}  // namespace

TEST_P(WavFileOracle, Sndfile_ReadsWhatWeWrite) {
  const C_Bytes pcm = WriteOurs(GetParam(), "ours.wav");
  SF_INFO info{};
  const C_SndPtr snd(sf_open(m_folder.Path("ours.wav").c_str(), SFM_READ, &info));
  ASSERT_NE(snd, nullptr) << sf_strerror(nullptr);
  EXPECT_EQ(info.samplerate, 22050);
  EXPECT_EQ(info.channels, GetParam().wChannels);
  EXPECT_EQ(info.frames, 96);
  EXPECT_EQ(info.format, SF_FORMAT_WAV | GetParam().nSubFormat);
  std::vector<int> values(std::size_t{96} * GetParam().wChannels);
  EXPECT_EQ(sf_readf_int(snd.get(), values.data(), 96), 96);
  EXPECT_EQ(values, ValuesOf(pcm, GetParam().wBits));
}

TEST_P(WavFileOracle, FilesOfSndfile_AreRead) {
  const C_Bytes pcm = NoiseBytes(std::size_t{96} * GetParam().wChannels * (GetParam().wBits / 8));
  const std::vector<int> values = ValuesOf(pcm, GetParam().wBits);
  SF_INFO info{};
  info.samplerate = 44100;
  info.channels = GetParam().wChannels;
  info.format = SF_FORMAT_WAV | GetParam().nSubFormat;
  C_SndPtr snd(sf_open(m_folder.Path("theirs.wav").c_str(), SFM_WRITE, &info));
  ASSERT_NE(snd, nullptr) << sf_strerror(nullptr);
  ASSERT_EQ(sf_writef_int(snd.get(), values.data(), 96), 96);
  snd.reset();
  const C_WavObjectPtr file = LoadWav(m_folder.Path("theirs.wav"));
  ExpectShape(*file, GetParam(), 44100);
  EXPECT_EQ(PcmOf(*file), pcm);
}

TEST_P(WavFileOracle, Sox_ReadsWhatWeWrite) {
  const C_Bytes pcm = WriteOurs(GetParam(), "ours.wav");
  const std::string strEncoding = GetParam().wBits == 8 ? "unsigned" : "signed";
  EXPECT_EQ(Run("sox -D @/ours.wav -t raw -e " + strEncoding + " -b " +
                std::to_string(GetParam().wBits) + " -"),
            pcm);
  EXPECT_EQ(Run("soxi -r @/ours.wav"), Ascii("22050\n"));
}

TEST_P(WavFileOracle, FilesOfSox_AreRead) {
  const C_Bytes pcm = NoiseBytes(std::size_t{96} * GetParam().wChannels * (GetParam().wBits / 8));
  m_folder.Write("in.raw", pcm);
  const std::string strRaw =
      std::string("-t raw -r 11025 -e ") + (GetParam().wBits == 8 ? "unsigned" : "signed") +
      " -b " + std::to_string(GetParam().wBits) + " -c " + std::to_string(GetParam().wChannels);
  // wavpcm has the plain form of the format record, whatever the width.
  Run("sox -D " + strRaw + " @/in.raw -t wavpcm @/theirs.wav");
  const C_WavObjectPtr file = LoadWav(m_folder.Path("theirs.wav"));
  ExpectShape(*file, GetParam(), 11025);
  EXPECT_EQ(PcmOf(*file), pcm);
}

TEST_F(WavFileOracle, Sndfile_SeesOurEventsAsNamedCuePoints) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 16000, 1, 16, 16, true, C_Bytes(20000));
  file->GetWavData()->GetEventTagMgr()->AddEventBySamplePos(3, 7, 4800, "", 0);
  file->GetWavData()->GetEventTagMgr()->AddEventBySamplePos(65535, 0, 9999, "", 0);
  ASSERT_TRUE(Write(*file, m_folder.Path("ours.wav")));
  const SF_CUES cues = CuesOf("ours.wav");
  ASSERT_EQ(cues.cue_count, 2u);
  EXPECT_EQ(cues.cue_points[0].indx, 1);
  EXPECT_EQ(cues.cue_points[0].position, 4800u);
  EXPECT_STREQ(cues.cue_points[0].name, "u_3_7");
  EXPECT_EQ(cues.cue_points[1].indx, 2);
  EXPECT_EQ(cues.cue_points[1].sample_offset, 9999u);
  EXPECT_STREQ(cues.cue_points[1].name, "u_65535_0");
}

TEST_F(WavFileOracle, Sndfile_SeesOurRangesAsCuePoints) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 16000, 1, 16, 16, true, C_Bytes(20000));
  file->GetWavData()->AddSilenceSegment(5000, 5999);
  file->GetWavData()->AddUncompressRegion(7000, 7100);
  ASSERT_TRUE(Write(*file, m_folder.Path("ours.wav")));
  // sndfile stops reading a list at the first labelled text, so the names stay empty here.
  const SF_CUES cues = CuesOf("ours.wav");
  ASSERT_EQ(cues.cue_count, 2u);
  EXPECT_EQ(cues.cue_points[0].sample_offset, 5000u);
  EXPECT_EQ(cues.cue_points[1].sample_offset, 7000u);
}

TEST_F(WavFileOracle, Sndfile_SeesOurLoops) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 16000, 1, 16, 16, true, C_Bytes(2000));
  Sampler(*file).AddSampleLoop(1, LOOP_FORWARD, 100, 200, 0, 5);
  ASSERT_TRUE(Write(*file, m_folder.Path("ours.wav")));
  SF_INFO info{};
  const C_SndPtr snd(sf_open(m_folder.Path("ours.wav").c_str(), SFM_READ, &info));
  ASSERT_NE(snd, nullptr);
  SF_INSTRUMENT instrument{};
  ASSERT_EQ(sf_command(snd.get(), SFC_GET_INSTRUMENT, &instrument, sizeof instrument), SF_TRUE);
  ASSERT_EQ(instrument.loop_count, 1);
  EXPECT_EQ(instrument.loops[0].start, 100u);
  EXPECT_EQ(instrument.loops[0].mode, SF_LOOP_FORWARD);
  EXPECT_EQ(instrument.loops[0].count, 5u);
}

TEST_F(WavFileOracle, CuePointsOfSndfile_AreSeen) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  C_SndPtr snd(sf_open(m_folder.Path("theirs.wav").c_str(), SFM_WRITE, &info));
  ASSERT_NE(snd, nullptr);
  SF_CUES cues{};
  cues.cue_count = 2;
  for (int i = 0; i < 2; ++i) {
    cues.cue_points[i].indx = 10 + i;
    cues.cue_points[i].position = static_cast<std::uint32_t>(30 * i);
    cues.cue_points[i].fcc_chunk = 0x61746164;
    cues.cue_points[i].sample_offset = static_cast<std::uint32_t>(30 * i);
  }
  ASSERT_EQ(sf_command(snd.get(), SFC_SET_CUE, &cues, sizeof cues), SF_TRUE);
  const std::vector<short> samples(64, 1);
  ASSERT_EQ(sf_write_short(snd.get(), samples.data(), 64), 64);
  snd.reset();
  const C_WavObjectPtr file = LoadWav(m_folder.Path("theirs.wav"));
  ASSERT_EQ(Cues(*file).GetCuePointCount(), 2);
  EXPECT_EQ(Cues(*file).GetCuePointByIndex(1)->GetCuePointID(), 11u);
  EXPECT_EQ(Cues(*file).GetCuePointByIndex(1)->GetSampleOffset(), 30u);
  EXPECT_EQ(file->GetWavData()->GetBufferLength(), 128u);
}

TEST_F(WavFileOracle, TwelveBits_AreReadAsSixteenByOthers) {
  const C_WavObjectPtr file =
      MakeSound(AUDIO_FILE_WAVE, 8000, 1, 12, 16, true, Join({U16(0x0123), U16(0xF800)}));
  ASSERT_TRUE(Write(*file, m_folder.Path("ours.wav")));
  EXPECT_EQ(Run("sox -D @/ours.wav -t raw -e signed -b 16 -"), Join({U16(0x1230), U16(0x8000)}));
}

TEST_F(WavFileOracle, FilesWithTagsOfOthers_AreNotOpened) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = 1;
  for (const int nFormat : {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
                            SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_GSM610}) {
    info.format = nFormat;
    C_SndPtr snd(sf_open(m_folder.Path("theirs.wav").c_str(), SFM_WRITE, &info));
    ASSERT_NE(snd, nullptr) << nFormat;
    const std::vector<short> samples(640, 1);
    ASSERT_EQ(sf_write_short(snd.get(), samples.data(), 640), 640);
    snd.reset();
    EXPECT_FALSE(Opens(m_folder.Path("theirs.wav"))) << nFormat;
  }
}
