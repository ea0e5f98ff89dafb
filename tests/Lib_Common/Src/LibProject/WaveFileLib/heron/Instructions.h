// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

#include "Processor.h"

namespace heron::test {

// Takes back at its end what a test limited.
class C_InstructionsKept {
 public:
  C_InstructionsKept() = default;
  C_InstructionsKept(const C_InstructionsKept&) = delete;
  C_InstructionsKept& operator=(const C_InstructionsKept&) = delete;
  ~C_InstructionsKept() { vcm::LimitInstructions(m_eBefore); }

 private:
  vcm::tagInstructions m_eBefore = vcm::UsableInstructions();
};

inline constexpr std::array kAllInstructions = {
    vcm::tagInstructions::kPlain, vcm::tagInstructions::kBase, vcm::tagInstructions::kAvx2};

}  // namespace heron::test
