// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "notes/Notes.h"
#include "writer/FrameSink.h"

namespace api {

// Writes a sound in one of the containers. All functions throw C_Failure, after which the target is
// worth nothing.
class I_SoundWriter {
 public:
  virtual ~I_SoundWriter() = default;

  // Once, before the first frame. Where the target cannot go back, the notes and the number of
  // frames must be those of the end.
  virtual void Begin(const S_Notes& notes, std::uint64_t qwAnnounced) = 0;
  // Makes sure that there is room for so many frames in all. Call it before they are put.
  virtual void MakeRoom(std::uint64_t qwFrames) = 0;
  // Where the frames go.
  virtual I_FrameSink& Frames() = 0;
  // Once, after the last frame. Gives the sentences about what was lost of the notes.
  virtual std::vector<std::string> End(const S_Notes& notes, std::uint64_t qwFrames) = 0;
};
using C_SoundWriterPtr = std::unique_ptr<I_SoundWriter>;

}  // namespace api
