// SPDX-License-Identifier: Apache-2.0
#include "FakeLibrary.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "WavFileFormat.h"
#include "file/KestrelFile.h"

C_FakeLibrary& C_FakeLibrary::Get() {
  static C_FakeLibrary library;
  return library;
}

void C_FakeLibrary::Reset() {
  const std::lock_guard guard(m_lock);
  creates = loads = converts = {true};
  onCreate = nullptr;
  onConvert = nullptr;
  onFormatEnd = nullptr;
  m_log.clear();
}

std::vector<std::string> C_FakeLibrary::Log() {
  const std::lock_guard guard(m_lock);
  return m_log;
}

void C_FakeLibrary::Call(const std::string& strLine) {
  const std::lock_guard guard(m_lock);
  m_log.push_back(strLine);
}

void C_FakeLibrary::FormatEnds() {
  const std::lock_guard guard(m_lock);
  m_log.emplace_back("~C_WavFileFormat");
  if (onFormatEnd) onFormatEnd();
}

bool C_FakeLibrary::Answer(std::deque<bool>& answers) {
  const std::lock_guard guard(m_lock);
  const bool bAnswer = answers.front();
  if (answers.size() > 1) answers.pop_front();
  return bAnswer;
}

std::string ShortName(const char* pszPath) {
  constexpr std::size_t kRandom = 6;
  std::string strPath = pszPath;
  const std::string strStart = P_tmpdir "/file";
  const std::size_t nEnd = strStart.size() + kRandom;
  if (!strPath.starts_with(strStart) || strPath.size() < nEnd) return strPath;
  const std::string strRandom = strPath.substr(strStart.size(), kRandom);
  const bool bPlain = std::all_of(strRandom.begin(), strRandom.end(),
                                  [](unsigned char c) { return std::isalnum(c) != 0; });
  return bPlain ? "<temporary>" + strPath.substr(nEnd) : strPath;
}

int C_FakeWavFile::Release() {
  C_FakeLibrary::Get().Call(m_strName + "::Release");
  delete this;
  return 0;
}

bool C_FakeWavFile::Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                            bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                            unsigned int dwCodecOption) {
  auto& library = C_FakeLibrary::Get();
  const auto flag = [](bool b) { return b ? ", true" : ", false"; };
  library.Call(m_strName + "::Convert(" + std::to_string(eType) + ", " + ShortName(pszFileName) +
               flag(bEncode) + flag(bWriteCodecHead) +
               (pfnProgress == nullptr ? ", null" : ", set") + flag(bForceEncode) + ", " +
               std::to_string(dwCodecOption) + ")");
  if (library.onConvert) library.onConvert(pszFileName);
  return library.Answer(library.converts);
}

I_WavFile* C_WavFileFormat::CreateWavFile(const char* pszFileName, bool bLoadData,
                                          bool bKeepEncoded, const char* pszCodecOption,
                                          PFN_DecodedData pfnData) {
  auto& library = C_FakeLibrary::Get();
  const auto flag = [](bool b) { return b ? ", true" : ", false"; };
  library.Call("CreateWavFile(" + ShortName(pszFileName) + flag(bLoadData) + flag(bKeepEncoded) +
               (pszCodecOption == nullptr ? ", null" : ", set") +
               (pfnData == nullptr ? ", null)" : ", callback)"));
  if (library.onCreate) library.onCreate(pszFileName, pfnData);
  return library.Answer(library.creates) ? new C_FakeWavFile("file") : nullptr;
}

C_WavFileFormat::~C_WavFileFormat() { C_FakeLibrary::Get().FormatEnds(); }

bool C_KestrelFile::LoadByName(const char* pszFileName, bool bKeepEncoded,
                               const char* pszCodecOption, PFN_DecodedData pfnData) {
  auto& library = C_FakeLibrary::Get();
  library.Call("LoadByName(" + ShortName(pszFileName) + (bKeepEncoded ? ", true" : ", false") +
               (pszCodecOption == nullptr ? ", null" : ", set") +
               (pfnData == nullptr ? ", null)" : ", callback)"));
  return library.Answer(library.loads);
}
