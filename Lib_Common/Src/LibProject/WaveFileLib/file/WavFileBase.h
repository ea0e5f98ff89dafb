// SPDX-License-Identifier: Apache-2.0
//
// What all sound file classes share: the name and the kind of the file, and the sound that it
// holds. The sound is either made by the file object, which then owns it, or lent by the caller
// (attached). Derived classes say which files are theirs (CheckFormat), and read and write them
// (LoadData, WriteFile).
//
// Reference-counted: a new object has count 0 and lives until Release has been called once more
// than AddRef. Only one thread may use an object at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "compressed/WavFileCodecInfo.h"
#include "interface/I_WavFile.h"

class C_RiffChunk;
class C_RiffFile;
namespace vcm {
class C_FileReader;
}

// One object can open several files, one after another. They all go into the same sound, so
// pointers to the sound stay valid. Codec parameters always stay; each derived class says what else
// stays from an earlier file. When a file fails to open, the name and the length of the earlier
// file stay, but parts of the sound may be replaced already.
class C_WavFileBase : public I_WavFile {
 public:
  // Values of GetCodingType. For codec files and containers, it is the file type of the encoded
  // stream, or kCodingLinear for a container that names none.
  static constexpr unsigned int kCodingLinear = WAV_CODING_LINEAR;
  static constexpr unsigned int kCodingMSAdpcm = WAV_CODING_MS_ADPCM;
  static constexpr unsigned int kCodingDviAdpcm = WAV_CODING_DVI_ADPCM;

  // Names are kept in a field of this many characters. Longer names are refused, never cut.
  static constexpr std::size_t kFileNameField = 1024;
  // How many bytes of PCM a file may lack although its "data" chunk claims them.
  static constexpr unsigned int kMaxMissingBytes = 64U << 20;

  C_WavFileBase() = default;
  ~C_WavFileBase() override;
  C_WavFileBase(const C_WavFileBase&) = delete;
  C_WavFileBase& operator=(const C_WavFileBase&) = delete;

  int AddRef() override;
  int Release() override;
  const char* GetFileName() override { return m_strFileName.c_str(); }
  unsigned int GetFileLength() override { return m_dwFileLength; }
  tagAudioFileType GetFileFormat() override { return m_eFileFormat; }
  unsigned int GetCodingType() override { return m_dwCodingType; }
  I_WavInfo* GetWavInfo() override;

  // Uses the caller's sound, without counting a reference: that sound must outlive the attachment.
  // If the file owns a sound, that sound is released first. Null leaves the file without a sound.
  // Gives the events of the sound its sample rate.
  void AttachWavData(I_WavData* pIWavData) override;
  // Ends the attachment and returns the sound; the file then has none. Null when no sound is
  // attached.
  I_WavData* DetachWavData() override;
  // Both are borrowed, and null when the file has no sound. The buffer is the PCM.
  I_WavData* GetWavData() override { return m_pIWavData; }
  unsigned char* GetWavDataBuffer() override;
  // These make the sound first when there is none. Apart from that, they do what the operations of
  // the same names in I_WavData do; SetWavInfoData keeps the byte length.
  bool CopyWavData(I_WavData* pSrc) override;
  void SetWavInfo(I_WavInfo* pIWavInfo) override;
  void SetWavInfoData(unsigned int dwSampleRate, unsigned short wChannels,
                      unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                      bool bValueSigned) override;
  bool SetBuffer(const void* pData, unsigned int dwLength) override;
  I_AudioCodecParam* GetAudioCodecParam() override;
  // These two need a sound: false without one. Both do what I_WavData says: Convert writes a file
  // of kind eType, and GetDataInfo is GetInfo.
  bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode,
               unsigned int dwCodecOption) override;
  bool GetDataInfo(int nType, void** ppInfo) override;
  // Offset in bytes of the samples in the RIFF file that CheckFormat last looked at; 0 before the
  // first call, and for a file without a "data" chunk.
  unsigned int GetDataStartPos() override { return m_dwDataStartPos; }

  // Opens the file without its samples: checks the format, fills the format and the informational
  // chunks of the sound, and keeps name and length. The file does not stay open. False for a file
  // that the class does not accept, for null, for a name that does not fit its field, and for files
  // of 4 GiB and more.
  bool OpenByName(const char* pszFileName);
  // Does the same, and then loads the samples (LoadData gets the last three arguments) and gives
  // the events the sample rate of the sound. False when either step fails.
  bool LoadByName(const char* pszFileName, bool bKeepEncoded, const char* pszCodecOption,
                  PFN_DecodedData pfnData);

  // For the code that makes the object: the kind that C_WavFile writes, and the type of the encoded
  // form that the sound carries. When a file is opened, C_WavFile is the only class that sets the
  // file format again. All classes set the coding type, except for A-law and mu-law files
  // (WavTags.cpp).
  void SetFileFormat(tagAudioFileType eFormat) { m_eFileFormat = eFormat; }
  void SetCodingType(unsigned int dwCodingType) { m_dwCodingType = dwCodingType; }

 protected:
  // The file's sound, never null. When the file has no sound, this makes an owned one first.
  I_WavData* PrepareWavData();
  // Releases an owned sound; an attached one is kept.
  void SafeDeleteWavData();

  // Puts what the last "fmt " and the last "data" chunk say into the members below. The format
  // record is empty without a "fmt " chunk; length and position are 0 without a "data" chunk. False
  // for a format record that is refused.
  bool FindFormatAndData(C_RiffFile& riff);
  // Gives the sound the rate and the channel count of the format record, and the given length in
  // bytes and width in bits. Samples of more than 8 bits are signed. Removes the samples of an
  // earlier file.
  void SetLinearForm(unsigned int dwByteLength, unsigned short wBits);

  // Reads as many bytes as the wave info says, from GetDataStartPos() on, into a new buffer of the
  // sound. Bytes that the file lacks are zero. False when it lacks more than kMaxMissingBytes;
  // nothing is allocated then. False also when the file cannot be read; the sound is empty then.
  bool LoadStoredPcm(vcm::C_FileReader& file);

  // For CheckFormat, which has the file open: tells OpenByName the length of the file.
  void NoteFileLength(std::optional<std::uint64_t> qwLength) { m_qwNotedLength = qwLength; }

  // The format record that CheckFormat found.
  C_WavFileCodecInfo m_codecInfo;
  unsigned short m_wStoredBits = 0;   // bits per sample as the file says
  unsigned int m_dwDataLength = 0;    // bytes of the stored sound
  unsigned int m_dwFormatPos = 0;     // stream offset of the "fmt " payload
  unsigned int m_dwDataStartPos = 0;  // stream offset of the stored sound

 private:
  bool TakeFormat(C_RiffChunk& chunk);
  bool KeepNameAndLength(const char* pszFileName);
  // Gives the sound's events the sample rate of the sound.
  void SetEventSampleRate();

  int m_nRefCount = 0;
  tagAudioFileType m_eFileFormat = AUDIO_FILE_UNKNOWN;
  unsigned int m_dwCodingType = kCodingLinear;
  std::string m_strFileName;
  unsigned int m_dwFileLength = 0;
  std::optional<std::uint64_t> m_qwNotedLength;  // while a file is being opened
  I_WavData* m_pIWavData = nullptr;
  bool m_bAttached = false;
};
