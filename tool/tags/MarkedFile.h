// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sound/EditTarget.h"
#include "voxplay.hpp"

namespace tool {

// A WAV, VEMD or VEF file whose marks are to change. Samples, streams and all other chunks stay as
// they are, byte for byte.
class C_MarkedFile {
 public:
  // The target is where the changed file goes. Others of us wait with their changes until the
  // object ends. Throws C_Failure for a file that cannot hold marks, and voxplay::Error.
  C_MarkedFile(const std::string& strPath, const S_EditTarget& target);

  [[nodiscard]] const voxplay::Info& Info() const noexcept { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept { return m_reader.notes(); }

  // Writes the file with these notes, looks whether it reads as it should, and lets it appear,
  // whole or not at all. Returns what it could not hold, one sentence each. Throws C_Failure and
  // voxplay::Error; nothing is changed then.
  std::vector<std::string> Save(const voxplay::Notes& notes);

 private:
  void CheckResult(const std::string& strNew, const voxplay::Notes& notes, bool bAllHeld) const;

  std::string m_strPath;
  const S_EditTarget& m_target;
  std::optional<C_FileLock> m_lock;
  voxplay::Reader m_reader;
  voxplay::Info m_info;
};

}  // namespace tool
