// SPDX-License-Identifier: Apache-2.0
//
// How a sound writes itself as a file. This is a source file of its own, because nothing else in a
// sound needs the file classes.
#include "sound/HeldBytes.h"
#include "sound/WavData.h"
#include "sound/WavFileMaker.h"

bool C_WavData::Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                        bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                        unsigned int dwCodecOption) {
  if (GetBufferLength() == 0 || !vcm::HoldsItsBytes(*this)) return false;
  const auto file = vcm::MakeWavFile(eType, m_eEncType);
  if (file == nullptr) return false;
  file->AttachWavData(this);
  const bool bRet = file->WriteFile(pszFileName, bEncode, bWriteCodecHead, pfnProgress,
                                    bForceEncode, dwCodecOption);
  file->DetachWavData();
  return bRet;
}
