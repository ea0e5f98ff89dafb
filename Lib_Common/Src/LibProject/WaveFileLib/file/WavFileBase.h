// SPDX-License-Identifier: Apache-2.0
//
// What all sound file classes share: the name and kind of the file, and the sound that it holds,
// made by the file (then owned) or lent by the caller (attached). Derived classes say which files
// are theirs (CheckFormat), and read and write them (LoadData, WriteFile).
//
// Reference-counted: a new object has count 0 and lives until one more Release than AddRef calls.
// One object is used by one thread at a time.
#pragma once

#include <string>

#include "StdioFile.h"
#include "compressed/WavFileCodecInfo.h"
#include "interface/I_WavFile.h"

class C_RiffChunk;
class C_RiffFile;

class C_WavFileBase : public I_WavFile {
 public:
  // Values of GetCodingType.
  static constexpr unsigned int kCodingLinear = WAV_CODING_LINEAR;
  static constexpr unsigned int kCodingMSAdpcm = WAV_CODING_MS_ADPCM;
  static constexpr unsigned int kCodingDviAdpcm = WAV_CODING_DVI_ADPCM;

  // Names are kept in a field of this many characters, terminator included; longer ones are
  // refused, never cut.
  static constexpr std::size_t kFileNameField = 1024;
  // How much of the PCM a file may fail to hold although its "data" chunk claims it.
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

  void AttachWavData(I_WavData* pIWavData) override;
  I_WavData* DetachWavData() override;
  I_WavData* GetWavData() override { return m_pIWavData; }
  unsigned char* GetWavDataBuffer() override;
  // These make the sound first when there is none.
  bool CopyWavData(I_WavData* pSrc) override;
  void SetWavInfo(I_WavInfo* pIWavInfo) override;
  void SetWavInfoData(unsigned int dwSampleRate, unsigned short wChannels,
                      unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                      bool bValueSigned) override;
  bool SetBuffer(const void* pData, unsigned int dwLength) override;
  I_AudioCodecParam* GetAudioCodecParam() override;
  // These two need a sound: false without one.
  bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode,
               unsigned int dwCodecOption) override;
  bool GetDataInfo(int nType, void** ppInfo) override;
  unsigned int GetDataStartPos() override { return m_dwDataStartPos; }

  // Opens the file without its samples: checks the format, fills format and informational chunks,
  // keeps name and length. False also for a name that does not fit, and for files of 4 GiB and
  // more.
  bool OpenByName(const char* pszFileName);
  // The same, then the samples (LoadData gets the last three arguments) and the sample rate of the
  // events.
  bool LoadByName(const char* pszFileName, bool bKeepEncoded, const char* pszCodecOption,
                  PFN_DecodedData pfnData);

  // For whoever makes the object; loading a file sets both anew.
  void SetFileFormat(tagAudioFileType eFormat) { m_eFileFormat = eFormat; }
  void SetCodingType(unsigned int dwCodingType) { m_dwCodingType = dwCodingType; }

 protected:
  // The sound; an owned one is made when there is none. Never null.
  I_WavData* PrepareWavData();
  // Releases an owned sound; an attached one is kept.
  void SafeDeleteWavData();

  // Takes note of the last "fmt " and the last "data" chunk in the members below; without such a
  // chunk they are as in a new object. False for a format record that is refused.
  bool FindFormatAndData(C_RiffFile& riff);
  // The sound gets the rate and the channels of the format record, the given length and width, and
  // loses the samples of an earlier file.
  void SetLinearForm(unsigned int dwByteLength, unsigned short wBits);

  // Reads as many bytes as the wave info says from GetDataStartPos() on into the sound's own
  // buffer. Bytes that the file lacks are zero; false, and nothing allocated, when it lacks more
  // than kMaxMissingBytes.
  bool LoadStoredPcm(std::FILE* pFile);

  // The format record that CheckFormat found.
  C_WavFileCodecInfo m_codecInfo;
  unsigned short m_wStoredBits = 0;   // bits per sample as the file says
  unsigned int m_dwDataLength = 0;    // bytes of the stored sound
  unsigned int m_dwFormatPos = 0;     // stream offset of the "fmt " payload
  unsigned int m_dwDataStartPos = 0;  // stream offset of the stored sound

 private:
  bool TakeFormat(C_RiffChunk& chunk);
  bool KeepNameAndLength(const char* pszFileName);
  // The sound's events count in its own sample rate.
  void SetEventSampleRate();

  int m_nRefCount = 0;
  tagAudioFileType m_eFileFormat = AUDIO_FILE_UNKNOWN;
  unsigned int m_dwCodingType = kCodingLinear;
  std::string m_strFileName;
  unsigned int m_dwFileLength = 0;
  I_WavData* m_pIWavData = nullptr;
  bool m_bAttached = false;
};
