// SPDX-License-Identifier: Apache-2.0
//
// Every test program and benchmark uses no wider instructions than VOXPLAY_INSTRUCTIONS names:
// plain, base or avx2. So all tests can be run for each set.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "Processor.h"

namespace {

bool Limit() {
  const char* pszWidest = std::getenv("VOXPLAY_INSTRUCTIONS");
  if (pszWidest == nullptr) return false;
  const std::string_view widest = pszWidest;
  if (widest == "plain") {
    vcm::LimitInstructions(vcm::tagInstructions::kPlain);
  } else if (widest == "base") {
    vcm::LimitInstructions(vcm::tagInstructions::kBase);
  } else if (widest != "avx2") {
    std::fputs("VOXPLAY_INSTRUCTIONS is none of plain, base and avx2\n", stderr);
    std::exit(2);
  }
  return true;
}

[[maybe_unused]] const bool g_bLimited = Limit();

}  // namespace
