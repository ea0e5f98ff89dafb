// SPDX-License-Identifier: Apache-2.0
//
// The kind of a sound file. Files with an SP header name their kind themselves, so a value need not
// be one of the enumerators: any 16-bit number may stand here.
#pragma once

enum tagAudioFileType : unsigned int {
  AUDIO_FILE_KESTREL = 14,
  AUDIO_FILE_HERON_4BIT = 32,  // the order of the Heron kinds is historical, not by width
  AUDIO_FILE_HERON_5BIT = 33,
  AUDIO_FILE_HERON_6BIT = 34,
  AUDIO_FILE_HERON_2BIT = 35,
  AUDIO_FILE_HERON_3BIT = 36,
  AUDIO_FILE_VEMD = 0x1101,  // RIFF file of form "VEMD", the library's own
  AUDIO_FILE_WAVE = 0x8001,  // RIFF file of form "WAVE"
  AUDIO_FILE_UNKNOWN = 0xFFFF,
};
