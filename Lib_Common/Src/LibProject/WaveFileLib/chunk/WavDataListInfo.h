// SPDX-License-Identifier: Apache-2.0
//
// The labels and labelled texts of a sound ("LIST" chunk of type "adtl"). Both refer to cue points
// by identifier; nothing checks that those cue points exist.
//
//   offset  size  field (little-endian)
//        0     4  "adtl"
//        4        sub-chunks: identifier (4), size (4), payload, pad byte after an odd size
//   "labl" payload: cue point identifier (4), text, terminating zero, one more zero if odd
//   "ltxt" payload: cue point identifier (4), sample length (4), purpose (4, "rgn "), country,
//   language, dialect, code page (2 each); a text after them is not read
//
// Kept: the zero that pads a label to an even length is counted in its size, unlike other padding
// in RIFF. Our devices advance by the size only. Pinned by LabelPadding_IsCountedInTheSize.
#pragma once

#include <cstdint>

#include "CLArray.h"
#include "chunk/NewID.h"
#include "interface/I_WavDataInfo.h"

class C_WavDataListInfo : public I_WavDataListInfo {
 public:
  // Longer texts are cut.
  static constexpr std::size_t kMaxLabelText = 64;
  static constexpr std::size_t kPurposeLength = 4;

  struct S_Label {
    unsigned int dwCuePointID;
    char szText[kMaxLabelText + 1];
  };
  struct S_Ltxt {
    unsigned int dwCuePointID;
    unsigned int dwSampleLength;
    char szPurpose[kPurposeLength + 1];
    unsigned short wCountry;
    unsigned short wLanguage;
    unsigned short wDialect;
    unsigned short wCodePage;
  };
  using LabelList = C_CLArray<S_Label*, S_Label*, true>;
  using LtxtList = C_CLArray<S_Ltxt*, S_Ltxt*, true>;

  // 0 when the chunk would not fit in 32 bits; it then cannot be saved.
  unsigned int GetChunkLength() override;
  int GetLabelCount() override { return m_labels.GetCount(); }
  void RemoveAllLabels() override { m_labels.RemoveAll(); }
  // Throws std::out_of_range for an index outside the list. pdwID may be null.
  const char* GetLabelByIndex(int nIndex, unsigned int* pdwID) override;
  // A null text counts as an empty one.
  bool AddLabel(unsigned int dwID, const char* pszText) override;
  int GetLtxtCount() override { return m_ltxts.GetCount(); }
  void RemoveAllLtxts() override { m_ltxts.RemoveAll(); }
  // Throws std::out_of_range for an index outside the list. Both pointers may be null.
  const char* GetLtxtByIndex(int nIndex, unsigned int* pdwID,
                             unsigned int* pdwSampleLength) override;
  // A purpose of fewer than four characters is padded with zeros; null gives four zeros.
  bool AddLtxt(unsigned int dwID, unsigned int dwSampleLength, const char* pszPurpose) override;
  // Replaces the labels and texts. A list of another type changes nothing and is a success. False
  // when a sub-chunk is too long for the chunk or too short for its fields; what was read before it
  // stays.
  bool LoadInfo(I_RiffChunk* pChunk) override;
  bool SaveInfo(I_RiffChunk* pChunk) override;

  // Removes the labels whose text bRemove accepts.
  void RemoveLabels(bool (*bRemove)(const char* pszText));
  // Gives each label and each text the identifier that newID returns for its current one, and
  // removes those for which newID returns nothing. Throws only what newID throws.
  void Renumber(const vcm::C_NewID& newID);

 private:
  bool LoadLabel(I_RiffChunk& chunk, std::uint64_t qwPosition, std::uint32_t cbSize);
  bool LoadLtxt(I_RiffChunk& chunk, std::uint64_t qwPosition, std::uint32_t cbSize);

  LabelList m_labels;
  LtxtList m_ltxts;
};
