// SPDX-License-Identifier: Apache-2.0
#include "TempFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string_view>

#include "UnforeseeableNumber.h"

namespace vcm {
namespace {

constexpr int kAttempts = 100;

// Linkers warn about the C library's own generator because of the race between choosing a name and
// creating the file. CreateExclusive closes that race here. The name keeps its form: P_tmpdir, a
// prefix and six characters of the portable set.
std::string LibraryTempName(const char* pszPrefix) {
  static constexpr std::string_view kLetters =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  std::string strName = std::string(P_tmpdir "/") + pszPrefix;
  for (int i = 0; i < 6; ++i) strName += kLetters[UnforeseeableNumber() % kLetters.size()];
  return strName;
}

bool Exists(const std::string& strPath) {
  struct stat info {};
  return lstat(strPath.c_str(), &info) == 0;
}

}  // namespace

std::string TempName(const char* pszSuffix, const char* pszPrefix) {
  for (int i = 0; i < kAttempts; ++i) {
    std::string strName = LibraryTempName(pszPrefix);
    if (!Exists(strName) && !Exists(strName + pszSuffix)) return strName + pszSuffix;
  }
  return {};
}

C_FilePtr CreateExclusive(const std::string& strPath) {
  return CreateExclusive(strPath, S_IRUSR | S_IWUSR);
}

C_FilePtr CreateExclusive(const std::string& strPath, unsigned int dwMode) {
  constexpr int nFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const int nDescriptor = open(strPath.c_str(), nFlags, mode_t{dwMode});
  if (nDescriptor < 0) return {};
  C_FilePtr file(fdopen(nDescriptor, "w+b"));
  if (!file) {
    close(nDescriptor);
    unlink(strPath.c_str());
  }
  return file;
}

C_RemovedAtEnd::~C_RemovedAtEnd() {
  if (!m_strPath.empty()) unlink(m_strPath.c_str());
}

C_TempFile::C_TempFile(const char* pszSuffix, const char* pszPrefix) {
  for (int i = 0; i < kAttempts && !m_file; ++i) {
    m_strPath = TempName(pszSuffix, pszPrefix);
    if (m_strPath.empty()) return;
    m_file = CreateExclusive(m_strPath);
  }
  if (!m_file) m_strPath.clear();
}

C_TempFile::~C_TempFile() {
  m_file.reset();
  if (!m_strPath.empty()) unlink(m_strPath.c_str());
}

}  // namespace vcm
