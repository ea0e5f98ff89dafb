// SPDX-License-Identifier: Apache-2.0
#if defined(__aarch64__)

#include "LanesNeon.h"
#include "kestrel/RegionLanes.h"
#include "kestrel/RoutinesOf.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

const S_Routines kRoutinesNeon =
    RoutinesOf<C_TransformLanes<vcm::S_LanesNeon>, C_RegionLanes<vcm::S_LanesNeon>>("NEON");

}  // namespace kestrel

#endif
