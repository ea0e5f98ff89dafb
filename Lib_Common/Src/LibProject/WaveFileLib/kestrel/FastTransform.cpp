// SPDX-License-Identifier: Apache-2.0
#include "kestrel/FastTransform.h"

#include <array>

namespace kestrel {
namespace {

constexpr S_Transforms kPlain = {"plain", &ForwardTransform, &InverseTransform};

}  // namespace

std::span<const S_Transforms> AllTransforms() noexcept {
#if defined(__x86_64__)
  static const std::array all = {kTransformsAvx2, kTransformsSse2, kTransformsPortable, kPlain};
  return std::span(all).subspan(__builtin_cpu_supports("avx2") ? 0 : 1);
#elif defined(__aarch64__)
  static const std::array all = {kTransformsNeon, kTransformsPortable, kPlain};
  return all;
#else
  return std::span(&kPlain, 1);
#endif
}

}  // namespace kestrel
