// SPDX-License-Identifier: Apache-2.0
#pragma once

// The part of the desktop audio toolbox that the player uses, for machines without that toolbox. On
// a machine that has the toolbox, this folder is not on the include path, so the system's own
// header is found.

#include <AudioToolbox/AUGraph.h>
#include <AudioToolbox/AudioFile.h>
#include <AudioToolbox/AudioUnit.h>
#include <AudioToolbox/BaseTypes.h>
#include <AudioToolbox/CoreAudioTypes.h>
