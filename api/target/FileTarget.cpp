// SPDX-License-Identifier: Apache-2.0
//
// The new file stands beside the name until it is finished. An existing file hands its mode, owner
// and access rights over; a link stays, and what it leads to is replaced.
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Replacement.h"
#include "StdioFile.h"
#include "TargetName.h"
#include "base/Failure.h"
#include "base/SystemReason.h"
#include "target/ByteTarget.h"

namespace api {
namespace {

constexpr std::size_t kBufferBytes = 65536;
constexpr int kAttempts = 100;
// What a new file gets that everybody may read and write whom the process's mask does not exclude.
constexpr mode_t kModeOfNew = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

[[noreturn]] void RefuseToOpen(const std::string& strReason) {
  throw C_Failure(VOXPLAY_CANNOT_OPEN, "file: cannot be written: " + strReason);
}

class C_FileTarget final : public I_ByteTarget {
 public:
  explicit C_FileTarget(vcm::S_TargetName name) : m_name(std::move(name)), m_buffer(kBufferBytes) {
    const std::string strStem = vcm::StemBeside(m_name.strPath);
    if (IsNew()) {
      m_file.emplace(strStem, kModeOfNew, vcm::UnforeseeableNumber);
    } else {
      m_file.emplace(strStem);
    }
    if (Stream() == nullptr) {
      RefuseToOpen("the new file cannot be made beside it: " + SystemReason(m_file->Error()));
    }
    static_cast<void>(std::setvbuf(Stream(), m_buffer.data(), _IOFBF, m_buffer.size()));
  }

  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  void Write(std::span<const std::uint8_t> bytes) override {
    Expect(vcm::WriteExact(Stream(), bytes));
    m_qwLength += bytes.size();
  }
  void WriteAt(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) override {
    Expect(vcm::SeekTo(Stream(), qwPosition) && vcm::WriteExact(Stream(), bytes) &&
           vcm::SeekTo(Stream(), m_qwLength));
  }
  [[nodiscard]] std::uint64_t Length() const noexcept override { return m_qwLength; }
  void Finish() override {
    Expect(std::fflush(Stream()) == 0);
    errno = 0;
    if (IsNew() ? TakeNewName() : TakePlace()) return;
    Fail("the new file cannot take its place: ", m_file->Error() != 0 ? m_file->Error() : errno);
  }

 private:
  [[nodiscard]] bool IsNew() const { return m_name.eKind == vcm::E_TargetKind::New; }
  [[nodiscard]] std::FILE* Stream() const { return m_file->Stream(); }
  bool TakePlace() {
    return m_file->TakeOwnerAndMode(m_name.status, m_name.strPath) &&
           m_file->TakePlaceOf(m_name.strPath);
  }
  // A file that got the name meanwhile is treated like one that was there from the beginning. It
  // may go again, but not forever.
  bool TakeNewName() {
    for (int i = 0; i < kAttempts; ++i) {
      if (m_file->TakeNewName(m_name.strPath)) return true;
      if (m_file->Error() != EEXIST || Stream() == nullptr) return false;
      vcm::S_TargetName name = vcm::LookAtTarget(m_name.strPath.c_str());
      if (name.eKind == vcm::E_TargetKind::New) continue;
      if (name.eKind != vcm::E_TargetKind::Regular || !vcm::IsWritable(name.strPath)) return false;
      m_name = std::move(name);
      return TakePlace();
    }
    return false;
  }
  [[noreturn]] static void Fail(const char* pszWhat, int nError) {
    throw C_Failure(VOXPLAY_CANNOT_WRITE, std::string("file: ") + pszWhat + SystemReason(nError));
  }
  // To be called right after what failed.
  static void Expect(bool bDone) {
    if (!bDone) Fail("cannot be written: ", errno);
  }

  vcm::S_TargetName m_name;
  std::vector<char> m_buffer;  // of the stream, which goes first
  std::optional<vcm::C_Replacement> m_file;
  std::uint64_t m_qwLength = 0;
};

}  // namespace

C_ByteTargetPtr OpenFileTarget(const char* pszPath) {
  errno = 0;
  vcm::S_TargetName name = vcm::LookAtTarget(pszPath);
  switch (name.eKind) {
    case vcm::E_TargetKind::New:
      name.strPath = vcm::NewPathOf(pszPath);
      if (name.strPath.empty()) RefuseToOpen(SystemReason(ELOOP));
      break;
    case vcm::E_TargetKind::Regular:
      if (!vcm::IsWritable(name.strPath)) RefuseToOpen(SystemReason(errno));
      break;
    case vcm::E_TargetKind::Other:
      RefuseToOpen("it is not a regular file");
    case vcm::E_TargetKind::Unknown:
      RefuseToOpen(*pszPath == '\0' ? "its name is empty" : SystemReason(errno));
  }
  return std::make_unique<C_FileTarget>(std::move(name));
}

}  // namespace api
