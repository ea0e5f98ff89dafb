// SPDX-License-Identifier: Apache-2.0
//
// Decodes a sound ahead of the device, on a thread of its own, into a queue of fixed size. The
// device takes from the queue, so it never waits for the decoder: where the queue is empty it gets
// fewer frames.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "play/PlaySource.h"

namespace tool {

class C_DecodedAhead {
 public:
  // The source outlives the object, and belongs to the thread until Join. With bAgain the sound
  // begins anew each time that it ends. Throws std::system_error when no thread can be made.
  C_DecodedAhead(C_PlaySource& source, std::uint64_t qwBegin, bool bAgain);
  ~C_DecodedAhead();
  C_DecodedAhead(const C_DecodedAhead&) = delete;
  C_DecodedAhead& operator=(const C_DecodedAhead&) = delete;

  struct S_Taken {
    std::size_t nFrames = 0;
    // Where in the sound the frames end; meaningless when there are none.
    std::uint64_t qwEnd = 0;
  };
  // For the device's thread: as many whole frames as there are, at most as many as fit.
  S_Taken Take(std::span<float> samples);
  // What is in the queue is dropped, and decoding goes on at this frame of the sound.
  void Seek(std::uint64_t qwFrame);
  // Waits until there is enough to begin with.
  void WaitForFirst();
  // Whether everything was taken.
  [[nodiscard]] bool Drained() const;
  // Ends the thread.
  void Join();
  // Why the decoder has ended before the end of the sound. After Join.
  [[nodiscard]] const std::optional<std::string>& Failure() const noexcept { return m_failure; }

 private:
  struct S_Piece {
    std::vector<float> samples;
    std::size_t nFrames = 0;
    std::uint64_t qwLength = 0;  // frames of the sound that it was made of
    std::uint64_t qwEnd = 0;     // where in the sound it ends
  };
  static constexpr std::size_t kPieces = 32;

  void Run();
  bool WaitForRoom();
  void FillNext();
  void Fill(S_Piece& piece);
  bool BeginAgain(std::uint64_t qwTurn);
  std::size_t TakeFrom(S_Piece& piece, std::span<float> samples);
  [[nodiscard]] std::uint64_t PlaceIn(const S_Piece& piece) const;

  C_PlaySource& m_source;
  const std::uint64_t m_qwBegin;
  const bool m_bAgain;

  mutable std::mutex m_lock;
  std::condition_variable m_changed;
  std::array<S_Piece, kPieces> m_pieces;
  std::size_t m_nFirst = 0;        // the piece that is taken from
  std::size_t m_nFilled = 0;       // pieces that hold frames
  std::size_t m_nTakenFrames = 0;  // of the first piece
  std::uint64_t m_qwTurn = 0;      // frames from the beginning to the end, once that was reached
  std::optional<std::uint64_t> m_seek;
  bool m_bEnded = false;  // the decoder is at the end
  bool m_bStop = false;
  std::optional<std::string> m_failure;
  std::thread m_thread;
};

}  // namespace tool
