// SPDX-License-Identifier: Apache-2.0
//
// Reads RIFF files as flat, ordered lists of chunks, whose payloads stay on disk until they are
// asked for. Writes new RIFF files from chunks assembled in memory.
//
//   offset  size  field (integers are little-endian)
//        0     4  "RIFF"
//        4     4  4 + sum over the top-level chunks of (8 + size)
//        8     4  form type, four characters ("WAVE" ...)
//       12        chunks, back to back: identifier (4), size (4), payload (size)
//
// Kept: sizes never include pad bytes, the writer writes no pad bytes, and the reader skips zero
// bytes before a chunk header. Files with and without pad bytes can therefore both be read. Pinned
// by OddChunk_ReadsWithAndWithoutPad and Save_WritesNoPadBytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>

#include "CLArray.h"
#include "I_RiffChunk.h"
#include "StdioFile.h"

class C_RiffChunk;

// What chunks read from, shared between a file and its chunks, so that the chunks know when the
// file is closed.
struct S_RiffStream;
using C_RiffStreamPtr = std::shared_ptr<S_RiffStream>;

// Chunks in file order. Owns them.
class C_RiffChunkList : public C_CLArray<C_RiffChunk*, C_RiffChunk*, true> {
 public:
  C_RiffChunkList();
  ~C_RiffChunkList() override;

  // Sum over the chunks of (size + 8), modulo 2^32. Sub-chunks are not counted.
  [[nodiscard]] unsigned int GetChunksLength() const;
  // The same sum in full, not modulo 2^32.
  [[nodiscard]] std::uint64_t GetTrueChunksLength() const;
  // The first chunk at index >= nStart with this identifier (four characters), or null.
  [[nodiscard]] C_RiffChunk* FindChunk(const char* pszID, int nStart) const;
  // Appends a chunk in memory, without a payload, and returns it; the list owns it.
  C_RiffChunk* AddChunk(const char* pszID, unsigned int dwSize);
  // Appends the chunks that start within dwLength bytes from the stream's position, and moves the
  // stream past what was read: the last chunk, or the end of the file where zeros or a cut header
  // lead there. The end of the file only ends the listing. False when the file holds more but
  // cannot be read. The stream must stay open until the payloads have been read.
  bool LoadChunks(std::FILE* pFile, unsigned int dwLength);
  // The same from *pqwPosition on, which is moved instead of a stream.
  bool LoadChunks(const C_RiffStreamPtr& stream, std::uint64_t* pqwPosition, unsigned int dwLength);
  // Writes every chunk, header then payload. False when a write fails.
  bool WriteChunks(std::FILE* pFile);
  // Moves the stream forward by dwCount bytes, even past the end of the file.
  static bool Skip(std::FILE* pFile, unsigned int dwCount);
};

class C_RiffChunk : public I_RiffChunk {
 public:
  // A chunk in memory: its size is fixed here; its payload comes from SetData or from sub-chunks.
  C_RiffChunk(const char* pszID, unsigned int dwSize);
  // A chunk on disk whose payload begins at dwDataPos.
  C_RiffChunk(const char* pszID, unsigned int dwSize, unsigned int dwDataPos,
              C_RiffStreamPtr stream);
  ~C_RiffChunk() override;

  unsigned int GetDataLength() override { return m_dwSize; }
  // The first call reads the whole payload; later calls copy from memory. False when the size is 0,
  // when the range goes past the end of the payload, and when there is neither a payload nor an
  // open file. A call that fails to read the payload also returns false; the calls after it succeed
  // and give zeros.
  bool GetData(void* pDst, unsigned int dwLength, unsigned int dwOffset) override;
  void SetData(const void* pSrc) override;
  // Makes the payload GetDataLength() bytes of the caller's, which must stay as they are until the
  // file is saved and while the payload is used otherwise. Does nothing when the size is 0.
  // keeper, if it is given, is what keeps them; the chunk holds it.
  void LendData(const void* pSrc, std::shared_ptr<const void> keeper = nullptr);
  // Makes the payload the first GetDataLength() bytes of a file, which the chunk then owns. They
  // are read when the chunk is written, or when they are asked for.
  void TakeFile(vcm::C_FilePtr file);
  // Makes the payload these bytes, which are GetDataLength() long.
  void TakeData(std::unique_ptr<std::uint8_t[]> pbyData);

  // Four characters, not terminated.
  [[nodiscard]] const char* GetChunkID() const { return m_achID; }
  // Compares four characters.
  [[nodiscard]] bool HasChunkID(const char* pszID) const;
  // Stream offset of the payload: set when the chunk is read and when it is written; 0xFFFFFFFF
  // after writing to a pipe.
  [[nodiscard]] unsigned int GetDataPos() const { return m_dwDataPos; }
  [[nodiscard]] C_RiffChunkList& GetSubChunks() { return m_subChunks; }

