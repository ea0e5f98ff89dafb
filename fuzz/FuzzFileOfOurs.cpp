// SPDX-License-Identifier: Apache-2.0
//
// The files of this program. The linker sends its calls of fopen, fileno, fstat and pread here.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "FuzzFile.h"
#include "Require.h"

std::FILE* RealFopen(const char*, const char*) asm("__real_fopen");
int RealFileno(std::FILE*) asm("__real_fileno");
int RealFstat(int, struct stat*) asm("__real_fstat");
ssize_t RealPread(int, void*, std::size_t, off_t) asm("__real_pread");
std::FILE* WrapFopen(const char*, const char*) asm("__wrap_fopen");
int WrapFileno(std::FILE*) asm("__wrap_fileno");
int WrapFstat(int, struct stat*) asm("__wrap_fstat");
ssize_t WrapPread(int, void*, std::size_t, off_t) asm("__wrap_pread");

namespace {

// No such folder exists, so whoever asks the system hears that the name is new.
constexpr std::string_view kFolder = "/files-of-the-fuzzer/";
// Beyond any number that the system gives to a file.
constexpr int kFirstDescriptor = 1 << 30;
constexpr std::size_t kMostFiles = 64;
constexpr std::size_t kMostStreams = 64;

struct S_File {
  bool bUsed = false;
  std::string strPath;
  std::vector<std::uint8_t> bytes;
};
std::array<S_File, kMostFiles> g_files;

struct S_Stream {
  std::FILE* pStream = nullptr;
  S_File* pFile = nullptr;
  std::size_t nPosition = 0;
};
std::array<S_Stream, kMostStreams> g_streams;

S_File* Find(std::string_view path) {
  if (!path.starts_with(kFolder)) return nullptr;
  path.remove_prefix(kFolder.size());
  std::size_t nFile = kMostFiles;
  std::from_chars(path.data(), path.data() + path.size(), nFile);
  Require(nFile < kMostFiles && g_files[nFile].bUsed);
  return &g_files[nFile];
}

S_Stream* Find(const std::FILE* pStream) {
  const auto found = std::find_if(g_streams.begin(), g_streams.end(), [&](const S_Stream& stream) {
    return stream.pStream == pStream;
  });
  return found == g_streams.end() ? nullptr : &*found;
}

std::size_t ReadAt(const S_File& file, std::size_t nPosition, void* pTo, std::size_t cb) {
  const std::size_t nFrom = std::min(nPosition, file.bytes.size());
  const std::size_t cbRead = std::min(cb, file.bytes.size() - nFrom);
  if (cbRead > 0) std::memcpy(pTo, &file.bytes[nFrom], cbRead);
  return cbRead;
}

// What the stream calls, with the results that the C library wants.
ssize_t Read(void* pCookie, char* pTo, std::size_t cb) {
  S_Stream& stream = *static_cast<S_Stream*>(pCookie);
  const std::size_t cbRead = ReadAt(*stream.pFile, stream.nPosition, pTo, cb);
  stream.nPosition += cbRead;
  return static_cast<ssize_t>(cbRead);
}

ssize_t Write(void* pCookie, const char* pFrom, std::size_t cb) {
  S_Stream& stream = *static_cast<S_Stream*>(pCookie);
  auto& bytes = stream.pFile->bytes;
  bytes.resize(std::max(bytes.size(), stream.nPosition + cb));
  if (cb > 0) std::memcpy(&bytes[stream.nPosition], pFrom, cb);
  stream.nPosition += cb;
  return static_cast<ssize_t>(cb);
}

int Seek(void* pCookie, off64_t* pnOffset, int nWhence) {
  S_Stream& stream = *static_cast<S_Stream*>(pCookie);
  off64_t nPosition = *pnOffset;
  if (nWhence == SEEK_CUR) nPosition += static_cast<off64_t>(stream.nPosition);
  if (nWhence == SEEK_END) nPosition += static_cast<off64_t>(stream.pFile->bytes.size());
  if (nPosition < 0) return -1;
  stream.nPosition = static_cast<std::size_t>(nPosition);
  *pnOffset = nPosition;
  return 0;
}

int Close(void* pCookie) {
  *static_cast<S_Stream*>(pCookie) = {};
  return 0;
}

}  // namespace

std::FILE* WrapFopen(const char* pszPath, const char* pszMode) {
  S_File* const pFile = Find(std::string_view(pszPath));
  if (pFile == nullptr) return RealFopen(pszPath, pszMode);
  if (*pszMode == 'w') pFile->bytes.clear();
  S_Stream* const pStream = Find(static_cast<const std::FILE*>(nullptr));
  Require(pStream != nullptr);
  std::FILE* const pOpened = fopencookie(pStream, pszMode, {Read, Write, Seek, Close});
  Require(pOpened != nullptr);
  *pStream = {pOpened, pFile, 0};
  return pOpened;
}

int WrapFileno(std::FILE* pStream) {
  const S_Stream* const pOurs = Find(pStream);
  return pOurs == nullptr ? RealFileno(pStream)
                          : kFirstDescriptor + static_cast<int>(pOurs - g_streams.data());
}

int WrapFstat(int nDescriptor, struct stat* pStatus) {
  if (nDescriptor < kFirstDescriptor) return RealFstat(nDescriptor, pStatus);
  const S_Stream& stream = g_streams.at(static_cast<std::size_t>(nDescriptor - kFirstDescriptor));
  *pStatus = {};
  pStatus->st_mode = S_IFREG | S_IRUSR | S_IWUSR;
  pStatus->st_size = static_cast<off_t>(stream.pFile->bytes.size());
  pStatus->st_ino = static_cast<ino_t>(stream.pFile - g_files.data());
  return 0;
}

ssize_t WrapPread(int nDescriptor, void* pTo, std::size_t cb, off_t nPosition) {
  if (nDescriptor < kFirstDescriptor) return RealPread(nDescriptor, pTo, cb, nPosition);
  const S_Stream& stream = g_streams.at(static_cast<std::size_t>(nDescriptor - kFirstDescriptor));
  return static_cast<ssize_t>(ReadAt(*stream.pFile, static_cast<std::size_t>(nPosition), pTo, cb));
}

class C_FuzzFile::C_Memory {
 public:
  explicit C_Memory(std::span<const std::uint8_t> bytes)
      : m_file(*std::find_if(g_files.begin(), g_files.end(),
                             [](const S_File& file) { return !file.bUsed; })) {
    Require(&m_file < g_files.data() + g_files.size());
    m_file.bUsed = true;
    m_file.bytes.assign(bytes.begin(), bytes.end());
    if (m_file.strPath.empty()) {
      m_file.strPath = std::string(kFolder) + std::to_string(&m_file - g_files.data());
    }
  }
  ~C_Memory() { m_file.bUsed = false; }
  C_Memory(const C_Memory&) = delete;
  C_Memory& operator=(const C_Memory&) = delete;

  [[nodiscard]] const char* Path() const noexcept { return m_file.strPath.c_str(); }
  [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return m_file.bytes; }

 private:
  S_File& m_file;
};

C_FuzzFile::C_FuzzFile(std::span<const std::uint8_t> bytes)
    : m_memory(std::make_unique<C_Memory>(bytes)) {}
C_FuzzFile::~C_FuzzFile() = default;

const char* C_FuzzFile::Path() const noexcept { return m_memory->Path(); }
std::vector<std::uint8_t> C_FuzzFile::Bytes() const { return m_memory->Bytes(); }
