// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "target/ByteTarget.h"
#include "writer/FrameSink.h"
#include "writer/SampleForms.h"

namespace api {

// Appends samples to a target in one of the stored forms.
class C_PcmSink final : public I_FrameSink {
 public:
  // target must outlive the object.
  C_PcmSink(I_ByteTarget& target, E_StoredForm eForm) : m_target(target), m_eForm(eForm) {}

  void Put(std::span<const std::int16_t> samples) override;
  void Put(std::span<const std::int32_t> samples) override;
  void Put(std::span<const float> samples) override;

 private:
  template <typename Sample>
  void PutConverted(std::span<const Sample> samples);

  I_ByteTarget& m_target;
  E_StoredForm m_eForm;
  std::vector<std::uint8_t> m_bytes;
};

}  // namespace api
