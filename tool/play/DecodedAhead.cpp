// SPDX-License-Identifier: Apache-2.0
#include "play/DecodedAhead.h"

#include <algorithm>
#include <utility>

namespace tool {
namespace {

// The queue holds 1.4 s at the highest rate of devices, which ask for at most 0.4 s at a time.
constexpr std::size_t kPieceFrames = 8192;
// Playback begins with half a second, so that a slow beginning is not heard.
constexpr std::size_t kFirstPerSecond = 2;

}  // namespace

C_DecodedAhead::C_DecodedAhead(C_PlaySource& source, std::uint64_t qwBegin, bool bAgain)
    : m_source(source), m_qwBegin(qwBegin), m_bAgain(bAgain) {
  for (S_Piece& piece : m_pieces) piece.samples.resize(kPieceFrames * source.Channels());
  m_thread = std::thread(&C_DecodedAhead::Run, this);
}

C_DecodedAhead::~C_DecodedAhead() { Join(); }

void C_DecodedAhead::Join() {
  {
    const std::lock_guard lock(m_lock);
    m_bStop = true;
  }
  m_changed.notify_all();
  if (m_thread.joinable()) m_thread.join();
}

C_DecodedAhead::S_Taken C_DecodedAhead::Take(std::span<float> samples) {
  S_Taken taken;
  {
    const std::lock_guard lock(m_lock);
    while (m_nFilled > 0 && !samples.empty()) {
      S_Piece& piece = m_pieces[m_nFirst];
      const std::size_t nFrames = TakeFrom(piece, samples);
      taken.nFrames += nFrames;
      taken.qwEnd = PlaceIn(piece);
      samples = samples.subspan(nFrames * m_source.Channels());
      if (m_nTakenFrames < piece.nFrames) continue;
      m_nTakenFrames = 0;
      m_nFirst = (m_nFirst + 1) % kPieces;
      --m_nFilled;
    }
  }
  m_changed.notify_all();
  return taken;
}

std::size_t C_DecodedAhead::TakeFrom(S_Piece& piece, std::span<float> samples) {
  const std::size_t nChannels = m_source.Channels();
  const std::size_t nFrames = std::min(piece.nFrames - m_nTakenFrames, samples.size() / nChannels);
  std::copy_n(piece.samples.begin() + static_cast<std::ptrdiff_t>(m_nTakenFrames * nChannels),
              nFrames * nChannels, samples.begin());
  m_nTakenFrames += nFrames;
  return nFrames;
}

// Where in the sound is the last frame that was taken of a piece. A piece may hold a short sound
// many times.
std::uint64_t C_DecodedAhead::PlaceIn(const S_Piece& piece) const {
  const std::uint64_t qwLeft = piece.qwLength - piece.qwLength * m_nTakenFrames / piece.nFrames;
  const std::uint64_t qwBefore = piece.qwEnd - std::min(m_qwBegin, piece.qwEnd);
  if (qwLeft <= qwBefore || m_qwTurn == 0) return piece.qwEnd - std::min(qwLeft, piece.qwEnd);
  return m_qwBegin + m_qwTurn - 1 - (qwLeft - qwBefore - 1) % m_qwTurn;
}

void C_DecodedAhead::Seek(std::uint64_t qwFrame) {
  {
    const std::lock_guard lock(m_lock);
    m_seek = qwFrame;
    m_nFilled = m_nTakenFrames = 0;
    // A decoder that has failed does not come back.
    m_bEnded = m_bStop;
  }
  m_changed.notify_all();
}

void C_DecodedAhead::WaitForFirst() {
  const std::size_t nEnough = m_source.Rate() / kFirstPerSecond / kPieceFrames + 1;
  std::unique_lock lock(m_lock);
  m_changed.wait(lock, [&] { return m_bEnded || m_nFilled >= nEnough; });
}

bool C_DecodedAhead::Drained() const {
  const std::lock_guard lock(m_lock);
  return m_bEnded && m_nFilled == 0;
}

void C_DecodedAhead::Run() {
  try {
    while (WaitForRoom()) FillNext();
    return;
  } catch (const std::exception& failure) {
    m_failure = failure.what();
  }
  {
    const std::lock_guard lock(m_lock);
    m_bEnded = true;
    m_bStop = true;
  }
  m_changed.notify_all();
}

// False when the thread is to end.
bool C_DecodedAhead::WaitForRoom() {
  std::optional<std::uint64_t> seek;
  {
    std::unique_lock lock(m_lock);
    m_changed.wait(lock, [&] { return m_bStop || m_seek || (!m_bEnded && m_nFilled < kPieces); });
    if (m_bStop) return false;
    seek = std::exchange(m_seek, std::nullopt);
  }
  if (seek) m_source.Seek(*seek);
  return true;
}

// The piece after those that are filled is the decoder's alone, but for a seek, which only makes
// all of them empty.
void C_DecodedAhead::FillNext() {
  std::size_t nNext = 0;
  {
    const std::lock_guard lock(m_lock);
    if (m_seek) return;
    nNext = (m_nFirst + m_nFilled) % kPieces;
  }
  Fill(m_pieces[nNext]);
  {
    const std::lock_guard lock(m_lock);
    // What was decoded for the old place is dropped.
    if (m_seek) return;
    m_bEnded = m_pieces[nNext].nFrames == 0;
    if (!m_bEnded) ++m_nFilled;
  }
  m_changed.notify_all();
}

// Up to the end of the sound. What is played again fills pieces all the same: a queue of pieces of
// a few frames each would be shorter than what a device asks for.
void C_DecodedAhead::Fill(S_Piece& piece) {
  const std::size_t nChannels = m_source.Channels();
  piece.nFrames = 0;
  piece.qwLength = 0;
  std::span<float> room(piece.samples);
  while (!room.empty()) {
    const std::uint64_t qwBefore = m_source.Frame();
    const std::size_t nFrames = m_source.Read(room);
    piece.nFrames += nFrames;
    piece.qwLength += m_source.Frame() - qwBefore;
    room = room.subspan(nFrames * nChannels);
    if (nFrames == 0 && !BeginAgain(m_source.Frame() - m_qwBegin)) break;
  }
  piece.qwEnd = m_source.Frame();
}

// False when the sound is not played again, or when there is nothing to play.
bool C_DecodedAhead::BeginAgain(std::uint64_t qwTurn) {
  {
    const std::lock_guard lock(m_lock);
    if (!m_bAgain || qwTurn == 0 || m_bStop || m_seek) return false;
    m_qwTurn = qwTurn;
  }
  m_source.Seek(m_qwBegin);
  return true;
}

}  // namespace tool
