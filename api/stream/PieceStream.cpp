// SPDX-License-Identifier: Apache-2.0
#include "stream/PieceStream.h"

#include <string>
#include <utility>

namespace api {

std::size_t C_PieceStream::Read(std::span<std::int16_t> samples) {
  if (m_failure) {
    const C_Failure failure = *std::exchange(m_failure, std::nullopt);
    throw C_Failure(failure);
  }
  std::size_t nDone = 0;
  while (nDone < samples.size() && Append(samples, nDone)) continue;
  return nDone;
}

bool C_PieceStream::Append(std::span<std::int16_t> samples, std::size_t& nDone) {
  try {
    const std::size_t nRead = ReadPiece(samples.subspan(nDone));
    nDone += nRead;
    return nRead > 0;
  } catch (const C_Failure& failure) {
    if (nDone == 0) throw;
    m_failure = failure;
    return false;
  }
}

void ThrowAfterEnd(std::uint64_t qwFrame, std::uint64_t qwFrames) {
  throw C_Failure(VOXPLAY_BAD_ARGUMENT, "seek: frame " + std::to_string(qwFrame) +
                                            " is after the end of the sound, which has " +
                                            std::to_string(qwFrames) + " frames");
}

}  // namespace api
