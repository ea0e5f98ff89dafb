// SPDX-License-Identifier: Apache-2.0
#include "batch/FileList.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <system_error>
#include <unordered_set>

#include "base/Descriptor.h"
#include "base/Failure.h"
#include "base/Interrupt.h"
#include "batch/ListedNames.h"
#include "batch/SoundNames.h"
#include "batch/Targets.h"
#include "voxplay.hpp"

namespace tool {
namespace {

constexpr std::size_t kFirstBytes = 4096;
constexpr std::size_t kLongestNumber = 8;

// "speech.kst.1f2e": what the library left beside a sound when it was killed.
bool IsUnfinished(std::string_view name) {
  const std::string_view number = ExtensionOf(name);
  const bool bHex = number.size() > 1 && number.size() <= kLongestNumber + 1 &&
                    number.find_first_not_of("0123456789abcdef", 1) == std::string_view::npos;
  return bHex && IsSoundExtension(ExtensionOf(name.substr(0, name.size() - number.size())));
}

bool BeginsLikeOurs(const std::string& strPath) {
  const C_Descriptor file(open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0) return false;
  std::array<std::byte, kFirstBytes> bytes;
  const ssize_t cbRead = read(file.Get(), bytes.data(), bytes.size());
  if (cbRead <= 0) return false;
  const auto first = std::span<const std::byte>(bytes).first(static_cast<std::size_t>(cbRead));
  switch (voxplay::probe(first).kind.container) {
    case VOXPLAY_CONTAINER_WAV:
    case VOXPLAY_CONTAINER_VEMD:
    case VOXPLAY_CONTAINER_VEF:
    case VOXPLAY_CONTAINER_SP:
      return true;
    default:
      return false;  // what nothing marks may be anything
  }
}

bool IsSound(const std::string& strPath) {
  if (IsSoundExtension(ExtensionOf(strPath))) return true;
  return !IsUnfinished(NameIn(strPath)) && BeginsLikeOurs(strPath);
}

enum class tagEntry { ENTRY_FILE, ENTRY_FOLDER, ENTRY_LINKED_FOLDER, ENTRY_HIDDEN, ENTRY_OTHER };

struct S_Entry {
  std::string strPath;
  tagEntry eKind = tagEntry::ENTRY_OTHER;
};

tagEntry KindOf(const std::filesystem::directory_entry& entry) {
  std::error_code none;
  if (NameIn(entry.path().native()).starts_with('.')) return tagEntry::ENTRY_HIDDEN;
  if (entry.is_directory(none)) {
    return entry.is_symlink(none) ? tagEntry::ENTRY_LINKED_FOLDER : tagEntry::ENTRY_FOLDER;
  }
  return entry.is_regular_file(none) ? tagEntry::ENTRY_FILE : tagEntry::ENTRY_OTHER;
}

std::string_view WhyLeftOut(tagEntry eKind) {
  switch (eKind) {
    case tagEntry::ENTRY_LINKED_FOLDER:
      return "it is a link to a folder";
    case tagEntry::ENTRY_HIDDEN:
      return "its name begins with a dot";
    case tagEntry::ENTRY_OTHER:
      return "it is no regular file";
    case tagEntry::ENTRY_FILE:
    case tagEntry::ENTRY_FOLDER:
      break;
  }
  return "it has no extension of sounds";
}

std::vector<S_Entry> EntriesOf(const std::string& strFolder, std::error_code& error) {
  std::vector<S_Entry> entries;
  const std::filesystem::directory_iterator end;
  for (std::filesystem::directory_iterator it(strFolder, error); !error && it != end;
       it.increment(error)) {
    entries.push_back({it->path().string(), KindOf(*it)});
  }
  std::ranges::sort(entries, {}, &S_Entry::strPath);
  return entries;
}

bool IsFolder(const std::string& strPath) {
  std::error_code none;
  return std::filesystem::is_directory(strPath, none);
}

bool IsSameFolder(const std::string& strPath, const std::string& strOther) {
  std::error_code none;
  return !strOther.empty() && std::filesystem::equivalent(strPath, strOther, none);
}

// A relative path that leads upwards has no place below another folder.
std::size_t KeptOfListed(const std::string& strPath) {
  const std::filesystem::path path(strPath);
  const bool bUpwards = std::ranges::find(path, "..") != path.end();
  return path.is_absolute() || bUpwards ? strPath.size() - NameIn(strPath).size() : 0;
}

}  // namespace

void C_FileList::AddOperand(const std::string& strPath) {
  if (AddFolder(strPath)) return;
  AddFile({strPath, strPath.size() - NameIn(strPath).size()});
}

void C_FileList::AddListed(const std::string& strList, bool bZeros) {
  ReadListedNames(strList, bZeros, [this](const std::string& strName) {
    if (!AddFolder(strName)) AddFile({strName, KeptOfListed(strName)});
  });
}

void C_FileList::AddFile(S_ListedFile file) {
  if (m_fnTake) return m_fnTake(file);
  m_files.push_back(std::move(file));
}

// False when it is none.
bool C_FileList::AddFolder(const std::string& strPath) {
  if (!IsFolder(strPath)) return false;
  if (m_bFolders) {
    Walk(strPath, strPath.size() + (strPath.ends_with('/') ? 0 : 1));
  } else {
    Complain(strPath, "is a folder", "-r takes the sounds in it");
  }
  return true;
}

void C_FileList::Walk(const std::string& strFolder, std::size_t nKept) {
  ThrowIfInterrupted();
  std::error_code error;
  const std::vector<S_Entry> entries = EntriesOf(strFolder, error);
  if (error) Complain(strFolder, "cannot be listed", error.message());
  for (const S_Entry& entry : entries) {
    if (entry.eKind == tagEntry::ENTRY_FOLDER) {
      if (!IsSameFolder(entry.strPath, m_strLeftOut)) Walk(entry.strPath, nKept);
    } else if (entry.eKind == tagEntry::ENTRY_FILE && IsSound(entry.strPath)) {
      AddFile({entry.strPath, nKept});
    } else {
      LeaveOut(entry.strPath, WhyLeftOut(entry.eKind));
    }
  }
}

void C_FileList::LeaveOut(const std::string& strPath, std::string_view why) {
  ++m_nLeftOut;
  if (m_bNamesLeftOut) m_console.Complain(C_Failure(strPath, "is left out", why).what());
}

void C_FileList::DropRepeated() {
  std::unordered_set<std::string> known;
  std::erase_if(m_files, [&known](const S_ListedFile& file) {
    return !known.insert(PlainPath(file.strPath)).second;
  });
}

void C_FileList::Complain(const std::string& strPath, std::string_view what, std::string_view why) {
  ++m_nFailures;
  m_console.Complain(C_Failure(strPath, what, why).what());
}

}  // namespace tool
