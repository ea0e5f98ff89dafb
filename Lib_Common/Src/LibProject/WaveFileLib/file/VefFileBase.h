// SPDX-License-Identifier: Apache-2.0
//
// The common base of the classes whose files can be VEF containers. These containers are RIFF files
// of form "VEFF" that hold a sound as PCM, its annotations and, for the library's own codecs, also
// its encoded stream.
//
//   chunk    written                                     read
//   "fmt "   always, 16 bytes                            format tag 1 (linear PCM); required
//   "data"   always                                      the samples as stored
//   "cue "   when there are cue points                   cue points
//   "smpl"   when there are loops                        sampler information
//   "LIST"   when there are labels or texts              labels; those of events become events
//   "vafm"   with the header flag                        the coding type
//   "vdat"   with the header flag, by WriteDataChunk     the encoded stream, by LoadVDATChunk
//   others   the sound's extra chunks, unless empty      only "vevt", as an extra chunk
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
// The first record of 16 bytes or more with version 256 counts; other records are skipped.
#pragma once

#include <memory>
#include <span>

#include "StdioFile.h"
#include "file/WavFileBase.h"

class C_RiffFile;

// One object can load several containers, one after another. Opening a container already replaces
// everything that containers store: the format, the coding type, the events, the cue points,
// labels, texts and loops, and the extra chunks, even where the new file has none. The PCM and the
// encoded form of an earlier file are removed. Silence segments, regions and codec parameters stay,
// because containers do not store them.
class C_VefFileBase : public C_WavFileBase {
 public:
  // Adds the encoded stream, as chunk "vdat", to a container that is being written. False when that
  // fails, which ends the writing.
  virtual bool WriteDataChunk(C_RiffFile* pRiffFile) = 0;  // 24

  // Reads the encoded stream of a container, the payload of its first "vdat" chunk. *ppbyData gets
  // a new array and *pdwLength its length in bytes; neither pointer may be null. For a container
  // without such a chunk the outputs are null and 0, and the result is true. False when the file is
  // not a container, and when the chunk is empty or cannot be read completely; the outputs are then
  // null and 0. With platform 2 of the codec parameters, the array has one more zero byte at its
  // end, which the length does not count. Makes the sound object when there is none.
  bool LoadVDATChunk(const char* pszFileName, std::unique_ptr<unsigned char[]>* ppbyData,
                     unsigned int* pdwLength);

 protected:
  // Writes the sound as a RIFF file of form pszFormType (four characters). With bHeader, the file
  // also gets "vafm" with eType and the stream of WriteDataChunk. The sound's own cue points and
  // labels are first brought up to date with its events (VefLabels.h). Samples are written in the
  // widths that wavchunks::ConvertForWriting gives them. False without a sound, for widths that
  // cannot be converted, when the PCM is missing, and when WriteDataChunk fails. The target is
  // opened only when the whole file is assembled. An existing file therefore survives every failure
  // except one while writing.
  bool WriteVef(const char* pszFileName, const char* pszFormType, bool bHeader,
                tagAudioFileType eType);
  // True for a container with linear PCM whose coding type is in none of the foreign ranges. With
  // bWithInfo, the sound's format and annotations and the object's coding type become those of the
  // file, see above. A "cue " or "LIST" chunk of less than 4 bytes and a "smpl" chunk of less than
  // 36 bytes are left out. If any other of these chunks cannot be read, the result is false, and
  // part of the sound has been replaced by then.
  bool CheckVefFormat(const char* pszFileName, bool bWithInfo,
                      std::span<const S_AudioFileTypes> foreign);
  // Reads the stored samples of the file that OpenByName opened. False without a sound, when the
  // file cannot be opened, and when LoadStoredPcm fails.
  bool LoadVefAsStored();
  // Adds a chunk "vdat" with these bytes, or with the contents of a file. Bytes that have no keeper
  // are copied.
  static bool AddDataChunk(C_RiffFile& riff, const unsigned char* pbyData, unsigned int dwLength,
                           std::shared_ptr<const void> keeper);
  static bool AddDataChunk(C_RiffFile& riff, vcm::C_FilePtr file, unsigned int dwLength);

 private:
  bool LoadVefInfo(C_RiffFile& riff);
  void ForgetAnnotations();
  bool ForgetStream();
  void RegenerateEvents();
};
