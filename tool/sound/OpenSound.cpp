// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include "base/Failure.h"
#include "sound/ForeignSound.h"
#include "sound/LawSound.h"
#include "sound/LibrarySound.h"
#include "sound/SoundInput.h"
#include "sound/StandardInput.h"

namespace tool {
namespace {

// Whether another library may know a file that ours does not.
bool MayBeForeign(const voxplay::Error& error) {
  return error.status() == VOXPLAY_UNKNOWN || error.status() == VOXPLAY_UNSUPPORTED;
}

// What can be read only once, as something that can be read at any position; -1 for other files.
C_Descriptor TakeOnce(const std::string& strPath) {
  if (strPath == kStandardStream) return TakeStandardInput();
  return IsReadOnce(strPath) ? TakePipe(strPath) : C_Descriptor(-1);
}

// Opens an operand again and again, by name or by a descriptor of what can be read only once.
class C_Operand {
 public:
  explicit C_Operand(const std::string& strPath) : m_strPath(strPath), m_once(TakeOnce(strPath)) {}

  [[nodiscard]] C_SoundInputPtr OpenLibrary(std::uint32_t dwFlags) const {
    auto sound = m_once.Get() < 0 ? OpenLibrarySound(m_strPath, dwFlags)
                                  : OpenLibrarySound(Bytes(), NameOf(m_strPath), dwFlags);
    return WithStandardLaws(std::move(sound), NameOf(m_strPath), [this] { return Bytes(); });
  }
  [[nodiscard]] C_SoundInputPtr OpenForeign(std::string* pstrWhy) const {
    return OpenForeignSound(Bytes(), NameOf(m_strPath), pstrWhy);
  }

  // "FLAC" for a file that begins like one; "" for all others.
  [[nodiscard]] std::string ForeignKind() const {
    std::array<char, 4> first{};
    Bytes().Read(first.data(), first.size());
    const std::string_view mark(first.data(), first.size());
    if (mark == "OggS") return "Ogg";
    if (mark == "fLaC") return "FLAC";
    if (mark == "caff") return "CAF";
    return mark == "FORM" ? "AIFF" : "";
  }

 private:
  [[nodiscard]] C_FileBytes Bytes() const {
    C_Descriptor file(m_once.Get() >= 0 ? fcntl(m_once.Get(), F_DUPFD_CLOEXEC, 0)
                                        : open(m_strPath.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() < 0) throw C_Failure(NameOf(m_strPath), "cannot be opened", SystemReason(errno));
    return C_FileBytes(std::move(file));
  }

  std::string m_strPath;
  C_Descriptor m_once;
};

[[noreturn]] void ThrowWhatOthersSay(const std::string& strName, const std::string& strKind,
                                     std::string strWhy) {
  while (strWhy.ends_with('.')) strWhy.pop_back();
  const std::string strLine =
      strName + ": begins like " + strKind + " and cannot be read: libsndfile says: " + strWhy;
  throw voxplay::Error(VOXPLAY_DAMAGED, strLine.c_str());
}

}  // namespace

C_SoundInputPtr OpenSound(const std::string& strPath, std::uint32_t dwFlags) {
  const C_Operand operand(strPath);
  try {
    return operand.OpenLibrary(dwFlags | VOXPLAY_READ_NO_BARE);
  } catch (const voxplay::Error& error) {
    if (!MayBeForeign(error)) throw;
  }
  std::string strWhy;
  if (auto sound = operand.OpenForeign(&strWhy)) return sound;
  try {
    // Its message tells of all tests that the file has failed.
    return operand.OpenLibrary(dwFlags);
  } catch (const voxplay::Error& error) {
    const std::string strKind = operand.ForeignKind();
    if (!MayBeForeign(error) || strKind.empty()) throw;
    ThrowWhatOthersSay(NameOf(strPath), strKind, strWhy);
  }
}

bool IsReadOnce(const std::string& strPath) {
  struct stat status {};
  return strPath == kStandardStream ||
         (stat(strPath.c_str(), &status) == 0 && S_ISFIFO(status.st_mode));
}

std::string NameOf(const std::string& strPath) {
  return strPath == kStandardStream ? "standard input" : strPath;
}

}  // namespace tool
