// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

#include <string>
#include <utility>

#include "object/CoreObject.h"

// What a CFURLRef points to: a path in the file system. The creator owns it until `CFRelease`.
struct OpaqueCFURL final : toolbox::C_CoreObject {
  explicit OpaqueCFURL(std::string strPath) : path(std::move(strPath)) {}
  std::string path;
};
