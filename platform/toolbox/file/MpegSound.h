// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mpg123.h>

#include <memory>

#include "file/FileDescriptor.h"
#include "file/FileStream.h"

namespace toolbox {

// An MPEG audio stream. The general file library reads these as well, but reports all damage in
// them on standard error; this class prints nothing.
class C_MpegSound {
 public:
  // Bytes of the ID3 tags at the start of a file of any kind. At most 64 tags are counted, and none
  // that claims more than the file holds.
  [[nodiscard]] static UInt64 TagBytes(const C_FileDescriptor& file);
  // Opens the stream and scans all of it. Null when neither the file itself nor what follows its
  // ID3 tags begins with a frame, and no run of frames is found near there. A tag that claims more
  // than the file holds is passed over like junk. Also null when there are more than 64 tags. The
  // file outlives the sound.
  [[nodiscard]] static std::unique_ptr<C_MpegSound> Open(const C_FileDescriptor& file);
  C_MpegSound(const C_MpegSound&) = delete;
  C_MpegSound& operator=(const C_MpegSound&) = delete;

  // Hz.
  [[nodiscard]] UInt32 Rate() const noexcept { return m_dwRate; }
  // 1 or 2.
  [[nodiscard]] UInt32 Channels() const noexcept { return m_dwChannels; }
  // 1 to 3.
  [[nodiscard]] UInt32 Layer() const noexcept { return m_dwLayer; }
  // MPEG frames that carry sound.
  [[nodiscard]] UInt64 FrameCount() const noexcept { return m_qwFrames; }
  // Samples of each channel in one MPEG frame: 384, 576 or 1152.
  [[nodiscard]] UInt32 SamplesPerFrame() const noexcept { return m_dwSamplesPerFrame; }

  // Decodes up to `nSamples` samples of each channel, interleaved, from sample `nFrom` on and
  // without the encoder's padding. Returns how many were decoded; 0 at the end, and where the
  // stream is broken, continues in another format or cannot be read.
  std::size_t Read(SInt64 nFrom, std::size_t nSamples, float* pSamples);

 private:
  struct S_Closer {
    void operator()(mpg123_handle* pMpeg) const noexcept { mpg123_delete(pMpeg); }
  };
  explicit C_MpegSound(const C_FileDescriptor& file);
  bool OpenStream();
  bool FixFormat();
  bool FindsProof();
  bool Scan();
  static mpg123_ssize_t ReadBytes(void* pThis, void* pBuffer, std::size_t cbWanted);
  static off_t SeekBytes(void* pThis, off_t nOffset, int nWhence);

  const C_FileDescriptor& m_file;
  C_FileStream m_stream;
  std::unique_ptr<mpg123_handle, S_Closer> m_pMpeg;
  UInt32 m_dwRate = 0;
  UInt32 m_dwChannels = 0;
  UInt32 m_dwLayer = 0;
  UInt64 m_qwFrames = 0;
  UInt32 m_dwSamplesPerFrame = 0;
  // The sample after the last one read; -1 when a failed seek or read has made the position
  // unknown.
  SInt64 m_nPosition = 0;
};

}  // namespace toolbox
