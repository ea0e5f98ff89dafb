// SPDX-License-Identifier: Apache-2.0
#include "TargetFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "TargetName.h"

namespace vcm {
namespace {

// What the system says when the new file must not be made, given its mode or renamed.
constexpr auto kForbidden =
    std::to_array({EACCES, EPERM, EROFS, ENAMETOOLONG, EBUSY, EXDEV, ENOTSUP, EILSEQ});

bool IsForbidden(int nError) { return std::ranges::find(kForbidden, nError) != kForbidden.end(); }

// Makes sure that so many bytes can be written, and leaves the file as it was where they cannot.
bool MakeRoom(int nDescriptor, off_t nSize) {
  struct stat status {};
  if (fstat(nDescriptor, &status) != 0) return false;
  if (nSize == 0 || posix_fallocate(nDescriptor, 0, nSize) == 0) return true;
  // Some file systems let the file grow until they are full.
  static_cast<void>(!ftruncate(nDescriptor, status.st_size));
  return false;
}

// A file that has just been made may lose its name with the power, unless its folder is on the
// disk, too.
void BringFolderToDisk(const std::string& strFile) {
  const std::size_t nSlash = strFile.rfind('/');
  const std::string strFolder = nSlash == std::string::npos ? "." : strFile.substr(0, nSlash + 1);
  const int nFolder = open(strFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (nFolder < 0) return;
  static_cast<void>(fsync(nFolder) == 0);
  close(nFolder);
}

// Writes over the old file once there is room for the new contents, which are whole on the disk
// before that.
bool CopyInPlace(C_Replacement& replacement, const std::string& strTo) {
  if (!replacement.CloseOnDisk()) return false;
  // A file system that refuses this may let the file be read nevertheless.
  static_cast<void>(chmod(replacement.Path().c_str(), S_IRUSR | S_IWUSR));
  const C_FilePtr from = OpenFile(replacement.Path().c_str(), "rb");
  C_FilePtr to = OpenFile(strTo.c_str(), "r+b");
  if (!from || !to) return false;
  const auto qwSize = SizeAndSeekEnd(from.get());
  if (!qwSize || !SeekTo(from.get(), 0)) return false;
  BringFolderToDisk(replacement.Path());
  const auto nSize = static_cast<off_t>(*qwSize);
  if (!MakeRoom(fileno(to.get()), nSize)) return false;
  const bool bCopied = CopyRest(from.get(), to.get()) && std::fflush(to.get()) == 0 &&
                       ftruncate(fileno(to.get()), nSize) == 0;
  if (CloseOnDisk(std::move(to)) && bCopied) return true;
  // Now nothing else holds a whole sound.
  replacement.Keep();
  return false;
}

}  // namespace

C_TargetFile::C_TargetFile(const char* pszPath) {
  if (pszPath == nullptr) return;
  S_TargetName name = LookAtTarget(pszPath);
  if (name.eKind == E_TargetKind::Unknown) return;
  if (name.eKind == E_TargetKind::Regular) {
    if (!IsWritable(name.strPath)) return;
    m_strOldFile = std::move(name.strPath);
    m_oldStatus = name.status;
    m_replacement.emplace(StemBeside(m_strOldFile));
    if (m_replacement->Stream() != nullptr || !IsForbidden(m_replacement->Error())) return;
    m_replacement.reset();
  }
  m_file = OpenFile(pszPath, "wb");
}

std::FILE* C_TargetFile::Stream() const noexcept {
  return m_replacement ? m_replacement->Stream() : m_file.get();
}

bool C_TargetFile::Commit(bool bWritten) {
  if (!m_replacement) return CloseChecked(std::move(m_file)) && bWritten;
  if (!bWritten) return false;
  if (m_replacement->TakeOwnerAndMode(m_oldStatus, m_strOldFile) &&
      m_replacement->TakePlaceOf(m_strOldFile)) {
    return true;
  }
  return IsForbidden(m_replacement->Error()) && CopyInPlace(*m_replacement, m_strOldFile);
}

}  // namespace vcm
