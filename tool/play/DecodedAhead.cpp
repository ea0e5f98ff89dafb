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
      taken.qwEnd = piece.qwBegin + (piece.qwEnd - piece.qwBegin) * m_nTakenFrames / piece.nFrames;
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
  std::size_t nFrames = Fill(m_source, m_pieces[nNext]);
  if (nFrames == 0 && m_bAgain) {
    m_source.Seek(m_qwBegin);
    nFrames = Fill(m_source, m_pieces[nNext]);
  }
  {
    const std::lock_guard lock(m_lock);
    // What was decoded for the old place is dropped.
    if (m_seek) return;
    m_bEnded = nFrames == 0;
    if (!m_bEnded) ++m_nFilled;
  }
  m_changed.notify_all();
}

std::size_t C_DecodedAhead::Fill(C_PlaySource& source, S_Piece& piece) {
  piece.qwBegin = source.Frame();
  piece.nFrames = source.Read(piece.samples);
  piece.qwEnd = source.Frame();
  return piece.nFrames;
}

}  // namespace tool
