// SPDX-License-Identifier: Apache-2.0
//
// RIFF sound files of form "WAVE" and of the library's own form "VEMD".
//
//   chunk    read                              written
//   "fmt "   tag 1, 2, 6, 7 or 11              always, 16 bytes, tag 1
//   "data"   the samples; may be missing       always
//   "cue "   cue points                        when there are annotations
//   "smpl"   sampler information               when there are loops
//   "LIST"   of type "adtl": labels            when there are annotations
//   others   kept verbatim                     unless empty
//
// When there are several "fmt " or "data" chunks, the last one counts. Events, silence segments and
// uncompressed regions are stored as cue points with labels (WavLabels.h).
//
// Compressed sounds (MS ADPCM, A-law, mu-law, DVI ADPCM) become 16-bit PCM when they are loaded,
// and stay PCM: what is written is always linear.
#pragma once

#include <optional>

#include "file/WavFileBase.h"

class C_RiffFile;

// One object can load several files, one after another. All of them go into the same sound:
//
//   format, PCM                  replaced; opening a file removes the PCM of an earlier one
//   coding type                  replaced, but A-law and mu-law leave it as it was
//   events                       those of the file are added to those that the sound has
//   silence segments, regions    replaced, even when the new file has none
//   cue points                   replaced when the new file has a "cue " chunk, otherwise they stay
//   sampler information          replaced when the new file has a "smpl" chunk
//   labels and labelled texts    replaced when the new file has a "LIST" chunk of type "adtl"
//   extra chunks                 replaced when the new file has some
//   encoded form                 stays, but its type becomes the file format
//   codec parameters             stay
//
// The events, segments and regions are made by LoadData, everything else by opening the file.
// Labels that stay count as labels of the new file: the annotations that they describe are made
// again. If the cue point of such a label is gone, the program stops (WavLabels.h). To start
// afresh, use a new object.
class C_WavFile : public C_WavFileBase {
 public:
  C_WavFile() = default;
  ~C_WavFile() override = default;

  // Accepts RIFF files of both forms with a format that the library reads. With bWithInfo, also
  // fills the format and the informational chunks of the sound. A "cue " or "LIST" chunk of less
  // than 4 bytes, a "smpl" chunk of less than 36 bytes, and any chunk of another name that the file
  // cuts are left out; a "cue ", "smpl" or "LIST" chunk with other damage makes the result false.
  // Afterwards GetFileFormat returns the form, even when the format was refused. The file is closed
  // on return and its name is not kept.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Reads samples and annotations of the file that OpenByName opened; the arguments have no effect.
  // Samples that the file lacks are zero, see C_WavFileBase::kMaxMissingBytes. A compressed sound
  // has as many samples as the bytes in the file decode to. False without a sound, and when the
  // file cannot be read, lacks more than that or cannot be decoded.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22
  // Writes the sound in the form that GetFileFormat names: AUDIO_FILE_WAVE or AUDIO_FILE_VEMD. An
  // existing file is replaced. Only pszFileName has an effect; the other arguments matter only for
  // codec files. Samples are written in the widths of the sound's codec parameters when these are
  // set. Otherwise samples of 12 bits that are stored in 16 or 32 are written as 16; those stored
  // in 12, as a file gives them, cannot be converted. The sound's own cue points and labels are
  // replaced by those of its annotations.
  //
  // Returns false without touching a file when the sound or its PCM is missing, when the format
  // claims more bytes than the PCM has, for any other kind, and for widths that cannot be
  // converted. The target is written as vcm::C_TargetFile says: an existing file is replaced only
  // when everything is written, and a new one stays partial when a write fails.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23

 private:
  // The size of a file's sound as linear PCM.
  struct S_LinearForm {
    unsigned int dwByteLength = 0;
    unsigned short wBits = 0;
  };

  bool OpenRiff(C_RiffFile& riff, const char* pszFileName);
  // Also sets the coding type. Empty for a file without a format, and for a sound whose length in
  // bytes does not fit in 32 bits.
  std::optional<S_LinearForm> DescribeLinearForm();
  std::optional<S_LinearForm> DescribeDecodedForm() const;
  bool LoadInfoChunks(C_RiffFile& riff);
  bool LoadSamples(vcm::C_FileReader& file);
  void LoadAnnotations();
  void RegenerateAnnotations();

  bool m_bCutShort = false;  // the file that CheckFormat looked at
};
