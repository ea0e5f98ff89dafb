// SPDX-License-Identifier: Apache-2.0
#include "file/AudioFile.h"

#include <algorithm>
#include <utility>

#include "file/ChannelMap.h"
#include "file/FlacBlocks.h"
#include "object/Room.h"

namespace toolbox {
namespace {

// How many samples are decoded at once to count frames. The file library accepts no more channels
// than this.
constexpr std::size_t kCountPiece = 16384;
// Counting stops at this many frames, 18 hours of speech, because a few bytes can hold a great deal
// of silence.
constexpr SInt64 kMostCounted = SInt64{1} << 30;
// Files up to this size are counted even when their last frame decodes. An Ogg stream that lies on
// one page, of at most 64 KiB, is placed by what that page claims, so it always seems to end where
// it says. Counting such a file is cheap.
constexpr UInt64 kOnePageBytes = UInt64{128} * 1024;

// The file library reads through these, because it takes a read error for the end of the file.
C_FileStream& AsStream(void* pStream) { return *static_cast<C_FileStream*>(pStream); }

SF_VIRTUAL_IO StreamCalls() {
  SF_VIRTUAL_IO calls{};
  calls.get_filelen = [](void* pStream) -> sf_count_t { return AsStream(pStream).Size(); };
  calls.seek = [](sf_count_t nOffset, int nWhence, void* pStream) -> sf_count_t {
    return AsStream(pStream).Seek(nOffset, nWhence);
  };
  calls.read = [](void* pTo, sf_count_t cbWanted, void* pStream) {
    return static_cast<sf_count_t>(AsStream(pStream).Read(pTo, static_cast<std::size_t>(cbWanted)));
  };
  calls.tell = [](void* pStream) -> sf_count_t { return AsStream(pStream).Tell(); };
  return calls;
}

}  // namespace

OSStatus C_AudioFile::Open(const std::string& path, std::shared_ptr<C_AudioFile>& pFile) {
  pFile.reset();
  std::shared_ptr<C_AudioFile> pNew(new C_AudioFile);
  OSStatus nStatus = pNew->m_descriptor.Open(path);
  if (nStatus == noErr) nStatus = pNew->OpenContent();
  if (const OSStatus nRead = pNew->TakeReadStatus(); nRead != noErr) nStatus = nRead;
  if (nStatus == noErr) pFile = std::move(pNew);
  return nStatus;
}

OSStatus C_AudioFile::OpenContent() {
  NeedRoom();
  // An MPEG stream has no signature at its start, so only files of no other known kind are searched
  // for one.
  return IsKnownSound(m_descriptor) ? OpenSound() : OpenMpeg();
}

OSStatus C_AudioFile::OpenMpeg() {
  m_pMpeg = C_MpegSound::Open(m_descriptor);
  if (m_pMpeg == nullptr) return kAudioFileUnsupportedFileTypeError;
  m_format = DescribeMpeg(*m_pMpeg);
  return noErr;
}

OSStatus C_AudioFile::OpenSound() {
  if (!HoldsItsFlacBlocks(m_descriptor)) return kAudioFileInvalidFileError;
  if (!OpenDecoder()) return kAudioFileUnsupportedFileTypeError;
  if (m_info.channels <= 0 || m_info.samplerate <= 0 || m_info.frames < 0) {
    return kAudioFileInvalidFileError;
  }
  if (ClaimsItsFrames(m_info)) {
    const bool bTrue = m_descriptor.Size() > kOnePageBytes && HasItsLastFrame();
    const SInt64 nFrames = bTrue ? m_info.frames : CountFrames();
    if (!OpenDecoder()) return kAudioFileInvalidFileError;
    m_info.frames = nFrames;
  }
  const auto format = DescribeAudioFile(m_pSound.get(), m_info, m_descriptor);
  if (!format) return kAudioFileInvalidFileError;
  m_format = *format;
  m_layout = ReadChannelLayout(m_pSound.get(), m_info.channels);
  return noErr;
}

// Starts again at the first byte after the tags.
bool C_AudioFile::OpenDecoder() {
  m_info = {};
  m_pSound.reset();
  m_stream.emplace(m_descriptor, C_MpegSound::TagBytes(m_descriptor));
  SF_VIRTUAL_IO calls = StreamCalls();
  m_pSound.reset(sf_open_virtual(&calls, SFM_READ, &m_info, &*m_stream));
  return m_pSound != nullptr;
}

OSStatus C_AudioFile::TakeReadStatus() {
  const bool bError = m_descriptor.HasReadError();
  m_descriptor.ForgetReadError();
  return bError ? OSStatus{kAudioFileUnspecifiedError} : OSStatus{noErr};
}

// A file that was cut short or damaged may claim frames that can never be decoded, and a player
// that waits for its end would wait for those frames.
bool C_AudioFile::HasItsLastFrame() {
  if (m_info.frames == 0) return true;
  std::vector<float> frame(static_cast<std::size_t>(m_info.channels));
  return sf_seek(m_pSound.get(), m_info.frames - 1, SEEK_SET) == m_info.frames - 1 &&
         sf_readf_float(m_pSound.get(), frame.data(), 1) == 1;
}

SInt64 C_AudioFile::CountFrames() {
  if (!OpenDecoder()) return 0;
  std::vector<float> piece(kCountPiece);
  const sf_count_t nPiece = static_cast<sf_count_t>(piece.size()) / m_info.channels;
  SInt64 nFrames = 0;
  while (nFrames < kMostCounted) {
    const sf_count_t nRead = sf_readf_float(m_pSound.get(), piece.data(), nPiece);
    if (nRead <= 0) break;
    nFrames += nRead;
  }
  return nFrames;
}

std::size_t C_AudioFile::ReadFrames(SInt64 nFrom, std::size_t nFrames, float* pSamples,
                                    OSStatus* pnStatus) {
  const std::lock_guard lock(m_readLock);
  std::size_t nRead = Decode(nFrom, nFrames, pSamples);
  const OSStatus nStatus = TakeReadStatus();
  if (nStatus != noErr) {
    // A decoder may have made frames out of what it could not read.
    nRead = 0;
    m_nPosition = -1;
  }
  if (pnStatus != nullptr) *pnStatus = nStatus;
  return nRead;
}

std::size_t C_AudioFile::Decode(SInt64 nFrom, std::size_t nFrames, float* pSamples) {
  if (m_pMpeg != nullptr) return m_pMpeg->Read(nFrom, nFrames, pSamples);
  if (nFrom != m_nPosition) {
    m_nPosition = sf_seek(m_pSound.get(), nFrom, SEEK_SET);
    if (m_nPosition != nFrom) return 0;
  }
  // Past the end of a file that was cut, block decoders would repeat the last block that they got.
  if (m_descriptor.IsCutBefore(m_stream->FileOffset())) return 0;
  const sf_count_t nRead =
      sf_readf_float(m_pSound.get(), pSamples, static_cast<sf_count_t>(nFrames));
  if (nRead <= 0) return 0;
  m_nPosition += nRead;
  return static_cast<std::size_t>(nRead);
}

OSStatus C_AudioFile::ReadPackets(SInt64 nFrom, UInt32& dwPackets, UInt32& cbData, void* pBuffer) {
  const UInt32 cbRoom = std::exchange(cbData, 0);
  const UInt32 dwWanted = std::exchange(dwPackets, 0);
  const UInt32 cbPacket = m_format.desc.mBytesPerPacket;
  if (m_format.desc.mFramesPerPacket != 1 || cbPacket == 0) {
    return kAudioFileOperationNotSupportedError;
  }
  if (nFrom < 0) return kAudioFileInvalidPacketOffsetError;
  if (static_cast<UInt64>(nFrom) >= m_format.qwPackets) return kAudioFileEndOfFileError;

  const UInt64 qwLeft = m_format.qwPackets - static_cast<UInt64>(nFrom);
  const UInt64 qwTake = std::min({qwLeft, UInt64{dwWanted}, UInt64{cbRoom / cbPacket}});
  const std::lock_guard lock(m_readLock);
  m_nPosition = -1;
  const bool bFound = sf_seek(m_pSound.get(), nFrom, SEEK_SET) == nFrom;
  const sf_count_t cbRead =
      bFound ? sf_read_raw(m_pSound.get(), pBuffer, static_cast<sf_count_t>(qwTake * cbPacket)) : 0;
  if (const OSStatus nStatus = TakeReadStatus(); nStatus != noErr) return nStatus;
  if (!bFound) return kAudioFilePositionError;
  dwPackets = static_cast<UInt32>(std::max<sf_count_t>(cbRead, 0)) / cbPacket;
  cbData = dwPackets * cbPacket;
  return noErr;
}

}  // namespace toolbox
