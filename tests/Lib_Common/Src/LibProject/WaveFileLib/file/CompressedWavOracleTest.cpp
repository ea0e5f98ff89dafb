// SPDX-License-Identifier: Apache-2.0
//
// Compares other people's encoders and decoders of compressed WAV files with ours. Their files mark
// DVI ADPCM with tag 0x0011, ours with 11, so the tag is changed on the way.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>

#include "CodecSupport.h"
#include "OtherPrograms.h"
#include "TestSounds.h"
#include "WavBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"

namespace {

constexpr std::uint16_t kTheirDviTag = 0x0011;

C_Samples SamplesIn(const C_Bytes& bytes) {
  C_Samples samples(bytes.size() / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

C_Samples ReadBySndfile(const std::string& strPath) {
  SF_INFO info{};
  SNDFILE* pFile = sf_open(strPath.c_str(), SFM_READ, &info);
  EXPECT_NE(pFile, nullptr) << sf_strerror(nullptr);
  if (pFile == nullptr) return {};
  C_Samples samples(static_cast<std::size_t>(info.frames * info.channels));
  EXPECT_EQ(sf_readf_short(pFile, samples.data(), info.frames), info.frames);
  sf_close(pFile);
  return samples;
}

void WriteBySndfile(const std::string& strPath, int nFormat, int nChannels,
                    const C_Samples& samples) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = nChannels;
  info.format = SF_FORMAT_WAV | nFormat;
  SNDFILE* pFile = sf_open(strPath.c_str(), SFM_WRITE, &info);
  ASSERT_NE(pFile, nullptr) << sf_strerror(nullptr);
  const auto nSamples = static_cast<sf_count_t>(samples.size());
  EXPECT_EQ(sf_write_short(pFile, samples.data(), nSamples), nSamples);
  sf_close(pFile);
}

// A spoken sentence, then a sweep with noise that drives the coders to their limits.
C_Samples RealSound(std::size_t nChannels) {
  C_WavFileFormat format;
  const C_WavFilePtr speech(format.CreateWavFile(VOXPLAY_TEST_DATA "/../../samples/Test.kst", true,
                                                 true, nullptr, nullptr));
  EXPECT_NE(speech, nullptr);
  C_Samples samples = speech ? SamplesIn(PcmOf(*speech)) : C_Samples();
  samples.resize(samples.size() / nChannels * nChannels);
  C_Samples sweep = SweepWithNoise(8000, 16000, static_cast<unsigned>(nChannels));
  for (short& nSample : sweep) nSample = static_cast<short>(nSample * 3 - nSample / 4);
  samples.insert(samples.end(), sweep.begin(), sweep.end());
  return samples;
}

// Bytes that look random but are the same in every run.
C_Bytes RandomBytes(std::size_t cbCount, unsigned int dwSeed) {
  std::mt19937 engine(dwSeed);
  C_Bytes bytes(cbCount);
  for (std::uint8_t& by : bytes) by = static_cast<std::uint8_t>(engine());
  return bytes;
}

class CompressedWavOracle : public testing::Test {
 protected:
  // The samples that we read from one of their files.
  C_Samples ReadByUs(const std::string& strName) {
    C_Bytes bytes = m_folder.Read(strName);
    EXPECT_GT(bytes.size(), 22u);
    if (bytes.size() <= 22) return {};
    if (bytes[20] == kTheirDviTag) bytes[20] = WAVE_TAG_DVI_ADPCM;
    const C_WavObjectPtr file = LoadWav(m_folder.Write("ours.wav", bytes));
    return SamplesIn(PcmOf(*file));
  }
  C_Samples ReadBySox(const std::string& strName) {
    return SamplesIn(RunIn(m_folder, "sox -D @/" + strName + " -t raw -e signed -b 16 -"));
  }
  C_Samples ReadByFfmpeg(const std::string& strName) {
    return SamplesIn(RunIn(m_folder, "ffmpeg -v error -i @/" + strName + " -f s16le -"));
  }
  // Decoders differ in how many samples of the last block they return. Both must return all samples
  // of the sound, and must agree as far as the shorter result goes.
  void ExpectSame(const C_Samples& ours, const C_Samples& theirs, std::size_t nSound,
                  const std::string& strWhat) {
    const std::size_t nCompared = std::min(ours.size(), theirs.size());
    EXPECT_GE(nCompared, nSound) << strWhat;
    const auto differ = std::mismatch(
        ours.begin(), ours.begin() + static_cast<std::ptrdiff_t>(nCompared), theirs.begin());
    EXPECT_EQ(differ.first - ours.begin(), static_cast<std::ptrdiff_t>(nCompared)) << strWhat;
  }
  // Writes blocks, whatever their content means, to a file in their form.
  void WriteBlocks(const std::string& strName, S_Blocks blocks, const C_Bytes& encoded) {
    C_RiffBytes riff("WAVE");
    if (blocks.wTag == WAVE_TAG_DVI_ADPCM) {
      C_Bytes fmt = BlockFmt(blocks);
      fmt[0] = kTheirDviTag;
      riff.Chunk("fmt ", fmt);
    } else {
      riff.Chunk("fmt ", BlockFmt(blocks));
    }
    const std::size_t nBlocks = encoded.size() / blocks.wBlockAlign;
    riff.Chunk("fact", U32(static_cast<std::uint32_t>(nBlocks * blocks.wSamplesPerBlock)));
    m_folder.Write(strName, riff.Chunk("data", encoded).Take());
  }

  C_TempFolder m_folder;
};

}  // namespace

// --- Real sounds, encoded by three encoders, and decoded by two decoders and by us. The third
// decoder, ffmpeg's, is left out here because it rounds differently.

TEST_F(CompressedWavOracle, FilesOfSndfile_DecodeTheSame) {
  for (const int nChannels : {1, 2}) {
    const C_Samples sound = RealSound(static_cast<std::size_t>(nChannels));
    for (const int nFormat : {SF_FORMAT_MS_ADPCM, SF_FORMAT_IMA_ADPCM}) {
      const std::string strWhat = std::to_string(nFormat) + ", " + std::to_string(nChannels);
      WriteBySndfile(m_folder.Path("a.wav"), nFormat, nChannels, sound);
      const C_Samples ours = ReadByUs("a.wav");
      ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), sound.size(), "sndfile " + strWhat);
      ExpectSame(ours, ReadBySox("a.wav"), sound.size(), "sox " + strWhat);
    }
  }
}

