// SPDX-License-Identifier: Apache-2.0
#include "compressed/WavFileCodecInfo.h"

#include <algorithm>

#include "ByteReader.h"
#include "chunk/PcmFormat.h"

namespace {

S_DviAdpcmInfo ReadBlockFormat(vcm::C_ByteReader& reader) noexcept {
  S_DviAdpcmInfo info;
  info.wfx.pcm = pcmformat::Read(reader);
  info.wfx.wExtraSize = reader.U16();
  info.wSamplesPerBlock = reader.U16();
  return info;
}

bool HasDivisors(const S_WavTag& tag, const S_PcmFormatRecord& pcm) noexcept {
  if (pcm.wChannels == 0) return false;
  if (pcm.wFormatTag == WAVE_TAG_PCM && pcm.wBitsPerSample == 0) return false;
  return !tag.bBlocks || pcm.wBlockAlign != 0;
}

}  // namespace

bool C_WavFileCodecInfo::SetFormat(std::span<const std::uint8_t> payload) {
  Clear();
  vcm::C_ByteReader reader(payload);
  const S_PcmFormatRecord pcm = pcmformat::Read(reader);
  const S_WavTag* const pTag = wavtags::Find(pcm.wFormatTag);
  if (!reader.Ok() || pTag == nullptr || !HasDivisors(*pTag, pcm)) return false;
  const std::size_t cbRecord = wavtags::RecordBytes(*pTag, payload);
  if (cbRecord > payload.size()) return false;
  const auto record = payload.first(cbRecord);
  m_record.assign(record.begin(), record.end());
  m_pcm = pcm;
  m_wSamplesPerBlock = GetDVIADPCMInfo().wSamplesPerBlock;
  return true;
}

void C_WavFileCodecInfo::Clear() noexcept {
  m_record.clear();
  m_pcm = kNoFormat;
  m_wSamplesPerBlock = 0;
}

unsigned short C_WavFileCodecInfo::GetFormatTag() const noexcept {
  return vcm::C_ByteReader(m_record).U16();
}

S_WaveFormatEx C_WavFileCodecInfo::GetWAVEFORMATEX() const noexcept {
  return GetDVIADPCMInfo().wfx;
}

S_DviAdpcmInfo C_WavFileCodecInfo::GetDVIADPCMInfo() const noexcept {
  vcm::C_ByteReader reader(m_record);
  return ReadBlockFormat(reader);
}

S_MSAdpcmInfo C_WavFileCodecInfo::GetMSADPCMInfo() const noexcept {
  vcm::C_ByteReader reader(m_record);
  const S_DviAdpcmInfo block = ReadBlockFormat(reader);
  S_MSAdpcmInfo info;
  info.wfx = block.wfx;
  info.wSamplesPerBlock = block.wSamplesPerBlock;
  info.wCoefficientCount = reader.U16();
  const auto nHeld = std::min<std::size_t>(info.wCoefficientCount, info.coefficients.size());
  for (std::size_t i = 0; i < nHeld; ++i) {
    info.coefficients[i].nFirst = reader.I16();
    info.coefficients[i].nSecond = reader.I16();
  }
  return info;
}

S_MSAdpcmInfo::S_Coefficients C_WavFileCodecInfo::GetMSADPCMCoefficients(
    std::uint8_t byPredictor) const noexcept {
  vcm::C_ByteReader reader(m_record);
  reader.Skip(kMSAdpcmHeadBytes + std::size_t{4} * byPredictor);
  S_MSAdpcmInfo::S_Coefficients pair;
  pair.nFirst = reader.I16();
  pair.nSecond = reader.I16();
  return pair;
}
