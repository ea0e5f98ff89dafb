// SPDX-License-Identifier: Apache-2.0
#include "MpegInfo.h"

#include <mpg123.h>
#include <sys/types.h>

#include <cstdio>
#include <memory>

namespace toolbox {
namespace {

using C_Mpg123Ptr = std::unique_ptr<mpg123_handle, decltype(&mpg123_delete)>;

struct S_Cursor {
  const C_FileDescriptor& file;
  SInt64 nAt = 0;
};

mpg123_ssize_t Read(void* pCursor, void* pBuffer, std::size_t cbWanted) {
  auto& cursor = *static_cast<S_Cursor*>(pCursor);
  const std::size_t cbRead = cursor.file.ReadAt(static_cast<UInt64>(cursor.nAt), pBuffer, cbWanted);
  cursor.nAt += static_cast<SInt64>(cbRead);
  return static_cast<mpg123_ssize_t>(cbRead);
}

off_t Seek(void* pCursor, off_t nOffset, int nWhence) {
  auto& cursor = *static_cast<S_Cursor*>(pCursor);
  SInt64 nBase = 0;
  if (nWhence == SEEK_CUR) nBase = cursor.nAt;
  if (nWhence == SEEK_END) nBase = static_cast<SInt64>(cursor.file.Size());
  if (nOffset < -nBase) return -1;
  cursor.nAt = nBase + nOffset;
  return static_cast<off_t>(cursor.nAt);
}

C_Mpg123Ptr OpenQuietly(S_Cursor& cursor) {
  C_Mpg123Ptr pMpeg(mpg123_new(nullptr, nullptr), &mpg123_delete);
  if (pMpeg == nullptr) return pMpeg;
  const bool bOpen =
      mpg123_param(pMpeg.get(), MPG123_ADD_FLAGS, MPG123_QUIET, 0) == MPG123_OK &&
      mpg123_replace_reader_handle(pMpeg.get(), &Read, &Seek, nullptr) == MPG123_OK &&
      mpg123_open_handle(pMpeg.get(), &cursor) == MPG123_OK;
  if (!bOpen) pMpeg.reset();
  return pMpeg;
}

}  // namespace

std::optional<S_MpegInfo> ScanMpeg(const C_FileDescriptor& file) {
  S_Cursor cursor{file};
  const C_Mpg123Ptr pMpeg = OpenQuietly(cursor);
  if (pMpeg == nullptr || mpg123_scan(pMpeg.get()) != MPG123_OK) return std::nullopt;
  const off_t nFrames = mpg123_framelength(pMpeg.get());
  const int nSamples = mpg123_spf(pMpeg.get());
  if (nFrames <= 0 || nSamples <= 0) return std::nullopt;
  return S_MpegInfo{static_cast<UInt64>(nFrames), static_cast<UInt32>(nSamples)};
}

}  // namespace toolbox
