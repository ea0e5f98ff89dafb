// SPDX-License-Identifier: Apache-2.0
//
// Where the chunks of files stand, as the public interface tells it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "WavBytes.h"
#include "voxplay.hpp"

namespace {

using testing::HasSubstr;

// "fmt  20..36, data 44..144"; a cut chunk ends with "holds 56".
std::string Listing(const voxplay::Reader& reader) {
  std::string strText;
  for (const voxplay::ChunkPlace& place : reader.chunk_places()) {
    if (!strText.empty()) strText += ", ";
    strText += std::string(place.id, sizeof place.id) + ' ' + std::to_string(place.offset) + ".." +
               std::to_string(place.offset + place.size);
    if (place.held != place.size) strText += " holds " + std::to_string(place.held);
  }
  return strText;
}

TEST(ChunkPlaces, AllChunksOfAWavFile_AreTold) {
  const C_Bytes file = MonoWav(100).Chunk("bext", RampBytes(7)).Take();
  EXPECT_EQ(Listing(voxplay::Reader(AsBytes(file))), "fmt  20..36, data 44..144, bext 152..159");
}

TEST(ChunkPlaces, ChunkThatTheEndCuts_HoldsLessThanItClaims) {
  C_Bytes file = MonoWav(100).Take();
  file.resize(100);
  EXPECT_EQ(Listing(voxplay::Reader(AsBytes(file))), "fmt  20..36, data 44..144 holds 56");
}

TEST(ChunkPlaces, SizeThatWasNotKnown_IsWhatIsThere) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0xFFFFFFFF, RampBytes(30));
  const C_Bytes file = riff.RiffSize(0xFFFFFFFF).Take();
  EXPECT_EQ(Listing(voxplay::Reader(AsBytes(file))), "fmt  20..36, data 44..74");
}

TEST(ChunkPlaces, StreamOfAVefFile_IsToldWhicheverIsRead) {
  const auto bytes =
      WrittenBytes(FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL), PublicSamples(3200));
  const std::string strPcm = Listing(voxplay::Reader(AsBytes(bytes)));
  EXPECT_THAT(strPcm, HasSubstr("vdat "));
  EXPECT_THAT(strPcm, HasSubstr("data "));
  EXPECT_EQ(Listing(voxplay::Reader(AsBytes(bytes), VOXPLAY_READ_STREAM)), strPcm);
}

TEST(ChunkPlaces, OtherContainers_HaveNone) {
  const auto bytes =
      WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL), PublicSamples(640));
  EXPECT_EQ(Listing(voxplay::Reader(AsBytes(bytes))), "");
}

TEST(ChunkPlaces, InputThatOnlyGoesForward_TellsThoseUpToTheSamples) {
  const C_Bytes file = MonoWav(100).Chunk("bext", RampBytes(7)).Take();
  C_MemoryInput input(file, 10);
  EXPECT_EQ(Listing(voxplay::Reader(input.Pipe())), "fmt  20..36, data 44..144");
}

TEST(ChunkPlaces, SoundThatBeginsLater_CountsFromItsBeginning) {
  C_Bytes file(13, 0x55);
  const C_Bytes sound = MonoWav(10).Take();
  file.insert(file.end(), sound.begin(), sound.end());
  C_MemoryInput input(file);
  input.StartAt(13);
  EXPECT_EQ(Listing(voxplay::Reader(input.Record())), "fmt  20..36, data 44..54");
}

TEST(ChunkPlaces, BadArguments_AreRefused) {
  const C_Bytes file = MonoWav(10).Take();
  const voxplay::Reader reader{AsBytes(file)};
  voxplay_chunk_place place{};
  EXPECT_EQ(voxplay_reader_chunk_count(nullptr), 0U);
  EXPECT_EQ(voxplay_reader_chunk(nullptr, 0, &place, sizeof place), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_chunk(reader.get(), 0, nullptr, sizeof place), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_chunk(reader.get(), 0, &place, 3), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_reader_chunk(reader.get(), 2, &place, sizeof place), VOXPLAY_BAD_ARGUMENT);
  EXPECT_STREQ(voxplay_reader_message(reader.get()), "memory: chunk 2: the file has 2");
}

TEST(ChunkPlaces, NothingOpen_HasNone) {
  voxplay_reader* const pReader = voxplay_reader_new();
  voxplay_chunk_place place{};
  EXPECT_EQ(voxplay_reader_chunk_count(pReader), 0U);
  EXPECT_EQ(voxplay_reader_chunk(pReader, 0, &place, sizeof place), VOXPLAY_WRONG_STATE);
  voxplay_reader_free(pReader);
}

TEST(ChunkPlaces, EarlierCaller_GetsWhatItKnows) {
  const C_Bytes file = MonoWav(10).Take();
  const voxplay::Reader reader{AsBytes(file)};
  voxplay_chunk_place place{};
  place.held = 77;
  ASSERT_EQ(voxplay_reader_chunk(reader.get(), 1, &place, offsetof(voxplay_chunk_place, held)),
            VOXPLAY_OK);
  EXPECT_EQ(place.size, 10U);
  EXPECT_EQ(place.held, 77U);
}

}  // namespace