TEST_F(CompressedWavOracle, FilesOfSox_DecodeTheSame) {
  for (const int nChannels : {1, 2, 4}) {
    const C_Samples sound = RealSound(static_cast<std::size_t>(nChannels));
    m_folder.Write("sound.raw", BytesOf(sound));
    for (const char* pszFormat : {"ms-adpcm", "ima-adpcm"}) {
      const std::string strWhat = pszFormat + std::string(", ") + std::to_string(nChannels);
      RunIn(m_folder, "sox -D -t raw -r 16000 -e signed -b 16 -c " + std::to_string(nChannels) +
                          " @/sound.raw -e " + pszFormat + " @/a.wav");
      const C_Samples ours = ReadByUs("a.wav");
      ExpectSame(ours, ReadBySox("a.wav"), sound.size(), "sox " + strWhat);
      if (nChannels <= 2) {
        ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), sound.size(), "sndfile " + strWhat);
      }
    }
  }
}

TEST_F(CompressedWavOracle, FilesOfFfmpeg_DecodeTheSame) {
  for (const int nChannels : {1, 2}) {
    const C_Samples sound = RealSound(static_cast<std::size_t>(nChannels));
    m_folder.Write("sound.raw", BytesOf(sound));
    for (const char* pszFormat : {"adpcm_ms", "adpcm_ima_wav"}) {
      const std::string strWhat = pszFormat + std::string(", ") + std::to_string(nChannels);
      RunIn(m_folder, "ffmpeg -v error -y -f s16le -ar 16000 -ac " + std::to_string(nChannels) +
                          " -i @/sound.raw -c:a " + pszFormat + " @/a.wav");
      const C_Samples ours = ReadByUs("a.wav");
      ExpectSame(ours, ReadBySox("a.wav"), sound.size(), "sox " + strWhat);
      ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), sound.size(), "sndfile " + strWhat);
    }
  }
}

// --- Every state and code

