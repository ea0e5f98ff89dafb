// SPDX-License-Identifier: Apache-2.0
//
// The five info objects of a sound: cue points, text, sampler loops, labels and extra chunks. A
// sound owns one of each.
//
// Cue points, sampler loops and labels load themselves from a chunk (false: the chunk is damaged).
// They say how many bytes they need, and save themselves into a chunk made with that length (false:
// the chunk has another length). Loading a chunk that is too short for its header succeeds and
// changes nothing.
#pragma once

#include "chunk/WavDataCueInfo.h"
#include "chunk/WavDataExtraChunkInfo.h"
#include "chunk/WavDataListInfo.h"
#include "chunk/WavDataSamplerInfo.h"
#include "interface/I_WavDataInfo.h"

// A placeholder: no text chunk is read or written.
class C_WavDataTextInfo : public I_WavDataTextInfo {
 public:
  bool IsValid() override { return m_bValid; }
  unsigned int GetChunkLength() override;
  bool SaveInfo(I_RiffChunk* pChunk) override;

 private:
  bool m_bValid = false;
};
