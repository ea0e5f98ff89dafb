// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

// Scalar types, object references and general status codes of the audio toolbox, for machines that
// do not have that toolbox. Names, widths and values are those of its published interface, so that
// a caller compiles unchanged against either.

using UInt8 = std::uint8_t;
using SInt8 = std::int8_t;
using UInt16 = std::uint16_t;
using SInt16 = std::int16_t;
using UInt32 = std::uint32_t;
using SInt32 = std::int32_t;
using UInt64 = std::uint64_t;
using SInt64 = std::int64_t;
using Float32 = float;
using Float64 = double;
using Boolean = unsigned char;
// Result of every call: 0 is success, everything else a failure.
using OSStatus = SInt32;
using OSType = UInt32;
using FourCharCode = UInt32;

using CFIndex = long;
using CFTypeRef = const void*;
using CFURLRef = const struct OpaqueCFURL*;
using CFStringRef = const struct OpaqueCFString*;
using CFStringEncoding = UInt32;
using CFAllocatorRef = const struct OpaqueCFAllocator*;

namespace toolbox {
// A four-character code as the toolbox reads it: the first character is the most significant byte.
constexpr UInt32 FourChars(const char (&szCode)[5]) noexcept {
  UInt32 dwCode = 0;
  for (int i = 0; i < 4; ++i) dwCode = (dwCode << 8) | static_cast<unsigned char>(szCode[i]);
  return dwCode;
}
constexpr OSStatus FourCharStatus(const char (&szCode)[5]) noexcept {
  return static_cast<OSStatus>(FourChars(szCode));
}
}  // namespace toolbox

enum : OSStatus {
  noErr = 0,
  kAudio_UnimplementedError = -4,
  kAudio_FileNotFoundError = -43,
  kAudio_ParamError = -50,
  kAudio_FilePermissionError = -54,
  // Memory or threads are missing. Every call may return it.
  kAudio_MemFullError = -108,
};

enum : CFStringEncoding {
  kCFStringEncodingUTF8 = 0x08000100,
};

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;

// Makes a file URL from the `nBufLen` bytes of the path; the caller releases it with `CFRelease`.
// Null when the path is null, is empty or contains a zero byte, and when memory is missing. The
// allocator is ignored.
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* pbyBuffer,
                                                 CFIndex nBufLen, Boolean bIsDirectory);
// Releases a URL or a string. Null is ignored.
void CFRelease(CFTypeRef cf);

// Length of the text in 16-bit units of UTF-16; 0 for null.
CFIndex CFStringGetLength(CFStringRef text);
// Returns the most bytes that `nLength` units can take, without a terminating zero. Only UTF-8 is
// supported. Returns -1 for any other encoding, for a negative length, and when the result would
// not fit.
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex nLength, CFStringEncoding dwEncoding);
// Copies the text and a terminating zero. Returns 0 (false) when they do not fit into `cbBuffer`
// bytes, when the text or the buffer is null, and for any encoding but UTF-8.
Boolean CFStringGetCString(CFStringRef text, char* pszBuffer, CFIndex cbBuffer,
                           CFStringEncoding dwEncoding);
}
