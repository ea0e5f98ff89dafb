// SPDX-License-Identifier: Apache-2.0
#include "stream/PcmStream.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <string>
#include <type_traits>

#include "stream/FrameBytes.h"
#include "stream/PcmSamples.h"

namespace api {

namespace {

constexpr std::size_t kBlockSamples = 4096;  // that are converted together
constexpr std::size_t kMostSampleBytes = 8;

class C_PcmStream final : public I_SampleStream {
 public:
  C_PcmStream(I_ByteSource& source, const S_FrameRange& range, const S_PcmFormat& format)
      : m_format(format),
        m_cbSample(format.wBits / 8U),
        m_bytes(source, range, m_cbSample * format.wChannels) {}

  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return m_format.wChannels; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override {
    return m_bytes.FrameCount();
  }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override {
    return m_bytes.DamagedFrames();
  }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_bytes.Position(); }

  std::size_t Read(std::span<std::int16_t> samples) override { return ReadAs(samples); }
  std::size_t Read(std::span<std::int32_t> samples) override { return ReadAs(samples); }
  std::size_t Read(std::span<float> samples) override { return ReadAs(samples); }
  void Seek(std::uint64_t qwFrame) override { m_bytes.Seek(qwFrame); }

 private:
  // Whether the file has the samples as the caller wants them.
  template <typename Sample>
  [[nodiscard]] bool IsSame() const noexcept {
    const bool bSameKind = m_format.bFloat == std::is_same_v<Sample, float>;
    return bSameKind && m_cbSample == sizeof(Sample);
  }

  // These return how many samples they read.
  template <typename Sample>
  std::size_t ReadStraight(std::span<Sample> samples) {
    auto* const pbySamples = reinterpret_cast<std::uint8_t*>(samples.data());
    const std::size_t nRead = m_bytes.Fill(0, {pbySamples, samples.size_bytes()}) / sizeof(Sample);
    if constexpr (std::endian::native != std::endian::little) {
      ConvertPcm(m_format, pbySamples, samples.first(nRead));
    }
    return nRead;
  }

  template <typename Sample>
  std::size_t ReadConverted(std::span<Sample> samples) {
    std::array<std::uint8_t, kBlockSamples * kMostSampleBytes> block;
    std::size_t nDone = 0;
    while (nDone < samples.size()) {
      const auto part = samples.subspan(nDone, std::min(kBlockSamples, samples.size() - nDone));
      const auto stored = std::span(block).first(part.size() * m_cbSample);
      const std::size_t nRead =
          m_bytes.Fill(std::uint64_t{nDone} * m_cbSample, stored) / m_cbSample;
      ConvertPcm(m_format, block.data(), part.first(nRead));
      nDone += nRead;
      if (nRead < part.size()) break;
    }
    return nDone;
  }

  template <typename Sample>
  std::size_t ReadAs(std::span<Sample> samples) {
    const std::size_t nFrames = m_bytes.Begin(samples.size() / m_format.wChannels);
    const auto wanted = samples.first(nFrames * m_format.wChannels);
    const std::size_t nRead = IsSame<Sample>() ? ReadStraight(wanted) : ReadConverted(wanted);
    return m_bytes.End(nRead / m_format.wChannels);
  }

  S_PcmFormat m_format;
  std::size_t m_cbSample;
  C_FrameBytes m_bytes;
};

S_FrameRange FrameRangeOf(const I_ByteSource& source, const S_PcmRange& range) {
  const std::uint64_t qwAt = range.claimed.qwAt;
  if (!range.bToTheEnd) return {qwAt, range.claimed.qwSize, range.qwHeld, true};
  const std::optional<std::uint64_t> qwLength = source.Length();
  if (!qwLength) return {qwAt, std::nullopt, 0, false};
  const std::uint64_t qwSize = *qwLength - std::min(*qwLength, qwAt);
  return {qwAt, qwSize, qwSize, false};
}

void CheckFormat(const S_PcmFormat& format) {
  if (format.wChannels == 0) throw C_Failure(VOXPLAY_DAMAGED, "format: it has no channels");
  if (IsKnownPcm(format)) return;
  throw C_Failure(VOXPLAY_UNSUPPORTED,
                  (format.bFloat ? "format: floating point of " : "format: samples of ") +
                      std::to_string(format.wBits) + " bits are not supported");
}

}  // namespace

C_SampleStreamPtr OpenPcmStream(I_ByteSource& source, const S_PcmRange& range,
                                const S_PcmFormat& format) {
  CheckFormat(format);
  return std::make_unique<C_PcmStream>(source, FrameRangeOf(source, range), format);
}

}  // namespace api
