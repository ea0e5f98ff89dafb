// SPDX-License-Identifier: Apache-2.0
#include "DecodeToWav.h"

#include "BareKestrel.h"
#include "WavFileFormat.h"
#include "file/KestrelFile.h"

namespace {

C_WavFilePtr LoadFile(C_WavFileFormat& format, const char* pszPath) {
  return C_WavFilePtr(format.CreateWavFile(pszPath, true, true, nullptr, nullptr));
}

int WriteWav(I_WavFile& file, const char* pszWavPath) {
  return file.Convert(AUDIO_FILE_WAVE, pszWavPath, true, false, nullptr, false, 0)
             ? kDecodedToWav
             : kDecodingFailed;
}

int DecodeBareKestrel(C_WavFileFormat& format, const char* pszInput, const char* pszWavPath) {
  const vcm::C_RemovedAtEnd copy = CopyAsKestrel(format, pszInput, /*bLoadData=*/true);
  if (copy.Path().empty()) return kDecodingFailed;
  C_KestrelFile kestrel;
  if (!kestrel.LoadByName(copy.Path().c_str(), true, nullptr, nullptr)) return kDecodingFailed;
  if (const int nResult = WriteWav(kestrel, pszWavPath); nResult != kDecodedToWav) return nResult;
  // Kept: the copy is opened and written once more, the way every other file is, which proves that
  // its header is valid. Pinned by BareStream_IsWrittenTwice.
  const C_WavFilePtr reopened = LoadFile(format, copy.Path().c_str());
  return reopened ? WriteWav(*reopened, pszWavPath) : kReopenFailed;
}

}  // namespace

int DecodeToWav(const char* pszInput, const char* pszWavPath) {
  C_WavFileFormat format;
  if (const C_WavFilePtr file = LoadFile(format, pszInput)) return WriteWav(*file, pszWavPath);
  return DecodeBareKestrel(format, pszInput, pszWavPath);
}
