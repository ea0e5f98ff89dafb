// SPDX-License-Identifier: Apache-2.0
#include "compressed/CompressedWav.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "compressed/WavTags.h"

namespace compressedwav {

namespace {

// No code is shorter than three bits, and each becomes two bytes.
constexpr std::uint64_t kMaxExpansion = 6;
// How many encoded bytes are read at a time. They and their PCM stay in the processor's cache, and
// they are at least as many blocks of usual sizes as are decoded at once.
constexpr std::size_t kPieceBytes = 32768;

// What can be decoded by itself: a block, or the byte of one sample.
struct S_Unit {
  std::size_t cbEncoded = 1;
  std::uint64_t qwPcm = sizeof(short);
  bool bHoldsAllItCounts = true;  // else it may hold fewer samples than it counts as
};

S_Unit UnitOf(const C_WavFileCodecInfo& codecInfo) {
  const S_WavTag* const pTag = wavtags::Find(codecInfo.GetFormatTag());
  if (pTag == nullptr || !pTag->bBlocks) return {};
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  return {pcm.wBlockAlign,
          std::uint64_t{sizeof(short)} * codecInfo.GetSamplesPerBlock() * pcm.wChannels, false};
}

// A unit at a time, because long fills are slow to start.
void FillWithSilence(std::span<unsigned char> pcm, std::size_t cbUnit) {
  while (!pcm.empty()) {
    const auto part = pcm.first(cbUnit == 0 ? pcm.size() : std::min(cbUnit, pcm.size()));
    std::ranges::fill(part, static_cast<unsigned char>(0));
    pcm = pcm.subspan(part.size());
  }
}

// Decodes a sound that comes in pieces of whole units; only the last unit may be cut.
class C_PieceDecoder {
 public:
  C_PieceDecoder(const C_WavFileCodecInfo& codecInfo, C_MSAdpcmCodec& decoder,
                 std::span<unsigned char> pcm)
      : m_codecInfo(codecInfo), m_decoder(decoder), m_unit(UnitOf(codecInfo)), m_pcm(pcm) {}

  [[nodiscard]] std::size_t PieceLength() const {
    return std::max<std::size_t>(kPieceBytes / m_unit.cbEncoded, 1) * m_unit.cbEncoded;
  }
  void Decode(std::span<const std::uint8_t> piece) {
    const bool bCut = piece.size() % m_unit.cbEncoded != 0;
    const std::uint64_t qwCounted = piece.size() / m_unit.cbEncoded * m_unit.qwPcm;
    const auto pcm =
        bCut || qwCounted > m_pcm.size() ? m_pcm : m_pcm.first(static_cast<std::size_t>(qwCounted));
    if (!m_unit.bHoldsAllItCounts) FillWithSilence(pcm, static_cast<std::size_t>(m_unit.qwPcm));
    // Allocated memory is aligned for every type, and a unit has whole samples.
    auto* const pSamples = static_cast<short*>(static_cast<void*>(pcm.data()));
    m_decoder.Decode(m_codecInfo, piece.data(), static_cast<unsigned int>(piece.size()), pSamples,
                     static_cast<unsigned int>(pcm.size()));
    m_pcm = m_pcm.subspan(pcm.size());
  }
  void End() { FillWithSilence(m_pcm, m_pcm.size()); }

 private:
  const C_WavFileCodecInfo& m_codecInfo;
  C_MSAdpcmCodec& m_decoder;
  S_Unit m_unit;
  std::span<unsigned char> m_pcm;  // what is not decoded yet
};

// Decodes dwLength bytes of the file. Returns how many of them it really has; empty when it cannot
// be read.
std::optional<unsigned int> DecodeFile(C_PieceDecoder& decoder, vcm::C_FileReader& file,
                                       std::uint64_t qwPosition, unsigned int dwLength) {
  std::vector<std::uint8_t> buffer(std::min<std::size_t>(decoder.PieceLength(), dwLength));
  unsigned int dwDone = 0;
  while (dwDone < dwLength) {
    const auto piece =
        std::span(buffer).first(std::min<std::size_t>(buffer.size(), dwLength - dwDone));
    const auto cbRead = file.ReadSome(qwPosition + dwDone, piece);
    if (!cbRead) return std::nullopt;
    decoder.Decode(piece.first(*cbRead));
    dwDone += static_cast<unsigned int>(*cbRead);
    if (*cbRead < piece.size()) break;
  }
  decoder.End();
  return dwDone;
}

}  // namespace

bool IsAccountedFor(std::uint64_t qwPcm, std::uint64_t qwEncoded) {
  const std::uint64_t qwMost = qwEncoded * kMaxExpansion;
  return qwPcm <= qwMost || qwPcm - qwMost <= kMaxSilentBytes;
}

std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo) {
  const S_WavTag* const pTag = wavtags::Find(codecInfo.GetFormatTag());
  if (pTag == nullptr || pTag->pfnMakeDecoder == nullptr) return nullptr;
  return pTag->pfnMakeDecoder(codecInfo.GetPCMWAVEFORMAT().wBitsPerSample);
}

std::optional<C_WavFileCodecInfo> ReadFormat(vcm::C_FileReader& file, std::uint64_t qwPosition,
                                             unsigned short wFormatTag) {
  const S_WavTag* const pTag = wavtags::Find(wFormatTag);
  if (pTag == nullptr) return std::nullopt;
  std::vector<std::uint8_t> record(pTag->cbHead);
  if (!file.ReadExact(qwPosition, record)) return std::nullopt;
  record.resize(wavtags::RecordBytes(*pTag, record));
  const auto rest = std::span(record).subspan(pTag->cbHead);
  if (!file.ReadExact(qwPosition + pTag->cbHead, rest)) return std::nullopt;
  C_WavFileCodecInfo codecInfo;
  if (!codecInfo.SetFormat(record) || codecInfo.GetFormatTag() != wFormatTag) return std::nullopt;
  return codecInfo;
}

bool Load(const C_WavFileCodecInfo& codecInfo, vcm::C_FileReader& file, std::uint64_t qwPosition,
          unsigned int dwLength, I_WavData& wavData) {
  const std::unique_ptr<C_MSAdpcmCodec> decoder = MakeDecoder(codecInfo);
  if (!decoder || !file.Length()) return false;
  const std::uint64_t qwHeld = *file.Length() - std::min(*file.Length(), qwPosition);
  const auto dwEncoded = static_cast<unsigned int>(std::min<std::uint64_t>(qwHeld, dwLength));
  std::optional<unsigned int> dwPcm = decoder->GetDecodedSize(codecInfo, dwEncoded);
  if (!dwPcm || !IsAccountedFor(*dwPcm, dwEncoded)) return false;
  unsigned char* const pbyPcm = wavData.AllocBuffer(*dwPcm);
  if (pbyPcm == nullptr && *dwPcm > 0) return false;
  C_PieceDecoder pieceDecoder(codecInfo, *decoder, {pbyPcm, *dwPcm});
  const auto dwDecoded = DecodeFile(pieceDecoder, file, qwPosition, dwEncoded);
  if (!dwDecoded) {
    // Most of the memory holds nothing yet.
    wavData.AllocBuffer(0);
    return false;
  }
  // A file that became shorter in the meantime has a shorter sound.
  if (*dwDecoded < dwEncoded) dwPcm = decoder->GetDecodedSize(codecInfo, *dwDecoded);
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  wavData.SetWavInfoData(pcm.dwSamplesPerSec, dwPcm.value_or(0), pcm.wChannels, 16, 16, true);
  return true;
}

}  // namespace compressedwav
