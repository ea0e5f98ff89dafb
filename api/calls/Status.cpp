// SPDX-License-Identifier: Apache-2.0
#include "voxplay.h"

#define VOXPLAY_TEXT_OF(number) #number
#define VOXPLAY_TEXT(number) VOXPLAY_TEXT_OF(number)

const char* voxplay_version(void) {
  return VOXPLAY_TEXT(VOXPLAY_VERSION_MAJOR) "." VOXPLAY_TEXT(
      VOXPLAY_VERSION_MINOR) "." VOXPLAY_TEXT(VOXPLAY_VERSION_PATCH);
}

const char* voxplay_status_text(voxplay_status status) {
  switch (status) {
    case VOXPLAY_OK:
      return "no error";
    case VOXPLAY_NO_MEMORY:
      return "memory was refused";
    case VOXPLAY_BAD_ARGUMENT:
      return "an argument is null or outside its range";
    case VOXPLAY_WRONG_STATE:
      return "nothing is open";
    case VOXPLAY_CANNOT_OPEN:
      return "the file cannot be opened";
    case VOXPLAY_CANNOT_READ:
      return "the input cannot be read";
    case VOXPLAY_CANNOT_WRITE:
      return "the target cannot be written";
    case VOXPLAY_CANNOT_SEEK:
      return "the input or output cannot go back";
    case VOXPLAY_UNKNOWN:
      return "the format is not known";
    case VOXPLAY_UNSUPPORTED:
      return "this kind of the format is not supported";
    case VOXPLAY_DAMAGED:
      return "the file contradicts itself";
    case VOXPLAY_TOO_LARGE:
      return "the sound is too large";
    case VOXPLAY_CANCELLED:
      return "the work was cancelled";
    case VOXPLAY_INTERNAL:
      return "a mistake in the library";
  }
  return "unknown status";
}
