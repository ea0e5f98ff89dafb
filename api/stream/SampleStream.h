// SPDX-License-Identifier: Apache-2.0
//
// The samples of an open sound, decoded piece by piece as they are asked for. Every codec has one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "base/Failure.h"

namespace api {

class I_SampleStream {
 public:
  virtual ~I_SampleStream() = default;

  // Channels of a frame, at least 1.
  [[nodiscard]] virtual std::size_t ChannelCount() const noexcept = 0;
  // Frames of the sound. Empty while an input that only goes forward does not tell. May become
  // smaller while a damaged sound is read, and always is what was read in the end.
  [[nodiscard]] virtual std::optional<std::uint64_t> FrameCount() const noexcept = 0;
  // Of the frames that were read so far: those that had to be replaced. Such a frame counts when
  // reading first goes beyond it (DamageCount.h). Frames that are read twice count once, and those
  // that a seek passed over do not count.
  [[nodiscard]] virtual std::uint64_t DamagedFrames() const noexcept = 0;
  // The frame that is read next.
  [[nodiscard]] virtual std::uint64_t Position() const noexcept = 0;

  // Reads as many frames as there are, up to samples.size() / ChannelCount(), and returns their
  // number; 0 only at the end. Where the source cannot be read, the frames before that place are
  // returned, and the next call throws C_Failure.
  virtual std::size_t Read(std::span<std::int16_t> samples) = 0;
  virtual std::size_t Read(std::span<std::int32_t> samples) = 0;
  virtual std::size_t Read(std::span<float> samples) = 0;

  // Moves to a frame, at most FrameCount(). The same samples follow as if all frames before it had
  // been read. Throws C_Failure: VOXPLAY_CANNOT_SEEK where the source would have to go back and
  // cannot, and VOXPLAY_BAD_ARGUMENT for a frame after the end. Where the end shows only now, the
  // position is then there.
  virtual void Seek(std::uint64_t qwFrame) = 0;
};
using C_SampleStreamPtr = std::unique_ptr<I_SampleStream>;

// The base of streams whose codec gives 16-bit samples.
class C_SampleStream16 : public I_SampleStream {
 public:
  using I_SampleStream::Read;
  std::size_t Read(std::span<std::int32_t> samples) override;
  std::size_t Read(std::span<float> samples) override;

 private:
  template <typename Sample>
  std::size_t ReadAs(std::span<Sample> samples);
  std::size_t ReadOrKeepFailure(std::span<std::int16_t> samples, bool bKeep);
  void ThrowKeptFailure();

  // What the next call throws, if it reads on from this position.
  std::optional<std::pair<C_Failure, std::uint64_t>> m_kept;
};

}  // namespace api
