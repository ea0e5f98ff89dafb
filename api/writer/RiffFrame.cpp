// SPDX-License-Identifier: Apache-2.0
#include "writer/RiffFrame.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ByteReader.h"
#include "base/Failure.h"
#include "chunk/PcmFormat.h"

namespace api {
namespace {

constexpr std::uint16_t kPcmTag = 1;
constexpr std::uint16_t kFloatTag = 3;
constexpr std::uint32_t kLargeSize = 0xFFFFFFFF;
constexpr std::uint32_t kDs64Bytes = 28;
constexpr std::size_t kHeaderBytes = 8;  // an identifier and a size
// Beyond this, sums of sizes might not fit in 64 bits.
constexpr std::uint64_t kMostRf64Bytes = std::uint64_t{1} << 62;

void Put64(vcm::C_ByteWriter& writer, std::uint64_t qwValue) {
  writer.U32(static_cast<std::uint32_t>(qwValue));
  writer.U32(static_cast<std::uint32_t>(qwValue >> 32));
}

void PutHeader(vcm::C_ByteWriter& writer, std::string_view id, std::uint32_t dwSize) {
  writer.Text(id, 4);
  writer.U32(dwSize);
}

std::uint32_t In32Bits(std::uint64_t qwValue) {
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(qwValue, kLargeSize));
}

// "fmt " and, of floating point, "fact".
void PutFormat(vcm::C_ByteWriter& writer, const S_RiffForm& form, std::uint64_t qwFrames) {
  const std::uint32_t dwFrameBytes = form.FrameBytes();
  PutHeader(writer, "fmt ", form.bFloat ? 18 : 16);
  S_PcmFormatRecord record{};
  record.wFormatTag = form.bFloat ? kFloatTag : kPcmTag;
  record.wChannels = form.wChannels;
  record.dwSamplesPerSec = form.dwSampleRate;
  record.dwAvgBytesPerSec = form.dwSampleRate * dwFrameBytes;
  record.wBlockAlign = static_cast<std::uint16_t>(dwFrameBytes);
  record.wBitsPerSample = form.wBits;
  pcmformat::Write(record, writer);
  if (!form.bFloat) return;
  writer.U16(0);  // nothing more in the record
  PutHeader(writer, "fact", 4);
  writer.U32(In32Bits(qwFrames));
}

}  // namespace

C_RiffFrame::C_RiffFrame(I_ByteTarget& target, const S_RiffForm& form, std::uint64_t qwMost)
    : m_target(target), m_form(form), m_qwMost(qwMost), m_cbHead(0) {
  m_cbHead = Head(0, 0).size();
}

bool C_RiffFrame::Fits(std::uint64_t qwFrames, std::uint64_t qwAfter) const noexcept {
  if (qwFrames > m_qwMost / m_form.FrameBytes() || qwAfter > m_qwMost) return false;
  return RiffSize(qwFrames, qwAfter) <= m_qwMost;
}

void C_RiffFrame::CheckRoom(std::uint64_t qwFrames, std::uint64_t qwAfter) const {
  const std::uint64_t qwMost = kMostRf64Bytes / m_form.FrameBytes();
  if (m_form.bRoomForRf64 && qwFrames <= qwMost && qwAfter <= kMostRf64Bytes) return;
  if (!m_form.bRoomForRf64 && Fits(qwFrames, qwAfter)) return;
  throw C_Failure(VOXPLAY_TOO_LARGE,
                  "RIFF: " + std::to_string(qwFrames) + " frames do not fit in its sizes");
}

void C_RiffFrame::Begin(std::uint64_t qwFrames, std::uint64_t qwAfter) {
  CheckRoom(qwFrames, qwAfter);
  m_target.Write(Head(qwFrames, qwAfter));
}

void C_RiffFrame::EndSamples(std::uint64_t qwFrames) { EndChunk(qwFrames * m_form.FrameBytes()); }

void C_RiffFrame::WriteChunk(const S_FourCC& id, std::span<const std::uint8_t> payload) {
  BeginChunk(id, payload.size());
  m_target.Write(payload);
  EndChunk(payload.size());
}

void C_RiffFrame::BeginChunk(const S_FourCC& id, std::uint64_t qwSize) {
  vcm::C_ByteWriter header;
  PutHeader(header, {id.data(), id.size()}, static_cast<std::uint32_t>(qwSize));
  m_target.Write(header.Data());
}

void C_RiffFrame::EndChunk(std::uint64_t qwSize) {
  constexpr std::array<std::uint8_t, 1> kPad{};
  if (qwSize % 2 != 0) m_target.Write(kPad);
}

void C_RiffFrame::End(std::uint64_t qwFrames) {
  if (!m_target.CanGoBack()) return;
  const std::uint64_t qwSamples = qwFrames * m_form.FrameBytes();
  const std::uint64_t qwAfter = m_target.Length() - m_cbHead - qwSamples - qwSamples % 2;
  CheckRoom(qwFrames, qwAfter);
  m_target.WriteAt(0, Head(qwFrames, qwAfter));
}

std::uint64_t C_RiffFrame::RiffSize(std::uint64_t qwFrames, std::uint64_t qwAfter) const noexcept {
  const std::uint64_t qwSamples = qwFrames * m_form.FrameBytes();
  return m_cbHead - kHeaderBytes + qwSamples + qwSamples % 2 + qwAfter;
}

std::vector<std::uint8_t> C_RiffFrame::Head(std::uint64_t qwFrames, std::uint64_t qwAfter) const {
  const bool bRf64 = m_form.bRoomForRf64 && !Fits(qwFrames, qwAfter);
  const std::uint64_t qwRiff = RiffSize(qwFrames, qwAfter);
  const std::uint64_t qwSamples = qwFrames * m_form.FrameBytes();
  vcm::C_ByteWriter head;
  PutHeader(head, bRf64 ? "RF64" : "RIFF", bRf64 ? kLargeSize : In32Bits(qwRiff));
  head.Text({m_form.form.data(), m_form.form.size()}, 4);
  if (m_form.bRoomForRf64) PutHeader(head, bRf64 ? "ds64" : "JUNK", kDs64Bytes);
  if (bRf64) {
    Put64(head, qwRiff);
    Put64(head, qwSamples);
    Put64(head, qwFrames);
    head.U32(0);  // no table of other sizes
  } else if (m_form.bRoomForRf64) {
    head.Zeros(kDs64Bytes);
  }
  PutFormat(head, m_form, qwFrames);
  PutHeader(head, "data", bRf64 ? kLargeSize : In32Bits(qwSamples));
  return head.Take();
}

}  // namespace api
