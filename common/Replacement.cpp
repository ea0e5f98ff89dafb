// SPDX-License-Identifier: Apache-2.0
#include "Replacement.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "TempFile.h"
#include "VCM.h"

namespace vcm {
namespace {

constexpr int kNameAttempts = 10000;
constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t kModeBits = kPermissions | S_ISUID | S_ISGID | S_ISVTX;
constexpr const char* kNameFormat = "%s.%x";
std::string NumberedName(const std::string& strStem, unsigned int dwNumber) {
  std::vector<char> szName(strStem.size() + C_Replacement::kNumberLength + 1);
  VCM_stprintf(szName.data(), szName.size(), kNameFormat, strStem.c_str(), dwNumber);
  return szName.data();
}

}  // namespace

unsigned int UnforeseeableNumber() {
  thread_local std::random_device device;
  return device();
}

C_Replacement::C_Replacement(const std::string& strStem, unsigned int (*pfnNumber)()) {
  for (int i = 0; i < kNameAttempts && !m_file; ++i) {
    m_strPath = NumberedName(strStem, pfnNumber());
    m_file = CreateExclusive(m_strPath);
    m_nError = m_file ? 0 : errno;
    if (m_nError != EEXIST) break;
  }
  if (!m_file) m_strPath.clear();
}

C_Replacement::~C_Replacement() {
  m_file.reset();
  if (!m_strPath.empty()) unlink(m_strPath.c_str());
}

// Sets the owner before the mode, because a change of owner clears the special mode bits. These
// bits are left out when the owner or the group cannot be set: the new file then belongs to
// somebody else. A write would clear the bits again.
bool C_Replacement::TakeOwnerAndMode(const struct stat& model) const {
  if (std::fflush(m_file.get()) != 0) return false;
  const int nDescriptor = fileno(m_file.get());
  const bool bGroup = fchown(nDescriptor, static_cast<uid_t>(-1), model.st_gid) == 0;
  const bool bOwner = fchown(nDescriptor, model.st_uid, static_cast<gid_t>(-1)) == 0;
  return fchmod(nDescriptor, model.st_mode & (bGroup && bOwner ? kModeBits : kPermissions)) == 0;
}

bool C_Replacement::TakePlaceOf(const std::string& strOldFile) {
  const bool bOnDisk = fsync(fileno(m_file.get())) == 0;
  if (!CloseChecked(std::move(m_file)) || !bOnDisk) return false;
  if (std::rename(m_strPath.c_str(), strOldFile.c_str()) != 0) {
    m_nError = errno;
    return false;
  }
  m_strPath.clear();
  return true;
}

}  // namespace vcm
