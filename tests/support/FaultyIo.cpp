// SPDX-License-Identifier: Apache-2.0
#include "FaultyIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <map>

// The linker sends calls of fopen to __wrap_fopen, and calls of __real_fopen to the library's
// fopen.
int RealOpen(const char*, int, ...) asm("__real_open");
std::FILE* RealFopen(const char*, const char*) asm("__real_fopen");
std::FILE* RealFdopen(int, const char*) asm("__real_fdopen");
std::size_t RealFread(void*, std::size_t, std::size_t, std::FILE*) asm("__real_fread");
std::size_t RealFwrite(const void*, std::size_t, std::size_t, std::FILE*) asm("__real_fwrite");
int RealGetc(std::FILE*) asm("__real_getc");
int RealFseeko(std::FILE*, off_t, int) asm("__real_fseeko");
off_t RealFtello(std::FILE*) asm("__real_ftello");
int RealFflush(std::FILE*) asm("__real_fflush");
int RealFsync(int) asm("__real_fsync");
int RealFstat(int, struct stat*) asm("__real_fstat");
ssize_t RealPread(int, void*, std::size_t, off_t) asm("__real_pread");
int RealFclose(std::FILE*) asm("__real_fclose");
int RealRename(const char*, const char*) asm("__real_rename");
int RealLink(const char*, const char*) asm("__real_link");
int RealChmod(const char*, mode_t) asm("__real_chmod");
int RealFtruncate(int, off_t) asm("__real_ftruncate");
int RealFallocate(int, off_t, off_t) asm("__real_posix_fallocate");

int WrapOpen(const char*, int, ...) asm("__wrap_open");
std::FILE* WrapFopen(const char*, const char*) asm("__wrap_fopen");
std::FILE* WrapFdopen(int, const char*) asm("__wrap_fdopen");
std::size_t WrapFread(void*, std::size_t, std::size_t, std::FILE*) asm("__wrap_fread");
std::size_t WrapFwrite(const void*, std::size_t, std::size_t, std::FILE*) asm("__wrap_fwrite");
int WrapGetc(std::FILE*) asm("__wrap_getc");
int WrapFseeko(std::FILE*, off_t, int) asm("__wrap_fseeko");
off_t WrapFtello(std::FILE*) asm("__wrap_ftello");
int WrapFflush(std::FILE*) asm("__wrap_fflush");
int WrapFsync(int) asm("__wrap_fsync");
int WrapFstat(int, struct stat*) asm("__wrap_fstat");
ssize_t WrapPread(int, void*, std::size_t, off_t) asm("__wrap_pread");
int WrapFclose(std::FILE*) asm("__wrap_fclose");
int WrapRename(const char*, const char*) asm("__wrap_rename");
int WrapLink(const char*, const char*) asm("__wrap_link");
int WrapChmod(const char*, mode_t) asm("__wrap_chmod");
int WrapFtruncate(int, off_t) asm("__wrap_ftruncate");
int WrapFallocate(int, off_t, off_t) asm("__wrap_posix_fallocate");

namespace {

struct S_State {
  bool bArmed = false;
  S_IoFault fault;
  int nCalls = 0;
  bool bHit = false;
  std::string strVictim;
  std::vector<std::string> written;
  std::map<int, std::string> descriptors;
  std::map<const std::FILE*, std::string> streams;
};
S_State g_state;

// Counts the call on strFile. True when this call must fail.
bool Fails(const std::string& strFile) {
  if (!g_state.bArmed) return false;
  ++g_state.nCalls;
  const bool bNow = g_state.nCalls == g_state.fault.nCall;
  const bool bLater = g_state.fault.bFromThenOn && g_state.bHit;
  if (!bNow && !bLater) return false;
  if (!g_state.bHit) g_state.strVictim = strFile;
  g_state.bHit = true;
  errno = g_state.fault.nError;
  return true;
}

std::string NameOf(const std::FILE* pFile) {
  const auto found = g_state.streams.find(pFile);
  return found == g_state.streams.end() ? std::string() : found->second;
}

bool Fails(std::FILE* pFile) { return g_state.bArmed && Fails(NameOf(pFile)); }

}  // namespace

