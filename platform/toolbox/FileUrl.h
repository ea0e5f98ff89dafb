// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

#include <string>

// What a CFURLRef points to: a path of the file system. The creator owns it until `CFRelease`.
struct OpaqueCFURL {
  std::string path;
};
