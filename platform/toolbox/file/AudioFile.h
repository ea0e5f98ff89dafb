// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioFile.h>
#include <sndfile.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "file/AudioFileFormat.h"
#include "file/FileDescriptor.h"
#include "file/FileStream.h"
#include "file/MpegSound.h"

namespace toolbox {

// One open sound file. Reads may come from several threads: the player unit decodes frames while
// the caller reads packets.
class C_AudioFile {
 public:
  // `pFile` is null on failure. A file that cannot be read is a kAudioFileUnspecifiedError,
  // whatever its decoder makes of it.
  static OSStatus Open(const std::string& path, std::shared_ptr<C_AudioFile>& pFile);

  [[nodiscard]] const AudioStreamBasicDescription& Format() const noexcept { return m_format.desc; }
  [[nodiscard]] UInt64 PacketCount() const noexcept { return m_format.qwPackets; }
  // Bytes of an AudioChannelLayout; empty when the file carries none.
  [[nodiscard]] const std::vector<UInt8>& ChannelLayout() const noexcept { return m_layout; }

  // Decodes up to `nFrames` interleaved frames from `nFrom` on, with full scale at 1.0. Returns the
  // number of frames decoded; 0 at the end of the file, where it is damaged, and after a read
  // error. The status, if it is asked for, tells the error from the others.
  std::size_t ReadFrames(SInt64 nFrom, std::size_t nFrames, float* pSamples,
                         OSStatus* pnStatus = nullptr);
  // See AudioFileReadPacketData.
  OSStatus ReadPackets(SInt64 nFrom, UInt32& dwPackets, UInt32& cbData, void* pBuffer);

 private:
  C_AudioFile() = default;
  OSStatus OpenContent();
  OSStatus OpenMpeg();
  OSStatus OpenSound();
  bool OpenDecoder();
  std::size_t Decode(SInt64 nFrom, std::size_t nFrames, float* pSamples);
  // kAudioFileUnspecifiedError when a read has failed since the last call.
  OSStatus TakeReadStatus();
  [[nodiscard]] bool HasItsLastFrame();
  [[nodiscard]] SInt64 CountFrames();

  struct S_Closer {
    void operator()(SNDFILE* pSound) const noexcept { sf_close(pSound); }
  };
  // Closed in reverse order: the decoder first, then what it reads. Exactly one of the two decoders
  // exists.
  C_FileDescriptor m_descriptor;
  std::optional<C_FileStream> m_stream;
  std::unique_ptr<C_MpegSound> m_pMpeg;
  std::unique_ptr<SNDFILE, S_Closer> m_pSound;
  SF_INFO m_info{};
  S_AudioFileFormat m_format;
  std::vector<UInt8> m_layout;
  std::mutex m_readLock;
  // The frame after the last one read; -1 when a raw read, a failed seek or a failed read has made
  // the position unknown.
  SInt64 m_nPosition = 0;
};

// The open file with this identifier; null when there is no such file.
[[nodiscard]] std::shared_ptr<C_AudioFile> FindAudioFile(AudioFileID audioFile);

}  // namespace toolbox
