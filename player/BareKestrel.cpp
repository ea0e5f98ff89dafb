// SPDX-License-Identifier: Apache-2.0
#include "BareKestrel.h"

#include <copyfile.h>

#include <string>

#include "AudioFileType.h"
#include "SpHeader.h"

namespace {

constexpr unsigned int kSpeechRate = 16000;

}  // namespace

vcm::C_RemovedAtEnd CopyAsKestrel(const char* pszFileName) {
  const std::string strCopy = vcm::TempName(".kst");
  if (copyfile(pszFileName, strCopy.c_str(), nullptr, COPYFILE_ALL) != 0) return {};
  vcm::C_RemovedAtEnd copy(strCopy);
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(kSpeechRate);
  // A copy that got no header is no Kestrel file, and whoever loads it finds out.
  static_cast<void>(PrependSpHeader(header, strCopy.c_str()));
  return copy;
}
