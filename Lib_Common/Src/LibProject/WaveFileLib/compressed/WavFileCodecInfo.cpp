// SPDX-License-Identifier: Apache-2.0
#include "compressed/WavFileCodecInfo.h"

#include <algorithm>

#include "ByteReader.h"

namespace {

bool IsBlockCodec(unsigned short wFormatTag) noexcept {
  return wFormatTag == WAVE_TAG_MS_ADPCM || wFormatTag == WAVE_TAG_DVI_ADPCM;
}

S_PcmFormatRecord ReadPcm(vcm::C_ByteReader& reader) noexcept {
  S_PcmFormatRecord pcm;
  pcm.wFormatTag = reader.U16();
  pcm.wChannels = reader.U16();
  pcm.dwSamplesPerSec = reader.U32();
  pcm.dwAvgBytesPerSec = reader.U32();
  pcm.wBlockAlign = reader.U16();
  pcm.wBitsPerSample = reader.U16();
  return pcm;
}

S_DviAdpcmInfo ReadBlockFormat(vcm::C_ByteReader& reader) noexcept {
  S_DviAdpcmInfo info;
  info.wfx.pcm = ReadPcm(reader);
  info.wfx.wExtraSize = reader.U16();
  info.wSamplesPerBlock = reader.U16();
  return info;
}

// The length of the record that the payload begins with, also when the payload is shorter.
std::size_t RecordBytes(unsigned short wFormatTag, std::span<const std::uint8_t> payload) noexcept {
  if (wFormatTag == WAVE_TAG_DVI_ADPCM) return C_WavFileCodecInfo::kDviAdpcmBytes;
  if (wFormatTag != WAVE_TAG_MS_ADPCM) return S_PcmFormatRecord::kBytes;
  vcm::C_ByteReader reader(payload);
  reader.Skip(C_WavFileCodecInfo::kDviAdpcmBytes);
  const std::size_t nCoefficients = reader.U16();
  return C_WavFileCodecInfo::kMSAdpcmHeadBytes + 4 * nCoefficients;
}

bool HasDivisors(const S_PcmFormatRecord& pcm) noexcept {
  if (pcm.wChannels == 0) return false;
  if (pcm.wFormatTag == WAVE_TAG_PCM && pcm.wBitsPerSample == 0) return false;
  return !IsBlockCodec(pcm.wFormatTag) || pcm.wBlockAlign != 0;
}

}  // namespace

bool C_WavFileCodecInfo::IsAcceptedTag(unsigned short wFormatTag) noexcept {
  return IsBlockCodec(wFormatTag) || wFormatTag == WAVE_TAG_PCM || wFormatTag == WAVE_TAG_ALAW ||
         wFormatTag == WAVE_TAG_MULAW;
}

bool C_WavFileCodecInfo::SetFormat(std::span<const std::uint8_t> payload) {
  Clear();
  vcm::C_ByteReader reader(payload);
  const S_PcmFormatRecord pcm = ReadPcm(reader);
  if (!reader.Ok() || !IsAcceptedTag(pcm.wFormatTag) || !HasDivisors(pcm)) return false;
  const std::size_t cbRecord = RecordBytes(pcm.wFormatTag, payload);
  if (cbRecord > payload.size()) return false;
  const auto record = payload.first(cbRecord);
  m_record.assign(record.begin(), record.end());
  return true;
}

unsigned short C_WavFileCodecInfo::GetFormatTag() const noexcept {
  return vcm::C_ByteReader(m_record).U16();
}

S_PcmFormatRecord C_WavFileCodecInfo::GetPCMWAVEFORMAT() const noexcept {
  vcm::C_ByteReader reader(m_record);
  return ReadPcm(reader);
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

unsigned short C_WavFileCodecInfo::GetSamplesPerBlock() const noexcept {
  return GetDVIADPCMInfo().wSamplesPerBlock;
}
