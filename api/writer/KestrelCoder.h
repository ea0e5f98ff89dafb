// SPDX-License-Identifier: Apache-2.0
//
// Makes the streams that C_KestrelCodec makes, but frame by frame. As there, the first whole frame
// is encoded but not written, and one frame of silence ends the stream, because the coder is one
// frame late.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "kestrel/Encoder.h"
#include "target/ByteTarget.h"
#include "writer/StreamCoder.h"

namespace api {

class C_KestrelCoder final : public I_StreamCoder {
 public:
  // dwBitRate is one that streams may have. target must outlive the object.
  C_KestrelCoder(I_ByteTarget& target, std::uint32_t dwBitRate);

  void CheckLength(std::uint64_t qwSamples) const override;
  void Begin(std::uint64_t qwAnnounced) override;
  void Put(std::span<const std::int16_t> samples) override;
  void End(const S_Notes& notes) override;
  [[nodiscard]] std::vector<std::string> Lost(const S_Notes& notes,
                                              const std::string& strHolder) const override;

  // The bytes of the stream of so many samples, which are at least 1.
  static std::uint64_t StreamBytes(std::uint64_t qwSamples, std::uint32_t dwBitRate) noexcept;

 private:
  using S_Samples = std::span<const std::int16_t, kestrel::kSamplesPerFrame>;

  [[nodiscard]] std::uint32_t BitRate() const { return m_encoder.Configuration().dwBitRate; }
  void Encode(S_Samples samples, bool bWritten);
  void EncodeWhole(S_Samples samples);
  void Flush();

  I_ByteTarget& m_target;
  kestrel::C_Encoder m_encoder;
  std::size_t m_nWords;
  std::uint64_t m_qwStart = 0;    // of the stream in the target
  std::uint64_t m_qwSamples = 0;  // that were put
  std::uint64_t m_qwWords = 1;    // of the stream; the bit rate counts as one
  bool m_bBegunStream = false;    // the first whole frame has been encoded
  std::array<std::int16_t, kestrel::kSamplesPerFrame> m_begun{};  // a frame that is not complete
  std::size_t m_nBegun = 0;
  std::vector<std::uint8_t> m_bytes;  // that wait to be written
};

}  // namespace api
