// SPDX-License-Identifier: Apache-2.0
#include "FileType.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "CLString.h"

namespace {

constexpr std::size_t kMaxName = 1024;  // including the terminator

struct S_Extension {
  std::string_view text;
  unsigned char byNeedsDecoding;
};

constexpr auto kExtensions = std::to_array<S_Extension>({
    {"MP3", 0}, {"WMA", 0}, {"WAV", 0}, {"MID", 0}, {"VEA", 0}, {"PLV", 1}, {"KST", 1},
    {"ROK", 1}, {"HRN", 1}, {"TRN", 1}, {"WRN", 1}, {"FNC", 1}, {"RBN", 1}, {"CRN", 1},
    {"IBS", 1}, {"EGR", 1}, {"DNL", 1}, {"NV4", 1}, {"NV5", 1}, {"MV4", 1}, {"MV5", 1},
    {"NVP", 1}, {"NVA", 1}, {"ADP", 1}, {"PCM", 1}, {"REF", 1},
});

const char* FindExt(const char* pszFileName) {
  const char* pszDot = std::strrchr(pszFileName, '.');
  return pszDot != nullptr ? pszDot + 1 : nullptr;
}

}  // namespace

const char* GetFileExt(const char* pszFileName, char* pszExt) {
  if (pszFileName == nullptr || *pszFileName == '\0') return nullptr;
  if (pszExt == nullptr) return FindExt(pszFileName);
  if (std::strlen(pszFileName) >= kMaxName) return nullptr;
  const char* pszFound = FindExt(pszFileName);
  if (pszFound == nullptr) return nullptr;
  std::memcpy(pszExt, pszFound, std::strlen(pszFound) + 1);
  return pszExt;
}

bool CheckFileType(const char* pszFileName, unsigned char* pbyNeedsDecoding) {
  const C_CLString strName(pszFileName);
  struct stat info {};
  if (stat(strName.GetContent(), &info) != 0) return false;
  char szExt[kMaxName] = {};
  C_CLString strExt(GetFileExt(strName.GetContent(), szExt));
  strExt.Text().MakeUpper();
  const auto* const pEntry =
      std::find_if(kExtensions.begin(), kExtensions.end(),
                   [&](const S_Extension& entry) { return entry.text == strExt.GetContent(); });
  if (pEntry == kExtensions.end()) return false;
  *pbyNeedsDecoding = pEntry->byNeedsDecoding;
  return true;
}
