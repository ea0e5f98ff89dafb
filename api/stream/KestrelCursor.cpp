// SPDX-License-Identifier: Apache-2.0
#include "stream/KestrelCursor.h"

#include <algorithm>

namespace api {

C_KestrelCursor::C_KestrelCursor(const C_KestrelFrames& frames,
                                 const kestrel::S_Configuration& configuration)
    : m_frames(frames) {
  m_at.decoder.Init(configuration.dwBitRate);
  m_marks.Offer(m_at);
}

E_KestrelFrame C_KestrelCursor::Next(S_Samples samples) {
  if (!TakeWords(m_at.qwFrame)) return E_KestrelFrame::kNone;
  m_marks.Offer(m_at);
  const bool bGood = m_at.decoder.Decode(m_words, samples);
  ++m_at.qwFrame;
  return bGood && !m_bCut ? E_KestrelFrame::kGood : E_KestrelFrame::kDamaged;
}

void C_KestrelCursor::MoveTo(std::uint64_t qwFrame) {
  if (qwFrame == m_at.qwFrame) return;
  const S_KestrelMark& mark = m_marks.Before(qwFrame);
  const bool bFromHere = m_at.qwFrame < qwFrame && m_at.qwFrame >= mark.qwFrame;
  S_KestrelMark at = bFromHere ? m_at : mark;
  while (at.qwFrame < qwFrame) {
    m_marks.Offer(at);
    const std::uint64_t qwNext = at.qwFrame + 1;
    if (!Pass(at, qwNext == qwFrame || m_marks.Wants(qwNext))) break;
  }
  m_at = at;
}

// False after the end.
bool C_KestrelCursor::Pass(S_KestrelMark& at, bool bRenewOverlap) {
  if (!TakeWords(at.qwFrame)) return false;
  if (bRenewOverlap) {
    kestrel::S_Frame samples;
    at.decoder.Decode(m_words, samples);
  } else {
    at.decoder.Skip(m_words);
  }
  ++at.qwFrame;
  return true;
}

// Words are little-endian. An odd byte at the end of a frame that is cut short is no word.
bool C_KestrelCursor::TakeWords(std::uint64_t qwFrame) {
  const auto bytes = m_frames.Frame(qwFrame);
  if (bytes.empty()) return false;
  const std::size_t nWords = bytes.size() / 2;
  for (std::size_t n = 0; n < nWords; ++n) {
    m_words[n] = static_cast<std::uint16_t>(bytes[2 * n] | bytes[2 * n + 1] << 8);
  }
  m_bCut = bytes.size() < m_frames.FrameBytes();
  if (m_bCut) std::fill(m_words + nWords, std::end(m_words), std::uint16_t{0});
  return true;
}

}  // namespace api
