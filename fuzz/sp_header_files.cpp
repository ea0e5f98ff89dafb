// SPDX-License-Identifier: Apache-2.0
//
// Prepends, strips and copies SP headers on real files in a folder of this process's own. After
// each operation the folder must hold the files, with the contents and modes, that a model of the
// operations says, and nothing else.
//
//   scripts/fuzz.sh 60 sp_header_files
//
// Input: operations, one byte each, followed by their arguments.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FuzzFolder.h"
#include "FuzzInput.h"
#include "Require.h"
#include "StdioFile.h"
#include "file/SpHeader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kMostOperations = 12;
constexpr std::size_t kMostBytes = 3000;
constexpr mode_t kNewMode = 0644;
constexpr mode_t kModeBits = 07777;

struct S_ModelFile {
  Bytes bytes;
  mode_t dwMode = kNewMode;
};
using Model = std::map<std::string, S_ModelFile>;

std::uint32_t Little(const Bytes& bytes, std::size_t nOffset, std::size_t cbField) {
  std::uint32_t dwValue = 0;
  for (std::size_t i = 0; i < cbField; ++i) dwValue |= std::uint32_t{bytes[nOffset + i]} << (8 * i);
  return dwValue;
}

// The header that a file has, field by field; fields that it does not hold keep their defaults.
std::optional<C_SpHeader> SlowHeader(const Bytes& bytes) {
  if (bytes.size() < 22 || Little(bytes, 0, 4) != 0xFF00FF00) return std::nullopt;
  const std::string strText(bytes.begin() + 4, std::find(bytes.begin() + 4, bytes.begin() + 20, 0));
  if (strText != "VOXELTRONIC SP" && strText != "ORBITAL SPEECH") return std::nullopt;
  if (bytes[20] < 254 || bytes[21] != 2) return std::nullopt;
  std::size_t nOffset = 22;
  const auto Field = [&](std::size_t cbField, std::uint32_t dwDefault) {
    const bool bHeld = nOffset + cbField <= bytes.size();
    const std::uint32_t dwValue = bHeld ? Little(bytes, nOffset, cbField) : dwDefault;
    nOffset = bHeld ? nOffset + cbField : bytes.size();
    return dwValue;
  };
  const auto wID = static_cast<unsigned short>(Field(2, 0));
  const auto wFormat = static_cast<unsigned short>(Field(2, 16));
  if (bytes[20] > 254) nOffset = std::min(nOffset + 2, bytes.size());
  const std::uint32_t dwFrequency = Field(4, 8000);
  const std::uint32_t dw30 = Field(4, 0);
  const auto w34 = static_cast<unsigned short>(Field(2, 0));
  const auto by36 = static_cast<unsigned char>(Field(1, 0));
  return C_SpHeader(2, wID, wFormat, dwFrequency, dw30, w34, by36, Field(4, 0));
}

Bytes HeaderBytes(const C_SpHeader& header) {
  Bytes bytes = {0x00, 0xFF, 0x00, 0xFF};
  const char achText[16] = "VOXELTRONIC SP";
  bytes.insert(bytes.end(), achText, achText + sizeof achText);
  bytes.push_back(254);
  bytes.push_back(header.GetKind());
  const auto Add = [&](std::uint32_t dwValue, int cbField) {
    for (int i = 0; i < cbField; ++i) {
      bytes.push_back(static_cast<std::uint8_t>(dwValue >> (8 * i) & 0xFF));
    }
  };
  Add(header.GetID(), 2);
  Add(header.GetFormat(), 2);
  Add(header.GetFreq(), 4);
  Add(header.GetValue30(), 4);
  Add(header.GetValue34(), 2);
  Add(header.GetValue36(), 1);
  Add(header.GetValue37(), 4);
  bytes.resize(48);
  return bytes;
}

