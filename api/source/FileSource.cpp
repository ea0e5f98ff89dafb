// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <string>
#include <utility>

#include "FileReader.h"
#include "StdioFile.h"
#include "base/Failure.h"
#include "base/SystemReason.h"
#include "source/ByteSource.h"

namespace api {
namespace {

std::string WhyNotOpened(int nError) {
  if (nError == 0) return "not a regular file";
  return nError == ENOENT ? "there is no such file" : SystemReason(nError);
}

class C_FileSource final : public I_ByteSource {
 public:
  explicit C_FileSource(vcm::C_FilePtr file)
      : m_file(std::move(file)), m_qwLength(m_file.Length()) {
    // A folder can be opened, but has no length.
    if (!m_qwLength) throw C_Failure(VOXPLAY_CANNOT_OPEN, "not a regular file");
  }

  // The length at opening: what is appended to the file later does not count.
  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return m_qwLength; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    const auto cbRead = m_file.ReadSome(qwPosition, bytes);
    if (cbRead) return *cbRead;
    throw C_Failure(VOXPLAY_CANNOT_READ, "byte " + std::to_string(qwPosition) +
                                             ": the file cannot be read from here on");
  }

 private:
  vcm::C_FileReader m_file;
  std::optional<std::uint64_t> m_qwLength;
};

}  // namespace

C_ByteSourcePtr OpenFileSource(const char* pszPath) {
  errno = 0;
  auto file = vcm::OpenFile(pszPath, "rb");
  if (!file) {
    // Pipes and devices are not even tried, so there is no error then.
    const int nError = errno;
    throw C_Failure(VOXPLAY_CANNOT_OPEN, WhyNotOpened(nError));
  }
  return std::make_unique<C_FileSource>(std::move(file));
}

}  // namespace api
