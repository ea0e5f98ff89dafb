// SPDX-License-Identifier: Apache-2.0
#include "target/SpooledTarget.h"

#include <utility>

namespace api {

C_SpooledTarget::C_SpooledTarget(C_ByteTargetPtr finished) : m_finished(std::move(finished)) {}

void C_SpooledTarget::Write(std::span<const std::uint8_t> bytes) {
  m_spool.Append(bytes.data(), bytes.size());
}

void C_SpooledTarget::WriteAt(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) {
  m_spool.Overwrite(qwPosition, bytes);
}

void C_SpooledTarget::Finish() {
  if (!m_finished) return;
  m_spool.CopyTo(*m_finished);
  m_finished->Finish();
}

}  // namespace api
