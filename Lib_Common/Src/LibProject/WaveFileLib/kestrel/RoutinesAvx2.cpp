// SPDX-License-Identifier: Apache-2.0
#if defined(__x86_64__)

// All that the templates below use comes first, so that they alone are compiled for AVX2.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "LanesAvx2.h"
#include "kestrel/BasicOperators.h"
#include "kestrel/BitStream.h"
#include "kestrel/FastCategories.h"
#include "kestrel/RateControl.h"
#include "kestrel/RegionDigits.h"
#include "kestrel/Routines.h"
#include "kestrel/TablesThresholds.h"
#include "kestrel/TablesTransformLanes.h"
#include "kestrel/TablesVectors.h"
#include "kestrel/TransformBounds.h"
#include "kestrel/VectorCoder.h"

VCM_AVX2_BEGIN
#include "kestrel/RegionLanes.h"
#include "kestrel/RoutinesOf.h"
#include "kestrel/TransformLanes.h"

namespace kestrel {

const S_Routines kRoutinesAvx2 =
    RoutinesOf<C_TransformLanes<vcm::S_LanesAvx2>, C_RegionLanes<vcm::S_LanesAvx2>>("AVX2");

}  // namespace kestrel
VCM_AVX2_END

#endif
