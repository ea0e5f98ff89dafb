// SPDX-License-Identifier: Apache-2.0
#if defined(__x86_64__)

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "LanesAvx2.h"
#include "kestrel/FastTransform.h"
#include "kestrel/TablesTransformLanes.h"
#include "kestrel/TransformBounds.h"

// After everything that it includes, so that it alone is compiled for AVX2.
VCM_AVX2_BEGIN
#include "kestrel/TransformLanes.h"

namespace kestrel {

using C_Avx2 = C_TransformLanes<vcm::S_LanesAvx2>;
const S_Transforms kTransformsAvx2 = {"AVX2", &C_Avx2::Forward, &C_Avx2::Inverse};

}  // namespace kestrel
VCM_AVX2_END

#endif
