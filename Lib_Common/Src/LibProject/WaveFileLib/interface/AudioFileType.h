// SPDX-License-Identifier: Apache-2.0
//
// The kind of a sound file. Files with an SP header name their kind themselves, so a value need not
// be one of the enumerators: it can be any 16-bit number.
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

// Types from first to last.
struct S_AudioFileTypes {
  unsigned int dwFirst;
  unsigned int dwLast;

  [[nodiscard]] constexpr bool Has(unsigned int dwType) const {
    return dwFirst <= dwType && dwType <= dwLast;
  }
};

inline constexpr S_AudioFileTypes kKestrelTypes{AUDIO_FILE_KESTREL, AUDIO_FILE_KESTREL};
inline constexpr S_AudioFileTypes kHeronTypes{AUDIO_FILE_HERON_4BIT, AUDIO_FILE_HERON_3BIT};
inline constexpr S_AudioFileTypes kHeronSpTypes{AUDIO_FILE_HERON_4BIT, AUDIO_FILE_HERON_6BIT};
