// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

#include <string>
#include <utility>

#include "object/CoreObject.h"

// What a CFStringRef points to: text in well-formed UTF-8. A caller that gets it from a call with
// "Copy" in its name owns it until `CFRelease`.
struct OpaqueCFString final : toolbox::C_CoreObject {
  explicit OpaqueCFString(std::string strUtf8) : text(std::move(strUtf8)) {}
  std::string text;
};
