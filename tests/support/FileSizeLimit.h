// SPDX-License-Identifier: Apache-2.0
//
// Stands for a full disk: while one of these lives, no file of the process can grow beyond a size.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstddef>

class C_FileSizeLimit {
 public:
  explicit C_FileSizeLimit(std::size_t cbLimit)
      // Without this the kernel ends the process instead of failing the write.
      : m_pfnBefore(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &m_before), 0);
    rlimit limit = m_before;
    limit.rlim_cur = cbLimit;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~C_FileSizeLimit() {
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &m_before), 0);
    std::signal(SIGXFSZ, m_pfnBefore);
  }
  C_FileSizeLimit(const C_FileSizeLimit&) = delete;
  C_FileSizeLimit& operator=(const C_FileSizeLimit&) = delete;

 private:
  void (*m_pfnBefore)(int);
  rlimit m_before{};
};
