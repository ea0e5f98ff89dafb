// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioFile.h>

#include <cstddef>
#include <string>

namespace toolbox {

// An open regular file. Reads go by position, so several readers can share it, one at a time. It
// remembers that a read has failed, because its readers take a short read for the end of the file.
class C_FileDescriptor {
 public:
  C_FileDescriptor() noexcept = default;
  ~C_FileDescriptor();
  C_FileDescriptor(const C_FileDescriptor&) = delete;
  C_FileDescriptor& operator=(const C_FileDescriptor&) = delete;

  // Returns 0, kAudioFileFileNotFoundError, kAudioFilePermissionsError,
  // kAudioFileUnsupportedFileTypeError for anything but a regular file, or
  // kAudioFileUnspecifiedError. Never waits, not even for a pipe.
  OSStatus Open(const std::string& path);
  // Size of the file in bytes when it was opened.
  [[nodiscard]] UInt64 Size() const noexcept { return m_cbSize; }
  // True when the file has become shorter since it was opened, and ends at or before this offset.
  [[nodiscard]] bool IsCutBefore(UInt64 qwOffset) const noexcept;
  // Returns the number of bytes copied, fewer than wanted only on a read error and at the end of
  // the file. What is written after the end that it had when it was opened is not read.
  std::size_t ReadAt(UInt64 qwOffset, void* pBuffer, std::size_t cbWanted) const;
  // Whether a read has failed since the last `ForgetReadError`.
  [[nodiscard]] bool HasReadError() const noexcept { return m_bReadError; }
  void ForgetReadError() const noexcept { m_bReadError = false; }

 private:
  int m_fd = -1;
  UInt64 m_cbSize = 0;
  mutable bool m_bReadError = false;
};

}  // namespace toolbox
