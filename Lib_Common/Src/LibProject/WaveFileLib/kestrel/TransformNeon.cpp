// SPDX-License-Identifier: Apache-2.0
#if defined(__aarch64__)

#include "LanesNeon.h"
#include "kestrel/FastTransform.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

using C_Neon = C_TransformLanes<vcm::S_LanesNeon>;
const S_Transforms kTransformsNeon = {"NEON", &C_Neon::Forward, &C_Neon::Inverse};

}  // namespace kestrel

#endif
