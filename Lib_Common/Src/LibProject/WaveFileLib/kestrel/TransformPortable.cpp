// SPDX-License-Identifier: Apache-2.0
#include "LanesPortable.h"
#include "kestrel/FastTransform.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

using C_Portable = C_TransformLanes<vcm::S_LanesPortable>;
const S_Transforms kTransformsPortable = {"portable", &C_Portable::Forward, &C_Portable::Inverse};

}  // namespace kestrel
