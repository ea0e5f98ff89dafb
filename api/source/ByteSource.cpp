// SPDX-License-Identifier: Apache-2.0
#include "source/ByteSource.h"

#include <algorithm>

namespace api {
namespace {

// The first bytes, as many as can be read before a failure. A source does not say how far it came,
// so this halves its way to the place.
std::size_t ReadBeforeFailure(I_ByteSource& source, std::uint64_t qwAt,
                              std::span<std::uint8_t> bytes) {
  std::size_t cbGood = 0;
  std::size_t cbRest = bytes.size();  // the first byte that cannot be read is among these
  while (cbRest > 1) {
    const std::size_t cbHalf = cbRest / 2;
    try {
      cbGood += source.ReadSome(qwAt + cbGood, bytes.subspan(cbGood, cbHalf));
      cbRest -= cbHalf;
    } catch (const C_Failure&) {
      cbRest = cbHalf;
    }
  }
  return cbGood;
}

}  // namespace

S_BytesRead I_ByteSource::ReadToFailure(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) {
  try {
    return {ReadSome(qwPosition, bytes), std::nullopt};
  } catch (const C_Failure& failure) {
    return {CanGoBack() ? ReadBeforeFailure(*this, qwPosition, bytes) : 0, failure};
  }
}

bool ReadExact(I_ByteSource& source, std::uint64_t qwPosition, std::span<std::uint8_t> bytes) {
  return source.ReadSome(qwPosition, bytes) == bytes.size();
}

S_ByteRange Held(const I_ByteSource& source, S_ByteRange range) noexcept {
  const auto qwLength = source.Length();
  if (!qwLength) return range;
  return {range.qwAt, std::min(range.qwSize, *qwLength - std::min(range.qwAt, *qwLength))};
}

}  // namespace api
