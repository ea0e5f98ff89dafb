// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "CompressedBytes.h"
#include "ReadSounds.h"
#include "WavBytes.h"

namespace {

using api::test::FailureOf;
using api::test::FailureOfOpening;
using api::test::OpenBytes;
using api::test::SamplesOf;
using C_Samples16 = std::vector<std::int16_t>;

C_Bytes WavBytes(const C_Bytes& fmt, const C_Bytes& data) {
  return C_RiffBytes("WAVE").Chunk("fmt ", fmt).Chunk("data", data).Take();
}

// A source with a RIFF file of which only the first bytes are in memory; the others are zeros.
class C_VastSource final : public api::I_ByteSource {
 public:
  C_VastSource(C_Bytes bytes, std::uint64_t qwLength)
      : m_bytes(std::move(bytes)), m_qwLength(qwLength) {}
  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return m_qwLength; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwAt, std::span<std::uint8_t> bytes) override {
    if (qwAt >= m_qwLength) return 0;
    std::memset(bytes.data(), 0, bytes.size());
    for (std::size_t i = 0; i < bytes.size() && qwAt + i < m_bytes.size(); ++i) {
      bytes[i] = m_bytes[static_cast<std::size_t>(qwAt) + i];
    }
    return bytes.size();
  }

 private:
  C_Bytes m_bytes;
  std::uint64_t m_qwLength;
};

}  // namespace

TEST(ReaderWav, PcmOf16Bits_IsReadAsItIs) {
  const C_Bytes file = WavBytes(FmtBytes(1, 2, 44100, 16), Shorts({1, -1, 300, -32768, 32767, 0}));
  const auto reader = OpenBytes(file);
  const voxplay_info info = reader->Info();
  EXPECT_EQ(info.container, std::uint32_t{VOXPLAY_CONTAINER_WAV});
  EXPECT_EQ(info.codec, std::uint32_t{VOXPLAY_CODEC_PCM});
  EXPECT_EQ(info.sample_rate, 44100u);
  EXPECT_EQ(info.channels, 2u);
  EXPECT_EQ(info.frames, 3u);
  EXPECT_EQ(info.bits_per_sample, 16u);
  EXPECT_EQ(info.stored_bits, 16u);
  EXPECT_EQ(info.bit_rate, 1411200u);
  EXPECT_EQ(info.has_stream, 0u);
  EXPECT_EQ(info.damaged_frames, 0u);
  EXPECT_EQ(SamplesOf(*reader), (C_Samples16{1, -1, 300, -32768, 32767, 0}));
  EXPECT_EQ(reader->Headers().has_sp, 0u);
}

TEST(ReaderWav, FileThatLacksItsLastChunk_IsCut) {
  C_Bytes file = MonoWav(100).Chunk("bext", RampBytes(20)).Take();
  EXPECT_EQ(OpenBytes(file)->Info().is_cut, 0u);
  file.resize(144);
  EXPECT_EQ(OpenBytes(file)->Info().is_cut, 1u);
  EXPECT_EQ(OpenBytes(file)->Info().frames, 50u);
  EXPECT_EQ(OpenBytes(file)->Info().claimed_frames, 0u);
}

TEST(ReaderWav, Vemd_IsAContainerOfItsOwn) {
  const auto reader = OpenBytes(MonoWav(10, "VEMD").Take());
  EXPECT_EQ(reader->Info().container, std::uint32_t{VOXPLAY_CONTAINER_VEMD});
  EXPECT_EQ(reader->Info().frames, 5u);
}

TEST(ReaderWav, SamplesOf12Bits_UseTheHighOnesOf16) {
  const auto reader = OpenBytes(WavBytes(FmtBytes(1, 1, 8000, 12), Shorts({0x7FF0, -32768})));
  EXPECT_EQ(reader->Info().bits_per_sample, 12u);
  EXPECT_EQ(reader->Info().stored_bits, 16u);
  EXPECT_EQ(SamplesOf(*reader), (C_Samples16{0x7FF0, -32768}));
}

TEST(ReaderWav, FloatAndExtensible_AreRead) {
  const C_Bytes data =
      Join({U32(std::bit_cast<std::uint32_t>(0.5F)), U32(std::bit_cast<std::uint32_t>(-1.0F))});
  const auto reader = OpenBytes(WavBytes(FmtBytes(3, 1, 8000, 32), data));
  EXPECT_EQ(reader->Info().codec, std::uint32_t{VOXPLAY_CODEC_FLOAT});
  EXPECT_EQ(SamplesOf(*reader), (C_Samples16{16384, -32768}));
  const C_Bytes extensible =
      Join({FmtBytes(0xFFFE, 1, 48000, 24),
            U16(22),
            U16(20),
            U32(4),
            U16(1),
            {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}});
  const auto reader24 = OpenBytes(WavBytes(extensible, {0x00, 0x34, 0x12}));
  EXPECT_EQ(reader24->Info().bits_per_sample, 20u);
  EXPECT_EQ(reader24->Info().stored_bits, 24u);
  EXPECT_EQ(SamplesOf(*reader24), (C_Samples16{0x1234}));
}

