// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "batch/PrintFiles.h"
#include "sound/SoundInput.h"

namespace tool {

enum class tagMarkForm { TABLE, JSON, CSV, LABELS };

// How marks of files are shown: as a table for people, as an array with an object for each file, as
// one table for all of them, or as a label track, which is of one file.
struct S_MarkView {
  tagMarkForm eForm = tagMarkForm::TABLE;
  bool bSeveral = false;
  bool bColours = false;
  bool bForImport = false;  // without events that come back by themselves

  // Throws C_UsageFailure for a label track of several files.
  void Check() const;
  // What stands around and between the files.
  [[nodiscard]] S_PrintRule Rule() const;
};

// The marks of a file.
class C_ShownMarks {
 public:
  // Opens the file. Throws what OpenSound throws.
  explicit C_ShownMarks(const std::string& strPath);

  [[nodiscard]] const S_SoundInfo& Info() const noexcept { return m_sound->Info(); }
  // fnWrite takes the text, a piece at a time. Throws C_Failure for a label track of a sound that
  // has no rate, and what fnWrite throws.
  void Write(const S_MarkView& view, const std::function<void(std::string_view)>& fnWrite) const;

 private:
  std::string m_strPath;
  C_SoundInputPtr m_sound;
};

}  // namespace tool
