// SPDX-License-Identifier: Apache-2.0
//
// WAV files that another library writes, read through the public interface and by that library; and
// ours, read by both.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "TempFolder.h"

namespace {

struct S_SndClose {
  void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using C_SndPtr = std::unique_ptr<SNDFILE, S_SndClose>;

// What the other library writes.
struct S_Theirs {
  std::string strName;
  int nMajor;
  int nMinor;
  int nChannels;
  int nFrames;
  std::uint32_t dwBits;
};
void PrintTo(const S_Theirs& theirs, std::ostream* pStream) { *pStream << theirs.strName; }

constexpr int kRate = 22050;
constexpr const char* kTitle = "An odd title";
constexpr const char* kArtist = "Somebody";

// Below full scale, because the scales of floating point differ there.
std::vector<double> Values(std::size_t nSamples) {
  std::vector<double> values(nSamples);
  for (std::size_t n = 0; n < nSamples; ++n) {
    values[n] = 0.9 * std::sin(0.37 * static_cast<double>(n) + 0.1);
  }
  return values;
}

SF_CUES TwoCues() {
  SF_CUES cues{};
  cues.cue_count = 2;
  for (std::uint32_t n = 0; n < 2; ++n) {
    SF_CUE_POINT& cue = cues.cue_points[n];
    cue.indx = static_cast<std::int32_t>(n + 5);
    cue.position = 7 * n + 1;
    cue.fcc_chunk = 0x61746164;  // "data"
    cue.sample_offset = 7 * n + 1;
  }
  return cues;
}

void WriteTheirs(const std::string& strPath, const S_Theirs& theirs) {
  SF_INFO info{};
  info.samplerate = kRate;
  info.channels = theirs.nChannels;
  info.format = theirs.nMajor | theirs.nMinor;
  const C_SndPtr file(sf_open(strPath.c_str(), SFM_WRITE, &info));
  ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
  SF_CUES cues = TwoCues();
  ASSERT_EQ(sf_command(file.get(), SFC_SET_CUE, &cues, sizeof cues), SF_TRUE);
  ASSERT_EQ(sf_set_string(file.get(), SF_STR_TITLE, kTitle), 0);  // before the samples
  const auto values = Values(static_cast<std::size_t>(theirs.nFrames * theirs.nChannels));
  ASSERT_EQ(sf_writef_double(file.get(), values.data(), theirs.nFrames), theirs.nFrames);
  ASSERT_EQ(sf_set_string(file.get(), SF_STR_ARTIST, kArtist), 0);  // after them
}

struct S_ReadByThem {
  SF_INFO info{};
  SF_CUES cues{};
  std::vector<int> ints;
  std::vector<float> floats;
};

S_ReadByThem ReadByThem(const std::string& strPath) {
  S_ReadByThem read;
  const C_SndPtr file(sf_open(strPath.c_str(), SFM_READ, &read.info));
  if (file == nullptr) {
    ADD_FAILURE() << sf_strerror(nullptr);
    return read;
  }
  sf_command(file.get(), SFC_GET_CUE, &read.cues, sizeof read.cues);
  const auto nSamples = static_cast<std::size_t>(read.info.frames * read.info.channels);
  read.ints.resize(nSamples);
  read.floats.resize(nSamples);
  EXPECT_EQ(sf_readf_int(file.get(), read.ints.data(), read.info.frames), read.info.frames);
  EXPECT_EQ(sf_seek(file.get(), 0, SEEK_SET), 0);
  EXPECT_EQ(sf_readf_float(file.get(), read.floats.data(), read.info.frames), read.info.frames);
  return read;
}

bool HoldsText(const voxplay::NotesView& notes, const std::string& strText) {
  return std::ranges::any_of(notes.chunks(), [&](const voxplay::Chunk& chunk) {
    const std::string strData(static_cast<const char*>(chunk.data), chunk.size);
    return std::string(chunk.id, 4) == "LIST" && strData.find(strText) != std::string::npos;
  });
}

void CompareCues(const voxplay::NotesView& notes, const SF_CUES& theirs) {
  ASSERT_EQ(notes.cues().size(), theirs.cue_count);
  for (std::size_t n = 0; n < theirs.cue_count; ++n) {
    const voxplay::Cue ours = notes.cues()[n];
    EXPECT_EQ(ours.id, static_cast<std::uint32_t>(theirs.cue_points[n].indx));
    EXPECT_EQ(ours.position, theirs.cue_points[n].position);
    EXPECT_EQ(ours.sample_offset, theirs.cue_points[n].sample_offset);
    EXPECT_EQ(std::string(ours.chunk, 4), "data");
  }
}

// Integers are the same in both; of floating point the scale of integers is our own.
void CompareSamples(voxplay::Reader& reader, const S_ReadByThem& theirs) {
  const voxplay::Info info = reader.info();
  EXPECT_EQ(info.frames, static_cast<std::uint64_t>(theirs.info.frames));
  EXPECT_EQ(info.channels, static_cast<std::uint32_t>(theirs.info.channels));
  EXPECT_EQ(info.sample_rate, static_cast<std::uint32_t>(theirs.info.samplerate));
  EXPECT_EQ(ReadRest<float>(reader), theirs.floats);
  reader.seek(0);
  if (info.codec != VOXPLAY_CODEC_PCM) return;
  EXPECT_EQ(ReadRest<std::int32_t>(reader), theirs.ints);
}

class TheirWav : public testing::TestWithParam<S_Theirs> {
 protected:
  void SetUp() override { WriteTheirs(m_strPath, GetParam()); }

