// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioFile.h>

#include <cstddef>
#include <string>

namespace toolbox {

// An open regular file. Reads go by position and leave the descriptor's own offset alone, so
// several readers can share it.
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
  [[nodiscard]] int Get() const noexcept { return m_fd; }
  // Size of the file in bytes when it was opened.
  [[nodiscard]] UInt64 Size() const noexcept { return m_cbSize; }
  // True when the file has become shorter since it was opened, and ends at or before the
  // descriptor's own offset.
  [[nodiscard]] bool IsCutBeforeOffset() const noexcept;
  // Returns the number of bytes copied, fewer than wanted only at the end of the file or on a read
  // error.
  std::size_t ReadAt(UInt64 qwOffset, void* pBuffer, std::size_t cbWanted) const;

 private:
  int m_fd = -1;
  UInt64 m_cbSize = 0;
};

}  // namespace toolbox
