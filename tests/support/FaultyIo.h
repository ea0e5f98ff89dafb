// SPDX-License-Identifier: Apache-2.0
//
// Makes calls of the C library's file functions fail on purpose. A program that links
// voxplay_faulty_io has open, fopen, fdopen, fread, pread, getc, fwrite, fseeko, ftello, fflush,
// fsync, fstat, fclose, rename, link, chmod, ftruncate and posix_fallocate (those that its own
// objects call) replaced at link time by versions that count, and that fail when they are told to.
//
//   C_FaultyIo faults({.nCall = 7});          // the 7th call from here fails, once
//   const bool bRet = OperationUnderTest();
//   faults.Stop();
//   EXPECT_FALSE(bRet && faults.WasHit()); ...
#pragma once

#include <cerrno>
#include <string>
#include <vector>

struct S_IoFault {
  int nCall = 0;             // the call that is hit, counted from 1; 0: no call
  bool bFromThenOn = false;  // every later call is hit as well
  bool bCutShort = false;    // a transfer of bytes does half of what it was asked, and says so
  int nError = EIO;          // what a failing call leaves in errno
};

// Only one of these may live at a time, and it counts the calls of one thread at a time.
class C_FaultyIo {
 public:
  explicit C_FaultyIo(S_IoFault fault);
  ~C_FaultyIo();
  C_FaultyIo(const C_FaultyIo&) = delete;
  C_FaultyIo& operator=(const C_FaultyIo&) = delete;

  // Makes the library work again; what was recorded stays.
  void Stop();

  [[nodiscard]] bool WasHit() const;
  // The file on which the first failing call worked; empty when that is not known.
  [[nodiscard]] const std::string& Victim() const;
  // Every file that was opened for writing or created.
  [[nodiscard]] const std::vector<std::string>& Written() const;
};
