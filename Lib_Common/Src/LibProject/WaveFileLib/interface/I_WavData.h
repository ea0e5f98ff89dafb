// SPDX-License-Identifier: Apache-2.0
//
// One sound with everything that travels with it: format, PCM, encoded form, events, codec
// parameters, silence segments, uncompressed regions and informational chunks. Reference-counted;
// only one thread may use an object at a time.
#pragma once

#include <memory>

#include "CLArray.h"
#include "interface/AudioFileType.h"
#include "interface/CodecCallback.h"
#include "interface/I_AudioCodecParam.h"
#include "interface/I_EventTag.h"
#include "interface/I_SampleRange.h"
#include "interface/I_WavDataBuffer.h"
#include "interface/I_WavInfo.h"

// Positions and counts are in sample frames; the ends of ranges of samples and of channels are
// inclusive.
class I_WavData {
 public:
  using SilenceList = I_CLArray<I_SilenceSegment*>;
  using RegionList = I_CLArray<I_UncompressRegion*>;

  virtual int AddRef() = 0;  // 1, the new count
  // Deletes the object and returns 0 when the count is below 1; otherwise returns the new count. A
  // new object has count 0: it lives until Release has been called once more than AddRef.
  virtual int Release() = 0;  // 2
  // Borrowed pointers, valid as long as the object (buffers: until the next change).
  virtual I_WavInfo* GetWavInfo() = 0;         // 3
  virtual unsigned char* GetBuffer() = 0;      // 4, the PCM; null when there is none
  virtual unsigned char* GetEncBuffer() = 0;   // 5, the encoded form; null when there is none
  virtual unsigned int GetBufferLength() = 0;  // 6, bytes, as the wave info says
  virtual unsigned int GetEncBufferLen() = 0;  // 7, bytes, as the wave info says
  virtual tagAudioFileType GetEncType() = 0;   // 8
  virtual void SetWavInfo(I_WavInfo* pIWavInfo) = 0;  // 9, copies the format
  virtual void SetWavInfoData(unsigned int dwSampleRate, unsigned int dwByteLength,
                              unsigned short wChannels, unsigned short wBitsPerSample,
                              unsigned short wStoreBitsPerSample, bool bValueSigned) = 0;  // 10
  // Takes copies of PCM and format of another sound. False for null, for a sound whose format
  // claims more bytes than its buffer holds, and when this PCM buffer is attached.
  virtual bool CopyWavData(I_WavData* pSrc) = 0;  // 11
  // Replaces the PCM by a new buffer of the sound's own, which is not cleared. dwLength is in
  // bytes.
  virtual unsigned char* AllocBuffer(unsigned int dwLength) = 0;  // 12
  // Replaces the PCM by a copy of the bytes. False when the PCM buffer is attached.
  virtual bool SetBuffer(const void* pData, unsigned int dwLength) = 0;  // 13
  // Changes sample widths and signedness in place; bExact false stores negative values one step
  // lower. False when the PCM buffer is attached or a width is not supported.
  virtual bool ConvertBits(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                           bool bExact) = 0;  // 14
  // New objects belong to the caller (Release). Null on failure.
  virtual I_WavData* CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits,
                                             bool bSigned, bool bExact) = 0;  // 15
  virtual I_WavData* Clone() = 0;                                             // 16, PCM and format
  // Returns a part of one channel as a mono sound. Null when the channel or the part lies outside
  // the sound.
  virtual I_WavData* CreateChannelData(unsigned short wChannelNo, unsigned int dwStartSample,
                                       unsigned int dwSampleCount) = 0;  // 17
  // Writes all bytes of a mono source into one channel of this sound. The bytes are taken as
  // samples of this sound's stored width. If this sound has several channels, it is taken as
  // stereo. False, and nothing written, for a channel that does not exist or when the bytes do not
  // fit. nReserved has no effect.
  virtual bool SetChannelData(I_WavData* pSrc, unsigned short wChannelNo,
                              unsigned int dwStartSample, int nReserved) = 0;  // 18
  // The next three operations mix channels. They do nothing when the PCM buffer is attached.
  //
  // Mixes the channels to their average. This is right for stereo; for more channels the frames are
  // still taken as stereo. Mono stays as it is.
  virtual void ConvertToMono() = 0;  // 19
  // Keeps the first two channels, or puts mono on both sides. Stereo stays as it is.
  virtual void ConvertToStereo() = 0;  // 20
  // bRight 0 puts the first channel on the left. Any other value puts the second channel on the
  // right, or the only one of mono. The other side is silent.
  virtual void ConvertToStereoWithSilence(unsigned short bRight) = 0;  // 21
  virtual I_AudioCodecParam* GetAudioCodecParam() = 0;                 // 22
  // Writes the sound as a file. Returns false and writes nothing when there is no PCM, when files
  // of kind eType cannot be written, and when the widths cannot be converted: only samples stored
  // in 8, 16 or 32 bits can be encoded.
  //   eType            AUDIO_FILE_WAVE, AUDIO_FILE_VEMD, AUDIO_FILE_KESTREL or one of
  //                    AUDIO_FILE_HERON_...
  // WAVE and VEMD are always PCM, in the widths of the codec parameters if these have any; the
  // other arguments have no effect on them. For the codecs:
  //   bEncode          true: the bare encoded stream, which no class opens before it is given an SP
  //                    header (PrependSpHeader). False: a VEF container that holds the PCM, the
  //                    stream, the events, cue points, labels and loops, and the extra chunks, but
  //                    no silence segments and no regions.
  //   bWriteCodecHead  with bEncode: the 6-byte codec head (CodecHead.h) before the stream.
  //   pfnProgress      with bEncode: is told how far the encoder is. May be null.
  //   bForceEncode     false: when the sound's encoded form is of kind eType already, its bytes
  //                    are written and the PCM is not encoded again, even if it was changed.
  //                    True: always encode.
  //   dwCodecOption    no effect.
  // An existing file is replaced only when everything is written; when the result is false, it is
  // as it was. vcm::C_TargetFile names the few places where it has to be written in place, and may
  // stay partial. So may a new file.
  virtual bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                       bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                       unsigned int dwCodecOption) = 0;  // 23
  virtual I_EventTagMgr* GetEventTagMgr() = 0;           // 24
  // Detects silence and adds a segment for each quiet stretch. dwThreshold is on a 12-bit scale, at
  // most 2047; dwMinLength is in samples. bReplace first removes the segments that start or end in
  // the range. A range that reaches beyond the sound ends with the sound. Returns the sound's own
  // list. Returns null and changes nothing for a greater threshold or a first channel above the
  // last.
  virtual SilenceList* DetectSilence(unsigned int dwThreshold, unsigned int dwMinLength,
                                     bool bReplace) = 0;  // 25
  virtual SilenceList* DetectSilenceRange(unsigned int dwThreshold, unsigned int dwMinLength,
                                          unsigned int dwStartSample, unsigned int dwEndSample,
                                          unsigned short wFirstChannel, unsigned short wLastChannel,
                                          bool bReplace) = 0;  // 26
  // Both append a range, merge the list and return the sound's own list.
  virtual SilenceList* AddSilenceSegment(unsigned int dwStart, unsigned int dwEnd) = 0;   // 27
  virtual RegionList* AddUncompressRegion(unsigned int dwStart, unsigned int dwEnd) = 0;  // 28
  // Both go through the list once and merge each item with the first other item that shares a
  // sample with it. The order stays, and items that only touch stay apart.
  virtual void MergeSilenceSegments() = 0;    // 29
  virtual void MergeUncompressRegions() = 0;  // 30
  // Uses the caller's memory as PCM. It must outlive its use here and is never freed.
  virtual void AttachBuffer(void* pData, unsigned int dwLength) = 0;  // 31
  virtual unsigned char* DetachBuffer() = 0;                          // 32, null unless attached
  virtual I_WavDataBuffer* GetIWaveDataBuffer() = 0;                  // 33
  // Applies a gain that goes from dStartGain towards dEndGain in steps of 1024 samples. Values
  // clip. False for a range that ends outside the sound.
  virtual bool ApplyGain(double dStartGain, double dEndGain) = 0;  // 34
  virtual bool ApplyGainRange(double dStartGain, double dEndGain, unsigned int dwStartSample,
                              unsigned int dwEndSample, unsigned short wFirstChannel,
                              unsigned short wLastChannel) = 0;  // 35
  // Applies the gain that brings the largest value before the last sample of the range to full
  // scale.
  virtual bool Normalize() = 0;  // 36
  virtual bool NormalizeRange(unsigned int dwStartSample, unsigned int dwEndSample,
                              unsigned short wFirstChannel, unsigned short wLastChannel) = 0;  // 37
  virtual SilenceList* GetSilenceSegmentList() = 0;                                            // 38
  virtual void SetSilenceSegmentList(SilenceList* pList) = 0;   // 39, copies start and end
  virtual RegionList* GetUncompressRegionList() = 0;            // 40
  virtual void SetUncompressRegionList(RegionList* pList) = 0;  // 41, copies start and end
  // nType is a tagWavDataInfo. *ppInfo becomes a pointer to the matching interface
  // (I_WavDataCueInfo, I_WavDataTextInfo, I_WavDataSamplerInfo, I_WavDataListInfo or
  // I_WavDataExtraChunkInfo); for any other type it becomes null, and the result is false.
  virtual bool GetInfo(int nType, void** ppInfo) = 0;  // 42
  // The mean of the first channel. It is read through the iterator, so it is right only for mono.
  virtual int GetDCOffset() = 0;  // 43
  // Subtracts that mean from every channel; values clip.
  virtual void RemoveDCOffset() = 0;                                         // 44
  virtual bool Reserved45(unsigned int dwFirst, unsigned int dwSecond) = 0;  // 45, true
  // Replaces the encoded form by a copy of the bytes. False for null with a length.
  virtual bool SetEncBuffer(const void* pData, unsigned int dwLength) = 0;  // 46
  virtual void SetEncType(tagAudioFileType eType) = 0;                      // 47
  virtual ~I_WavData() = default;                                           // 48, 49
};

// Releases a sound for its owner.
struct S_WavDataReleaser {
  void operator()(I_WavData* pIWavData) const { pIWavData->Release(); }
};
using C_WavDataPtr = std::unique_ptr<I_WavData, S_WavDataReleaser>;
