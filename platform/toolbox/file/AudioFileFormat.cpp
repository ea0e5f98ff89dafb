// SPDX-License-Identifier: Apache-2.0
#include "file/AudioFileFormat.h"

#include <algorithm>
#include <array>

#include "file/WavBlocks.h"

namespace toolbox {
namespace {

struct S_SampleFormat {
  AudioFormatID dwFormat;
  AudioFormatFlags dwFlags;
  UInt32 dwBits;
};

// The formats whose packet is one frame of whole samples.
std::optional<S_SampleFormat> SampleFormatOf(int nSubtype) {
  constexpr AudioFormatFlags kPacked = kAudioFormatFlagIsPacked;
  constexpr AudioFormatFlags kSigned = kAudioFormatFlagIsSignedInteger | kPacked;
  constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat | kPacked;
  switch (nSubtype) {
    case SF_FORMAT_PCM_U8:
      return S_SampleFormat{kAudioFormatLinearPCM, kPacked, 8};
    case SF_FORMAT_PCM_S8:
      return S_SampleFormat{kAudioFormatLinearPCM, kSigned, 8};
    case SF_FORMAT_PCM_16:
      return S_SampleFormat{kAudioFormatLinearPCM, kSigned, 16};
    case SF_FORMAT_PCM_24:
      return S_SampleFormat{kAudioFormatLinearPCM, kSigned, 24};
    case SF_FORMAT_PCM_32:
      return S_SampleFormat{kAudioFormatLinearPCM, kSigned, 32};
    case SF_FORMAT_FLOAT:
      return S_SampleFormat{kAudioFormatLinearPCM, kFloat, 32};
    case SF_FORMAT_DOUBLE:
      return S_SampleFormat{kAudioFormatLinearPCM, kFloat, 64};
    case SF_FORMAT_ULAW:
      return S_SampleFormat{kAudioFormatULaw, 0, 8};
    case SF_FORMAT_ALAW:
      return S_SampleFormat{kAudioFormatALaw, 0, 8};
    default:
      return std::nullopt;
  }
}

AudioStreamBasicDescription StreamOf(const SF_INFO& info, AudioFormatID dwFormat) {
  AudioStreamBasicDescription desc{};
  desc.mSampleRate = info.samplerate;
  desc.mFormatID = dwFormat;
  desc.mChannelsPerFrame = static_cast<UInt32>(info.channels);
  return desc;
}

S_AudioFileFormat DescribeSamples(SNDFILE* pSound, const SF_INFO& info,
                                  const S_SampleFormat& sample) {
  S_AudioFileFormat format{StreamOf(info, sample.dwFormat), static_cast<UInt64>(info.frames)};
  auto& desc = format.desc;
  desc.mFormatFlags = sample.dwFlags;
  desc.mBitsPerChannel = sample.dwBits;
  desc.mBytesPerFrame = sample.dwBits / 8 * desc.mChannelsPerFrame;
  desc.mFramesPerPacket = 1;
  desc.mBytesPerPacket = desc.mBytesPerFrame;
  const bool bSwapped =
      sf_command(pSound, SFC_RAW_DATA_NEEDS_ENDSWAP, nullptr, 0) == SF_TRUE && sample.dwBits > 8;
  if (bSwapped) desc.mFormatFlags |= kAudioFormatFlagIsBigEndian;
  return format;
}

AudioFormatID MpegFormatOf(UInt32 dwLayer) {
  if (dwLayer == 1) return kAudioFormatMPEGLayer1;
  if (dwLayer == 2) return kAudioFormatMPEGLayer2;
  return kAudioFormatMPEGLayer3;
}

// The format code of a block codec in WAV is "ms" followed by the tag of its format chunk.
S_AudioFileFormat DescribeBlocks(const SF_INFO& info, const S_WavBlocks& blocks) {
  S_AudioFileFormat format{StreamOf(info, FourChars("ms\0\0") | blocks.wFormatTag),
                           blocks.qwDataBytes / blocks.wBlockAlign};
  format.desc.mBytesPerPacket = blocks.wBlockAlign;
  const UInt64 qwBlocks = (blocks.qwDataBytes + blocks.wBlockAlign - 1) / blocks.wBlockAlign;
  if (qwBlocks != 0) {
    format.desc.mFramesPerPacket = static_cast<UInt32>(static_cast<UInt64>(info.frames) / qwBlocks);
  }
  return format;
}

bool IsWav(const SF_INFO& info) {
  const int nType = info.format & SF_FORMAT_TYPEMASK;
  return nType == SF_FORMAT_WAV || nType == SF_FORMAT_WAVEX;
}

bool IsFlac(const SF_INFO& info) { return (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC; }

// Empty when the file does not store its samples one by one.
std::optional<S_SampleFormat> StoredSamplesOf(const SF_INFO& info) {
  return IsFlac(info) ? std::nullopt : SampleFormatOf(info.format & SF_FORMAT_SUBMASK);
}

S_AudioFileFormat DescribeDecodedFrames(const SF_INFO& info) {
  S_AudioFileFormat format{StreamOf(info, IsFlac(info) ? AudioFormatID{kAudioFormatFLAC} : 0),
                           static_cast<UInt64>(info.frames)};
  format.desc.mFramesPerPacket = 1;
  return format;
}

}  // namespace

bool IsKnownSound(const C_FileDescriptor& file) {
  constexpr std::array<UInt32, 11> kBeginnings = {
      FourChars("RIFF"), FourChars("RIFX"), FourChars("RF64"), FourChars("riff"),
      FourChars("FORM"), FourChars(".snd"), FourChars("dns."), FourChars("caff"),
      FourChars("fLaC"), FourChars("OggS"), FourChars("NIST")};
  std::array<UInt8, 4> head{};
  if (file.ReadAt(C_MpegSound::TagBytes(file), head.data(), head.size()) != head.size()) {
    return false;
  }
  const UInt32 dwHead =
      UInt32{head[0]} << 24 | UInt32{head[1]} << 16 | UInt32{head[2]} << 8 | head[3];
  return std::find(kBeginnings.begin(), kBeginnings.end(), dwHead) != kBeginnings.end();
}

bool ClaimsItsFrames(const SF_INFO& info) { return !StoredSamplesOf(info) && !IsWav(info); }

S_AudioFileFormat DescribeMpeg(const C_MpegSound& sound) {
  S_AudioFileFormat format;
  format.desc.mSampleRate = sound.Rate();
  format.desc.mFormatID = MpegFormatOf(sound.Layer());
  format.desc.mChannelsPerFrame = sound.Channels();
  format.desc.mFramesPerPacket = sound.SamplesPerFrame();
  format.qwPackets = sound.FrameCount();
  return format;
}

std::optional<S_AudioFileFormat> DescribeAudioFile(SNDFILE* pSound, const SF_INFO& info,
                                                   const C_FileDescriptor& file) {
  if (const auto sample = StoredSamplesOf(info)) return DescribeSamples(pSound, info, *sample);
  if (IsWav(info)) {
    const auto blocks = ReadWavBlocks(file);
    if (!blocks) return std::nullopt;
    return DescribeBlocks(info, *blocks);
  }
  return DescribeDecodedFrames(info);
}

}  // namespace toolbox
