// SPDX-License-Identifier: Apache-2.0
//
// Ten hours of sound take as little memory as ten minutes: the sources make up their bytes.
#include <gtest/gtest.h>
#include <malloc.h>

#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "LargestAllocation.h"
#include "StreamsForTests.h"
#include "stream/HeronStream.h"
#include "stream/KestrelStream.h"

namespace api::test {
namespace {

constexpr std::uint64_t kTenHours = 36000;  // seconds
constexpr std::uint64_t kMinute = 60 * 16000;
constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// The bytes of all objects of the program. 0 under a sanitizer, which has memory of its own.
std::size_t LiveMemory() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// A head, then records of one size, which are made as they are read.
class C_MadeUpSource : public I_ByteSource {
 public:
  C_MadeUpSource(Bytes head, std::size_t cbRecord, std::uint64_t qwRecords)
      : m_head(std::move(head)), m_record(cbRecord), m_qwRecords(qwRecords) {}

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override {
    return m_head.size() + m_record.size() * m_qwRecords;
  }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    std::size_t nDone = 0;
    while (nDone < bytes.size() && qwPosition + nDone < *Length()) {
      const auto from = At(qwPosition + nDone);
      const auto part = from.first(std::min(from.size(), bytes.size() - nDone));
      std::ranges::copy(part, bytes.begin() + static_cast<std::ptrdiff_t>(nDone));
      nDone += part.size();
    }
    m_qwRead += nDone;
    return nDone;
  }
  [[nodiscard]] std::uint64_t BytesRead() const noexcept { return m_qwRead; }

 protected:
  virtual void Make(std::uint64_t qwRecord, std::span<std::uint8_t> record) = 0;

 private:
  std::span<const std::uint8_t> At(std::uint64_t qwPosition) {
    if (qwPosition < m_head.size()) return std::span(m_head).subspan(qwPosition);
    const std::uint64_t qwAfter = qwPosition - m_head.size();
    Make(qwAfter / m_record.size(), m_record);
    return std::span(m_record).subspan(qwAfter % m_record.size());
  }

  Bytes m_head;
  Bytes m_record;
  std::uint64_t m_qwRecords;
  std::uint64_t m_qwRead = 0;
};

// Frames of a voice, over and over.
class C_LongKestrel final : public C_MadeUpSource {
 public:
  static constexpr std::uint64_t kFrames = kTenHours * 50;

  C_LongKestrel() : C_MadeUpSource(Head(), 40, kFrames) {}

 private:
  static Bytes Head() {
    return C_KestrelBytes(16000).Claim(static_cast<std::uint32_t>(2 + kFrames * 40)).Take();
  }
  void Make(std::uint64_t qwRecord, std::span<std::uint8_t> record) override {
    const std::uint64_t qwAt = 6 + qwRecord % 500 * 40;
    std::copy_n(m_voice.begin() + static_cast<std::ptrdiff_t>(qwAt), 40, record.begin());
  }

  Bytes m_voice = C_KestrelBytes(16000).Voice(500).Take();
};

// One block, over and over, with the number and the check that belong to its place.
class C_LongHeron final : public C_MadeUpSource {
 public:
  static constexpr std::uint64_t kSamples = kTenHours * 16000;

  explicit C_LongHeron(const Bytes& run)
      : C_MadeUpSource(Head(), run.size() + heron::kBlockHeadBytes,
                       kSamples / heron::BlockLength(16000)),
        m_run(run) {}

 private:
  static Bytes Head() {
    Bytes head = {4, 0, 0, 0};
    heron::AppendCount(head, kSamples);
    return head;
  }
  void Make(std::uint64_t qwRecord, std::span<std::uint8_t> record) override {
    Bytes& block = m_blocks[qwRecord % 256];
    if (block.empty()) heron::AppendBlock(block, qwRecord, m_run);
    std::ranges::copy(block, record.begin());
  }