  C_TempFolder m_folder;
  std::string m_strPath = m_folder.Path("theirs.wav");
};

TEST_P(TheirWav, Samples_AreThoseThatTheyRead) {
  const auto theirs = ReadByThem(m_strPath);
  ASSERT_EQ(theirs.info.frames, GetParam().nFrames);
  voxplay::Reader reader(m_strPath);
  const voxplay::Info info = reader.info();
  EXPECT_EQ(info.container, std::uint32_t{VOXPLAY_CONTAINER_WAV});
  EXPECT_EQ(info.bits_per_sample, GetParam().dwBits);
  EXPECT_EQ(info.stored_bits, GetParam().dwBits);
  CompareSamples(reader, theirs);
}

TEST_P(TheirWav, FromAPipe_SamplesAreTheSame) {
  const auto bytes = m_folder.Read("theirs.wav");
  C_MemoryInput input(bytes, 61);
  voxplay::Reader piped(input.Pipe());
  EXPECT_EQ(ReadRest<float>(piped, 50), ReadByThem(m_strPath).floats);
}

TEST_P(TheirWav, CuesAndTexts_AreKept) {
  const auto theirs = ReadByThem(m_strPath);
  const voxplay::Reader reader(m_strPath);
  CompareCues(reader.notes(), theirs.cues);
  EXPECT_TRUE(HoldsText(reader.notes(), kTitle));
  EXPECT_TRUE(HoldsText(reader.notes(), kArtist));
}

// What we write of that, they read again.
TEST_P(TheirWav, WrittenAgainByUs_IsTheSameToThem) {
  const auto theirs = ReadByThem(m_strPath);
  voxplay::Reader reader(m_strPath);
  const voxplay::Info info = reader.info();
  voxplay_format format = FormatOf(VOXPLAY_CONTAINER_WAV, static_cast<voxplay_codec>(info.codec),
                                   std::min(info.bits_per_sample, 32U), kRate, info.channels);
  voxplay::Writer writer(m_folder.Path("ours.wav"), format);
  writer.set_notes(reader.notes());
  const auto samples = ReadRest<float>(reader);
  writer.write(std::span(samples));
  writer.finish();
  EXPECT_EQ(writer.lost(), std::vector<std::string>());
  const auto again = ReadByThem(m_folder.Path("ours.wav"));
  EXPECT_EQ(again.floats, theirs.floats);
  const voxplay::Reader ours(m_folder.Path("ours.wav"));
  CompareCues(ours.notes(), again.cues);
  CompareCues(ours.notes(), theirs.cues);
}

INSTANTIATE_TEST_SUITE_P(
    All, TheirWav,
    testing::Values(S_Theirs{"Wavex16", SF_FORMAT_WAVEX, SF_FORMAT_PCM_16, 2, 501, 16},
                    S_Theirs{"Wavex24Odd", SF_FORMAT_WAVEX, SF_FORMAT_PCM_24, 1, 333, 24},
                    S_Theirs{"WavexFloat", SF_FORMAT_WAVEX, SF_FORMAT_FLOAT, 4, 100, 32},
                    S_Theirs{"Rf64Of16", SF_FORMAT_RF64, SF_FORMAT_PCM_16, 1, 777, 16},
                    S_Theirs{"Rf64Of24Odd", SF_FORMAT_RF64, SF_FORMAT_PCM_24, 3, 111, 24},
                    S_Theirs{"Rf64OfFloat", SF_FORMAT_RF64, SF_FORMAT_FLOAT, 2, 99, 32},
                    S_Theirs{"Float", SF_FORMAT_WAV, SF_FORMAT_FLOAT, 2, 400, 32},
                    S_Theirs{"Double", SF_FORMAT_WAV, SF_FORMAT_DOUBLE, 1, 301, 64},
                    S_Theirs{"Wav8Odd", SF_FORMAT_WAV, SF_FORMAT_PCM_U8, 1, 127, 8},
                    S_Theirs{"Wav16", SF_FORMAT_WAV, SF_FORMAT_PCM_16, 8, 60, 16},
                    S_Theirs{"Wav24Odd", SF_FORMAT_WAV, SF_FORMAT_PCM_24, 1, 201, 24},
                    S_Theirs{"Wav32", SF_FORMAT_WAV, SF_FORMAT_PCM_32, 2, 150, 32}),
    [](const auto& parameters) { return parameters.param.strName; });

voxplay::Notes NotesOfAllKinds() {
  voxplay::Notes notes;
  notes.add(voxplay::Event{20, 3, 7, 0, nullptr});
  notes.add_silence({30, 10});
  notes.add(voxplay::Cue{9, 40, {'d', 'a', 't', 'a'}, 0, 0, 40});
  notes.add(voxplay::Label{9, {'l', 'a', 'b', 'l'}, "a mark"});
  notes.add(voxplay::Loop{9, 0, 5, 60, 0, 2});
  notes.add(voxplay::Chunk{{'o', 'd', 'd', ' '}, "odd", 3});
  return notes;
}

// Odd numbers of samples and chunks of odd size do not lead others astray.
TEST(OurWav, WithNotesOfAllKinds_IsTheSameToThem) {
  const C_TempFolder folder;
  for (auto kind : PublicKinds()) {
    if (kind.format.container != VOXPLAY_CONTAINER_WAV) continue;
    for (const std::uint32_t dwFlags : {0U, std::uint32_t{VOXPLAY_WRITE_RF64}}) {
      SCOPED_TRACE(kind.strName + " with flags " + std::to_string(dwFlags));
      kind.format.flags = dwFlags;
      const auto bytes =
          WrittenBytes(kind.format, PublicSamples(301, kind.format.channels), NotesOfAllKinds());
      const auto theirs = ReadByThem(folder.Write("ours.wav", bytes));
      ASSERT_EQ(theirs.info.frames, 301);
      voxplay::Reader reader(AsBytes(bytes));
      CompareSamples(reader, theirs);
      ASSERT_EQ(theirs.cues.cue_count, 3U);
      EXPECT_EQ(theirs.cues.cue_points[0].indx, 9);
      EXPECT_EQ(theirs.cues.cue_points[0].position, 40U);
    }
  }
}

// They pass over labels that come after the length of a range, so there is none here.
TEST(OurWav, LabelsOfCuePoints_AreTheirNamesToThem) {
  voxplay::Notes notes;
  notes.add(voxplay::Cue{9, 40, {'d', 'a', 't', 'a'}, 0, 0, 40});
  notes.add(voxplay::Cue{4, 50, {'d', 'a', 't', 'a'}, 0, 0, 50});
  notes.add(voxplay::Label{9, {'l', 'a', 'b', 'l'}, "even"});
  notes.add(voxplay::Label{4, {'l', 'a', 'b', 'l'}, "odd"});
  const C_TempFolder folder;
  const auto format = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16);
  const auto bytes = WrittenBytes(format, PublicSamples(100), notes);
  const auto theirs = ReadByThem(folder.Write("ours.wav", bytes));
  ASSERT_EQ(theirs.cues.cue_count, 2U);
  EXPECT_EQ(std::string(theirs.cues.cue_points[0].name), "even");
  EXPECT_EQ(std::string(theirs.cues.cue_points[1].name), "odd");
}

}  // namespace
