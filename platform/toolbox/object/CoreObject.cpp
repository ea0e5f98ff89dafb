// SPDX-License-Identifier: Apache-2.0
#include "object/CoreObject.h"

#include <AudioToolbox/BaseTypes.h>

extern "C" {

// This class is the first and only base of every object, so an object and its base have the same
// address.
void CFRelease(CFTypeRef cf) { delete static_cast<const toolbox::C_CoreObject*>(cf); }

}  // extern "C"
