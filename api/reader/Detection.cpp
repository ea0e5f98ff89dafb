// SPDX-License-Identifier: Apache-2.0
#include "reader/Detection.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "ByteReader.h"
#include "base/Failure.h"
#include "base/Words.h"
#include "compressed/WavTags.h"
#include "heron/Configuration.h"
#include "interface/AudioFileType.h"
#include "reader/SpFields.h"
#include "riff/RiffScan.h"
#include "riff/WavFormat.h"
#include "source/ByteSource.h"

namespace api {
namespace {

constexpr std::uint32_t kKestrelUnit = 800;  // bits per second for one word in a frame
constexpr std::uint32_t kMinKestrelRate = 4800;
constexpr std::uint32_t kMaxKestrelRate = 32000;
constexpr std::uint8_t kLastHeronMode = 5;
constexpr std::uint32_t kHeronHeadBytes = 4;

S_TestResult Missed(const std::string& strLine) {
  S_TestResult result;
  result.strLine = strLine;
  return result;
}

S_TestResult Found(voxplay_container eContainer, voxplay_codec eCodec, const std::string& strLine) {
  return {true, eContainer, eCodec, true, strLine};
}

S_TestResult Unsupported(voxplay_container eContainer, const std::string& strLine) {
  return {true, eContainer, VOXPLAY_CODEC_NONE, false, strLine};
}

std::string WhyNoRiff(std::span<const std::uint8_t> first) {
  if (first.empty()) return "the file is empty";
  const auto beginning = first.first(std::min<std::size_t>(first.size(), 12));
  return "the file begins with " + words::Quoted(beginning) +
         " and not with \"RIFF\", a size and a form";
}

std::string FormText(const S_FourCC& form) {
  return words::Quoted({reinterpret_cast<const std::uint8_t*>(form.data()), form.size()});
}

// The format in these bytes; empty when it comes later. Throws C_Failure for one that is refused.
std::optional<S_WavFormat> FormatIn(const S_RiffContents& contents,
                                    std::span<const std::uint8_t> first) {
  const S_FoundChunk* const pChunk = contents.Find("fmt ");
  if (pChunk == nullptr || pChunk->qwHeld < pChunk->payload.qwSize) return std::nullopt;
  return ReadWavFormat(first.subspan(static_cast<std::size_t>(pChunk->payload.qwAt),
                                     static_cast<std::size_t>(pChunk->qwHeld)));
}

// A VEF file has PCM alone.
S_TestResult DescribeRiff(voxplay_container eContainer, const S_RiffContents& contents,
                          std::span<const std::uint8_t> first, const std::string& strFound) {
  try {
    const auto format = FormatIn(contents, first);
    if (!format) {
      return Found(eContainer, VOXPLAY_CODEC_NONE, strFound + "its format is not in these bytes");
    }
    const bool bOnlyPcm = eContainer == VOXPLAY_CONTAINER_VEF;
    if (!format->IsReadable() || (bOnlyPcm && format->wTag != WAVE_TAG_PCM)) {
      return Unsupported(eContainer, strFound + format->Text() + ", which is not supported");
    }
    return Found(eContainer, format->eCodec, strFound + format->Text());
  } catch (const C_Failure& failure) {
    return Unsupported(eContainer, strFound + failure.Text());
  }
}

bool IsForm(const S_RiffContents& contents, std::string_view form) {
  return std::ranges::equal(contents.form, form);
}

bool IsHeronType(std::uint16_t wType) { return kHeronTypes.Has(wType); }
bool IsStreamType(std::uint16_t wType) { return IsHeronType(wType) || kKestrelTypes.Has(wType); }
voxplay_codec CodecOfType(std::uint16_t wType) {
  return IsHeronType(wType) ? VOXPLAY_CODEC_HERON : VOXPLAY_CODEC_KESTREL;
}

// Why no Kestrel stream begins with these bytes; empty when one may. Only what every stream has to
// fulfil is looked at.
std::string WhyNotKestrel(std::span<const std::uint8_t> stream) {
  vcm::C_ByteReader reader(stream);
  const std::uint32_t dwLength = reader.U32();
  const std::uint32_t dwBitRate = reader.U16();
  if (!reader.Ok()) return "there are fewer than 6 bytes";
  if (dwBitRate % kKestrelUnit != 0 || dwBitRate < kMinKestrelRate || dwBitRate > kMaxKestrelRate) {
    return "its bit rate would be " + std::to_string(dwBitRate) +
           ", which is not a multiple of 800 from 4800 to 32000";
  }
  const std::uint32_t dwWords = dwLength / 2;
  if (dwWords == 0 || (dwWords - 1) % (dwBitRate / kKestrelUnit) != 0) {
    return "its length would be " + std::to_string(dwLength) + " bytes, which are no whole frames";
  }
  return {};
}

std::string WhyNotHeron(std::span<const std::uint8_t> stream, std::uint32_t dwSampleRate) {
  vcm::C_ByteReader reader(stream);
  const std::uint32_t dwHead = reader.U32();
  if (!reader.Ok()) return "there are fewer than 4 bytes";
  const auto byMode = static_cast<std::uint8_t>(dwHead);
  if (byMode == 0 || byMode > kLastHeronMode) {
    return "its mode would be " + std::to_string(byMode) + ", which is not one of 1 to 5";
  }
  if (const std::uint32_t dwEvents = dwHead >> 8U; dwEvents != 0 && dwEvents < kHeronHeadBytes) {
    return "its events would begin at byte " + std::to_string(dwEvents);
  }
  if (!heron::IsSupportedSampleRate(static_cast<int>(dwSampleRate))) {
    return "a Heron sound has no " + std::to_string(dwSampleRate) + " Hz";
  }
  return {};
}

std::string WhyNotHead(const S_CodecHead& head, std::span<const std::uint8_t> stream) {
  if (!IsStreamType(head.wType)) {
    return "its type would be " + std::to_string(head.wType) + ", which is not 14 or 32 to 36";
  }
  if (head.wSampleRate == 0) return "its sample rate would be 0";
  const bool bHeron = IsHeronType(head.wType);
  const std::string strWhy = bHeron ? WhyNotHeron(stream, head.wSampleRate) : WhyNotKestrel(stream);
  return strWhy.empty() ? strWhy : "no stream follows it: " + strWhy;
}

}  // namespace

S_TestResult TestRiff(std::span<const std::uint8_t> first) {
  const auto contents = ScanRiff(*OpenMemorySource(first));
  if (!contents) return Missed("RIFF: " + WhyNoRiff(first));
  const std::string strFound = "RIFF: found, form " + FormText(contents->form) + ", ";
  if (IsForm(*contents, "WAVE")) {
    return DescribeRiff(VOXPLAY_CONTAINER_WAV, *contents, first, strFound);
  }
  if (IsForm(*contents, "VEMD") && !contents->bRf64) {
    return DescribeRiff(VOXPLAY_CONTAINER_VEMD, *contents, first, strFound);
  }
  return Missed("RIFF: the form is " + FormText(contents->form) +
                " and neither \"WAVE\" nor \"VEMD\"");
}

S_TestResult TestSpHeader(std::span<const std::uint8_t> first) {
  const auto fields = ReadSpFields(first);
  if (!fields) return Missed("SP header: " + WhyNoSpHeader(first));
  const std::string strFound = "SP header: found, version " + std::to_string(fields->dwVersion);
  const std::string strWhyNot = WhyNotIdentifier(fields->wIdentifier);
  if (!strWhyNot.empty()) return Unsupported(VOXPLAY_CONTAINER_SP, strFound + ", but " + strWhyNot);
  return Found(VOXPLAY_CONTAINER_SP, CodecOfType(fields->wIdentifier),
               strFound + ", identifier " + std::to_string(fields->wIdentifier) + ", " +
                   std::to_string(fields->dwSampleRate) + " Hz");
}

S_TestResult TestVef(std::span<const std::uint8_t> first) {
  const auto contents = ScanRiff(*OpenMemorySource(first));
  if (contents && IsForm(*contents, "VEFF") && !contents->bRf64) {
    return DescribeRiff(VOXPLAY_CONTAINER_VEF, *contents, first, "VEF: found, ");
  }
  return Missed("VEF: the file does not begin with \"RIFF\" and the form \"VEFF\"");
}

S_TestResult TestCodecHead(std::span<const std::uint8_t> first) {
  const auto head = ReadCodecHead(first);
  if (!head) return Missed("codec head: the file has fewer than 6 bytes");
  const std::string strWhyNot = WhyNotHead(*head, first.subspan(S_CodecHead::kBytes));
  if (!strWhyNot.empty()) return Missed("codec head: " + strWhyNot);
  return Found(VOXPLAY_CONTAINER_HEAD, CodecOfType(head->wType),
               "codec head: found, type " + std::to_string(head->wType) + ", " +
                   std::to_string(head->wSampleRate) + " Hz, version " +
                   std::to_string(head->wVersion));
}

S_TestResult TestBareKestrel(std::span<const std::uint8_t> first) {
  const std::string strWhyNot = WhyNotKestrel(first);
  if (!strWhyNot.empty()) return Missed("Kestrel stream: " + strWhyNot);
  vcm::C_ByteReader reader(first);
  const std::uint32_t dwLength = reader.U32();
  return Found(VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_KESTREL,
               "Kestrel stream: found, " + words::Counted(dwLength, "byte") + " at " +
                   std::to_string(reader.U16()) + " bits per second");
}

std::string WhyNotIdentifier(std::uint16_t wIdentifier) {
  if (kKestrelTypes.Has(wIdentifier) || kHeronSpTypes.Has(wIdentifier)) return {};
  const std::string strText = "identifier " + std::to_string(wIdentifier);
  if (!IsHeronType(wIdentifier)) return strText + " is not a codec of this library";
  return strText +
         " is Heron of 2 or 3 bits, which is read from VEF files and after codec heads "
         "only";
}

}  // namespace api
