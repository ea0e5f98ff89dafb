// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "notes/Notes.h"

namespace api {

// Makes a coded stream of 16-bit mono samples, and appends it to a target. All functions throw
// C_Failure.
class I_StreamCoder {
 public:
  virtual ~I_StreamCoder() = default;

  // VOXPLAY_TOO_LARGE when no stream has so many samples.
  virtual void CheckLength(std::uint64_t qwSamples) const = 0;
  // Once, before the samples: appends what stands before them. qwAnnounced is the number of samples
  // that will come. It matters only where the target cannot go back, and must be right there.
  virtual void Begin(std::uint64_t qwAnnounced) = 0;
  virtual void Put(std::span<const std::int16_t> samples) = 0;
  // Once, after the samples: appends the rest of the stream. Of the notes, some streams have the
  // events.
  virtual void End(const S_Notes& notes) = 0;
  // After End: what the stream, in a container that holds no notes, loses of these. One sentence
  // each; strHolder is their subject, "an SP header".
  [[nodiscard]] virtual std::vector<std::string> Lost(const S_Notes& notes,
                                                      const std::string& strHolder) const = 0;
};
using C_StreamCoderPtr = std::unique_ptr<I_StreamCoder>;

}  // namespace api
