// SPDX-License-Identifier: Apache-2.0
//
// One sound with everything that travels with it: format, PCM, encoded form, events, codec
// parameters, silence segments, uncompressed regions and informational chunks. Reference-counted;
// one object is used by one thread at a time.
#pragma once

#include "AudioFileType.h"
#include "CLArray.h"
#include "CodecCallback.h"
#include "I_AudioCodecParam.h"
#include "I_EventTag.h"
#include "I_SampleRange.h"
#include "I_WavDataBuffer.h"
#include "I_WavInfo.h"

class I_WavData {
 public:
  using SilenceList = I_CLArray<I_SilenceSegment*>;
  using RegionList = I_CLArray<I_UncompressRegion*>;

  virtual int AddRef() = 0;  // 1, the new count
  // Deletes the object when the count is below 1; otherwise the new count. A new object has count
  // 0: it lives until one more Release than AddRef calls.
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
  // PCM and format of another sound. False for null, or when this PCM buffer is attached.
  virtual bool CopyWavData(I_WavData* pSrc) = 0;  // 11
  // A new owned PCM buffer, not cleared, in place of the old one.
  virtual unsigned char* AllocBuffer(unsigned int dwLength) = 0;  // 12
  // A copy of the bytes in place of the old PCM buffer; false when that is attached.
  virtual bool SetBuffer(const void* pData, unsigned int dwLength) = 0;  // 13
  virtual bool ConvertBits(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                           bool bExact) = 0;  // 14
  // New objects belong to the caller (Release). Null on failure.
  virtual I_WavData* CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits,
                                             bool bSigned, bool bExact) = 0;  // 15
  virtual I_WavData* Clone() = 0;                                             // 16, PCM and format
  virtual I_WavData* CreateChannelData(unsigned short wChannelNo, unsigned int dwStartSample,
                                       unsigned int dwSampleCount) = 0;  // 17
  virtual bool SetChannelData(I_WavData* pSrc, unsigned short wChannelNo,
                              unsigned int dwStartSample, int nReserved) = 0;  // 18
  virtual void ConvertToMono() = 0;                                            // 19
  virtual void ConvertToStereo() = 0;                                          // 20
  virtual void ConvertToStereoWithSilence(unsigned short bRight) = 0;          // 21
  virtual I_AudioCodecParam* GetAudioCodecParam() = 0;                         // 22
  // Writes the sound as a file of kind eType. False, and nothing written, when there is no PCM or
  // the kind is none that can be written.
  virtual bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                       bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                       unsigned int dwCodecOption) = 0;  // 23
  virtual I_EventTagMgr* GetEventTagMgr() = 0;           // 24
  // Silence detection. The threshold is on a 12-bit scale, 2047 at most; the minimum length is in
  // samples. Returns the sound's own list, null when the threshold is refused.
  virtual SilenceList* DetectSilence(unsigned int dwThreshold, unsigned int dwMinLength,
                                     bool bReplace) = 0;  // 25
  virtual SilenceList* DetectSilenceRange(unsigned int dwThreshold, unsigned int dwMinLength,
                                          unsigned int dwStartSample, unsigned int dwEndSample,
                                          unsigned short wFirstChannel, unsigned short wLastChannel,
                                          bool bReplace) = 0;                             // 26
  virtual SilenceList* AddSilenceSegment(unsigned int dwStart, unsigned int dwEnd) = 0;   // 27
  virtual RegionList* AddUncompressRegion(unsigned int dwStart, unsigned int dwEnd) = 0;  // 28
  virtual void MergeSilenceSegments() = 0;                                                // 29
  virtual void MergeUncompressRegions() = 0;                                              // 30
  // The PCM is the caller's memory, which must outlive its use here and is never freed.
  virtual void AttachBuffer(void* pData, unsigned int dwLength) = 0;  // 31
  virtual unsigned char* DetachBuffer() = 0;                          // 32, null unless attached
  virtual I_WavDataBuffer* GetIWaveDataBuffer() = 0;                  // 33
  virtual bool ApplyGain(double dStartGain, double dEndGain) = 0;     // 34
  virtual bool ApplyGainRange(double dStartGain, double dEndGain, unsigned int dwStartSample,
                              unsigned int dwEndSample, unsigned short wFirstChannel,
                              unsigned short wLastChannel) = 0;  // 35
  virtual bool Normalize() = 0;                                  // 36
  virtual bool NormalizeRange(unsigned int dwStartSample, unsigned int dwEndSample,
                              unsigned short wFirstChannel, unsigned short wLastChannel) = 0;  // 37
  virtual SilenceList* GetSilenceSegmentList() = 0;                                            // 38
  virtual void SetSilenceSegmentList(SilenceList* pList) = 0;   // 39, copies start and end
  virtual RegionList* GetUncompressRegionList() = 0;            // 40
  virtual void SetUncompressRegionList(RegionList* pList) = 0;  // 41, copies start and end
  // nType is a tagWavDataInfo; *ppInfo gets the matching interface pointer (I_WavDataCueInfo*,
  // I_WavDataTextInfo*, I_WavDataSamplerInfo*, I_WavDataListInfo*, I_WavDataExtraChunkInfo*), null
  // for any other type.
  virtual bool GetInfo(int nType, void** ppInfo) = 0;                        // 42
  virtual int GetDCOffset() = 0;                                             // 43
  virtual void RemoveDCOffset() = 0;                                         // 44
  virtual bool Reserved45(unsigned int dwFirst, unsigned int dwSecond) = 0;  // 45, true
  virtual bool SetEncBuffer(const void* pData, unsigned int dwLength) = 0;   // 46, copies
  virtual void SetEncType(tagAudioFileType eType) = 0;                       // 47
  virtual ~I_WavData() = default;                                            // 48, 49
};
