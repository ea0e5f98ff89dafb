// SPDX-License-Identifier: Apache-2.0
#include "check/StreamClaim.h"

#include <array>

#include "sound/ByteCopy.h"

namespace tool {
namespace {

constexpr std::size_t kLengthBytes = 4;

// What stands before the stream.
std::optional<std::uint64_t> HeaderBytes(std::uint32_t dwContainer) {
  switch (dwContainer) {
    case VOXPLAY_CONTAINER_SP:
      return 48;
    case VOXPLAY_CONTAINER_HEAD:
      return 6;
    case VOXPLAY_CONTAINER_BARE:
      return 0;
    default:
      return {};
  }
}

}  // namespace

std::optional<S_StreamClaim> StreamClaimOf(const std::string& strPath, const voxplay::Info& info) {
  const auto header = HeaderBytes(info.container);
  if (!header || info.codec != VOXPLAY_CODEC_KESTREL) return {};
  C_FileBytes bytes = OpenBytes(strPath);
  std::array<std::uint8_t, kLengthBytes> length{};
  bytes.Seek(*header);
  if (bytes.Read(length.data(), length.size()) != kLengthBytes || bytes.Length() < 0) return {};
  S_StreamClaim claim;
  for (std::size_t n = 0; n < length.size(); ++n) {
    claim.qwClaimed |= std::uint64_t{length.at(n)} << 8U * n;
  }
  claim.qwHeld = static_cast<std::uint64_t>(bytes.Length()) - *header - kLengthBytes;
  return claim;
}

}  // namespace tool
