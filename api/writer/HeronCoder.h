// SPDX-License-Identifier: Apache-2.0
//
// Makes the streams that C_HeronCodec makes. The coder looks at the whole sound twice, so that the
// samples wait in a temporary file until the end.
#pragma once

#include <functional>

#include "codec/HeronStream.h"
#include "target/ByteTarget.h"
#include "target/SpoolFile.h"
#include "writer/StreamCoder.h"

namespace api {

// Called while the sound is coded, with the number of samples that the coder has looked at; it
// looks at each of them twice.
using S_Looked = std::function<void(std::uint64_t qwLooked)>;

class C_HeronCoder final : public I_StreamCoder {
 public:
  // The rate and the variant are such that streams may have them. target must outlive the object,
  // and can go back.
  C_HeronCoder(I_ByteTarget& target, int nSampleRate, const heronstream::S_Variant& variant,
               S_Looked fnLooked);

  void CheckLength(std::uint64_t qwSamples) const override;
  void Begin(std::uint64_t qwAnnounced) override { CheckLength(qwAnnounced); }
  void Put(std::span<const std::int16_t> samples) override;
  // Calls fnLooked at least once for 4096 samples, with rising numbers.
  void End(const S_Notes& notes) override;
  [[nodiscard]] std::vector<std::string> Lost(const S_Notes& notes,
                                              const std::string& strHolder) const override;

 private:
  void WriteAudio();
  void WriteEvents(const S_Notes& notes);
  void ReadBack(std::size_t nAt, std::span<std::int16_t> samples);

  I_ByteTarget& m_target;
  int m_nSampleRate;
  heronstream::S_Variant m_variant;
  S_Looked m_fnLooked;
  C_SpoolFile m_spool;
  std::uint64_t m_qwStart = 0;  // of the stream in the target
  std::uint32_t m_dwSamples = 0;
  std::uint64_t m_qwLooked = 0;
  bool m_bEventsWritten = true;
};

}  // namespace api
