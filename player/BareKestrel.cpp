// SPDX-License-Identifier: Apache-2.0
#include "BareKestrel.h"

#include <copyfile.h>

#include "WavFileFormat.h"
#include "file/SpHeader.h"
#include "interface/AudioFileType.h"

namespace {

constexpr unsigned int kSpeechRate = 16000;

}  // namespace

vcm::C_RemovedAtEnd CopyAsKestrel(C_WavFileFormat& format, const char* pszFileName,
                                  bool bLoadData) {
  // Owned before it exists, so that nothing can fail between creating it and owning it.
  vcm::C_RemovedAtEnd copy(vcm::TempName(".kst"));
  if (copyfile(pszFileName, copy.Path().c_str(), nullptr, COPYFILE_ALL) != 0) {
    static_cast<void>(copy.Keep());  // a file with that name would be somebody else's
    return {};
  }
  const C_WavFilePtr known(
      format.CreateWavFile(copy.Path().c_str(), bLoadData, true, nullptr, nullptr));
  if (known != nullptr) return {};
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(kSpeechRate);
  // If this fails, the copy is not a Kestrel file, and loading it reports that.
  static_cast<void>(PrependSpHeader(header, copy.Path().c_str()));
  return copy;
}
