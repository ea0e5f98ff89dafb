// SPDX-License-Identifier: Apache-2.0
//
// Looks up any file name in the extension table: the answer must agree with a table and a rule of
// this fuzzer's own. The name is tried as it is and, where possible, also as the name of an
// existing file.
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "FileType.h"
#include "Require.h"

namespace {

constexpr std::size_t kMaxName = 1024;
constexpr unsigned char kUntouched = 7;

// 0 for a file that is played as it is, 1 for a file that is decoded first, -1 for any other. The
// upper-cased text after the last dot decides.
int Expected(const std::string& strName) {
  static const std::string strPlayed = "|MP3|WMA|WAV|MID|VEA|";
  static const std::string strDecoded =
      "|PLV|KST|ROK|HRN|TRN|WRN|FNC|RBN|CRN|IBS|EGR|DNL|NV4|NV5|MV4|MV5|NVP|NVA|ADP|PCM|REF|";
  const std::size_t nDot = strName.rfind('.');
  if (nDot == std::string::npos || strName.size() >= kMaxName) return -1;
  std::string strKey = "|";
  for (const char c : strName.substr(nDot + 1)) {
    strKey += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  if (strKey.size() == 1 || strKey.find('|', 1) != std::string::npos) return -1;
  strKey += '|';
  if (strPlayed.find(strKey) != std::string::npos) return 0;
  return strDecoded.find(strKey) != std::string::npos ? 1 : -1;
}

void CheckExtension(const std::string& strName) {
  std::vector<char> ext(kMaxName, 'z');
  const char* pszWith = GetFileExt(strName.c_str(), ext.data());
  const char* pszWithout = GetFileExt(strName.c_str(), nullptr);
  const std::size_t nDot = strName.rfind('.');
  Require((pszWithout == nullptr) == (nDot == std::string::npos));
  if (pszWithout != nullptr) Require(pszWithout == strName.c_str() + nDot + 1);
  Require((pszWith != nullptr) == (pszWithout != nullptr && strName.size() < kMaxName));
  if (pszWith != nullptr) Require(pszWith == ext.data() && strName.substr(nDot + 1) == pszWith);
}

void CheckType(const std::string& strName, bool bExists) {
  unsigned char byNeedsDecoding = kUntouched;
  const bool bSupported = CheckFileType(strName.c_str(), &byNeedsDecoding);
  const int nExpected = bExists ? Expected(strName) : -1;
  Require(bSupported == (nExpected >= 0));
  Require(byNeedsDecoding == (nExpected >= 0 ? nExpected : kUntouched));
}

// A folder that only this process uses.
const std::string& Folder() {
  static const std::string strFolder = [] {
    char szTemplate[] = "/tmp/voxplay-fuzz-XXXXXX";
    Require(mkdtemp(szTemplate) != nullptr);
    return std::string(szTemplate);
  }();
  return strFolder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pbyData, std::size_t cbData) {
  const std::string strName(reinterpret_cast<const char*>(pbyData),
                            strnlen(reinterpret_cast<const char*>(pbyData), cbData));
  CheckExtension(strName);
  if (strName.find('/') != std::string::npos || strName.empty()) return 0;
  const std::string strPath = Folder() + "/" + strName;
  const int nFile = open(strPath.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  if (nFile >= 0) close(nFile);
  CheckType(strPath, nFile >= 0 || strName == "." || strName == "..");
  if (nFile >= 0) unlink(strPath.c_str());
  CheckType(strPath + ".wav.gone", false);
  return 0;
}