TEST(ReaderWav, ExtensibleMulaw_IsDecoded) {
  const C_Bytes extensible =
      Join({FmtBytes(0xFFFE, 1, 8000, 8),
            U16(22),
            U16(8),
            U32(4),
            U16(7),
            {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}});
  const auto plain = OpenBytes(WavBytes(FmtBytes(7, 1, 8000, 8), RampBytes(50)));
  const auto reader = OpenBytes(WavBytes(extensible, RampBytes(50)));
  EXPECT_EQ(reader->Info().codec, std::uint32_t{VOXPLAY_CODEC_MULAW});
  EXPECT_EQ(reader->Info().bit_rate, 64000u);
  EXPECT_EQ(SamplesOf(*reader), SamplesOf(*plain));
}

TEST(ReaderWav, SizesFromAPipe_ReachToTheEnd) {
  for (const std::uint32_t dwSize : {0u, 0xFFFFFFFFu}) {
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", dwSize, Shorts({5, 6, 7}));
    const auto reader = OpenBytes(riff.RiffSize(dwSize).Take());
    EXPECT_EQ(reader->Info().frames, 3u);
    EXPECT_EQ(SamplesOf(*reader), (C_Samples16{5, 6, 7}));
    EXPECT_EQ(reader->Info().damaged_frames, 0u);
  }
}

TEST(ReaderWav, CompressedSizesFromAPipe_ReachToTheEnd) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(6, 1, 16000, 8)).Chunk("data", 0xFFFFFFFF, RampBytes(30));
  EXPECT_EQ(OpenBytes(riff.RiffSize(0xFFFFFFFF).Take())->Info().frames, 30u);
}

TEST(ReaderWav, Rf64_IsAWavFile) {
  const C_Bytes ds64 = Join({U32(84), U32(0), U32(4), U32(0), U32(2), U32(0), U32(0)});
  const C_Bytes file =
      Join({Ascii("RF64"), U32(0xFFFFFFFF), Ascii("WAVE"), ChunkBytes("ds64", ds64),
            ChunkBytes("fmt ", FmtBytes(1, 1, 16000, 16)),
            ChunkBytes("data", 0xFFFFFFFF, Shorts({8, 9})), ChunkBytes("bext", {1, 2, 3})});
  const auto reader = OpenBytes(file);
  EXPECT_EQ(reader->Info().container, std::uint32_t{VOXPLAY_CONTAINER_WAV});
  EXPECT_EQ(SamplesOf(*reader), (C_Samples16{8, 9}));
}

TEST(ReaderWav, MissingTail_IsZeroAndDamaged) {
  C_Bytes file = MonoWav(100).Take();
  file.resize(file.size() - 40);
  const auto reader = OpenBytes(file);
  EXPECT_EQ(reader->Info().frames, 50u);
  const C_Samples16 samples = SamplesOf(*reader);
  ASSERT_EQ(samples.size(), 50u);
  EXPECT_EQ(samples[29], 0x3C3B);
  EXPECT_EQ(samples[30], 0);
  EXPECT_EQ(reader->Info().damaged_frames, 20u);
}

// Up to there, a file is taken for one that was cut; beyond it, its program could not go back to
// write the size.
TEST(ReaderWav, MoreThan64MiBMissing_EndsWithTheFile) {
  constexpr std::uint32_t kMost = 64U << 20U;
  const auto fileOf = [](const char* pszForm, std::uint32_t dwMissing) {
    C_RiffBytes riff(pszForm);
    riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 2 + dwMissing, {1, 2});
    return riff.Take();
  };
  EXPECT_EQ(OpenBytes(fileOf("WAVE", kMost))->Info().frames, 33554433u);
  const auto reader = OpenBytes(fileOf("WAVE", kMost + 1));
  EXPECT_EQ(reader->Info().frames, 1u);
  EXPECT_EQ(SamplesOf(*reader), C_Samples16{0x0201});
  EXPECT_EQ(reader->Info().damaged_frames, 0u);
  const auto failed = FailureOfOpening(fileOf("VEMD", kMost + 1));
  EXPECT_EQ(failed.eStatus, VOXPLAY_DAMAGED);
  EXPECT_EQ(failed.strText, "data: 67108865 bytes are missing");
}

TEST(ReaderWav, LargestSizesOfPipes_EndWithTheFile) {
  C_RiffBytes pcm("WAVE");
  pcm.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0x7FFFF000, Shorts({5, 6, 7}));
  EXPECT_EQ(SamplesOf(*OpenBytes(pcm.RiffSize(0x7FFFF024).Take())), (C_Samples16{5, 6, 7}));
  C_RiffBytes alaw("WAVE");
  alaw.Chunk("fmt ", FmtBytes(6, 1, 16000, 8)).Chunk("data", 0x80000000, RampBytes(30));
  EXPECT_EQ(OpenBytes(alaw.Take())->Info().frames, 30u);
}

TEST(ReaderWav, CompressedClaimOf4GiBDecoded_IsRefused) {
  C_RiffBytes riff("VEMD");
  riff.Chunk("fmt ", FmtBytes(6, 1, 16000, 8)).Chunk("data", 0x80000000, RampBytes(30));
  const auto failed = FailureOfOpening(riff.Take());
  EXPECT_EQ(failed.eStatus, VOXPLAY_TOO_LARGE);
  EXPECT_EQ(failed.strText, "data: 2147483648 bytes decode to 4 GiB or more");
}

