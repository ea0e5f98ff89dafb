// SPDX-License-Identifier: Apache-2.0
//
// The base of streams that decode a piece at a time: a frame of Kestrel, a block of Heron. It puts
// the pieces together, and keeps a failure for the next call when samples were read before it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Failure.h"
#include "stream/SampleStream.h"

namespace api {

class C_PieceStream : public C_SampleStream16 {
 public:
  using C_SampleStream16::Read;
  std::size_t Read(std::span<std::int16_t> samples) final;

 protected:
  // Reads some samples, at least one unless the sound ends here. samples has room for one. When it
  // throws, the position stays.
  virtual std::size_t ReadPiece(std::span<std::int16_t> samples) = 0;
  // A failure that is kept has no meaning at another position.
  void ForgetFailure() noexcept { m_failure.reset(); }

 private:
  bool Append(std::span<std::int16_t> samples, std::size_t& nDone);

  std::optional<C_Failure> m_failure;
};

// Throws the failure of a seek to a frame after the end.
[[noreturn]] void ThrowAfterEnd(std::uint64_t qwFrame, std::uint64_t qwFrames);

}  // namespace api