class C_Session {
 public:
  C_Session() {
    static const C_FuzzFolder folder;
    umask(022);  // the model counts on it
    m_pFolder = &folder;
  }
  ~C_Session() {
    for (const auto& [strName, file] : m_model) unlink(m_pFolder->Path(strName).c_str());
  }
  C_Session(const C_Session&) = delete;
  C_Session& operator=(const C_Session&) = delete;

  void Run(C_FuzzInput& input) {
    for (int i = 0; i < kMostOperations && !input.Ended(); ++i) {
      Step(input);
      Compare();
    }
  }

 private:
  static std::string TakeName(C_FuzzInput& input) {
    static constexpr std::array<const char*, 4> kNames = {"a.kst", "b", "c.1f", "d d.hrn"};
    return input.OneOf(kNames);
  }
  static C_SpHeader TakeHeader(C_FuzzInput& input) {
    const auto byKind = static_cast<unsigned char>(input.Below(4) == 0 ? 3 : 2);
    const std::uint16_t wID = input.U16();
    const std::uint32_t dwFrequency = input.U32();
    return {byKind, wID, input.U8(), dwFrequency, input.U8(), input.U8(), input.U8(), input.U8()};
  }
  [[nodiscard]] bool Exists(const std::string& strName) const { return m_model.contains(strName); }
  [[nodiscard]] std::string Path(const std::string& strName) const {
    return m_pFolder->Path(strName);
  }

  void Step(C_FuzzInput& input) {
    const std::string strName = TakeName(input);
    switch (input.Below(8)) {
      case 0:
        return Create(strName, input);
      case 1:
        return Prepend(strName, input);
      case 2:
        return Strip(strName, TakeName(input));
      case 3:
        return Copy(strName, TakeName(input), input);
      case 4:
        return Patch(strName, input.U32());
      case 5:
        return Read(strName);
      case 6:
        return Remove(strName);
      default:
        return Create(strName, input);
    }
  }

