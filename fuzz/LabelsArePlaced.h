// SPDX-License-Identifier: Apache-2.0
//
// A label that names an annotation without a cue point to place it stops the program, on purpose.
// Nothing else in a file does that, so the fuzzers skip such files.
#pragma once

#include "file/WavFile.h"
#include "file/WavLabels.h"
#include "interface/I_WavDataInfo.h"

// For a RIFF sound file that is open: true when it may be loaded.
inline bool LabelsArePlaced(C_WavFile& file) {
  void* pList = nullptr;
  void* pCues = nullptr;
  if (!file.GetDataInfo(WAV_DATA_INFO_LIST, &pList)) return false;
  if (!file.GetDataInfo(WAV_DATA_INFO_CUE, &pCues)) return false;
  auto& list = *static_cast<I_WavDataListInfo*>(pList);
  for (int i = 0; i < list.GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const wavlabels::S_LabelMeaning label = wavlabels::ParseLabel(list.GetLabelByIndex(i, &dwID));
    if (label.eKind == wavlabels::S_LabelMeaning::Kind::Other) continue;
    if (static_cast<I_WavDataCueInfo*>(pCues)->FindCuePointByID(dwID, nullptr) == nullptr) {
      return false;
    }
  }
  return true;
}

// The same for any file; also true for a file that is not a RIFF sound file.
inline bool LabelsArePlaced(const char* pszFileName) {
  C_WavFile file;
  return !file.OpenByName(pszFileName) || LabelsArePlaced(file);
}
