// SPDX-License-Identifier: Apache-2.0
//
// Sounds as the commands read them: files of our own formats through voxplay.h, and others through
// libsndfile.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "voxplay.hpp"

namespace tool {

// The number of frames where an input does not tell it.
inline constexpr std::uint64_t kFramesUnknown = UINT64_MAX;

struct S_SoundInfo {
  std::uint32_t dwRate = 0;  // Hz
  std::uint32_t dwChannels = 0;
  std::uint64_t qwFrames = kFramesUnknown;
  bool bFramesGuessed = false;  // nothing in the file says how many there are
  // For people: "Kestrel, 16000 bit/s, SP header" or "FLAC, 24 bits".
  std::string strFormat;
  // Of integer samples: how many bits of them are used, 1 to 32. 0 for floating point.
  std::uint32_t dwBits = 0;
  bool bDouble = false;  // floating point of 64 bits
  // The voxplay_container by whose rules the notes are read: also of WAV files that are not ours,
  // and 0 for other files that are not.
  std::uint32_t dwNotesContainer = 0;
  // For files of our formats, as it was when they were opened.
  std::optional<voxplay::Info> ours;
  std::optional<voxplay::Headers> headers;
  std::vector<voxplay::ChunkPlace> chunks;  // of RIFF files of ours
};

// An open sound. Operations throw C_Failure or voxplay::Error, whose text is "FILE: what: why".
class I_SoundInput {
 public:
  virtual ~I_SoundInput() = default;

  [[nodiscard]] virtual const S_SoundInfo& Info() const noexcept = 0;
  // Events and everything else beside the samples, also of WAV files that are not ours; of other
  // files that are not ours, their cue points, loops and texts, as far as libsndfile tells them.
  [[nodiscard]] virtual voxplay::NotesView Notes() const noexcept = 0;
  // Of the frames that were read so far: those that were damaged.
  [[nodiscard]] virtual std::uint64_t DamagedFrames() const noexcept = 0;

  // Reads whole interleaved frames, as many as fit, and returns their number; 0 only at the end.
  virtual std::size_t Read(std::span<std::int16_t> samples) = 0;
  virtual std::size_t Read(std::span<std::int32_t> samples) = 0;
  virtual std::size_t Read(std::span<float> samples) = 0;
  // Exactly as they are in the file, but for floating point of 64 bits in files of ours, which
  // voxplay.h reads as that of 32.
  virtual std::size_t Read(std::span<double> samples) = 0;
  // Moves to a frame, at most the number of frames.
  virtual void Seek(std::uint64_t qwFrame) = 0;

  // Whether the end of the file is missing, as far as it is known: more may show while it is read.
  [[nodiscard]] virtual bool IsCut() const noexcept = 0;
};
using C_SoundInputPtr = std::unique_ptr<I_SoundInput>;

// Is told how many frames have been read.
using PFN_FramesRead = std::function<void(std::uint64_t qwFrames)>;

// Standard input, as an operand.
inline constexpr const char* kStandardStream = "-";

// Whether a file can be read only once: standard input, and pipes with a name.
[[nodiscard]] bool IsReadOnce(const std::string& strPath);

// Opens a file, or standard input for "-". What can be read only once is copied to a private
// temporary file first, so that it can be read like any other.
//
// Our own formats come first, then those of libsndfile, and last Kestrel streams without a header,
// which are recognised by their length alone. The failure for a file that is none of these says
// which test of ours it failed. dwFlags may have VOXPLAY_READ_STREAM of voxplay.h, which only
// counts for our own formats.
C_SoundInputPtr OpenSound(const std::string& strPath, std::uint32_t dwFlags = 0);

// What messages call the file of an operand: "standard input" for "-".
std::string NameOf(const std::string& strPath);

}  // namespace tool
