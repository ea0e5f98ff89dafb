// SPDX-License-Identifier: Apache-2.0
#if defined(__x86_64__)

#include "LanesSse2.h"
#include "kestrel/RegionLanes.h"
#include "kestrel/RoutinesOf.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

const S_Routines kRoutinesSse2 =
    RoutinesOf<C_TransformLanes<vcm::S_LanesSse2>, C_RegionLanes<vcm::S_LanesSse2>>("SSE2");

}  // namespace kestrel

#endif
