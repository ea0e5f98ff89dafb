// SPDX-License-Identifier: Apache-2.0
#include "file/MpegSound.h"

#include <sys/types.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>

namespace toolbox {
namespace {

constexpr std::size_t kTagHeaderBytes = 10;
constexpr std::size_t kFooterFlag = 0x10;
// More tags than anybody writes. Without this limit, walking a file of nothing but tags would take
// minutes.
constexpr int kMostTags = 64;
// How many bytes that are not frames are skipped: padding, other kinds of tags, the rest of a frame
// that was cut.
constexpr long kMostJunkBytes = 65536;
// How many frames must follow each other without a gap when the stream does not begin with the
// file. Programs and pictures hold bytes that look like one or two frames.
constexpr int kProvingFrames = 10;
// The decoder reads the header of a frame and the frame itself, each with a call of its own.
constexpr std::size_t kReadAheadBytes = 4096;

// Bytes that the ID3 tag at a position claims; 0 when there is no tag. The size field uses seven
// bits of each byte, and counts neither the header nor the copy of the header at the end.
UInt64 ClaimedTagBytesAt(const C_FileDescriptor& file, UInt64 qwAt) {
  std::array<UInt8, kTagHeaderBytes> head{};
  if (file.ReadAt(qwAt, head.data(), head.size()) != head.size()) return 0;
  if (head[0] != 'I' || head[1] != 'D' || head[2] != '3') return 0;
  UInt64 qwSize = 0;
  for (std::size_t i = 6; i < kTagHeaderBytes; ++i) qwSize = qwSize << 7 | (head.at(i) & 0x7FU);
  const bool bFooter = (head[5] & kFooterFlag) != 0;
  return qwSize + (bFooter ? 2 : 1) * kTagHeaderBytes;
}

// The same, but 0 also for a tag that claims more than the file holds.
UInt64 TagBytesAt(const C_FileDescriptor& file, UInt64 qwAt) {
  const UInt64 qwTag = ClaimedTagBytesAt(file, qwAt);
  return qwTag <= file.Size() - std::min(qwAt, file.Size()) ? qwTag : 0;
}

// Where the decoder begins to look for frames: after the tags, and after the header of a tag that
// claims more than the file holds.
UInt64 StreamBegin(const C_FileDescriptor& file) {
  const UInt64 qwAt = C_MpegSound::TagBytes(file);
  return qwAt + (ClaimedTagBytesAt(file, qwAt) != 0 ? kTagHeaderBytes : 0);
}

// Checks the sync bits and rejects the values of layer, bit rate and sample rate that no stream
// has.
bool IsFrameHeader(const std::array<UInt8, 4>& head) {
  const bool bSync = head[0] == 0xFF && (head[1] & 0xE0U) == 0xE0U;
  return bSync && (head[1] & 0x06U) != 0 && (head[2] & 0xF0U) != 0xF0U &&
         (head[2] & 0x0CU) != 0x0CU;
}

// The results of calls of the decoder, all of which refuse a null handle.
bool AreAllOk(std::initializer_list<int> results) {
  return std::ranges::all_of(results, [](int nResult) { return nResult == MPG123_OK; });
}

bool BeginsWithAFrame(const C_FileDescriptor& file) {
  std::array<UInt8, 4> head{};
  return file.ReadAt(StreamBegin(file), head.data(), head.size()) == head.size() &&
         IsFrameHeader(head);
}

}  // namespace

UInt64 C_MpegSound::TagBytes(const C_FileDescriptor& file) {
  UInt64 qwAt = 0;
  for (int i = 0; i < kMostTags; ++i) {
    const UInt64 qwTag = TagBytesAt(file, qwAt);
    if (qwTag == 0) break;
    qwAt += qwTag;
  }
  return qwAt;
}

std::unique_ptr<C_MpegSound> C_MpegSound::Open(const C_FileDescriptor& file) {
  if (TagBytesAt(file, TagBytes(file)) != 0) return nullptr;
  if (!BeginsWithAFrame(file) && !C_MpegSound(file).FindsProof()) return nullptr;
  std::unique_ptr<C_MpegSound> pSound(new C_MpegSound(file));
  const bool bOpen = pSound->OpenStream() && pSound->FixFormat() && pSound->Scan();
  if (!bOpen) pSound.reset();
  return pSound;
}

C_MpegSound::C_MpegSound(const C_FileDescriptor& file)
    : m_file(file),
      m_stream(file, StreamBegin(file), kReadAheadBytes),
      m_pMpeg(mpg123_new(nullptr, nullptr)) {}

// The decoder would keep each tag that it meets between the frames in memory, as much of it as the
// tag claims. Nobody asks for their content, so it skips them.
bool C_MpegSound::OpenStream() {
  constexpr long kFlags = MPG123_QUIET | MPG123_FORCE_FLOAT | MPG123_GAPLESS |
                          MPG123_NO_FRANKENSTEIN | MPG123_SKIP_ID3V2;
  mpg123_handle* pMpeg = m_pMpeg.get();
  return AreAllOk({mpg123_param(pMpeg, MPG123_ADD_FLAGS, kFlags, 0),
                   mpg123_param(pMpeg, MPG123_REMOVE_FLAGS, MPG123_AUTO_RESAMPLE, 0),
                   mpg123_param(pMpeg, MPG123_RESYNC_LIMIT, kMostJunkBytes, 0),
                   mpg123_replace_reader_handle(pMpeg, &ReadBytes, &SeekBytes, nullptr),
                   mpg123_open_handle(pMpeg, this)});
}

// The first frame decides the format of the sound. A stream that changes its format ends there,
// because the buffers were made for the first format.
bool C_MpegSound::FixFormat() {
  long nRate = 0;
  int nChannels = 0;
  if (mpg123_getformat(m_pMpeg.get(), &nRate, &nChannels, nullptr) != MPG123_OK) return false;
  if (nRate <= 0 || nChannels < 1 || nChannels > 2) return false;
  m_dwRate = static_cast<UInt32>(nRate);
  m_dwChannels = static_cast<UInt32>(nChannels);
  return AreAllOk({mpg123_format_none(m_pMpeg.get()),
                   mpg123_format(m_pMpeg.get(), nRate, nChannels, MPG123_ENC_FLOAT_32)});
}

// Moves the position, so one object proves the stream and another object plays it.
bool C_MpegSound::FindsProof() {
  if (!OpenStream() || !FixFormat()) return false;
  off_t nNext = -1;
  for (int i = 0; i < kProvingFrames; ++i) {
    mpg123_frameinfo info{};
    const bool bFrame = mpg123_framebyframe_next(m_pMpeg.get()) == MPG123_OK &&
                        mpg123_info(m_pMpeg.get(), &info) == MPG123_OK;
    const off_t nAt = mpg123_framepos(m_pMpeg.get());
    if (!bFrame || (nNext >= 0 && nAt != nNext)) return false;
    nNext = nAt + info.framesize;
  }
  return true;
}

bool C_MpegSound::Scan() {
  mpg123_frameinfo info{};
  if (mpg123_info(m_pMpeg.get(), &info) != MPG123_OK) return false;
  if (mpg123_scan(m_pMpeg.get()) != MPG123_OK) return false;
  const off_t nFrames = mpg123_framelength(m_pMpeg.get());
  const int nSamples = mpg123_spf(m_pMpeg.get());
  if (nFrames <= 0 || nSamples <= 0) return false;
  m_dwLayer = static_cast<UInt32>(info.layer);
  m_qwFrames = static_cast<UInt64>(nFrames);
  m_dwSamplesPerFrame = static_cast<UInt32>(nSamples);
  return true;
}

std::size_t C_MpegSound::Read(SInt64 nFrom, std::size_t nSamples, float* pSamples) {
  if (nFrom != m_nPosition) {
    m_nPosition = mpg123_seek(m_pMpeg.get(), nFrom, SEEK_SET);
    if (m_nPosition != nFrom) return 0;
  }
  const std::size_t cbSample = m_dwChannels * sizeof(float);
  std::size_t cbRead = 0;
  mpg123_read(m_pMpeg.get(), pSamples, nSamples * cbSample, &cbRead);
  m_nPosition += static_cast<SInt64>(cbRead / cbSample);
  if (m_file.HasReadError()) m_nPosition = -1;
  return cbRead / cbSample;
}

mpg123_ssize_t C_MpegSound::ReadBytes(void* pThis, void* pBuffer, std::size_t cbWanted) {
  auto& sound = *static_cast<C_MpegSound*>(pThis);
  const std::size_t cbRead = sound.m_stream.Read(pBuffer, cbWanted);
  return sound.m_file.HasReadError() ? -1 : static_cast<mpg123_ssize_t>(cbRead);
}

off_t C_MpegSound::SeekBytes(void* pThis, off_t nOffset, int nWhence) {
  return static_cast<off_t>(static_cast<C_MpegSound*>(pThis)->m_stream.Seek(nOffset, nWhence));
}

}  // namespace toolbox
