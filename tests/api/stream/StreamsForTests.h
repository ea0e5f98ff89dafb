// SPDX-License-Identifier: Apache-2.0
//
// Sources with a fault each, and reading of whole streams.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "MemorySourceForTests.h"
#include "base/Failure.h"
#include "stream/SampleStream.h"

namespace api::test {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;
constexpr S_ByteRange kWhole{0, std::numeric_limits<std::uint64_t>::max()};

// Cannot be read from a place on.
class C_BrokenSource final : public C_MemorySourceForTests {
 public:
  C_BrokenSource(Bytes bytes, std::uint64_t qwBroken)
      : C_MemorySourceForTests(std::move(bytes)), m_qwBroken(qwBroken) {}
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (qwPosition + bytes.size() > m_qwBroken) {
      throw C_Failure(VOXPLAY_CANNOT_READ, "a bad sector");
    }
    return C_MemorySourceForTests::ReadSome(qwPosition, bytes);
  }
  void Repair() { m_qwBroken = std::numeric_limits<std::uint64_t>::max(); }

 private:
  std::uint64_t m_qwBroken;
};

// Goes forward only and does not know its length.
class C_PipeSource final : public C_MemorySourceForTests {
 public:
  using C_MemorySourceForTests::C_MemorySourceForTests;
  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return {}; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return false; }
  [[nodiscard]] bool CanReadFrom(std::uint64_t qwPosition) const noexcept override {
    return qwPosition >= m_qwAt;
  }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (qwPosition < m_qwAt) throw C_Failure(VOXPLAY_CANNOT_SEEK, "back");
    const std::size_t nRead = C_MemorySourceForTests::ReadSome(qwPosition, bytes);
    m_qwAt = qwPosition + nRead;
    return nRead;
  }

 private:
  std::uint64_t m_qwAt = 0;
};

// Reads to the end, in pieces of these sizes over and over.
inline Samples ReadAll(I_SampleStream& stream, const std::vector<std::size_t>& sizes = {4096}) {
  Samples all;
  Samples piece;
  for (std::size_t n = 0;; ++n) {
    piece.resize(sizes[n % sizes.size()]);
    const std::size_t nRead = stream.Read(std::span(piece));
    all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(nRead));
    EXPECT_EQ(stream.Position(), all.size());
    if (nRead < piece.size()) break;
  }
  EXPECT_EQ(stream.FrameCount(), all.size());
  EXPECT_EQ(stream.Read(std::span(piece)), 0U);
  return all;
}

// Reads at random places, which must give the samples of the whole sound.
inline void ExpectExactSeeks(I_SampleStream& stream, const Samples& whole, int nSeeks,
                             unsigned int nSeed) {
  std::mt19937 random(nSeed);
  for (int n = 0; n < nSeeks; ++n) {
    const std::size_t nAt = random() % (whole.size() + 1);
    stream.Seek(nAt);
    ASSERT_EQ(stream.Position(), nAt);
    Samples samples(1 + random() % 1500);
    const std::size_t nRead = stream.Read(std::span(samples));
    ASSERT_EQ(nRead, std::min(samples.size(), whole.size() - nAt)) << nAt;
    ASSERT_TRUE(std::equal(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(nRead),
                           whole.begin() + static_cast<std::ptrdiff_t>(nAt)))
        << nAt;
  }
}

// What a function throws; VOXPLAY_OK when it throws nothing.
template <typename Function>
voxplay_status StatusOf(Function fnTry) {
  try {
    fnTry();
  } catch (const C_Failure& failure) {
    EXPECT_NE(failure.Text(), "");
    return failure.Status();
  }
  return VOXPLAY_OK;
}

}  // namespace api::test
