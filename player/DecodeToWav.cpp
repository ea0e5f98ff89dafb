// SPDX-License-Identifier: Apache-2.0
#include "DecodeToWav.h"

#include <unistd.h>

#include <string>
#include <utility>

#include "BareKestrel.h"
#include "KestrelFile.h"
#include "WavFileFormat.h"

namespace {

class C_RemovedAtEnd {
 public:
  explicit C_RemovedAtEnd(std::string strPath) : m_strPath(std::move(strPath)) {}
  ~C_RemovedAtEnd() {
    if (!m_strPath.empty()) unlink(m_strPath.c_str());
  }
  C_RemovedAtEnd(const C_RemovedAtEnd&) = delete;
  C_RemovedAtEnd& operator=(const C_RemovedAtEnd&) = delete;

  [[nodiscard]] const char* Path() const { return m_strPath.c_str(); }

 private:
  std::string m_strPath;
};

C_WavFilePtr LoadFile(C_WavFileFormat& format, const char* pszPath) {
  return C_WavFilePtr(format.CreateWavFile(pszPath, true, true, nullptr, nullptr));
}

int WriteWav(I_WavFile& file, const char* pszWavPath) {
  return file.Convert(AUDIO_FILE_WAVE, pszWavPath, true, false, nullptr, false, 0)
             ? kDecodedToWav
             : kDecodingFailed;
}

int DecodeBareKestrel(C_WavFileFormat& format, const char* pszInput, const char* pszWavPath) {
  const C_RemovedAtEnd copy(CopyAsKestrel(pszInput));
  C_KestrelFile kestrel;
  if (!kestrel.LoadByName(copy.Path(), true, nullptr, nullptr)) return kDecodingFailed;
  if (const int nResult = WriteWav(kestrel, pszWavPath); nResult != kDecodedToWav) return nResult;
  // Kept: the copy is opened and written once more the way every other file is, which proves that
  // the header took. Pinned by BareStream_IsWrittenTwice.
  const C_WavFilePtr reopened = LoadFile(format, copy.Path());
  return reopened ? WriteWav(*reopened, pszWavPath) : kReopenFailed;
}

}  // namespace

int DecodeToWav(const char* pszInput, const char* pszWavPath) {
  C_WavFileFormat format;
  if (const C_WavFilePtr file = LoadFile(format, pszInput)) return WriteWav(*file, pszWavPath);
  return DecodeBareKestrel(format, pszInput, pszWavPath);
}
