// SPDX-License-Identifier: Apache-2.0
//
// The informational chunks of a RIFF sound file, as objects. Most of them load themselves from a
// chunk, say how long their chunk is, and save themselves into a chunk of that length.
#pragma once

#include "CLArray.h"
#include "I_RiffChunk.h"

// The kinds of information that I_WavData::GetInfo returns.
enum tagWavDataInfo : int {
  WAV_DATA_INFO_CUE = 1,
  WAV_DATA_INFO_TEXT = 2,
  WAV_DATA_INFO_SAMPLER = 3,
  WAV_DATA_INFO_LIST = 4,
  WAV_DATA_INFO_EXTRA_CHUNK = 5,
};

// SMPTE frame rates of a sampler chunk; the file's value is kept whatever it is.
enum tagSMPTEFormat : unsigned int {
  SMPTE_NONE = 0,
  SMPTE_24_FPS = 24,
  SMPTE_25_FPS = 25,
  SMPTE_30_FPS_DROP = 29,
  SMPTE_30_FPS = 30,
};

// Directions of a sample loop; the file's value is kept whatever it is.
enum tagLoopType : unsigned int {
  LOOP_FORWARD = 0,
  LOOP_ALTERNATING = 1,
  LOOP_BACKWARD = 2,
};

// One 24-byte record of a "cue " chunk; positions in samples.
class I_WavDataCuePoint {
 public:
  virtual unsigned int GetCuePointID() = 0;    // 1
  virtual unsigned int GetPosition() = 0;      // 2
  virtual unsigned int GetDataChunkID() = 0;   // 3, four characters, the first in the low byte
  virtual unsigned int GetChunkStart() = 0;    // 4
  virtual unsigned int GetBlockStart() = 0;    // 5
  virtual unsigned int GetSampleOffset() = 0;  // 6
  virtual ~I_WavDataCuePoint() = default;
};

class I_WavDataCueInfo {
 public:
  virtual bool IsValid() = 0;                                     // 1, has points
  virtual void Reset() = 0;                                       // 2
  virtual int GetCuePointCount() = 0;                             // 3
  virtual I_WavDataCuePoint* GetCuePointByIndex(int nIndex) = 0;  // 4
  // The first point with this identifier, or null. *pnIndex gets its index; pnIndex may be null.
  virtual I_WavDataCuePoint* FindCuePointByID(unsigned int dwID, int* pnIndex) = 0;  // 5
  // A point whose identifier is already present is overwritten in place.
  virtual bool AddCuePoint(unsigned int dwID, unsigned int dwPosition, unsigned int dwDataChunkID,
                           unsigned int dwChunkStart, unsigned int dwBlockStart,
                           unsigned int dwSampleOffset) = 0;  // 6
  virtual bool RemoveCuePointByIndex(int nIndex) = 0;         // 7, false on a bad index
  virtual bool RemoveCuePointByID(unsigned int dwID) = 0;     // 8, false when absent
  virtual unsigned int GetChunkLength() = 0;                  // 9, bytes
  virtual bool LoadInfo(I_RiffChunk* pChunk) = 0;             // 10
  virtual bool SaveInfo(I_RiffChunk* pChunk) = 0;             // 11
  virtual ~I_WavDataCueInfo() = default;                      // 12
};

// A placeholder: nothing reads or writes a text chunk.
class I_WavDataTextInfo {
 public:
  virtual bool IsValid() = 0;                      // 1
  virtual unsigned int GetChunkLength() = 0;       // 2
  virtual bool SaveInfo(I_RiffChunk* pChunk) = 0;  // 3
  virtual ~I_WavDataTextInfo() = default;          // 4
};

// One 24-byte loop record of a "smpl" chunk.
class I_WavDataSampleLoop {
 public:
  virtual unsigned int GetCuePointID() = 0;         // 1
  virtual tagLoopType GetType() = 0;                // 2
  virtual unsigned int GetStartByteOffset() = 0;    // 3
  virtual unsigned int GetEndByteOffset() = 0;      // 4
  virtual unsigned int GetStartSampleOffset() = 0;  // 5
  virtual unsigned int GetEndSampleOffset() = 0;    // 6
  virtual unsigned int GetFraction() = 0;           // 7
  virtual unsigned int GetPlayCount() = 0;          // 8
  virtual ~I_WavDataSampleLoop() = default;
};

