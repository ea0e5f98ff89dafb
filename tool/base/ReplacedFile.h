// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "base/Descriptor.h"
#include "base/NewFile.h"

namespace tool {

// A file that appears whole or not at all. It is written beside its name; what has that name is as
// it was until the new file takes its place in one step, with the mode, the owner, the access
// rights and the attributes ("user.") of the old one. A link stays a link, and what it leads to is
// replaced. Of several names that the old one has, the others keep it.
class C_ReplacedFile : public I_NewFile {
 public:
  // Makes the new file. bMayReplace is false when nothing may have the name yet. Throws C_Failure.
  C_ReplacedFile(const std::string& strPath, bool bMayReplace);
  // Removes the new file, unless it has taken its place.
  ~C_ReplacedFile() override;
  C_ReplacedFile(const C_ReplacedFile&) = delete;
  C_ReplacedFile& operator=(const C_ReplacedFile&) = delete;

  void Write(std::span<const std::byte> bytes) override;
  [[nodiscard]] const std::string& NewPath() const noexcept override { return m_strNew; }
  void BringToDisk() override;
  // Brings it to the disk before, unless that is done.
  void TakePlace() override;

 private:
  void Create();
  void TakeRightsOfOld();

  std::string m_strName;  // as the user knows it
  std::string m_strPath;  // after all links
  std::string m_strNew;
  bool m_bMayReplace;
  bool m_bExists = false;
  bool m_bOnDisk = false;
  C_Descriptor m_file{-1};
};

}  // namespace tool