  // The whole payload of a chunk on disk in new memory, and cbMore zeros after it; the chunk keeps
  // nothing of it. Null when the size is 0, without an open file, and when the payload cannot be
  // read completely. Memory is allocated only for what the file holds.
  [[nodiscard]] std::unique_ptr<std::uint8_t[]> ReadAll(std::size_t cbMore);
  // For a chunk on disk that the end of the file cuts: a chunk in memory with the bytes that the
  // file holds. Null for every other chunk, and when the file cannot be read.
  [[nodiscard]] std::unique_ptr<C_RiffChunk> CreateHeldPart();

  // Appends the payload's chunks to the sub-chunk list. False without an open file, and when it
  // cannot be read.
  bool LoadSubChunks();
  // Writes the payload: its bytes if they are in memory, zeros if reading them has failed, and
  // otherwise the sub-chunks, if there are any.
  bool WriteData(std::FILE* pFile);
  // Writes the header and the payload, and remembers the position of the payload.
  bool Write(std::FILE* pFile);

 private:
  bool ReadPayload();
  // Copies the payload from the file that was given to TakeFile.
  bool CopyPayload(std::FILE* pFile);
  // The number of payload bytes that the open file holds. Empty when the file has no length.
  [[nodiscard]] std::optional<std::uint32_t> CountHeldPayload() const;

  char m_achID[4];
  std::uint32_t m_dwSize;
  std::uint32_t m_dwDataPos = 0;
  bool m_bOwnFile = false;  // m_stream is that of TakeFile
  bool m_bReadFailed = false;
  C_RiffStreamPtr m_stream;
  std::unique_ptr<std::uint8_t[]> m_pbyOwned;
  const std::uint8_t* m_pbyData = nullptr;  // the payload, when it is in memory: owned or lent
  std::shared_ptr<const void> m_keeper;     // of what is lent
  C_RiffChunkList m_subChunks;
};

// One file. It is closed after construction, after SafeCloseFile and Save, and after an Open that
// failed. To read a file, call Open and then use its chunks. Payloads that were not read before the
// file is closed are lost. To write a file, call AddChunk and then SetData for each chunk in file
// order, and finally Save.
class C_RiffFile {
 public:
  C_RiffFile() = default;
  virtual ~C_RiffFile();
  C_RiffFile(const C_RiffFile&) = delete;
  C_RiffFile& operator=(const C_RiffFile&) = delete;

  // Opens a file of this form type (four characters) and lists its chunks. False when the file
  // cannot be opened or read, or is of another type.
  bool Open(const char* pszPath, const char* pszFormType);
  // The same for a file of one of these form types. Returns the index of its type; empty on
  // failure.
  std::optional<std::size_t> OpenAny(const char* pszPath, std::span<const char* const> formTypes);
  // The length of the open file, as Open found it; empty when no file is open.
  [[nodiscard]] std::optional<std::uint64_t> GetFileLength() const;
  // Whether anything that the open file holds could not be read, in Open or since then. Chunks that
  // the end of the file cuts are no such error. After an error, what was read is not all that the
  // file says.
  [[nodiscard]] bool HasReadError() const;
  // Whether the open file ends before the end that its RIFF size or its last chunk names. Then
  // something is missing.
  [[nodiscard]] bool IsCutShort() const;
  // Writes the list, as vcm::C_TargetFile writes: an existing file is intact until everything is
  // written; a new file stays partial when a write fails. A list too long for the 32-bit RIFF size
  // is refused before the target is touched.
  bool Save(const char* pszPath, const char* pszFormType);
  C_RiffChunk* AddChunk(const char* pszID, unsigned int dwSize);
  [[nodiscard]] int GetChunkCount() const { return m_chunks.GetCount(); }
  // Throws std::out_of_range for an index outside the list.
  [[nodiscard]] C_RiffChunk* GetChunkAt(int nIndex) const { return m_chunks.GetAt(nIndex); }
  [[nodiscard]] C_RiffChunk* FindChunk(const char* pszID, int nStart) const;
  [[nodiscard]] C_RiffChunkList& GetChunks() { return m_chunks; }
  void RemoveChunks() { m_chunks.RemoveAll(); }
  void SafeCloseFile();

 private:
  C_RiffStreamPtr m_stream;
  std::uint32_t m_dwListLength = 0;  // bytes of chunks after the file's header, as the header says
  C_RiffChunkList m_chunks;
};
