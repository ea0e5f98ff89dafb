// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "base/Console.h"
#include "base/TimeText.h"
#include "play/KeyTerminal.h"
#include "play/PlayDevices.h"

namespace tool {

// What the user wants to go on with after a sound.
enum class tagAfter { NEXT, PREVIOUS, END };

struct S_PlayedFile {
  std::string strPath;
  std::string strPlace;  // before its name on the line: "2/5 "
  // Where to begin and to end, if not at the beginning and the end.
  std::optional<C_Time> from;
  std::optional<C_Time> to;
  bool bAgain = false;
  bool bShowLine = false;
  bool bShowMarks = false;
};

// Plays a file, shows where it is, and follows the keys. Throws C_Failure and voxplay::Error when
// the file cannot be played or not to its end, and C_Interrupted.
tagAfter PlayFile(const S_PlayedFile& file, C_Console& console, C_KeyTerminal& keys,
                  C_PlayDevices& devices);

}  // namespace tool
