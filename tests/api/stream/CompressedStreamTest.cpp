// SPDX-License-Identifier: Apache-2.0
//
// Streams of compressed WAV data against the class library: the same samples, as many of them, and
// the same refusals.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "../support/TestInput.h"
#include "CompressedBytes.h"
#include "LargestAllocation.h"
#include "Sources.h"
#include "SweepFile.h"
#include "WavFileObject.h"
#include "stream/CompressedStream.h"
#include "stream/PcmSamples.h"

namespace api::test {
namespace {

using C_Shorts = std::vector<std::int16_t>;

// A file whose only chunks are "fmt " and "data".
struct S_File {
  C_Bytes format;
  C_Bytes data;
  std::uint32_t dwClaimed = 0;

  S_File(C_Bytes fmt, C_Bytes encoded)
      : format(std::move(fmt)),
        data(std::move(encoded)),
        dwClaimed(static_cast<std::uint32_t>(data.size())) {}
  [[nodiscard]] std::size_t DataAt() const { return 12 + 8 + format.size() + 8; }
  [[nodiscard]] S_ByteRange Range() const { return {DataAt(), dwClaimed}; }
  [[nodiscard]] C_Bytes Bytes() const {
    return C_RiffBytes("WAVE").Chunk("fmt ", format).Chunk("data", dwClaimed, data).Take();
  }
};

C_Bytes Beginning(const C_Bytes& bytes, std::size_t cbLength) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cbLength)};
}

// The whole frames that the class library loads; empty when it refuses the file.
std::optional<C_Shorts> ByClassLibrary(const std::string& strPath) {
  const C_WavObjectPtr file = MakeWav();
  if (!file->LoadByName(strPath.c_str(), true, nullptr, nullptr)) return std::nullopt;
  const std::size_t nChannels = file->GetWavInfo()->GetChannels();
  const std::size_t nSamples = file->GetWavData()->GetBufferLength() / 2 / nChannels * nChannels;
  C_Shorts samples(nSamples);
  ConvertPcm({1, 16, false}, file->GetWavDataBuffer(), std::span(samples));
  return samples;
}

template <typename Source>
std::optional<C_Shorts> ByStream(const S_File& file, const C_Bytes& bytes, const S_ByteRange& range,
                                 std::size_t nAtOnce = 4096) {
  Source source(bytes);
  C_SampleStreamPtr stream;
  if (StatusOf([&] { stream = OpenCompressedStream(source, range, file.format); }) != VOXPLAY_OK) {
    return std::nullopt;
  }
  auto samples = ReadRest<std::int16_t>(*stream, nAtOnce);
  EXPECT_EQ(stream->FrameCount(), samples.size() / stream->ChannelCount());
  EXPECT_EQ(stream->Position(), samples.size() / stream->ChannelCount());
  EXPECT_EQ(stream->DamagedFrames(), 0U);
  return samples;
}

// Shapes of blocks: usual ones, those that hold more or less than they say, tiny ones.
std::vector<S_Blocks> Shapes() {
  std::vector<S_Blocks> shapes;
  for (const std::uint16_t wChannels : std::to_array<std::uint16_t>({1, 2, 3, 8})) {
    const auto Bytes = [&](unsigned int dwEach) {
      return static_cast<std::uint16_t>(dwEach * wChannels);
    };
    shapes.push_back({WAVE_TAG_ALAW, wChannels, wChannels, 0, 8});
    shapes.push_back({WAVE_TAG_MULAW, wChannels, wChannels, 0, 8});
    shapes.push_back({WAVE_TAG_MS_ADPCM, wChannels, Bytes(23), 34, 4});
    shapes.push_back({WAVE_TAG_MS_ADPCM, wChannels, Bytes(23), 40, 4});
    shapes.push_back({WAVE_TAG_MS_ADPCM, wChannels, Bytes(23), 5, 4});
    shapes.push_back({WAVE_TAG_MS_ADPCM, wChannels, Bytes(9), 0, 4});
    shapes.push_back({WAVE_TAG_MS_ADPCM, wChannels, 5, 1, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(20), 33, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(20), 36, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(20), 300, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(20), 2, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, 1, 1, 4});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(28), 65, 3});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(17), 33, 3});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(28), 1, 3});
    shapes.push_back({WAVE_TAG_DVI_ADPCM, wChannels, Bytes(28), 0, 3});
  }
  return shapes;
}

