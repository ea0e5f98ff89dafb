// SPDX-License-Identifier: Apache-2.0
//
// What all files share that can be VEF containers: RIFF files of form "VEFF" with a sound as PCM,
// its annotations and, for the library's own codecs, the sound as an encoded stream.
//
//   chunk    written                                     read
//   "fmt "   always, 16 bytes                            format tag 1 (linear PCM); must be there
//   "data"   always                                      the samples as stored
//   "cue "   when there are cue points                   cue points
//   "smpl"   when there are loops                        sampler information
//   "LIST"   when there are labels or texts              labels; those of events become events
//   "vafm"   with the header flag                        the coding type
//   "vdat"   with the header flag, by WriteDataChunk     the encoded stream, on its own
//   others   the sound's extra chunks, unless empty      "vevt" alone, as an extra chunk
//
// "vafm" (little-endian), 16 bytes:
//
//   offset size field
//   0      2    record version, 256
//   2      2    file type code (tagAudioFileType)
//   4      2    sample rate in Hz, its low 16 bits
//   6      4    bit rate of the codec parameters
//   10     1    channel count
//   11     1    platform of the codec parameters
//   12     4    0
//
// The first record of 16 bytes or more with version 256 counts; others are passed over.
#pragma once

#include <memory>

#include "file/WavFileBase.h"

class C_RiffFile;

class C_VefFileBase : public C_WavFileBase {
 public:
  // Adds the encoded stream to a container that is being written, as chunk "vdat".
  virtual bool WriteDataChunk(C_RiffFile* pRiffFile) = 0;  // 24

  // The payload of the first "vdat" chunk, null and 0 (and true) in a container that has none.
  // False when the file is no container or that chunk cannot be read whole; the outputs are then
  // null and 0. Platform 2 of the codec parameters adds a zero behind the payload that the length
  // does not count.
  bool LoadVDATChunk(const char* pszFileName, std::unique_ptr<unsigned char[]>* ppbyData,
                     unsigned int* pdwLength);

 protected:
  // Writes the sound as a RIFF file of that form type (four characters), "vafm" with eType and the
  // stream of WriteDataChunk included when bHeader is set. The sound's cue points and labels get
  // its events (VefLabels.h). Samples are written as wavchunks::ConvertForWriting gives them. The
  // target is opened when all is assembled, not before: a file that stood there survives every
  // failure but one of the disk.
  bool WriteVef(const char* pszFileName, const char* pszFormType, bool bHeader,
                tagAudioFileType eType);
  // False for containers whose "vafm" has a type of the foreign range. With bWithInfo the sound's
  // format, coding type, annotations and "vevt" chunk become those of the file, and it loses its
  // encoded form; a "cue ", "smpl" or "LIST" shorter than its first field is left out.
  bool CheckVefFormat(const char* pszFileName, bool bWithInfo, const S_AudioFileTypes& foreign);
  // The samples as stored, of the file that was opened by name.
  bool LoadVefAsStored();
  // Adds a chunk "vdat" with these bytes.
  static bool AddDataChunk(C_RiffFile& riff, const unsigned char* pbyData, unsigned int dwLength);

 private:
  bool LoadVefInfo(C_RiffFile& riff);
  void ForgetAnnotations();
  bool ForgetStream();
  void RegenerateEvents();
};
