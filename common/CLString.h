// SPDX-License-Identifier: Apache-2.0
//
// The one text type of the library, and null-safe assignment and append.
#pragma once

#include <locale>
#include <string>

// Assigns psz to s. Null erases s. psz may point into s itself (terminator included): s then keeps
// its own tail from there on, by length, so that embedded NULs survive.
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

  // A writable buffer of at least nMinLen characters (new ones are NUL); end with RelBuf.
  char* GetBuf(int nMinLen);
  // Sets the length to nNewLen, or to the text before the first NUL when it is negative.
  void RelBuf(int nNewLen);
  // Erases the text (not a question; that is empty()).
  void Empty() { clear(); }
  // Upper-cases under the global locale.
  void MakeUpper() { ToUpper(std::locale()); }
  CStdStr& ToUpper(const std::locale& loc);
  // Implicit on purpose: texts are passed wherever a C string is expected.
  operator const char*() const { return c_str(); }  // NOLINT(google-explicit-constructor)
};

// A text as callers see it. The trailing numbers are the slots of the virtual table.
class I_CLString {
 public:
  virtual const char* GetContent() const = 0;    // 1, never null; valid until the next change
  virtual void SetContent(const char* psz) = 0;  // 2, null empties
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

  // The text's own buffer access and case conversion.
  CStdStr<char>& Text() { return m_strText; }

 private:
  CStdStr<char> m_strText;
};