std::string NameOf(const S_Blocks& shape) {
  return "tag " + std::to_string(shape.wTag) + ", " + std::to_string(shape.wChannels) +
         " channels, blocks of " + std::to_string(shape.wBlockAlign) + " bytes and " +
         std::to_string(shape.wSamplesPerBlock) + " frames, " + std::to_string(shape.wBits) +
         " bits";
}

// Mostly up to dwUsual, sometimes anything that 16 bits hold.
class C_Numbers {
 public:
  std::uint16_t Number(unsigned int dwUsual) {
    const auto dwRandom = static_cast<unsigned int>(m_engine());
    return static_cast<std::uint16_t>(dwRandom >> 26U == 0 ? dwRandom : dwRandom % (dwUsual + 1));
  }
  std::uint32_t Seed() { return static_cast<std::uint32_t>(m_engine()); }
  S_Blocks Shape() {
    constexpr std::uint16_t kTags[] = {2, 2, 2, 6, 7, 11, 11, 11};
    return {kTags[m_engine() % 8], Number(3), Number(60), Number(130),
            Number(1) == 0 ? std::uint16_t{4} : Number(5)};
  }

 private:
  std::mt19937 m_engine{13};
};

}  // namespace

TEST(CompressedStream, FilesCutAtEveryByte_HaveTheSamplesOfTheClassLibrary) {
  for (const S_Blocks& shape : Shapes()) {
    const S_File file(BlockFmt(shape), Noise(3 * std::size_t{shape.wBlockAlign} + 2));
    const C_SweepFile sweep(file.Bytes());
    for (std::size_t cbLength = sweep.Bytes().size(); cbLength >= file.DataAt(); --cbLength) {
      sweep.CutTo(cbLength);
      const auto expected = ByClassLibrary(sweep.Path());
      const C_Bytes bytes = Beginning(sweep.Bytes(), cbLength);
      ASSERT_EQ(ByStream<C_MemorySourceForTests>(file, bytes, file.Range()), expected)
          << NameOf(shape) << ", " << cbLength - file.DataAt();
      ASSERT_EQ(ByStream<C_ShownSource>(file, bytes, file.Range()), expected)
          << NameOf(shape) << ", " << cbLength - file.DataAt();
      ASSERT_EQ(ByStream<C_ForwardSource>(file, bytes, file.Range(), 5), expected)
          << NameOf(shape) << ", " << cbLength - file.DataAt();
      ASSERT_EQ(ByStream<C_ForwardSource>(file, bytes, {file.DataAt(), kToTheEnd}), expected)
          << NameOf(shape) << ", " << cbLength - file.DataAt();
    }
  }
}