  Bytes m_run;
  std::array<Bytes, 256> m_blocks;
};

Bytes RunOf(const std::vector<short>& samples) {
  const auto pieces = heron::test::PiecesOf(heron::test::Coded(samples, 16000, 2), 16000);
  return {pieces.between[0].begin() + heron::kBlockHeadBytes, pieces.between[0].end()};
}

// Reads so many samples, and returns the most memory that was live meanwhile.
std::size_t ReadSamples(I_SampleStream& stream, std::uint64_t qwSamples) {
  static std::array<std::int16_t, 8000> samples;
  std::size_t cbMost = LiveMemory();
  for (std::uint64_t qwDone = 0; qwDone < qwSamples; qwDone += samples.size()) {
    EXPECT_EQ(stream.Read(std::span(samples)), samples.size());
    cbMost = std::max(cbMost, LiveMemory());
  }
  return cbMost;
}

TEST(StreamMemory, TenHoursOfKestrel_TakeLessThanAMebibyte) {
  C_LongKestrel source;
  const std::size_t cbBefore = LiveMemory();
  ResetLargestAllocation();
  const auto opened = OpenKestrelStream(source, kWhole);
  EXPECT_EQ(opened.stream->FrameCount(), kTenHours * 16000);
  EXPECT_LT(ReadSamples(*opened.stream, 10 * kMinute) - cbBefore, kMebibyte);
  opened.stream->Seek(40 * kMinute);
  EXPECT_LT(ReadSamples(*opened.stream, kMinute) - cbBefore, kMebibyte);
  EXPECT_LT(LargestAllocation(), kMebibyte);
  EXPECT_EQ(opened.stream->DamagedFrames(), 0U);
}

TEST(StreamMemory, TenHoursOfHeron_TakeLessThanFourMebibytes) {
  C_LongHeron source(RunOf(TestVoice(2 * heron::BlockLength(16000))));
  for (std::size_t n = 0; n < 256; ++n) {
    std::array<std::uint8_t, 1> byte{};
    source.ReadSome(12 + n * ((*source.Length() - 9) / 9000), byte);
  }
  const std::uint64_t qwRead = source.BytesRead();
  const std::size_t cbBefore = LiveMemory();
  ResetLargestAllocation();
  const auto opened = OpenHeronStream(source, kWhole, 16000);
  EXPECT_EQ(opened.stream->FrameCount(), kTenHours * 16000);
  // The heads of all blocks and the first block are read.
  EXPECT_LT(source.BytesRead() - qwRead, 200000U);
  EXPECT_LT(ReadSamples(*opened.stream, kMinute) - cbBefore, 4 * kMebibyte);
  opened.stream->Seek(kTenHours * 16000 - kMinute);
  EXPECT_LT(ReadSamples(*opened.stream, kMinute) - cbBefore, 4 * kMebibyte);
  EXPECT_LT(LargestAllocation(), kMebibyte);
  EXPECT_EQ(opened.stream->DamagedFrames(), 0U);
}

TEST(StreamMemory, TenHoursOfSilentHeron_AreReadToTheEnd) {
  C_LongHeron source(RunOf(std::vector<short>(2 * heron::BlockLength(16000))));
  const std::size_t cbBefore = LiveMemory();
  const auto opened = OpenHeronStream(source, kWhole, 16000);
  EXPECT_LT(ReadSamples(*opened.stream, kTenHours * 16000) - cbBefore, 4 * kMebibyte);
  std::array<std::int16_t, 1> sample{};
  EXPECT_EQ(opened.stream->Read(std::span(sample)), 0U);
}

// A head and a check that are right, around a run of 16 MiB that no block can have.
TEST(StreamMemory, ARunThatIsTooLong_IsNotTakenIntoMemory) {
  heron::test::S_Pieces pieces;
  pieces.qwCount = 2 * heron::BlockLength(16000);
  pieces.Add(0, Bytes(heron::kMaxRunBytes, 0x5A));
  pieces.Add(1, RunOf(std::vector<short>(2 * heron::BlockLength(16000))));
  C_MemorySourceForTests source(
      C_HeronBytes(heron::test::kKinds[3], {1}, 16000).Coded(pieces.Joined()).Take());
  ResetLargestAllocation();
  const auto opened = OpenHeronStream(source, kWhole, 16000);
  ReadSamples(*opened.stream, 2 * heron::BlockLength(16000));
  EXPECT_EQ(opened.stream->DamagedFrames(), heron::BlockLength(16000));
  EXPECT_LT(LargestAllocation(), kMebibyte);
}

}  // namespace
}  // namespace api::test