class I_WavDataSamplerInfo {
 public:
  virtual bool IsValid() = 0;                       // 1, has at least one loop
  virtual void Reset() = 0;                         // 2, header fields to 0, loops removed
  virtual void ResetSampleLoopInformation() = 0;    // 3, loops removed
  virtual unsigned int GetManufactureID() = 0;      // 4
  virtual unsigned int GetProductID() = 0;          // 5
  virtual unsigned int GetSamplePeriod() = 0;       // 6, nanoseconds
  virtual unsigned int GetMIDIUnityNote() = 0;      // 7
  virtual unsigned int GetMIDIPitchFraction() = 0;  // 8
  virtual tagSMPTEFormat GetSMPTEFormat() = 0;      // 9
  virtual unsigned int GetSMPTEOffset() = 0;        // 10
  virtual unsigned int GetSampleLoopNum() = 0;      // 11
  virtual unsigned int GetSamplerData() = 0;        // 12, length in bytes of the sampler's own data
  virtual void SetManufactureID(unsigned int dwID) = 0;            // 13
  virtual void SetProductID(unsigned int dwID) = 0;                // 14
  virtual void SetSamplePeriod(unsigned int dwPeriod) = 0;         // 15
  virtual void SetMIDIUnityNote(unsigned int dwNote) = 0;          // 16
  virtual void SetMIDIPitchFraction(unsigned int dwFraction) = 0;  // 17
  virtual void SetSMPTEFormat(tagSMPTEFormat eFormat) = 0;         // 18
  virtual void SetSMPTEOffset(unsigned int dwOffset) = 0;          // 19
  // Kept: the setter of the data length has the getter's name, because callers are compiled against
  // it. Pinned by SamplerDataLength_IsSetThroughTheGettersName.
  virtual void GetSamplerData(unsigned int dwLength) = 0;             // 20
  virtual I_WavDataSampleLoop* GetSampleLoopByIndex(int nIndex) = 0;  // 21
  virtual bool AddSampleLoop(unsigned int dwCuePointID, tagLoopType eType, unsigned int dwStart,
                             unsigned int dwEnd, unsigned int dwFraction,
                             unsigned int dwPlayCount) = 0;  // 22, offsets in samples
  virtual bool RemoveSampleLoopByIndex(int nIndex) = 0;      // 23, false on a bad index
  virtual unsigned int GetChunkLength() = 0;                 // 24, bytes
  virtual bool LoadInfo(I_RiffChunk* pChunk) = 0;            // 25
  virtual bool SaveInfo(I_RiffChunk* pChunk) = 0;            // 26
  virtual ~I_WavDataSamplerInfo() = default;                 // 27
};

// Labels and labelled texts of a "LIST" chunk of type "adtl".
class I_WavDataListInfo {
 public:
  virtual unsigned int GetChunkLength() = 0;  // 1, bytes
  virtual int GetLabelCount() = 0;            // 2
  virtual void RemoveAllLabels() = 0;         // 3
  // Returns the text, which the list owns; *pdwID gets the cue point identifier.
  virtual const char* GetLabelByIndex(int nIndex, unsigned int* pdwID) = 0;  // 4
  // Appends a label, even if the identifier is already present; at most 64 characters are kept.
  virtual bool AddLabel(unsigned int dwID, const char* pszText) = 0;  // 5
  virtual int GetLtxtCount() = 0;                                     // 6
  virtual void RemoveAllLtxts() = 0;                                  // 7
  // Returns the purpose, which the list owns: four characters, any of which may be zero, and a
  // terminating zero.
  virtual const char* GetLtxtByIndex(int nIndex, unsigned int* pdwID,
                                     unsigned int* pdwSampleLength) = 0;  // 8
  virtual bool AddLtxt(unsigned int dwID, unsigned int dwSampleLength,
                       const char* pszPurpose) = 0;  // 9
  virtual bool LoadInfo(I_RiffChunk* pChunk) = 0;    // 10
  virtual bool SaveInfo(I_RiffChunk* pChunk) = 0;    // 11
  virtual ~I_WavDataListInfo() = default;            // 12
};

// Any other chunk, kept verbatim.
class I_WavDataExtraChunk {
 public:
  // Four characters, any of which may be zero, and a terminating zero.
  virtual const char* GetChunkName() = 0;  // 1
  // Returns the length in bytes. *ppbyData gets the chunk's own buffer, or null when the chunk is
  // empty.
  virtual unsigned int GetChunkData(unsigned char** ppbyData) = 0;  // 2
  virtual ~I_WavDataExtraChunk() = default;                         // 3
};

// A list with four more operations, whose slots lie between RemoveAll and the destructor.
class I_WavDataExtraChunkInfo {
 public:
  virtual int GetSize() const = 0;                                    // 1
  virtual I_WavDataExtraChunk* GetItemByIndex(int nIndex) const = 0;  // 2, std::out_of_range
  virtual void RemoveItemByIndex(int nIndex) = 0;                     // 3
  virtual void RemoveAll() = 0;                                       // 4
  // Names are four characters. The data is copied; with length 0, no buffer is kept. False when the
  // length is above 0 and pData is null.
  virtual bool AddChunk(const char* pszName, const void* pData, unsigned int dwLength) = 0;  // 5
  virtual bool DelChunkByName(const char* pszName) = 0;  // 6, first match; false when none
  // Reads the whole payload of the chunk.
  virtual bool AddRiffChunk(const char* pszName, I_RiffChunk* pChunk) = 0;  // 7
  virtual I_WavDataExtraChunk* GetChunkByName(const char* pszName) = 0;  // 8, first match or null
  virtual ~I_WavDataExtraChunkInfo() = default;                          // 9
};
