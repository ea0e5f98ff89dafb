// SPDX-License-Identifier: Apache-2.0
#include "CLString.h"

#include <cstring>
#include <functional>

namespace {

// std::less gives a total order even for pointers into different objects.
bool PointsInto(const std::string& s, const char* psz) {
  const std::less<const char*> before;
  return !before(psz, s.c_str()) && !before(s.c_str() + s.size(), psz);
}

}  // namespace

void ssasn(std::string& s, const char* psz) {
  if (psz == nullptr) {
    s.erase();
  } else if (PointsInto(s, psz)) {
    s = s.substr(static_cast<std::size_t>(psz - s.c_str()));
  } else {
    s = psz;
  }
}

void ssadd(std::string& s, const char* psz) {
  if (psz == nullptr) return;
  if (PointsInto(s, psz) && s.capacity() <= s.size() + std::strlen(psz)) {
    s.append(std::string(psz));
  } else {
    s.append(psz);
  }
}

char* CStdStr<char>::GetBuf(int nMinLen) {
  if (nMinLen > 0 && size() < static_cast<std::size_t>(nMinLen)) {
    resize(static_cast<std::size_t>(nMinLen));
  }
  return data();
}

void CStdStr<char>::RelBuf(int nNewLen) {
  resize(nNewLen < 0 ? std::strlen(c_str()) : static_cast<std::size_t>(nNewLen));
}

CStdStr<char>& CStdStr<char>::ToUpper(const std::locale& loc) {
  std::use_facet<std::ctype<char>>(loc).toupper(data(), data() + size());
  return *this;
}