// One block for each step index and each code. It shows the sample that the code makes, and the
// samples that follow from the step to which it leads.
TEST_F(CompressedWavOracle, EveryStepWithEveryFourBitCode_DecodesTheSame) {
  C_Bytes encoded;
  for (int nIndex = 0; nIndex <= 88; ++nIndex) {
    for (int nCode = 0; nCode < 16; ++nCode) {
      encoded = Join({encoded,
                      U16(static_cast<std::uint16_t>(nCode * 100)),
                      {static_cast<std::uint8_t>(nIndex), 0,
                       static_cast<std::uint8_t>(nCode | 0x10), 0x80, 0x37, 0xF4}});
    }
  }
  WriteBlocks("a.wav", {WAVE_TAG_DVI_ADPCM, 1, 8, 9, 4}, encoded);
  const C_Samples ours = ReadByUs("a.wav");
  ASSERT_EQ(ours.size(), std::size_t{89} * 16 * 9);
  ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), ours.size(), "sndfile");
  ExpectSame(ours, ReadBySox("a.wav"), ours.size(), "sox");
}

TEST_F(CompressedWavOracle, RandomFourBitBlocks_DecodeTheSame) {
  for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2}) {
    const auto wAlign = static_cast<std::uint16_t>(256 * wChannels);
    C_Bytes encoded = RandomBytes(std::size_t{200} * wAlign, wChannels);
    for (std::size_t nBlock = 0; nBlock < encoded.size(); nBlock += wAlign) {
      for (std::size_t nHead = nBlock; nHead < nBlock + std::size_t{4} * wChannels; nHead += 4) {
        encoded[nHead + 2] = static_cast<std::uint8_t>(encoded[nHead + 2] % 89);
        encoded[nHead + 3] = 0;
      }
    }
    WriteBlocks("a.wav", {WAVE_TAG_DVI_ADPCM, wChannels, wAlign, 505, 4}, encoded);
    const C_Samples ours = ReadByUs("a.wav");
    ASSERT_EQ(ours.size(), std::size_t{200} * 505 * wChannels);
    ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), ours.size(), "sndfile");
    ExpectSame(ours, ReadBySox("a.wav"), ours.size(), "sox");
  }
}

// Mostly small codes: other decoders hold the delta in 16 bits, so it must not grow beyond them.
TEST_F(CompressedWavOracle, RandomMSAdpcmBlocks_DecodeTheSame) {
  for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2}) {
    const std::size_t cbHead = std::size_t{7} * wChannels;
    const auto wAlign = static_cast<std::uint16_t>(64 * wChannels);
    C_Bytes encoded = RandomBytes(std::size_t{1000} * wAlign, wChannels);
    for (std::size_t i = 0; i < encoded.size(); ++i) {
      const std::size_t nAt = i % wAlign;
      if (nAt < wChannels) {
        encoded[i] = static_cast<std::uint8_t>(encoded[i] % 7);
      } else if (nAt >= wChannels && nAt < std::size_t{3} * wChannels) {
        encoded[i] = (nAt - wChannels) % 2 == 0 ? encoded[i] : std::uint8_t{0};
      } else if (nAt >= cbHead && encoded[i] % 16 != 0) {
        encoded[i] = static_cast<std::uint8_t>((encoded[i] & 0x33U) | (encoded[i] & 0x04U) * 0x33U);
      }
    }
    WriteBlocks("a.wav", {WAVE_TAG_MS_ADPCM, wChannels, wAlign, 116, 4}, encoded);
    const C_Samples ours = ReadByUs("a.wav");
    ASSERT_EQ(ours.size(), std::size_t{1000} * 116 * wChannels);
    ExpectSame(ours, ReadBySox("a.wav"), ours.size(), "sox");
    ExpectSame(ours, ReadBySndfile(m_folder.Path("a.wav")), ours.size(), "sndfile");
  }
}

