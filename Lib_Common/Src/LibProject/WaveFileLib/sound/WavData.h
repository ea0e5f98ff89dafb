// SPDX-License-Identifier: Apache-2.0
//
// The sound object that readers, codecs and the player exchange. I_WavData.h says what the
// operations do, what their arguments mean and who owns the results.
//
// The operations are defined in several files, by what they do: WavData (life, buffers, format),
// WavDataSilence (segments and regions), WavDataGain (gain, normalising, DC offset), WavDataWidth
// (sample widths), WavDataChannels (mixing, extraction), WavDataConvert (writing a file).
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "annotation/EventTagMgr.h"
#include "annotation/SampleRangeList.h"
#include "annotation/SilenceSegment.h"
#include "annotation/UncompressRegion.h"
#include "chunk/WavDataInfo.h"
#include "interface/I_WavData.h"
#include "sound/AudioCodecParam.h"
#include "sound/WavDataBuffer.h"
#include "sound/WavInfo.h"

class C_WavData : public I_WavData {
 public:
  C_WavData();
  ~C_WavData() override = default;
  C_WavData(const C_WavData&) = delete;
  C_WavData& operator=(const C_WavData&) = delete;

  int AddRef() override { return ++m_nRefCount; }
  int Release() override;
  I_WavInfo* GetWavInfo() override { return &m_wavInfo; }
  unsigned char* GetBuffer() override { return m_pcmBuffer.GetBuffer(); }
  unsigned char* GetEncBuffer() override { return m_encBuffer.GetBuffer(); }
  unsigned int GetBufferLength() override { return m_wavInfo.GetByteLength(); }
  unsigned int GetEncBufferLen() override { return m_wavInfo.GetEncByteLen(); }
  tagAudioFileType GetEncType() override { return m_eEncType; }
  void SetWavInfo(I_WavInfo* pIWavInfo) override;
  void SetWavInfoData(unsigned int dwSampleRate, unsigned int dwByteLength,
                      unsigned short wChannels, unsigned short wBitsPerSample,
                      unsigned short wStoreBitsPerSample, bool bValueSigned) override;
  bool CopyWavData(I_WavData* pSrc) override;
  unsigned char* AllocBuffer(unsigned int dwLength) override;
  bool SetBuffer(const void* pData, unsigned int dwLength) override;
  bool ConvertBits(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                   bool bExact) override;
  I_WavData* CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                                     bool bExact) override;
  I_WavData* Clone() override;
  I_WavData* CreateChannelData(unsigned short wChannelNo, unsigned int dwStartSample,
                               unsigned int dwSampleCount) override;
  bool SetChannelData(I_WavData* pSrc, unsigned short wChannelNo, unsigned int dwStartSample,
                      int nReserved) override;
  void ConvertToMono() override;
  void ConvertToStereo() override;
  void ConvertToStereoWithSilence(unsigned short bRight) override;
  I_AudioCodecParam* GetAudioCodecParam() override { return &m_codecParam; }
  // Writes the sound with WriteFile of the class for eType, which says what the other arguments
  // mean: C_WavFile, C_HeronFileBase or C_KestrelFile. The encoded form can be reused when
  // GetEncType is eType.
  bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode,
               unsigned int dwCodecOption) override;
  I_EventTagMgr* GetEventTagMgr() override { return &m_eventTagMgr; }
  SilenceList* DetectSilence(unsigned int dwThreshold, unsigned int dwMinLength,
                             bool bReplace) override;
  SilenceList* DetectSilenceRange(unsigned int dwThreshold, unsigned int dwMinLength,
                                  unsigned int dwStartSample, unsigned int dwEndSample,
                                  unsigned short wFirstChannel, unsigned short wLastChannel,
                                  bool bReplace) override;
  SilenceList* AddSilenceSegment(unsigned int dwStart, unsigned int dwEnd) override;
  RegionList* AddUncompressRegion(unsigned int dwStart, unsigned int dwEnd) override;
  void MergeSilenceSegments() override;
  void MergeUncompressRegions() override;
  void AttachBuffer(void* pData, unsigned int dwLength) override;
  unsigned char* DetachBuffer() override { return m_pcmBuffer.DetachBuffer(); }
  I_WavDataBuffer* GetIWaveDataBuffer() override { return &m_pcmBuffer; }
  bool ApplyGain(double dStartGain, double dEndGain) override;
  bool ApplyGainRange(double dStartGain, double dEndGain, unsigned int dwStartSample,
                      unsigned int dwEndSample, unsigned short wFirstChannel,
                      unsigned short wLastChannel) override;
  bool Normalize() override;
  bool NormalizeRange(unsigned int dwStartSample, unsigned int dwEndSample,
                      unsigned short wFirstChannel, unsigned short wLastChannel) override;
  SilenceList* GetSilenceSegmentList() override { return &m_silenceSegments; }
  void SetSilenceSegmentList(SilenceList* pList) override;
  RegionList* GetUncompressRegionList() override { return &m_uncompressRegions; }
  void SetUncompressRegionList(RegionList* pList) override;
  bool GetInfo(int nType, void** ppInfo) override;
  int GetDCOffset() override;
  void RemoveDCOffset() override;
  bool Reserved45(unsigned int dwFirst, unsigned int dwSecond) override;
  bool SetEncBuffer(const void* pData, unsigned int dwLength) override;
  void SetEncType(tagAudioFileType eType) override { m_eEncType = eType; }

  // Replaces the PCM by these bytes, as AllocBuffer does by new ones.
  void TakeBuffer(std::unique_ptr<unsigned char[]> pbyData, unsigned int dwLength);
  // Replaces the encoded form by these bytes. False, and the bytes are freed, where SetEncBuffer
  // would refuse them.
  bool TakeEncBuffer(std::unique_ptr<unsigned char[]> pbyData, unsigned int dwLength);
  // Keep the present PCM and the present encoded form, see C_WavDataBuffer::KeepMemory.
  [[nodiscard]] std::shared_ptr<const void> KeepBuffer() { return m_pcmBuffer.KeepMemory(); }
  [[nodiscard]] std::shared_ptr<const void> KeepEncBuffer() { return m_encBuffer.KeepMemory(); }
  // Sets every sample of every channel inside the silence segments to 0. Segments may reach beyond
  // the sound. A null segment stops the program.
  void MakeSilenceSegmentsMute();

 private:
  // The ends of a range over the whole sound. Both wrap for a sound without samples; every range
  // operation then refuses the range or finds it empty.
  unsigned int LastSample() { return m_pcmBuffer.GetHeldSampleSize() - 1; }
  unsigned short LastChannel() { return static_cast<unsigned short>(m_wavInfo.GetChannels() - 1); }
  // The sound's format with another channel count and another length in bytes.
  C_WavInfo FormatWith(unsigned short wChannels, unsigned int dwByteLength);
  void SetByteLength(unsigned int dwLength);
  // Null when a width is not supported.
  std::unique_ptr<C_WavData> BitsConverted(unsigned short wBits, unsigned short wStoreBits,
                                           bool bSigned, bool bExact);
  // True when the PCM may be replaced by another mix of its channels.
  bool CanMix();
  void InstallMix(C_WavDataBuffer& mix, unsigned short wChannels);
  // Each side gets one of the channels, or silence.
  void MixToStereo(int nLeftChannel, int nRightChannel);
  // Both return false, and write nothing, when the bytes do not fit into the PCM buffer.
  // SetSideData does so for an unsupported width, too.
  bool SetMonoData(const unsigned char* pbySrc, unsigned int dwLength, unsigned int dwStartSample);
  bool SetSideData(const unsigned char* pbySrc, unsigned int dwLength, unsigned int dwSide,
                   unsigned int dwStartSample);
  // One sum for each frame from a position on.
  void SumChannels(unsigned int dwSamplePos, unsigned short wFirstChannel,
                   unsigned short wLastChannel, std::span<int> sums);
  void AddQuietRuns(int nThreshold, unsigned int dwMinLength, unsigned int dwStartSample,
                    unsigned int dwEndSample, unsigned short wFirstChannel,
                    unsigned short wLastChannel);

  C_WavDataBuffer m_pcmBuffer;
  C_WavDataBuffer m_encBuffer;
  C_WavInfo m_wavInfo;  // of the PCM; its encoded length is that of the encoded buffer
  C_EventTagMgr m_eventTagMgr;
  C_AudioCodecParam m_codecParam;
  vcm::C_SampleRangeList<C_SilenceSegment, I_SilenceSegment> m_silenceSegments;
  vcm::C_SampleRangeList<C_UncompressRegion, I_UncompressRegion> m_uncompressRegions;
  C_WavDataTextInfo m_textInfo;
  C_WavDataExtraChunkInfo m_extraChunks;
  C_WavDataCueInfo m_cueInfo;
  C_WavDataListInfo m_listInfo;
  C_WavDataSamplerInfo m_samplerInfo;
  tagAudioFileType m_eEncType = AUDIO_FILE_UNKNOWN;
  int m_nRefCount = 0;
};

// The sound as an object of exactly this class, or null. Short ways around the interface are for
// these only: a class derived from it may have functions of its own in the place of ours.
[[nodiscard]] C_WavData* AsOurOwn(I_WavData& wavData);
