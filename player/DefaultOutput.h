// SPDX-License-Identifier: Apache-2.0
//
// The output that both playing modes use.
#pragma once

#include <AudioToolbox/AudioToolbox.h>

inline constexpr AudioComponentDescription kDefaultOutput = {
    kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