TEST(CompressedStream, PiecesOfAnySize_GiveTheSamplesOfTheClassLibrary) {
  for (const S_Blocks& shape : Shapes()) {
    const S_File file(BlockFmt(shape), Noise(12'000));
    const C_SweepFile sweep(file.Bytes());
    const auto expected = ByClassLibrary(sweep.Path());
    for (const std::size_t nAtOnce : std::to_array<std::size_t>({1, 7, 1000, 1'000'000})) {
      ASSERT_EQ(ByStream<C_MemorySourceForTests>(file, sweep.Bytes(), file.Range(), nAtOnce),
                expected)
          << NameOf(shape) << ", " << nAtOnce;
    }
  }
}

TEST(CompressedStream, LongSounds_GiveTheSamplesOfTheClassLibrary) {
  const std::vector<S_Blocks> shapes = {{WAVE_TAG_MS_ADPCM, 1, 256, 500, 4},
                                        {WAVE_TAG_MS_ADPCM, 2, 2048, 2036, 4},
                                        {WAVE_TAG_MS_ADPCM, 2, 65535, 65524, 4},
                                        {WAVE_TAG_DVI_ADPCM, 2, 2048, 2041, 4},
                                        {WAVE_TAG_DVI_ADPCM, 1, 256, 505, 4},
                                        {WAVE_TAG_DVI_ADPCM, 2, 1024, 1697, 3},
                                        {WAVE_TAG_MULAW, 2, 2, 0, 8}};
  for (const S_Blocks& shape : shapes) {
    const S_File file(BlockFmt(shape), Noise(400'001));
    const C_SweepFile sweep(file.Bytes());
    const auto expected = ByClassLibrary(sweep.Path());
    ASSERT_TRUE(expected);
    EXPECT_EQ(ByStream<C_MemorySourceForTests>(file, sweep.Bytes(), file.Range()), expected)
        << NameOf(shape);
    EXPECT_EQ(ByStream<C_ShownSource>(file, sweep.Bytes(), file.Range()), expected)
        << NameOf(shape);
    EXPECT_EQ(ByStream<C_ForwardSource>(file, sweep.Bytes(), {file.DataAt(), kToTheEnd}), expected)
        << NameOf(shape);
  }
}

TEST(CompressedStream, RandomFormats_AreReadAndRefusedAsByTheClassLibrary) {
  C_Numbers numbers;
  int nRead = 0;
  for (int i = 0; i < 2000; ++i) {
    const S_Blocks shape = numbers.Shape();
    // Long silence takes long to compare.
    const std::size_t cbMost = shape.wSamplesPerBlock > 1000 ? 100 : 3000;
    S_File file(BlockFmt(shape, Noise(std::size_t{4} * numbers.Number(9) % 400, numbers.Seed())),
                Noise(numbers.Number(400) % cbMost, numbers.Seed()));
    if (numbers.Number(20) == 0) file.format.resize(numbers.Number(30));
    if (numbers.Number(20) == 0) file.dwClaimed = numbers.Seed();
    if (numbers.Number(200) == 0) file.dwClaimed = 0xFFFFFFFF;
    const C_SweepFile sweep(file.Bytes());
    const auto expected = ByClassLibrary(sweep.Path());
    nRead += expected ? 1 : 0;
    ASSERT_EQ(ByStream<C_MemorySourceForTests>(file, sweep.Bytes(), file.Range()), expected)
        << NameOf(shape) << ", number " << i;
    ASSERT_EQ(ByStream<C_ShownSource>(file, sweep.Bytes(), file.Range()), expected)
        << NameOf(shape) << ", number " << i;
  }
  EXPECT_GT(nRead, 800);
  EXPECT_LT(nRead, 1900);
}

TEST(CompressedStream, EverySeek_GoesOnAsSequentialReadingDoes) {
  for (const S_Blocks& shape : Shapes()) {
    const S_File file(BlockFmt(shape), Noise(2 * std::size_t{shape.wBlockAlign} + 40));
    C_MemorySourceForTests source(file.Bytes());
    const auto stream = OpenCompressedStream(source, file.Range(), file.format);
    const C_Shorts all = ReadRest<std::int16_t>(*stream);
    const std::uint64_t qwFrames = all.size() / shape.wChannels;
    for (std::uint64_t qwFrame = 0; qwFrame <= qwFrames; ++qwFrame) {
      const std::uint64_t qwTo = qwFrame * 7 % (qwFrames + 1);
      stream->Seek(qwTo);
      EXPECT_EQ(stream->Position(), qwTo);
      const auto nSkipped = static_cast<std::ptrdiff_t>(qwTo * shape.wChannels);
      ASSERT_EQ(ReadRest<std::int16_t>(*stream, 50), C_Shorts(all.begin() + nSkipped, all.end()))
          << NameOf(shape) << ", " << qwTo;
    }
    EXPECT_EQ(StatusOf([&] { stream->Seek(qwFrames + 1); }), VOXPLAY_BAD_ARGUMENT);
  }
}

TEST(CompressedStream, SeeksAcrossWindows_GiveTheSameSamples) {
  const S_Blocks shape = {WAVE_TAG_MS_ADPCM, 2, 512, 500, 4};
  const S_File file(BlockFmt(shape), Noise(300'000));
  C_MemorySourceForTests source(file.Bytes());
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  const C_Shorts all = ReadRest<std::int16_t>(*stream);
  C_Numbers numbers;
  for (int i = 0; i < 300; ++i) {
    const std::uint64_t qwTo = numbers.Seed() % *stream->FrameCount();
    stream->Seek(qwTo);
    const C_Shorts some = ReadFrames<std::int16_t>(*stream, 700);
    ASSERT_TRUE(
        std::equal(some.begin(), some.end(), all.begin() + static_cast<std::ptrdiff_t>(qwTo * 2)));
  }
}

TEST(CompressedStream, WiderSamples_AreThoseOf16BitsScaled) {
  const S_Blocks shape = {WAVE_TAG_DVI_ADPCM, 3, 60, 33, 4};
  const S_File file(BlockFmt(shape), Noise(30'000));
  C_MemorySourceForTests source(file.Bytes());
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  const C_Shorts shorts = ReadRest<std::int16_t>(*stream);
  stream->Seek(0);
  const auto longs = ReadRest<std::int32_t>(*stream, 3000);
  stream->Seek(0);
  const auto floats = ReadRest<float>(*stream, 2999);
  ASSERT_EQ(longs.size(), shorts.size());
  ASSERT_EQ(floats.size(), shorts.size());
  for (std::size_t i = 0; i < shorts.size(); ++i) {
    ASSERT_EQ(longs[i], shorts[i] * 65536);
    ASSERT_EQ(floats[i], static_cast<float>(shorts[i]) / 32768.0F);
  }
}

TEST(CompressedStream, FramesOfMoreThan4096Channels_AreWidened) {
  const S_File file(BlockFmt({WAVE_TAG_MULAW, 65535, 1, 0, 8}), Noise(65535 * 2 + 9));
  C_MemorySourceForTests source(file.Bytes());
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  const C_Shorts shorts = ReadRest<std::int16_t>(*stream);
  ASSERT_EQ(shorts.size(), 65535U * 2);
  stream->Seek(0);
  const auto longs = ReadRest<std::int32_t>(*stream, 5);
  ASSERT_EQ(longs.size(), 65535U * 2);
  EXPECT_EQ(longs.back(), shorts.back() * 65536);
}

TEST(CompressedStream, ForwardSource_SeeksForwardAcrossBlocks) {
  const S_Blocks shape = {WAVE_TAG_DVI_ADPCM, 1, 256, 505, 4};
  const S_File file(BlockFmt(shape), Noise(256 * 400 + 50));
  C_MemorySourceForTests whole(file.Bytes());
  const C_Shorts all =
      ReadRest<std::int16_t>(*OpenCompressedStream(whole, file.Range(), file.format));
  C_ForwardSource source(file.Bytes());
  const auto stream = OpenCompressedStream(source, {file.DataAt(), kToTheEnd}, file.format);
  EXPECT_EQ(stream->FrameCount(), std::nullopt);
  stream->Seek(50);
  stream->Seek(150'000);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 1), C_Shorts{all[150'000]});
  EXPECT_EQ(StatusOf([&] { stream->Seek(3); }), VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(stream->Position(), 150'001U);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), C_Shorts(all.begin() + 150'001, all.end()));
  EXPECT_EQ(stream->FrameCount(), all.size());
}

TEST(CompressedStream, SizeThatReachesTheLargestPosition_IsNotKnown) {
  const S_File file(BlockFmt({WAVE_TAG_MULAW, 1, 1, 0, 8}), Noise(100));
  C_ForwardSource source(file.Bytes());
  const S_ByteRange range = {file.DataAt(), kToTheEnd - file.DataAt()};
  const auto stream = OpenCompressedStream(source, range, file.format);
  EXPECT_EQ(stream->FrameCount(), std::nullopt);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream).size(), 100U);
}

TEST(CompressedStream, SeekBeyondAnEndThatIsNotKnown_IsRefused) {
  for (const S_Blocks& shape : OneOfEachKind()) {
    const S_File file(BlockFmt(shape), Noise(1000));
    C_ForwardSource source(file.Bytes());
    const auto stream = OpenCompressedStream(source, {file.DataAt(), kToTheEnd}, file.format);
    EXPECT_EQ(StatusOf([&] { stream->Seek(std::numeric_limits<std::uint64_t>::max()); }),
              VOXPLAY_BAD_ARGUMENT);
  }
}

TEST(CompressedStream, SeekBeyondAnEndThatIsNotKnown_EndsAtTheEnd) {
  for (const S_Blocks& shape : Shapes()) {
    const S_File file(BlockFmt(shape), Noise(100'000));
    C_MemorySourceForTests whole(file.Bytes());
    const auto length = OpenCompressedStream(whole, file.Range(), file.format)->FrameCount();
    for (const std::uint64_t qwBeyond : {std::uint64_t{1}, std::uint64_t{1'000'000}}) {
      C_ForwardSource source(file.Bytes());
      const auto stream = OpenCompressedStream(source, {file.DataAt(), kToTheEnd}, file.format);
      ReadFrames<std::int16_t>(*stream, 3);
      // Of blocks without frames, the end shows with the first frame. Then the position stays.
      const std::uint64_t qwFound = stream->FrameCount() ? stream->Position() : *length;
      EXPECT_EQ(StatusOf([&] { stream->Seek(*length + qwBeyond); }), VOXPLAY_BAD_ARGUMENT)
          << NameOf(shape);
      EXPECT_EQ(stream->Position(), qwFound) << NameOf(shape);
      EXPECT_EQ(stream->FrameCount(), length) << NameOf(shape);
      const std::uint64_t qwLeft = *length - qwFound;
      EXPECT_EQ(ReadRest<std::int16_t>(*stream).size(), qwLeft * shape.wChannels) << NameOf(shape);
    }
  }
}

TEST(CompressedStream, ForwardInputThatFails_GivesTheFramesBefore) {
  const S_Blocks shape = {WAVE_TAG_MS_ADPCM, 1, 100, 188, 4};
  const S_File file(BlockFmt(shape), Noise(20'000));
  C_MemorySourceForTests whole(file.Bytes());
  const C_Shorts all =
      ReadRest<std::int16_t>(*OpenCompressedStream(whole, file.Range(), file.format));
  C_TestInput input(file.data);
  input.WithoutSeek().WithoutSize().WithoutTell().AtMost(1000).FailingAt(8);
  const auto source = OpenInputSource(input.Record());
  const auto stream = OpenCompressedStream(*source, {0, kToTheEnd}, file.format);
  C_Shorts samples = ReadFrames<std::int16_t>(*stream, all.size());
  EXPECT_GE(samples.size(), 69U * 188);
  EXPECT_EQ(StatusOf([&] { ReadFrames<std::int16_t>(*stream, 1); }), VOXPLAY_CANNOT_READ);
  const C_Shorts rest = ReadRest<std::int16_t>(*stream);
  samples.insert(samples.end(), rest.begin(), rest.end());
  EXPECT_EQ(samples, all);
}

TEST(CompressedStream, FramesBeforeABadPlace_AreReturnedBeforeTheFailure) {
  const S_Blocks shape = {WAVE_TAG_MS_ADPCM, 1, 100, 188, 4};
  const S_File file(BlockFmt(shape), Noise(1000));
  C_MemorySourceForTests whole(file.Bytes());
  const C_Shorts all =
      ReadRest<std::int16_t>(*OpenCompressedStream(whole, file.Range(), file.format));
  for (std::size_t cbGood = 0; cbGood < 1000; cbGood += 33) {
    C_BrokenSource source(file.Bytes(), file.DataAt() + cbGood);
    const auto stream = OpenCompressedStream(source, file.Range(), file.format);
    const std::size_t nGood = cbGood / 100 * 188;
    for (std::size_t nRead = 0; nRead < nGood;) {
      nRead += ReadFrames<std::int16_t>(*stream, 150).size();
    }
    EXPECT_EQ(stream->Position(), nGood);
    EXPECT_EQ(TextOf([&] { ReadFrames<std::int16_t>(*stream, 150); }), "bad sector");
    source.Repair();
    EXPECT_EQ(ReadRest<std::int16_t>(*stream),
              C_Shorts(all.begin() + static_cast<std::ptrdiff_t>(nGood), all.end()));
  }
}

TEST(CompressedStream, FailureThatPasses_IsStillTold) {
  const S_File file(BlockFmt({WAVE_TAG_MS_ADPCM, 1, 100, 188, 4}), Noise(40'000));
  C_HiccupSource source(file.Bytes());
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  std::size_t nFrames = 0;
  EXPECT_EQ(TextOf([&] {
              while (const std::size_t n = ReadFrames<std::int16_t>(*stream, 999).size()) {
                nFrames += n;
              }
            }),
            "bad sector");
  nFrames += ReadRest<std::int16_t>(*stream).size();
  EXPECT_EQ(nFrames, 400U * 188);
}

TEST(CompressedStream, WidenedFramesBeforeABadPlace_AreReturnedBeforeTheFailure) {
  const S_File file(BlockFmt({WAVE_TAG_MULAW, 1, 1, 0, 8}), Noise(20'000));
  C_BrokenSource source(file.Bytes(), file.DataAt() + 8192);
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  EXPECT_EQ(ReadFrames<float>(*stream, 15'000).size(), 8192U);
  EXPECT_EQ(TextOf([&] { ReadFrames<float>(*stream, 150); }), "bad sector");
  source.Repair();
  EXPECT_EQ(ReadRest<float>(*stream).size(), 11'808U);
}

TEST(CompressedStream, SourceThatBecameShorter_HasAShorterSound) {
  const S_Blocks shape = {WAVE_TAG_DVI_ADPCM, 1, 20, 33, 4};
  S_File file(BlockFmt(shape), Noise(200));
  class C_Shrunk final : public C_MemorySourceForTests {
   public:
    using C_MemorySourceForTests::C_MemorySourceForTests;
    [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return 10'000; }
  };
  file.dwClaimed = 5000;
  C_Shrunk source(file.Bytes());
  const auto stream = OpenCompressedStream(source, file.Range(), file.format);
  EXPECT_EQ(stream->FrameCount(), 5000U / 20 * 33);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream).size(), 330U);
  EXPECT_EQ(stream->FrameCount(), 330U);
}

TEST(CompressedStream, FormatsThatAreNone_AreRefusedWithAReason) {
  C_MemorySourceForTests source(C_Bytes(100));
  const auto Open = [&](const C_Bytes& format) {
    return TextOf([&] { OpenCompressedStream(source, {0, 100}, format); });
  };
  EXPECT_EQ(Open({}), "format: tag 0 is not supported");
  EXPECT_EQ(Open(BlockFmt({17, 1, 36, 65, 4})), "format: tag 17 is not supported");
  EXPECT_EQ(Open(BlockFmt({1, 1, 2, 0, 16})),
            "format: tag 1 with 16 bits is not a compressed kind that is supported");
  EXPECT_EQ(Open(BlockFmt({11, 1, 36, 65, 5})),
            "format: tag 11 with 5 bits is not a compressed kind that is supported");
  EXPECT_EQ(Open(BlockFmt({11, 0, 36, 65, 4})), "format: it has no channels");
  EXPECT_EQ(Open(BlockFmt({11, 1, 0, 65, 4})), "format: its blocks have no bytes");
  EXPECT_EQ(Open(Beginning(BlockFmt({6, 1, 1, 0, 8}), 15)), "format: it is cut");
  EXPECT_EQ(Open(Join({Beginning(BlockFmt({2, 1, 36, 65, 4}), 20), U16(65535), C_Bytes(400)})),
            "format: it is cut");
}

TEST(CompressedStream, SizesOf4GiB_AreRefused) {
  C_EndlessSource source(std::uint64_t{1} << 40U);
  const C_Bytes format = BlockFmt({WAVE_TAG_MULAW, 1, 1, 0, 8});
  const auto Status = [&](std::uint64_t qwSize) {
    return StatusOf([&] { OpenCompressedStream(source, {0, qwSize}, format); });
  };
  EXPECT_EQ(Status(0x7FFFFFFF), VOXPLAY_OK);
  EXPECT_EQ(Status(0x80000000), VOXPLAY_TOO_LARGE);
  EXPECT_EQ(Status(std::uint64_t{1} << 32U), VOXPLAY_TOO_LARGE);
  EXPECT_EQ(Status(kToTheEnd), VOXPLAY_TOO_LARGE);
}

TEST(CompressedStream, HostileBlocks_TakeLittleMemory) {
  for (const std::uint16_t wTag :
       std::to_array<std::uint16_t>({WAVE_TAG_MS_ADPCM, WAVE_TAG_DVI_ADPCM})) {
    for (const std::uint16_t wBits : std::to_array<std::uint16_t>({3, 4})) {
      for (const std::uint16_t wChannels :
           std::to_array<std::uint16_t>({1, 2, 9000, 16383, 65535})) {
        for (const std::uint16_t wBlockAlign : std::to_array<std::uint16_t>({1, 40, 65535})) {
          for (const std::uint16_t wSamples : std::to_array<std::uint16_t>({0, 1, 200, 65535})) {
            const S_File file(BlockFmt({wTag, wChannels, wBlockAlign, wSamples, wBits}),
                              Noise(70'000));
            C_ForwardSource source(file.Bytes());
            ResetLargestAllocation();
            static_cast<void>(StatusOf([&] {
              const S_ByteRange range = {file.DataAt(), kToTheEnd};
              const auto stream = OpenCompressedStream(source, range, file.format);
              C_Shorts frames(std::size_t{65535} * 2);  // at least two frames
              for (int i = 0; i < 50 && stream->Read(std::span(frames)) > 0; ++i) continue;
            }));
            EXPECT_LT(LargestAllocation(), 3'000'000U)
                << wChannels << " channels, " << wBlockAlign << " bytes, " << wSamples;
          }
        }
      }
    }
  }
}

TEST(CompressedStream, ShortBlocksThatClaimLongSounds_EndWithAReason) {
  const S_File file(BlockFmt({WAVE_TAG_MS_ADPCM, 1, 8, 65535, 4}), Noise(8 * 600));
  C_MemorySourceForTests source(file.Bytes());
  EXPECT_EQ(StatusOf([&] { OpenCompressedStream(source, file.Range(), file.format); }),
            VOXPLAY_DAMAGED);
  C_ForwardSource forward(file.Bytes());
  const auto stream = OpenCompressedStream(forward, {file.DataAt(), kToTheEnd}, file.format);
  C_Shorts frames(65535);
  std::uint64_t qwRead = 0;
  EXPECT_EQ(StatusOf([&] {
              while (const std::size_t nRead = stream->Read(std::span(frames))) qwRead += nRead;
            }),
            VOXPLAY_DAMAGED);
  EXPECT_EQ(qwRead, 65535U * 512);
}

}  // namespace api::test
