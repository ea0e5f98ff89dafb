// SPDX-License-Identifier: Apache-2.0
//
// The sampler header and sample loops of a sound ("smpl" chunk).
//
//   offset  size  field (little-endian)
//        0    36  manufacturer, product, sample period, MIDI unity note, MIDI pitch fraction, SMPTE
//                 format, SMPTE offset, number of loops, sampler data length (4 bytes each)
//       36    24  each loop: cue point identifier, type, start, end, fraction, play count
//        .        the sampler's own data
//
// Kept: the sampler's own data is not read, and is saved as zeros of the same length. Devices that
// check the length find it unchanged, and no device gets data of another sound. Pinned by
// SamplerOwnData_IsNotReadAndIsSavedAsZeros.
#pragma once

#include <cstdint>

#include "CLArray.h"
#include "chunk/NewID.h"
#include "interface/I_WavDataInfo.h"
#include "interface/I_WavInfo.h"

class C_WavDataSamplerInfo : public I_WavDataSamplerInfo {
 public:
  // A loop as it is in the file; start and end in samples.
  struct S_SampleLoop {
    unsigned int dwCuePointID;
    unsigned int dwType;
    unsigned int dwStart;
    unsigned int dwEnd;
    unsigned int dwFraction;
    unsigned int dwPlayCount;
  };

  class C_SampleLoop : public I_WavDataSampleLoop {
   public:
    C_SampleLoop(const S_SampleLoop& record, I_WavInfo* pIWavInfo)
        : m_record(record), m_pIWavInfo(pIWavInfo) {}

    unsigned int GetCuePointID() override { return m_record.dwCuePointID; }
    tagLoopType GetType() override { return static_cast<tagLoopType>(m_record.dwType); }
    unsigned int GetStartByteOffset() override { return ByteOffset(m_record.dwStart); }
    unsigned int GetEndByteOffset() override { return ByteOffset(m_record.dwEnd); }
    unsigned int GetStartSampleOffset() override { return m_record.dwStart; }
    unsigned int GetEndSampleOffset() override { return m_record.dwEnd; }
    unsigned int GetFraction() override { return m_record.dwFraction; }
    unsigned int GetPlayCount() override { return m_record.dwPlayCount; }

    [[nodiscard]] const S_SampleLoop& GetRecord() const { return m_record; }
    void SetCuePointID(unsigned int dwID) { m_record.dwCuePointID = dwID; }

   private:
    // Bytes before a sample frame, modulo 2^32.
    [[nodiscard]] unsigned int ByteOffset(unsigned int dwSample) const;

    S_SampleLoop m_record;
    I_WavInfo* m_pIWavInfo;
  };
  using SampleLoopList = C_CLArray<C_SampleLoop*, I_WavDataSampleLoop*, true>;

  // The wave info is borrowed and must outlive this object.
  explicit C_WavDataSamplerInfo(I_WavInfo* pIWavInfo) : m_pIWavInfo(pIWavInfo) {}

  // Kept: a header without loops is not worth a chunk, so it is lost when a sound is written back.
  // Pinned by SamplerWithoutLoops_IsNotValid.
  bool IsValid() override { return m_loops.GetCount() > 0; }
  void Reset() override;
  void ResetSampleLoopInformation() override { m_loops.RemoveAll(); }
  unsigned int GetManufactureID() override { return m_header.dwManufactureID; }
  unsigned int GetProductID() override { return m_header.dwProductID; }
  unsigned int GetSamplePeriod() override { return m_header.dwSamplePeriod; }
  unsigned int GetMIDIUnityNote() override { return m_header.dwMIDIUnityNote; }
  unsigned int GetMIDIPitchFraction() override { return m_header.dwMIDIPitchFraction; }
  tagSMPTEFormat GetSMPTEFormat() override { return m_header.eSMPTEFormat; }
  unsigned int GetSMPTEOffset() override { return m_header.dwSMPTEOffset; }
  unsigned int GetSampleLoopNum() override { return static_cast<unsigned int>(m_loops.GetCount()); }
  unsigned int GetSamplerData() override { return m_header.dwSamplerData; }
  void SetManufactureID(unsigned int dwID) override { m_header.dwManufactureID = dwID; }
  void SetProductID(unsigned int dwID) override { m_header.dwProductID = dwID; }
  void SetSamplePeriod(unsigned int dwPeriod) override { m_header.dwSamplePeriod = dwPeriod; }
  void SetMIDIUnityNote(unsigned int dwNote) override { m_header.dwMIDIUnityNote = dwNote; }
  void SetMIDIPitchFraction(unsigned int dwFraction) override;
  void SetSMPTEFormat(tagSMPTEFormat eFormat) override { m_header.eSMPTEFormat = eFormat; }
  void SetSMPTEOffset(unsigned int dwOffset) override { m_header.dwSMPTEOffset = dwOffset; }
  void GetSamplerData(unsigned int dwLength) override { m_header.dwSamplerData = dwLength; }
  // Throws std::out_of_range for an index outside the list.
  I_WavDataSampleLoop* GetSampleLoopByIndex(int nIndex) override;
  bool AddSampleLoop(unsigned int dwCuePointID, tagLoopType eType, unsigned int dwStart,
                     unsigned int dwEnd, unsigned int dwFraction,
                     unsigned int dwPlayCount) override;
  bool RemoveSampleLoopByIndex(int nIndex) override;
  // 0 when the chunk would not fit in 32 bits; it then cannot be saved.
  unsigned int GetChunkLength() override;
  // Replaces the header and the loops. The sampler data length is limited to what the payload
  // holds.
  bool LoadInfo(I_RiffChunk* pChunk) override;
  bool SaveInfo(I_RiffChunk* pChunk) override;

  // Gives each loop the cue point identifier that newID returns for its current one, and removes
  // the loops for which newID returns nothing. Throws only what newID throws.
  void Renumber(const vcm::C_NewID& newID);

 protected:
  SampleLoopList m_loops;

 private:
  // The number of loops is not stored here; it is the length of the list.
  struct S_Header {
    unsigned int dwManufactureID = 0;
    unsigned int dwProductID = 0;
    unsigned int dwSamplePeriod = 0;
    unsigned int dwMIDIUnityNote = 0;
    unsigned int dwMIDIPitchFraction = 0;
    tagSMPTEFormat eSMPTEFormat = SMPTE_NONE;
    unsigned int dwSMPTEOffset = 0;
    unsigned int dwSamplerData = 0;
  };
  void Append(const S_SampleLoop& record);
  bool LoadLoops(I_RiffChunk& chunk, unsigned int dwLoops);

  S_Header m_header;
  I_WavInfo* m_pIWavInfo;
};
