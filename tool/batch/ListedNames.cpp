// SPDX-License-Identifier: Apache-2.0
#include "batch/ListedNames.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <utility>

#include "base/Descriptor.h"
#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::size_t kPieceBytes = 65536;
// No system has longer paths. What has is no list.
constexpr std::size_t kLongestName = 65536;

C_Descriptor Open(const std::string& strList) {
  if (strList == "-") return C_Descriptor(STDIN_FILENO);
  C_Descriptor file(open(strList.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0) throw C_Failure(strList, "cannot be opened", SystemReason(errno));
  return file;
}

bool Exists(const std::string& strPath) {
  struct stat status {};
  return lstat(strPath.c_str(), &status) == 0;
}

class C_NameSplitter {
 public:
  C_NameSplitter(std::string strList, char chEnd, const std::function<void(std::string)>& fnName)
      : m_strList(std::move(strList)), m_chEnd(chEnd), m_fnName(fnName) {}

  void Put(std::string_view text) {
    while (true) {
      const std::size_t nEnd = std::min(text.find(m_chEnd), text.size());
      Append(text.substr(0, nEnd));
      if (nEnd == text.size()) return;
      End();
      text.remove_prefix(nEnd + 1);
    }
  }
  void End() {
    std::string strName = std::exchange(m_strName, {});
    if (EndsWithReturn(strName)) strName.pop_back();
    // The system would take what is before the zero for the name.
    if (strName.find('\0') != std::string::npos) {
      throw C_Failure(m_strList, "is no list of lines", "a name has a zero in it: -0 reads those");
    }
    if (!strName.empty()) m_fnName(std::move(strName));
  }

 private:
  // As lists of other systems have it. A name may also end with one.
  [[nodiscard]] bool EndsWithReturn(const std::string& strName) const {
    if (m_chEnd != '\n' || !strName.ends_with('\r') || Exists(strName)) return false;
    return strName.size() == 1 || Exists(strName.substr(0, strName.size() - 1));
  }
  void Append(std::string_view part) {
    if (part.size() > kLongestName - m_strName.size()) {
      throw C_Failure(m_strList, "is no list of files", "a name is too long");
    }
    m_strName += part;
  }

  std::string m_strList;
  char m_chEnd;
  const std::function<void(std::string)>& m_fnName;
  std::string m_strName;
};

}  // namespace

void ReadListedNames(const std::string& strList, bool bZeros,
                     const std::function<void(std::string strName)>& fnName) {
  const C_Descriptor file = Open(strList);
  const std::string strCalled = strList == "-" ? "standard input" : strList;
  C_NameSplitter names(strCalled, bZeros ? '\0' : '\n', fnName);
  std::array<std::byte, kPieceBytes> piece;
  while (const std::size_t cbRead = ReadSome(file.Get(), piece, strCalled)) {
    names.Put({reinterpret_cast<const char*>(piece.data()), cbRead});
  }
  names.End();
}

}  // namespace tool
