// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <array>
#include <exception>

// A platform audio call that failed: the operation and the status that it returned.
class CAXException : public std::exception {
 public:
  // Copies the text and cuts it to `kMaxOperation` - 1 characters. A null pointer counts as "".
  CAXException(const char* pszOperation, OSStatus nError) noexcept;

  [[nodiscard]] const char* Operation() const noexcept { return m_szOperation.data(); }
  [[nodiscard]] OSStatus Error() const noexcept { return m_nError; }
  // The operation text.
  [[nodiscard]] const char* what() const noexcept override { return Operation(); }

 private:
  static constexpr std::size_t kMaxOperation = 256;
  std::array<char, kMaxOperation> m_szOperation{};
  OSStatus m_nError;
};

// Every status is tested by this one rule: anything but zero throws, whatever its sign.
inline void XThrowIfError(OSStatus nError, const char* pszOperation) {
  if (nError != noErr) throw CAXException(pszOperation, nError);
}
