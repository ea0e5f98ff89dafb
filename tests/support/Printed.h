// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

// What a function prints to the stream that it is given:
//   EXPECT_EQ(Printed([](std::FILE* p) { PrintChannelLayout(nullptr, p); }), "\tNULL layout\n");
template <typename F>
std::string Printed(const F& print) {
  char* pszText = nullptr;
  std::size_t cbText = 0;
  std::FILE* const pStream = open_memstream(&pszText, &cbText);
  if (pStream == nullptr) return "no stream";
  print(pStream);
  std::fclose(pStream);
  std::string strText(pszText, cbText);
  std::free(pszText);
  return strText;
}

// A pointer as printf shows it: its address, "(nil)" for null.
inline std::string Address(const void* p) {
  return Printed([p](std::FILE* pStream) { std::fprintf(pStream, "%p", p); });
}