// ffmpeg multiplies, where our decoder adds the part of a step that each bit stands for. Both agree
// on the codes whose lowest bit is 0. ffmpeg also alternates the channels every four bytes, not
// every twelve.
TEST_F(CompressedWavOracle, ThreeBitBlocks_DecodeTheSame) {
  for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2}) {
    const auto wAlign = static_cast<std::uint16_t>((4 + 192) * wChannels);
    const std::size_t cbHead = std::size_t{4} * wChannels;
    C_Bytes theirs = RandomBytes(std::size_t{100} * wAlign, wChannels);
    for (std::size_t i = 0; i < theirs.size(); ++i) {
      const std::size_t nAt = i % wAlign;
      if (nAt >= cbHead) {
        // In each channel's twelve bytes, every third bit, beginning with the first, is the lowest
        // bit of a code.
        const std::size_t nByte = (nAt - cbHead) / cbHead % 3 * 4 + (nAt - cbHead) % 4;
        for (std::size_t nBit = 0; nBit < 8; ++nBit) {
          if ((nByte * 8 + nBit) % 3 == 0) theirs[i] &= static_cast<std::uint8_t>(~(1U << nBit));
        }
      } else if (nAt % 4 >= 2) {
        theirs[i] = nAt % 4 == 2 ? static_cast<std::uint8_t>(theirs[i] % 89) : std::uint8_t{0};
      }
    }
    WriteBlocks("theirs.wav", {WAVE_TAG_DVI_ADPCM, wChannels, wAlign, 513, 3}, theirs);
    C_Bytes ours = theirs;
    for (std::size_t i = 0; i < ours.size(); ++i) {
      const std::size_t nAt = i % wAlign;
      if (nAt < cbHead) continue;
      const std::size_t nBody = nAt - cbHead;
      const std::size_t nGroup = nBody / (12U * wChannels);
      const std::size_t nChannel = nBody / 12 % wChannels;
      const std::size_t nByte = nBody % 12;
      ours[i] = theirs[i - nAt + cbHead + nGroup * 12 * wChannels + nByte / 4 * cbHead +
                       nChannel * 4 + nByte % 4];
    }
    WriteBlocks("ours.wav", {WAVE_TAG_DVI_ADPCM, wChannels, wAlign, 513, 3}, ours);
    const C_Samples decoded = ReadByUs("ours.wav");
    ASSERT_EQ(decoded.size(), std::size_t{100} * 513 * wChannels);
    ExpectSame(decoded, ReadByFfmpeg("theirs.wav"), decoded.size(), "ffmpeg");
  }
}

// --- G.711: our values are our own, but close to the reference

namespace {

C_RiffBytes AllCodes(std::uint16_t wTag) {
  C_Bytes codes;
  for (int nCode = 0; nCode < 256; ++nCode) codes.push_back(static_cast<std::uint8_t>(nCode));
  return CompressedWav({wTag, 1, 1, 0, 8}, codes);
}

}  // namespace

TEST_F(CompressedWavOracle, MuLawValues_AreWithinAStepOfTheReference) {
  m_folder.Write("a.wav", AllCodes(WAVE_TAG_MULAW).Take());
  const C_Samples ours = ReadByUs("a.wav");
  const C_Samples theirs = ReadBySndfile(m_folder.Path("a.wav"));
  ASSERT_EQ(ours.size(), 256u);
  ASSERT_EQ(theirs.size(), 256u);
  for (std::size_t nCode = 0; nCode < 256; ++nCode) {
    EXPECT_LT(std::abs(ours[nCode] - theirs[nCode]), (1024 >> (nCode >> 4 & 7)) + 100) << nCode;
  }
}

// The reference decodes a code to the middle of its step, as a signed number. Ours decodes it to
// the lower end of the step, as sign and magnitude; our segment 6 begins 4 higher.
TEST_F(CompressedWavOracle, ALawMagnitudes_AreHalfAStepBelowTheReference) {
  m_folder.Write("a.wav", AllCodes(WAVE_TAG_ALAW).Take());
  const C_Samples ours = ReadByUs("a.wav");
  const C_Samples theirs = ReadBySndfile(m_folder.Path("a.wav"));
  ASSERT_EQ(ours.size(), 256u);
  ASSERT_EQ(theirs.size(), 256u);
  for (std::size_t nCode = 0; nCode < 256; ++nCode) {
    const std::size_t nSegment = (nCode ^ 0x55) >> 4 & 7;
    const int nHalfStep = nSegment == 0 ? 8 : 4 << nSegment;
    EXPECT_EQ(ours[nCode] & 0x7FFF, std::abs(theirs[nCode]) - nHalfStep + (nSegment == 6 ? 4 : 0))
        << nCode;
    EXPECT_EQ(ours[nCode] < 0, theirs[nCode] < 0) << nCode;
  }
}
