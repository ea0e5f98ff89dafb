// SPDX-License-Identifier: Apache-2.0
#include "object/CoreObject.h"

#include <AudioToolbox/BaseTypes.h>

extern "C" {

// Every object has this class as its first and only base, so that its address is the object's.
void CFRelease(CFTypeRef cf) { delete static_cast<const toolbox::C_CoreObject*>(cf); }

}  // extern "C"
