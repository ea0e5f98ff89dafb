// SPDX-License-Identifier: Apache-2.0
//
// Opens bytes in memory, and reads all samples of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Failed.h"
#include "reader/Reader.h"
#include "source/ByteSource.h"

namespace api::test {

using C_ReaderPtr = std::unique_ptr<C_Reader>;

// A source in memory that keeps its bytes, so that tests can open what they have just made.
class C_KeptSource final : public I_ByteSource {
 public:
  explicit C_KeptSource(std::vector<std::uint8_t> bytes)
      : m_bytes(std::move(bytes)), m_source(OpenMemorySource(m_bytes)) {}
  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override {
    return m_source->Length();
  }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    return m_source->ReadSome(qwPosition, bytes);
  }
  [[nodiscard]] std::span<const std::uint8_t> InMemory() const noexcept override {
    return m_source->InMemory();
  }

 private:
  std::vector<std::uint8_t> m_bytes;
  C_ByteSourcePtr m_source;
};

inline C_ReaderPtr OpenBytes(std::vector<std::uint8_t> bytes, std::uint32_t dwFlags = 0) {
  return C_Reader::Open(std::make_unique<C_KeptSource>(std::move(bytes)), dwFlags);
}

inline S_Failed FailureOfOpening(const std::vector<std::uint8_t>& bytes,
                                 std::uint32_t dwFlags = 0) {
  return FailureOf([&] { return OpenBytes(bytes, dwFlags); });
}

template <typename Sample>
std::vector<Sample> ReadAll(I_SampleStream& stream) {
  std::vector<Sample> all;
  std::vector<Sample> piece(1000 * stream.ChannelCount());
  while (const std::size_t nFrames = stream.Read(std::span(piece))) {
    all.insert(all.end(), piece.begin(),
               piece.begin() + static_cast<std::ptrdiff_t>(nFrames * stream.ChannelCount()));
  }
  return all;
}

template <typename Sample = std::int16_t>
std::vector<Sample> SamplesOf(C_Reader& reader) {
  return ReadAll<Sample>(reader.Samples());
}

}  // namespace api::test
