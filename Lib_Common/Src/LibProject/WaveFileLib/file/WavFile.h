// SPDX-License-Identifier: Apache-2.0
//
// RIFF sound files of form "WAVE" and of the library's own form "VEMD".
//
//   chunk    read                              written
//   "fmt "   tag 1, 2, 6, 7 or 11              always, 16 bytes, tag 1
//   "data"   the samples; none is no failure   always
//   "cue "   cue points                        when there are annotations
//   "smpl"   sampler information               when there are loops
//   "LIST"   of type "adtl": labels            when there are annotations
//   others   kept verbatim                     unless empty
//
// A later "fmt " or "data" chunk counts instead of an earlier one. Events, silence segments and
// uncompressed regions travel as cue points with labels (WavLabels.h).
//
// Compressed sounds (MS ADPCM, A-law, mu-law, DVI ADPCM) become 16-bit PCM as they load, and stay
// that: what is written is always linear.
#pragma once

#include <optional>

#include "file/WavFileBase.h"

class C_RiffFile;

class C_WavFile : public C_WavFileBase {
 public:
  C_WavFile() = default;
  ~C_WavFile() override = default;

  // With bWithInfo also fills format and informational chunks of the sound. A "cue ", "smpl" or
  // "LIST" chunk shorter than its first field, and any other chunk that the file cuts, are left
  // out. The file is closed on return and its name is not kept.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Reads samples and annotations of the file that was opened by name; the arguments have no
  // effect. Samples that the file lacks are zero, see C_WavFileBase::kMaxMissingBytes; a compressed
  // sound has as many as the bytes that are there decode to. Events are added to those that the
  // sound has.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22
  // Writes the sound as the form that GetFileFormat says; false, and nothing written, for any other
  // kind. Its cue points and labels are replaced by those of its annotations. Samples are written
  // in the widths of the sound's codec parameters when these have any; 12 bits are written as 16.
  // The arguments after the first have no effect. A failed write may leave a partial file.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23

 private:
  // The sound of a file as linear PCM.
  struct S_LinearForm {
    unsigned int dwByteLength = 0;
    unsigned short wBits = 0;
  };

  bool OpenRiff(C_RiffFile& riff, const char* pszFileName);
  // Sets the coding type, too. None for a sound that is longer than its length can say.
  std::optional<S_LinearForm> DescribeLinearForm();
  std::optional<S_LinearForm> DescribeDecodedForm() const;
  bool LoadInfoChunks(C_RiffFile& riff);
  bool LoadSamples(std::FILE* pFile);
  void LoadAnnotations();
  void RegenerateAnnotations();
};
