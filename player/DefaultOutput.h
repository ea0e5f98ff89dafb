// SPDX-License-Identifier: Apache-2.0
//
// Where both modes play to.
#pragma once

#include <AudioToolbox/AudioToolbox.h>

inline constexpr AudioComponentDescription kDefaultOutput = {
    kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
