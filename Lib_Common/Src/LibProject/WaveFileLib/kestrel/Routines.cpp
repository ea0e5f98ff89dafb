// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Routines.h"

#include <array>

#include "Processor.h"

namespace kestrel {
namespace {

constexpr S_Routines kRoutinesPlain = {"plain",      &ForwardTransform, &InverseTransform,
                                       &EncodeFrame, &DecodeFrame,      &SkipFrame};

}  // namespace

std::span<const S_Routines> AllRoutines() noexcept {
#if defined(__x86_64__)
  static const std::array all = {kRoutinesAvx2, kRoutinesSse2, kRoutinesLoops, kRoutinesPlain};
  const bool bAvx2 = vcm::ProcessorInstructions() == vcm::tagInstructions::kAvx2;
  return std::span(all).subspan(bAvx2 ? 0 : 1);
#elif defined(__aarch64__)
  static const std::array all = {kRoutinesNeon, kRoutinesLoops, kRoutinesPlain};
  return all;
#else
  static const std::array all = {kRoutinesLoops, kRoutinesPlain};
  return all;
#endif
}

const S_Routines& FastestRoutines() noexcept {
#if defined(__x86_64__)
  switch (vcm::UsableInstructions()) {
    case vcm::tagInstructions::kAvx2:
      return kRoutinesAvx2;
    case vcm::tagInstructions::kBase:
      return kRoutinesSse2;
    case vcm::tagInstructions::kPlain:
      break;
  }
#elif defined(__aarch64__)
  if (vcm::UsableInstructions() >= vcm::tagInstructions::kBase) return kRoutinesNeon;
#endif
  return kRoutinesLoops;
}

}  // namespace kestrel
