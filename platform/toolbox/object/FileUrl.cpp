// SPDX-License-Identifier: Apache-2.0
#include "object/FileUrl.h"

#include <cstring>
#include <exception>

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef /*allocator*/,
                                                 const UInt8* pbyBuffer, CFIndex nBufLen,
                                                 Boolean /*bIsDirectory*/) {
  if (pbyBuffer == nullptr || nBufLen <= 0) return nullptr;
  const auto cbPath = static_cast<std::size_t>(nBufLen);
  if (std::memchr(pbyBuffer, 0, cbPath) != nullptr) return nullptr;
  try {
    return new OpaqueCFURL(std::string(reinterpret_cast<const char*>(pbyBuffer), cbPath));
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // extern "C"