TEST(ReaderWav, FileWithoutData_HasNoFrames) {
  const auto reader = OpenBytes(C_RiffBytes("WAVE").Chunk("fmt ", FmtBytes(1, 1, 8000, 8)).Take());
  EXPECT_EQ(reader->Info().frames, 0u);
  EXPECT_TRUE(SamplesOf(*reader).empty());
}

TEST(ReaderWav, Refusals_NameWhatIsWrong) {
  const auto textOf = [](const C_Bytes& file) { return FailureOfOpening(file).strText; };
  EXPECT_EQ(textOf(WavBytes(FmtBytes(0x11, 1, 8000, 4), {})),
            "fmt chunk: format tag 0x0011 is not supported");
  EXPECT_EQ(textOf(C_RiffBytes("WAVE").Chunk("data", {1}).Take()), "chunks: the format is missing");
  EXPECT_EQ(textOf(WavBytes(FmtBytes(1, 1, 8000, 40), {})),
            "fmt chunk: PCM of 40 bits, 1 channel, 8000 Hz is not supported");
  EXPECT_EQ(textOf(WavBytes(BlockFmt({11, 1, 16, 17, 5}), {})),
            "fmt chunk: DVI ADPCM of 5 bits, 1 channel, 8000 Hz is not supported");
  EXPECT_EQ(textOf(C_RiffBytes("WAVE").Chunk("fmt ", 40, FmtBytes(1, 1, 8000, 8)).Take()),
            "fmt chunk: the file ends within it");
}

TEST(ReaderWav, FormatsThatAreRefused_CountEvenBeforeOneThatIsNot) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(0x55, 1, 8000, 16)).Chunk("fmt ", FmtBytes(1, 1, 8000, 16));
  EXPECT_EQ(FailureOfOpening(riff.Take()).eStatus, VOXPLAY_UNSUPPORTED);
}

TEST(ReaderWav, Notes_AreThoseOfTheChunks) {
  C_RiffBytes riff = MonoWav(100);
  riff.Chunk("cue ", CueBytes({{1, 30, 30}})).Chunk("LIST", AdtlBytes({LablBytes(1, "u_3_7")}));
  riff.Chunk("bext", {1, 2, 3}).Raw({0}).Chunk("JUNK", C_Bytes(20)).Chunk("fact", U32(50));
  riff.Chunk("JUNK", {1, 0});
  const auto reader = OpenBytes(riff.Take());
  const api::S_Notes& notes = reader->Notes();
  ASSERT_EQ(notes.events.size(), 1u);
  EXPECT_EQ(notes.events[0].qwFrame, 30u);
  EXPECT_EQ(notes.events[0].wMain, 3);
  EXPECT_EQ(notes.events[0].wSub, 7);
  // Padding goes, and "fact" says what the samples say. JUNK that is not empty stays.
  ASSERT_EQ(notes.chunks.size(), 2u);
  EXPECT_EQ(notes.chunks[0].data, (C_Bytes{1, 2, 3}));
  EXPECT_EQ(notes.chunks[1].data, (C_Bytes{1, 0}));
}

TEST(ReaderWav, ChunksOfMoreThanAGibibyte_AreRefusedBeforeTheyAreLoaded) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 8)).Chunk("data", {}).Chunk("abcd", (1U << 30U) + 1, {});
  auto source =
      std::make_unique<C_VastSource>(riff.RiffSize(0x60000000).Take(), std::uint64_t{5} << 30);
  const auto failed = FailureOf([&] { return api::C_Reader::Open(std::move(source), 0); });
  EXPECT_EQ(failed.eStatus, VOXPLAY_UNSUPPORTED);
  EXPECT_EQ(failed.strText, "chunks: those beside the samples take more than 1 GiB");
}

TEST(ReaderWav, PaddingOfMoreThanAGibibyte_DoesNotCount) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 8)).Chunk("data", {}).Chunk("JUNK", (1U << 30U) + 9, {});
  auto source = std::make_unique<C_VastSource>(riff.RiffSize(0x60000000).Take(),
                                               (std::uint64_t{1} << 30) + 1000);
  const auto reader = api::C_Reader::Open(std::move(source), 0);
  EXPECT_TRUE(reader->Notes().chunks.empty());
}

TEST(ReaderWav, FileBeyond4GiB_IsReadToItsEnd) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 8)).Chunk("data", 0xFFFFFFFF, {});
  auto source =
      std::make_unique<C_VastSource>(riff.RiffSize(0xFFFFFFFF).Take(), std::uint64_t{6} << 30);
  const auto reader = api::C_Reader::Open(std::move(source), 0);
  EXPECT_EQ(reader->Info().frames, (std::uint64_t{6} << 30) - 44);
  reader->Samples().Seek((std::uint64_t{6} << 30) - 46);
  EXPECT_EQ(SamplesOf(*reader), (C_Samples16{-32768, -32768}));
}
