// SPDX-License-Identifier: Apache-2.0
#include "Processor.h"

#include <algorithm>
#include <atomic>

namespace vcm {
namespace {

std::atomic<tagInstructions> g_eLimit = tagInstructions::kAvx2;

}  // namespace

tagInstructions ProcessorInstructions() noexcept {
#if defined(__x86_64__)
  static const bool bAvx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                            __builtin_cpu_supports("bmi2");
  return bAvx2 ? tagInstructions::kAvx2 : tagInstructions::kBase;
#elif defined(__aarch64__)
  return tagInstructions::kBase;
#else
  return tagInstructions::kPlain;
#endif
}

tagInstructions UsableInstructions() noexcept {
  return std::min(ProcessorInstructions(), g_eLimit.load(std::memory_order_relaxed));
}

void LimitInstructions(tagInstructions eWidest) noexcept {
  g_eLimit.store(eWidest, std::memory_order_relaxed);
}

}  // namespace vcm
