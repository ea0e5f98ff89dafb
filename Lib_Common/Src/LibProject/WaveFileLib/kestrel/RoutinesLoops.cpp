// SPDX-License-Identifier: Apache-2.0
#include "kestrel/RegionLoops.h"
#include "kestrel/RoutinesOf.h"
#include "kestrel/TransformLoops.h"

namespace kestrel {

const S_Routines kRoutinesLoops = RoutinesOf<C_TransformLoops, C_RegionLoops>("loops");

}  // namespace kestrel
