// SPDX-License-Identifier: Apache-2.0
//
// The five info objects of a sound, by kind: cue points, text, sampler loops, labels, extra chunks.
// A sound owns one of each.
//
// Each loads itself from a chunk (false: the chunk is damaged), says how many bytes it needs, and
// saves itself into a chunk made with that length (false: the chunk has another length). A chunk
// too short for its first field holds nothing: loading it succeeds and changes nothing.
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
