// SPDX-License-Identifier: Apache-2.0
//
// Sources with a will of their own, and ways to read streams.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "MemorySourceForTests.h"
#include "stream/SampleStream.h"

namespace api::test {

// Only goes forward, and does not tell its length.
class C_ForwardSource final : public C_MemorySourceForTests {
 public:
  using C_MemorySourceForTests::C_MemorySourceForTests;

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return {}; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return false; }
  [[nodiscard]] bool CanReadFrom(std::uint64_t qwPosition) const noexcept override {
    return qwPosition >= m_qwNext;
  }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (qwPosition < m_qwNext) throw C_Failure(VOXPLAY_CANNOT_SEEK, "input: it only goes forward");
    const std::size_t cbRead = C_MemorySourceForTests::ReadSome(qwPosition, bytes);
    m_qwNext = qwPosition + cbRead;
    return cbRead;
  }

 private:
  std::uint64_t m_qwNext = 0;
};

// Cannot be read from byte qwBad on, until it is repaired.
class C_BrokenSource final : public C_MemorySourceForTests {
 public:
  C_BrokenSource(std::vector<std::uint8_t> bytes, std::uint64_t qwBad)
      : C_MemorySourceForTests(std::move(bytes)), m_qwBad(qwBad) {}

  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (qwPosition + bytes.size() > m_qwBad) throw C_Failure(VOXPLAY_CANNOT_READ, "bad sector");
    return C_MemorySourceForTests::ReadSome(qwPosition, bytes);
  }
  void Repair() { m_qwBad = std::numeric_limits<std::uint64_t>::max(); }

 private:
  std::uint64_t m_qwBad;
};

// Fails once, the second time that it is read.
class C_HiccupSource final : public C_MemorySourceForTests {
 public:
  using C_MemorySourceForTests::C_MemorySourceForTests;

  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (++m_nCalls == 2) throw C_Failure(VOXPLAY_CANNOT_READ, "bad sector");
    return C_MemorySourceForTests::ReadSome(qwPosition, bytes);
  }

 private:
  int m_nCalls = 0;
};

// As long as it says, without any memory: byte n is n * 37 / 256.
class C_EndlessSource final : public I_ByteSource {
 public:
  explicit C_EndlessSource(std::uint64_t qwLength) : m_qwLength(qwLength) {}

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return m_qwLength; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    const std::uint64_t qwLeft = m_qwLength - std::min(m_qwLength, qwPosition);
    const auto cbRead = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), qwLeft));
    for (std::size_t i = 0; i < cbRead; ++i) bytes[i] = ByteAt(qwPosition + i);
    return cbRead;
  }
  static std::uint8_t ByteAt(std::uint64_t qwPosition) {
    return static_cast<std::uint8_t>(qwPosition * 37 >> 8U);
  }

 private:
  std::uint64_t m_qwLength;
};

// Bytes without a pattern, the same in every run.
inline std::vector<std::uint8_t> Noise(std::size_t cbCount, std::uint32_t dwSeed = 1) {
  std::vector<std::uint8_t> bytes(cbCount);
  for (std::uint8_t& by : bytes) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    by = static_cast<std::uint8_t>(dwSeed >> 24U);
  }
  return bytes;
}

template <typename Sample>
std::vector<Sample> ReadFrames(I_SampleStream& stream, std::size_t nFrames) {
  std::vector<Sample> samples(nFrames * stream.ChannelCount());
  samples.resize(stream.Read(std::span<Sample>(samples)) * stream.ChannelCount());
  return samples;
}

// What is left, nAtOnce frames at a time, or fewer where they have very many channels.
template <typename Sample>
std::vector<Sample> ReadRest(I_SampleStream& stream, std::size_t nAtOnce = 4096) {
  const std::size_t nChannels = stream.ChannelCount();
  const std::size_t nMost = std::max<std::size_t>(1'000'000 / nChannels, 1);
  std::vector<Sample> part(std::min(nAtOnce, nMost) * nChannels);
  std::vector<Sample> all;
  while (const std::size_t nRead = stream.Read(std::span<Sample>(part))) {
    all.insert(all.end(), part.begin(),
               part.begin() + static_cast<std::ptrdiff_t>(nRead * nChannels));
  }
  return all;
}

template <typename Function>
voxplay_status StatusOf(Function fnCall) {
  try {
    fnCall();
    return VOXPLAY_OK;
  } catch (const C_Failure& failure) {
    return failure.Status();
  }
}
template <typename Function>
std::string TextOf(Function fnCall) {
  try {
    fnCall();
    return "";
  } catch (const C_Failure& failure) {
    return failure.Text();
  }
}

}  // namespace api::test