  // Some files have a header, of one of our versions or a false one.
  void Create(const std::string& strName, C_FuzzInput& input) {
    static constexpr std::array<mode_t, 4> kModes = {0644, 0600, 0640, 0755};
    S_ModelFile file;
    file.dwMode = input.OneOf(kModes);
    const std::uint8_t byHeader = input.U8();
    if (byHeader % 2 != 0) {
      file.bytes = HeaderBytes(TakeHeader(input));
      if (byHeader % 4 == 3) file.bytes[20] = static_cast<std::uint8_t>(252 + byHeader / 4 % 4);
      if (byHeader % 8 == 5) std::memcpy(&file.bytes[4], "ORBITAL SPEECH", 15);
      if (byHeader > 0xC0) file.bytes.resize(input.Below(60));
    }
    const auto rest = input.Bytes(input.Flag() ? input.U8() : input.U16() % kMostBytes);
    file.bytes.insert(file.bytes.end(), rest.begin(), rest.end());
    unlink(Path(strName).c_str());
    const vcm::C_FilePtr stream = vcm::OpenFile(Path(strName).c_str(), "wb");
    Require(stream && vcm::WriteExact(stream.get(), file.bytes));
    Require(fchmod(fileno(stream.get()), file.dwMode) == 0);
    m_model[strName] = file;
  }
  void Prepend(const std::string& strName, C_FuzzInput& input) {
    const C_SpHeader header = TakeHeader(input);
    Require(PrependSpHeader(header, Path(strName).c_str()) == Exists(strName));
    if (!Exists(strName)) return;
    Bytes bytes = HeaderBytes(header);
    Bytes& file = m_model[strName].bytes;
    bytes.insert(bytes.end(), file.begin(), file.end());
    file = bytes;
  }
  // An existing target keeps its mode.
  void Put(const std::string& strName, const Bytes& bytes) {
    m_model.try_emplace(strName).first->second.bytes = bytes;
  }
  void Strip(const std::string& strSource, const std::string& strTarget) {
    const bool bExpected = Exists(strSource) && strSource != strTarget;
    C_SpHeader header;
    const bool bDone = StripSpHeader(&header, Path(strSource).c_str(), Path(strTarget).c_str());
    Require(bDone == bExpected);
    if (!bDone) return;
    const Bytes source = m_model[strSource].bytes;
    const auto expected = SlowHeader(source);
    Require(header == expected.value_or(C_SpHeader()));
    const std::size_t nStart = std::min<std::size_t>(expected ? 48 : 0, source.size());
    Put(strTarget, Bytes(source.begin() + static_cast<std::ptrdiff_t>(nStart), source.end()));
  }
  void Copy(const std::string& strSource, const std::string& strTarget, C_FuzzInput& input) {
    const C_SpHeader header = TakeHeader(input);
    const bool bExpected = Exists(strSource) && strSource != strTarget;
    Require(CopyWithSpHeader(Path(strSource).c_str(), Path(strTarget).c_str(), header) ==
            bExpected);
    if (!bExpected) return;
    Bytes bytes = HeaderBytes(header);
    const Bytes& source = m_model[strSource].bytes;
    bytes.insert(bytes.end(), source.begin(), source.end());
    Put(strTarget, bytes);
  }
  // Four bytes at offset 24, even of a file that ends before them.
  void Patch(const std::string& strName, std::uint32_t dwValue) {
    Require(WriteSpDword24(Path(strName).c_str(), dwValue) == Exists(strName));
    if (!Exists(strName)) return;
    Bytes& bytes = m_model[strName].bytes;
    bytes.resize(std::max<std::size_t>(bytes.size(), 28));
    for (std::size_t i = 0; i < 4; ++i) {
      bytes[24 + i] = static_cast<std::uint8_t>(dwValue >> (8 * i) & 0xFF);
    }
  }
  void Read(const std::string& strName) {
    const std::string strPath = Path(strName);
    const Bytes bytes = Exists(strName) ? m_model[strName].bytes : Bytes();
    const auto expected = SlowHeader(bytes);
    C_SpHeader header;
    Require(ReadSpHeader(&header, strPath.c_str()) == expected.has_value());
    Require(header == expected.value_or(C_SpHeader()));
    const auto found = FindSpHeader(&header, strPath.c_str());
    Require(found.has_value() == Exists(strName) && found.value_or(false) == expected.has_value());
    Require(GetSpFileID(strPath.c_str()) == (expected ? expected->GetID() : 65535));
    const auto Held = [&](std::size_t nOffset, std::size_t cbField) {
      return nOffset + cbField <= bytes.size() ? Little(bytes, nOffset, cbField) : 0;
    };
    Require(ReadSpWord22(strPath.c_str()) == Held(22, 2));
    Require(ReadSpWord34(strPath.c_str()) == Held(34, 2));
    Require(ReadSpDword24(strPath.c_str()) == Held(24, 4));
  }
  void Remove(const std::string& strName) {
    unlink(Path(strName).c_str());
    m_model.erase(strName);
  }

  void Compare() const {
    std::size_t nFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_pFolder->Path())) {
      const auto found = m_model.find(entry.path().filename().string());
      Require(found != m_model.end());
      const S_ModelFile& file = found->second;
      struct stat status {};
      Require(stat(entry.path().c_str(), &status) == 0 && S_ISREG(status.st_mode));
      Require((status.st_mode & kModeBits) == file.dwMode);
      Require(static_cast<std::size_t>(status.st_size) == file.bytes.size());
      Bytes bytes(file.bytes.size());
      const vcm::C_FilePtr stream = vcm::OpenFile(entry.path().c_str(), "rb");
      Require(stream && vcm::ReadExact(stream.get(), bytes) && bytes == file.bytes);
      ++nFiles;
    }
    Require(nFiles == m_model.size());
  }

  const C_FuzzFolder* m_pFolder;
  Model m_model;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  return RunSession<C_Session>(pData, cbData);
}
