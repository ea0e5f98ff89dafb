// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/Failure.h"
#include "sound/ForeignSound.h"
#include "sound/LibrarySound.h"
#include "sound/SoundInput.h"
#include "sound/StandardInput.h"

namespace tool {
namespace {

// Whether another library may know a file that ours does not.
bool MayBeForeign(const voxplay::Error& error) {
  return error.status() == VOXPLAY_UNKNOWN || error.status() == VOXPLAY_UNSUPPORTED;
}

// Opens an operand again and again, by name or by a descriptor of standard input.
class C_Operand {
 public:
  explicit C_Operand(const std::string& strPath) : m_strPath(strPath), m_standard(-1) {
    if (IsStandardInput()) m_standard = TakeStandardInput();
  }

  [[nodiscard]] C_SoundInputPtr OpenLibrary(std::uint32_t dwFlags) const {
    if (!IsStandardInput()) return OpenLibrarySound(m_strPath, dwFlags);
    return OpenLibrarySound(Bytes(), NameOf(m_strPath), dwFlags);
  }
  [[nodiscard]] C_SoundInputPtr OpenForeign(std::string* pstrWhy) const {
    return OpenForeignSound(Bytes(), NameOf(m_strPath), pstrWhy);
  }

 private:
  [[nodiscard]] bool IsStandardInput() const { return m_strPath == kStandardStream; }
  [[nodiscard]] C_FileBytes Bytes() const {
    C_Descriptor file(IsStandardInput() ? fcntl(m_standard.Get(), F_DUPFD_CLOEXEC, 0)
                                        : open(m_strPath.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() < 0) throw C_Failure(NameOf(m_strPath), "cannot be opened", SystemReason(errno));
    return C_FileBytes(std::move(file));
  }

  std::string m_strPath;
  C_Descriptor m_standard;
};

}  // namespace

C_SoundInputPtr OpenSound(const std::string& strPath, std::uint32_t dwFlags) {
  const C_Operand operand(strPath);
  std::string strOurs;
  try {
    return operand.OpenLibrary(dwFlags | VOXPLAY_READ_NO_BARE);
  } catch (const voxplay::Error& error) {
    if (!MayBeForeign(error)) throw;
  }
  std::string strWhy;
  if (auto sound = operand.OpenForeign(&strWhy)) return sound;
  // Its message tells of all tests that the file has failed.
  return operand.OpenLibrary(dwFlags);
}

std::string NameOf(const std::string& strPath) {
  return strPath == kStandardStream ? "standard input" : strPath;
}

}  // namespace tool
