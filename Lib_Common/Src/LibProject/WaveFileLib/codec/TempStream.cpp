// SPDX-License-Identifier: Apache-2.0
#include "codec/TempStream.h"

#include <limits>
#include <utility>

namespace tempstream {

std::optional<S_Written> Reopen(vcm::C_TempFile& tempFile) {
  if (!vcm::CloseChecked(tempFile.TakeStream())) return std::nullopt;
  auto file = vcm::OpenFile(tempFile.Path().c_str(), "rb");
  const auto qwSize = file ? vcm::SizeAndSeekEnd(file.get()) : std::nullopt;
  if (!qwSize || *qwSize > std::numeric_limits<unsigned int>::max()) return std::nullopt;
  if (!vcm::SeekTo(file.get(), 0)) return std::nullopt;
  return S_Written{std::move(file), static_cast<unsigned int>(*qwSize)};
}

std::optional<S_Bytes> ReadAll(const S_Written& written) {
  S_Bytes bytes;
  bytes.dwLength = written.dwSize;
  bytes.pbyData = std::make_unique_for_overwrite<unsigned char[]>(bytes.dwLength);
  if (!vcm::ReadExact(written.file.get(), {bytes.pbyData.get(), bytes.dwLength})) {
    return std::nullopt;
  }
  return bytes;
}

std::optional<S_Bytes> ReadBack(vcm::C_TempFile& tempFile) {
  const auto written = Reopen(tempFile);
  return written ? ReadAll(*written) : std::nullopt;
}

bool HandOver(std::optional<S_Bytes> bytes, unsigned char** ppbyData, unsigned int* pdwLength) {
  if (!bytes) return false;
  *pdwLength = bytes->dwLength;
  *ppbyData = bytes->pbyData.release();
  return true;
}

}  // namespace tempstream
