// SPDX-License-Identifier: Apache-2.0
#include "writer/HeronCoder.h"

#include <utility>

#include "ByteReader.h"
#include "base/Failure.h"
#include "heron/RateControl.h"
#include "notes/RiffNotes.h"
#include "stream/CodedLength.h"
#include "writer/HeronEvents.h"

namespace api {

C_HeronCoder::C_HeronCoder(I_ByteTarget& target, int nSampleRate,
                           const heronstream::S_Variant& variant, S_Looked fnLooked)
    : m_target(target),
      m_nSampleRate(nSampleRate),
      m_variant(variant),
      m_fnLooked(std::move(fnLooked)) {}

void C_HeronCoder::CheckLength(std::uint64_t qwSamples) const {
  if (qwSamples > kMostCodedSamples) {
    throw C_Failure(VOXPLAY_TOO_LARGE, "Heron: a sound has at most 2,147,483,647 samples");
  }
}

void C_HeronCoder::Put(std::span<const std::int16_t> samples) {
  CheckLength(std::uint64_t{m_dwSamples} + samples.size());
  m_spool.Append(samples.data(), samples.size_bytes());
  m_dwSamples += static_cast<std::uint32_t>(samples.size());
}

void C_HeronCoder::End(const S_Notes& notes) {
  if (m_dwSamples == 0) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, "Heron: a stream has at least one sample");
  }
  m_qwStart = m_target.Length();
  WriteAudio();
  WriteEvents(notes);
}

std::vector<std::string> C_HeronCoder::Lost(const S_Notes& notes,
                                            const std::string& strHolder) const {
  auto lost = LostOfHeronEvents(notes.events, m_dwSamples, m_nSampleRate, m_bEventsWritten);
  for (std::string& strLost : AllLostButEvents(notes, strHolder)) {
    lost.push_back(std::move(strLost));
  }
  return lost;
}

// The head is not known yet, so zeros hold its place.
void C_HeronCoder::WriteAudio() {
  vcm::C_ByteWriter placeholder;
  placeholder.Zeros(heronstream::kHeadBytes);
  m_target.Write(placeholder.Data());
  const auto fnRead = [this](std::size_t nAt, std::span<std::int16_t> samples) {
    ReadBack(nAt, samples);
    return true;
  };
  const auto fnWrite = [this](std::span<const std::uint8_t> bytes) {
    m_target.Write(bytes);
    return true;
  };
  heron::EncodeWithin(m_dwSamples, fnRead, m_nSampleRate, m_variant.nBitDepth, fnWrite, {});
}

void C_HeronCoder::WriteEvents(const S_Notes& notes) {
  auto events = CodeHeronEvents(notes.events, m_dwSamples, m_nSampleRate);
  const std::uint64_t qwAudioEnd = m_target.Length() - m_qwStart;
  auto dwHead = heronstream::MakeHead(m_variant, qwAudioEnd, events.size());
  m_bEventsWritten = dwHead.has_value();
  if (!dwHead) {
    events.clear();
    dwHead = heronstream::MakeHead(m_variant, qwAudioEnd, 0);
  }
  m_target.Write(events);
  vcm::C_ByteWriter head;
  head.U32(*dwHead);
  m_target.WriteAt(m_qwStart, head.Data());
}

// The file is private to this process, so its samples are as they are in memory.
void C_HeronCoder::ReadBack(std::size_t nAt, std::span<std::int16_t> samples) {
  m_spool.Read(std::uint64_t{nAt} * sizeof(std::int16_t), samples.data(), samples.size_bytes());
  m_qwLooked += samples.size();
  if (m_fnLooked) m_fnLooked(m_qwLooked);
}

}  // namespace api
