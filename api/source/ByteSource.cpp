// SPDX-License-Identifier: Apache-2.0
#include "source/ByteSource.h"

namespace api {

bool ReadExact(I_ByteSource& source, std::uint64_t qwPosition, std::span<std::uint8_t> bytes) {
  return source.ReadSome(qwPosition, bytes) == bytes.size();
}

}  // namespace api