int WrapOpen(const char* pszPath, int nFlags, ...) {
  va_list arguments;
  va_start(arguments, nFlags);
  const mode_t mode = (nFlags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (Fails(pszPath)) return -1;
  const int nDescriptor = RealOpen(pszPath, nFlags, mode);
  if (!g_state.bArmed || nDescriptor < 0) return nDescriptor;
  g_state.descriptors[nDescriptor] = pszPath;
  if ((nFlags & O_ACCMODE) != O_RDONLY) g_state.written.emplace_back(pszPath);
  return nDescriptor;
}

std::FILE* WrapFopen(const char* pszPath, const char* pszMode) {
  if (Fails(pszPath)) return nullptr;
  std::FILE* pFile = RealFopen(pszPath, pszMode);
  if (!g_state.bArmed || pFile == nullptr) return pFile;
  g_state.streams[pFile] = pszPath;
  if (std::string(pszMode) != "rb") g_state.written.emplace_back(pszPath);
  return pFile;
}

std::FILE* WrapFdopen(int nDescriptor, const char* pszMode) {
  if (Fails(g_state.descriptors[nDescriptor])) return nullptr;
  std::FILE* pFile = RealFdopen(nDescriptor, pszMode);
  if (g_state.bArmed && pFile != nullptr) g_state.streams[pFile] = g_state.descriptors[nDescriptor];
  return pFile;
}

std::size_t WrapFread(void* pData, std::size_t cbItem, std::size_t cItems, std::FILE* pFile) {
  if (!Fails(pFile)) return RealFread(pData, cbItem, cItems, pFile);
  return g_state.fault.bCutShort ? RealFread(pData, cbItem, cItems / 2, pFile) : 0;
}

std::size_t WrapFwrite(const void* pData, std::size_t cbItem, std::size_t cItems,
                       std::FILE* pFile) {
  if (!Fails(pFile)) return RealFwrite(pData, cbItem, cItems, pFile);
  return g_state.fault.bCutShort ? RealFwrite(pData, cbItem, cItems / 2, pFile) : 0;
}

int WrapGetc(std::FILE* pFile) { return Fails(pFile) ? EOF : RealGetc(pFile); }

int WrapFseeko(std::FILE* pFile, off_t nOffset, int nWhence) {
  return Fails(pFile) ? -1 : RealFseeko(pFile, nOffset, nWhence);
}

off_t WrapFtello(std::FILE* pFile) { return Fails(pFile) ? off_t{-1} : RealFtello(pFile); }

int WrapFflush(std::FILE* pFile) { return Fails(pFile) ? EOF : RealFflush(pFile); }

int WrapFsync(int nDescriptor) {
  return Fails(g_state.descriptors[nDescriptor]) ? -1 : RealFsync(nDescriptor);
}

// Weak, here and below, because a test that refuses calls for good has some of its own.
[[gnu::weak]] int WrapFstat(int nDescriptor, struct stat* pInfo) {
  return Fails(g_state.descriptors[nDescriptor]) ? -1 : RealFstat(nDescriptor, pInfo);
}

// Half of one byte is that byte, because none would be the end of the file.
ssize_t WrapPread(int nDescriptor, void* pData, std::size_t cbData, off_t nOffset) {
  if (!Fails(g_state.descriptors[nDescriptor])) {
    return RealPread(nDescriptor, pData, cbData, nOffset);
  }
  return g_state.fault.bCutShort ? RealPread(nDescriptor, pData, (cbData + 1) / 2, nOffset) : -1;
}

// A close that reports failure has still closed the file.
int WrapFclose(std::FILE* pFile) {
  const bool bFails = Fails(pFile);
  g_state.streams.erase(pFile);
  const int nResult = RealFclose(pFile);
  return bFails ? EOF : nResult;
}

int WrapRename(const char* pszFrom, const char* pszTo) {
  return Fails(pszFrom) ? -1 : RealRename(pszFrom, pszTo);
}

[[gnu::weak]] int WrapLink(const char* pszFrom, const char* pszTo) {
  return Fails(pszFrom) ? -1 : RealLink(pszFrom, pszTo);
}

[[gnu::weak]] int WrapChmod(const char* pszPath, mode_t nMode) {
  return Fails(pszPath) ? -1 : RealChmod(pszPath, nMode);
}

[[gnu::weak]] int WrapFtruncate(int nDescriptor, off_t nSize) {
  return Fails(g_state.descriptors[nDescriptor]) ? -1 : RealFtruncate(nDescriptor, nSize);
}

// The result is the error.
[[gnu::weak]] int WrapFallocate(int nDescriptor, off_t nFrom, off_t nSize) {
  return Fails(g_state.descriptors[nDescriptor]) ? g_state.fault.nError
                                                 : RealFallocate(nDescriptor, nFrom, nSize);
}

C_FaultyIo::C_FaultyIo(S_IoFault fault) {
  g_state = S_State();
  g_state.fault = fault;
  g_state.bArmed = true;
}

C_FaultyIo::~C_FaultyIo() { Stop(); }

void C_FaultyIo::Stop() { g_state.bArmed = false; }

bool C_FaultyIo::WasHit() const { return g_state.bHit; }

const std::string& C_FaultyIo::Victim() const { return g_state.strVictim; }

const std::vector<std::string>& C_FaultyIo::Written() const { return g_state.written; }
