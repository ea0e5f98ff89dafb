// SPDX-License-Identifier: Apache-2.0
#if defined(__x86_64__)

#include "LanesSse2.h"
#include "kestrel/FastTransform.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

using C_Sse2 = C_TransformLanes<vcm::S_LanesSse2>;
const S_Transforms kTransformsSse2 = {"SSE2", &C_Sse2::Forward, &C_Sse2::Inverse};

}  // namespace kestrel

#endif
