// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataSamplerInfo.h"

#include <algorithm>
#include <memory>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "VcmAssert.h"
#include "chunk/WavDataChunk.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavDataInfo";
constexpr std::uint32_t kHeaderLength = 36;
constexpr std::uint32_t kLoopLength = 24;

C_WavDataSamplerInfo::S_SampleLoop ReadLoop(std::span<const std::uint8_t> bytes) {
  vcm::C_ByteReader reader(bytes);
  C_WavDataSamplerInfo::S_SampleLoop loop{};
  loop.dwCuePointID = reader.U32();
  loop.dwType = reader.U32();
  loop.dwStart = reader.U32();
  loop.dwEnd = reader.U32();
  loop.dwFraction = reader.U32();
  loop.dwPlayCount = reader.U32();
  return loop;
}

void WriteLoop(vcm::C_ByteWriter& writer, const C_WavDataSamplerInfo::S_SampleLoop& loop) {
  for (const unsigned int dwField : {loop.dwCuePointID, loop.dwType, loop.dwStart, loop.dwEnd,
                                     loop.dwFraction, loop.dwPlayCount}) {
    writer.U32(dwField);
  }
}

}  // namespace

unsigned int C_WavDataSamplerInfo::C_SampleLoop::ByteOffset(unsigned int dwSample) const {
  return dwSample * m_pIWavInfo->GetBytesPerSample() * m_pIWavInfo->GetChannels();
}

void C_WavDataSamplerInfo::Reset() {
  m_header = {};
  ResetSampleLoopInformation();
}

void C_WavDataSamplerInfo::SetMIDIPitchFraction(unsigned int dwFraction) {
  m_header.dwMIDIPitchFraction = dwFraction;
}

I_WavDataSampleLoop* C_WavDataSamplerInfo::GetSampleLoopByIndex(int nIndex) {
  return m_loops.GetItemByIndex(nIndex);
}

bool C_WavDataSamplerInfo::AddSampleLoop(unsigned int dwCuePointID, tagLoopType eType,
                                         unsigned int dwStart, unsigned int dwEnd,
                                         unsigned int dwFraction, unsigned int dwPlayCount) {
  Append({dwCuePointID, eType, dwStart, dwEnd, dwFraction, dwPlayCount});
  return true;
}

bool C_WavDataSamplerInfo::RemoveSampleLoopByIndex(int nIndex) {
  if (nIndex < 0 || nIndex >= m_loops.GetCount()) return false;
  m_loops.RemoveAt(nIndex, 1);
  return true;
}

unsigned int C_WavDataSamplerInfo::GetChunkLength() {
  return vcm::CheckedBytes(GetSampleLoopNum(), kLoopLength,
                           std::uint64_t{kHeaderLength} + m_header.dwSamplerData)
      .value_or(0);
}

bool C_WavDataSamplerInfo::LoadInfo(I_RiffChunk* pChunk) {
  const std::uint32_t cbPayload = pChunk->GetDataLength();
  if (cbPayload < kHeaderLength) return true;
  const auto bytes = vcm::ReadField<kHeaderLength>(*pChunk, 0);
  if (!bytes) return false;
  vcm::C_ByteReader reader(*bytes);
  m_header.dwManufactureID = reader.U32();
  m_header.dwProductID = reader.U32();
  m_header.dwSamplePeriod = reader.U32();
  m_header.dwMIDIUnityNote = reader.U32();
  m_header.dwMIDIPitchFraction = reader.U32();
  m_header.eSMPTEFormat = static_cast<tagSMPTEFormat>(reader.U32());
  m_header.dwSMPTEOffset = reader.U32();
  const std::uint32_t dwLoops =
      vcm::WholeRecords(reader.U32(), cbPayload, kHeaderLength, kLoopLength);
  m_header.dwSamplerData =
      std::min(reader.U32(), cbPayload - kHeaderLength - dwLoops * kLoopLength);
  return LoadLoops(*pChunk, dwLoops);
}

bool C_WavDataSamplerInfo::SaveInfo(I_RiffChunk* pChunk) {
  const std::uint32_t cbPayload = GetChunkLength();
  if (cbPayload == 0 || pChunk->GetDataLength() != cbPayload) return false;
  vcm::C_ByteWriter writer;
  for (const unsigned int dwField :
       {m_header.dwManufactureID, m_header.dwProductID, m_header.dwSamplePeriod,
        m_header.dwMIDIUnityNote, m_header.dwMIDIPitchFraction,
        static_cast<unsigned int>(m_header.eSMPTEFormat), m_header.dwSMPTEOffset,
        GetSampleLoopNum(), m_header.dwSamplerData}) {
    writer.U32(dwField);
  }
  for (int i = 0; i < m_loops.GetCount(); ++i) {
    const C_SampleLoop* pSampleLoop = m_loops.GetAt(i);
    VCM_ASSERT(pSampleLoop != nullptr, "SaveInfo", kSource, __LINE__, "pSampleLoop != NULL");
    WriteLoop(writer, pSampleLoop->GetRecord());
  }
  writer.Zeros(m_header.dwSamplerData);
  return vcm::SavePayload(*pChunk, writer.Data());
}

void C_WavDataSamplerInfo::Renumber(const vcm::C_NewID& newID) {
  vcm::KeepIf(m_loops, [&newID](C_SampleLoop* pLoop) {
    const std::optional<unsigned int> dwID = newID(pLoop->GetCuePointID());
    if (dwID) pLoop->SetCuePointID(*dwID);
    return dwID.has_value();
  });
}

void C_WavDataSamplerInfo::Append(const S_SampleLoop& record) {
  vcm::AddOwned(m_loops, std::make_unique<C_SampleLoop>(record, m_pIWavInfo));
}

bool C_WavDataSamplerInfo::LoadLoops(I_RiffChunk& chunk, unsigned int dwLoops) {
  ResetSampleLoopInformation();
  for (unsigned int i = 0; i < dwLoops; ++i) {
    const auto bytes =
        vcm::ReadField<kLoopLength>(chunk, kHeaderLength + std::uint64_t{kLoopLength} * i);
    if (!bytes) return false;
    Append(ReadLoop(*bytes));
  }
  return true;
}
