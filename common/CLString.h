// SPDX-License-Identifier: Apache-2.0
//
// The library's only text type, and null-safe assignment and append.
#pragma once

#include <locale>
#include <string>

// Assigns psz to s. Null erases s. psz may point into s itself, even at its terminator: s then
// keeps its tail from that point on. The tail is taken by length, so embedded NULs survive.
void ssasn(std::string& s, const char* psz);

// Appends psz to s. Null changes nothing. psz may point into s itself.
void ssadd(std::string& s, const char* psz);

template <typename CharT>
class CStdStr;

// A byte string with writable buffer access and case conversion.
template <>
class CStdStr<char> : public std::string {
 public:
  using std::string::string;

  // Returns a writable buffer of at least nMinLen characters (new ones are NUL). Call RelBuf when
  // done.
  char* GetBuf(int nMinLen);
  // Sets the length to nNewLen. If nNewLen is negative, cuts the text at its first NUL.
  void RelBuf(int nNewLen);
  // Erases the text. To ask whether the text is empty, call empty().
  void Empty() { clear(); }
  // Converts the text to upper case with the global locale.
  void MakeUpper() { ToUpper(std::locale()); }
  CStdStr& ToUpper(const std::locale& loc);
  // Implicit on purpose: texts are passed wherever a C string is expected.
  operator const char*() const { return c_str(); }  // NOLINT(google-explicit-constructor)
};

// A text as callers see it. The trailing numbers are the slots of the virtual table.
class I_CLString {
 public:
  virtual const char* GetContent() const = 0;    // 1, never null; valid until the next change
  virtual void SetContent(const char* psz) = 0;  // 2, null erases the text
  virtual void Empty() = 0;                      // 3, erases the text
  virtual ~I_CLString() = default;               // 4
};

class C_CLString : public I_CLString {
 public:
  C_CLString() = default;
  explicit C_CLString(const char* psz) { ssasn(m_strText, psz); }
  C_CLString(const C_CLString& other) = default;
  C_CLString& operator=(const C_CLString& other) = default;
  C_CLString& operator=(const char* psz) {
    ssasn(m_strText, psz);
    return *this;
  }

  const char* GetContent() const override { return m_strText.c_str(); }
  void SetContent(const char* psz) override { ssasn(m_strText, psz); }
  void Empty() override { m_strText.Empty(); }

  // Gives access to the text's buffer and case conversion.
  CStdStr<char>& Text() { return m_strText; }

 private:
  CStdStr<char> m_strText;
};
