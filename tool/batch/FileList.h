// SPDX-License-Identifier: Apache-2.0
//
// The files that a command works on. They keep the order of the operands; those of a folder come in
// the order of their names.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Console.h"

namespace tool {

struct S_ListedFile {
  std::string strPath;
  // Where the part of the path begins that its target keeps: that below a folder that was named,
  // all of a relative path in a list, and the name alone of everything else.
  std::size_t nKept = 0;

  [[nodiscard]] std::string_view Kept() const { return std::string_view(strPath).substr(nKept); }
};

using PFN_TakeFile = std::function<void(const S_ListedFile& file)>;

class C_FileList {
 public:
  // With bFolders, folders stand for the sounds in them and below them. These are the files that
  // are named like sounds, and those that begin like one of ours. What begins with a dot, and links
  // to folders, are left out with everything else. With fnTake, files are handed on and not kept.
  C_FileList(bool bFolders, C_Console& console, PFN_TakeFile fnTake = {})
      : m_bFolders(bFolders), m_console(console), m_fnTake(std::move(fnTake)) {}

  // Complains of each file in a folder that is left out.
  void NameLeftOut() noexcept { m_bNamesLeftOut = true; }
  // How many these are.
  [[nodiscard]] std::size_t CountLeftOut() const noexcept { return m_nLeftOut; }

  // What is in this folder, and below it, does not count when a folder above it is listed. It need
  // not exist.
  void LeaveFolderOut(const std::string& strFolder) { m_strLeftOut = strFolder; }

  // "-" is a file like any other. Complains of folders that cannot be listed, and goes on.
  void AddOperand(const std::string& strPath);
  // The names in a file, as ReadListedNames has them.
  void AddListed(const std::string& strList, bool bZeros);

  // Leaves only the first one of those that are the same file by their names.
  void DropRepeated();

  [[nodiscard]] const std::vector<S_ListedFile>& Files() const noexcept { return m_files; }
  // The same, once: there may be millions.
  [[nodiscard]] std::vector<S_ListedFile> TakeFiles() { return std::move(m_files); }
  // How often it has complained.
  [[nodiscard]] std::size_t Failures() const noexcept { return m_nFailures; }

 private:
  void AddFile(S_ListedFile file);
  bool AddFolder(const std::string& strPath);
  void Walk(const std::string& strFolder, std::size_t nKept);
  void LeaveOut(const std::string& strPath, std::string_view why);
  void Complain(const std::string& strPath, std::string_view what, std::string_view why);

  bool m_bFolders;
  C_Console& m_console;
  PFN_TakeFile m_fnTake;
  std::string m_strLeftOut;
  std::vector<S_ListedFile> m_files;
  std::size_t m_nFailures = 0;
  std::size_t m_nLeftOut = 0;
  bool m_bNamesLeftOut = false;
};

}  // namespace tool
