// SPDX-License-Identifier: Apache-2.0
//
// The cue points of a sound ("cue " chunk).
//
//   offset  size  field (little-endian)
//        0     4  number of records; records that the payload cuts short are not read
//        4    24  each record: identifier, position in samples, data chunk identifier ("data"),
//                 chunk start, block start, sample offset (4 bytes each)
#pragma once

#include <array>
#include <cstdint>
#include <map>

#include "CLArray.h"
#include "chunk/NewID.h"
#include "interface/I_WavDataInfo.h"
#include "interface/I_WavInfo.h"

class C_WavDataCueInfo : public I_WavDataCueInfo {
 public:
  class C_CuePoint : public I_WavDataCuePoint {
   public:
    static constexpr std::uint32_t kRecordLength = 24;
    using Record = std::array<std::uint8_t, kRecordLength>;

    C_CuePoint(const Record& record, I_WavInfo* pIWavInfo);

    unsigned int GetCuePointID() override { return Field(0); }
    unsigned int GetPosition() override { return Field(1); }
    unsigned int GetDataChunkID() override { return Field(2); }
    unsigned int GetChunkStart() override { return Field(3); }
    unsigned int GetBlockStart() override { return Field(4); }
    unsigned int GetSampleOffset() override { return Field(5); }

    // The record as it is in the file, 24 bytes.
    [[nodiscard]] const unsigned char* GetCuePointBuffer() const { return m_record.data(); }
    void SetRecord(const Record& record) { m_record = record; }
    void SetCuePointID(unsigned int dwID);

   private:
    [[nodiscard]] unsigned int Field(std::size_t nField) const;

    Record m_record;
    // The positions count samples of this format.
    [[maybe_unused]] I_WavInfo* m_pIWavInfo;
  };
  using CuePointList = C_CLArray<C_CuePoint*, I_WavDataCuePoint*, true>;

  // The wave info is borrowed and must outlive this object.
  explicit C_WavDataCueInfo(I_WavInfo* pIWavInfo) : m_pIWavInfo(pIWavInfo) {}

  bool IsValid() override { return GetCuePointCount() > 0; }
  void Reset() override;
  int GetCuePointCount() override { return m_cuePoints.GetCount(); }
  // Throws std::out_of_range for an index outside the list.
  I_WavDataCuePoint* GetCuePointByIndex(int nIndex) override;
  I_WavDataCuePoint* FindCuePointByID(unsigned int dwID, int* pnIndex) override;
  bool AddCuePoint(unsigned int dwID, unsigned int dwPosition, unsigned int dwDataChunkID,
                   unsigned int dwChunkStart, unsigned int dwBlockStart,
                   unsigned int dwSampleOffset) override;
  bool RemoveCuePointByIndex(int nIndex) override;
  bool RemoveCuePointByID(unsigned int dwID) override;
  // 0 when the chunk would not fit in 32 bits; it then cannot be saved.
  unsigned int GetChunkLength() override;
  // Replaces the cue points.
  bool LoadInfo(I_RiffChunk* pChunk) override;
  bool SaveInfo(I_RiffChunk* pChunk) override;

  // Gives each point the identifier that newID returns for its current one, and removes the points
  // for which newID returns nothing. Points that get the same identifier stay separate. Throws only
  // what newID throws.
  void Renumber(const vcm::C_NewID& newID);

 protected:
  // Change the list only through the operations above: they keep the index of identifiers correct.
  CuePointList m_cuePoints;

 private:
  int FindIndex(unsigned int dwID);
  void Append(const C_CuePoint::Record& record);
  void ForgetFrom(int nIndex);

  I_WavInfo* m_pIWavInfo;
  // The first index of each identifier among the first m_nIndexed points. A search continues from
  // there, so each point is looked at only once, however many searches are made. The map is sorted
  // rather than hashed, so that no choice of identifiers in a file makes the search slow.
  std::map<unsigned int, int> m_firstByID;
  int m_nIndexed = 0;
};
