// SPDX-License-Identifier: Apache-2.0
#include "convert/Conversion.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "convert/LostText.h"
#include "convert/TargetFormat.h"
#include "sound/FormatText.h"
#include "sound/HeldSound.h"
#include "sound/PeakMeter.h"
#include "sound/RateChange.h"
#include "sound/SampleChanges.h"
#include "sound/SampleSum.h"
#include "sound/ScaledNotes.h"
#include "sound/SilenceFinder.h"
#include "sound/SoundFaults.h"
#include "sound/SoundOutput.h"
#include "sound/WholeSound.h"

namespace tool {
namespace {

std::string Count(std::uint64_t qwCount, const char* pszWhat) {
  return std::to_string(qwCount) + ' ' + pszWhat + (qwCount == 1 ? " is" : "s are");
}

// "format: there are 1 to 64 channels" says it to programmers.
std::string_view ReasonIn(std::string_view problem) {
  constexpr std::string_view kBegin = "format: ";
  return problem.starts_with(kBegin) ? problem.substr(kBegin.size()) : problem;
}

// The frame after the last one. Counts come from files, and may be anything.
std::uint64_t EndOf(const voxplay::Range& range) {
  return range.first + std::min(range.count, UINT64_MAX - range.first);
}

bool Touches(const voxplay::Range& a, const voxplay::Range& b) {
  return a.first < EndOf(b) && b.first < EndOf(a);
}

// What the file says of silence stays, and counts more than what was found.
void AddSilence(voxplay::Notes& notes, const std::vector<voxplay::Range>& found) {
  const voxplay::Notes before(notes);
  const auto known = before.view().silence();
  auto at = known.begin();
  for (const voxplay::Range& range : found) {
    while (at != known.end() && EndOf(*at) <= range.first) ++at;
    if (at == known.end() || !Touches(*at, range)) notes.add_silence(range);
  }
}

// One sound on its way.
class C_Conversion {
 public:
  C_Conversion(const S_FileJob& job, const S_ConvertOptions& options, const C_FileReport& report,
               C_FileWatch& watch)
      : m_job(job),
        m_options(options),
        m_report(report),
        m_watch(watch),
        m_input(Open(job, options)),
        m_info(m_input->Info()) {
    if (m_info.dwRate == 0) Refuse("it has no sample rate");
    ChooseChannels();
    m_format = FormatFor(options.format, m_info, ChangedChannels(m_info, m_changes));
    m_changes.dwRate = m_format.sample_rate;
    CheckRate();
    m_changes.dGain = options.dGain;
    CheckFormat();
  }

  S_FileResult Work(tagExisting eExisting) {
    if (m_options.dPeak) Normalize();
    C_SoundOutput output(m_job.strTarget, AnnouncedFormat(), Order());
    output.OnProgress([this](std::uint64_t qwDone, std::uint64_t qwAll) { Tell(qwDone, qwAll); });
    Convert(output);
    RefuseIfAllIsMissing(m_qwFrames);
    if (!MayWrite(m_job.strTarget, eExisting)) return Skipped();
    output.Finish();
    return Report(output);
  }

 private:
  static std::unique_ptr<I_SoundInput> Open(const S_FileJob& job, const S_ConvertOptions& options) {
    auto input = WithoutMissingFrames(OpenSound(job.strSource, options.dwReadFlags));
    if (!options.bSum) return input;
    return std::make_unique<C_SummedSound>(std::move(input));
  }
  [[nodiscard]] std::string Source() const { return NameOf(m_job.strSource); }

  [[noreturn]] void Refuse(std::string_view why) const {
    throw C_Failure(Source(), "cannot be converted", why);
  }
  void CheckRate() const {
    if (C_RateChange::CanChange(m_info.dwRate, m_format.sample_rate)) return;
    Refuse(std::to_string(m_info.dwRate) + " Hz are too far from " +
           std::to_string(m_format.sample_rate) + " Hz");
  }
  // Sounds of others may have more than the target can.
  void CheckFormat() const {
    const std::string strProblem = voxplay::problem(m_format);
    if (!strProblem.empty()) Refuse(ReasonIn(strProblem));
    RefuseIfAllIsMissing(m_info.qwFrames);
    if (HasStream(m_format) && m_info.qwFrames == 0) Refuse("it has no samples");
  }

  void RefuseIfAllIsMissing(std::uint64_t qwFrames) const {
    const std::uint64_t qwClaimed = ClaimedFrames(m_info);
    if (qwFrames != 0 || (qwClaimed == 0 && !m_input->IsCut())) return;
    Refuse("the file is cut: none of its " +
           (qwClaimed == 0 ? "frames" : CountedText(qwClaimed, "frame")) + " is there");
  }

  // Streams are mono, so all channels are mixed for them.
  void ChooseChannels() {
    m_changes.dwChannel = m_options.dwChannel;
    m_changes.bMono = m_options.bMono || HasStream(m_options.format);
    if (!m_changes.dwChannel || *m_changes.dwChannel < m_info.dwChannels) return;
    throw C_Failure(Source(), "there is no channel " + std::to_string(*m_changes.dwChannel + 1),
                    "it has " + std::to_string(m_info.dwChannels));
  }

  // What stands in the file before its samples is right only where they are counted, not guessed.
  [[nodiscard]] tagOutputOrder Order() const {
    const bool bCounted = m_info.ours && !m_input->IsCut();
    return m_options.silence || !bCounted ? tagOutputOrder::NOTES_LAST
                                          : tagOutputOrder::NOTES_FIRST;
  }
  [[nodiscard]] voxplay::Format AnnouncedFormat() const {
    voxplay::Format format = m_format;
    const std::uint64_t qwFrames = ChangedFrames(m_info, m_changes);
    if (qwFrames != kFramesUnknown) {
      format.frames = qwFrames;
    } else if (format.container == VOXPLAY_CONTAINER_WAV) {
      format.flags |= VOXPLAY_WRITE_RF64;
    }
    return format;
  }

  void Tell(std::uint64_t qwDone, std::uint64_t qwAll) {
    m_watch.TellFrames(qwDone, qwAll, m_format.sample_rate);
  }

  // A sound of nothing but silence stays silent.
  void Normalize() {
    C_PeakMeter meter;
    ChangeSamples(*m_input, m_changes, meter);
    m_input->Seek(0);
    if (meter.Peak() > 0.0) m_changes.dGain = *m_options.dPeak / meter.Peak();
  }

  void Convert(C_SoundOutput& output) {
    voxplay::Notes notes;
    if (m_options.bNotes) {
      notes = ScaledNotes(m_input->Notes(), m_info.dwRate, m_format.sample_rate);
    }
    output.SetNotes(notes);
    if (!m_options.silence) {
      m_qwFrames = ChangeSamples(*m_input, m_changes, output);
      return;
    }
    AddSilence(notes, FindSilence(output));
    output.SetNotes(notes);
  }
  std::vector<voxplay::Range> FindSilence(C_SoundOutput& output) {
    const double dFewest = m_options.silence->dSeconds * m_format.sample_rate;
    C_SilenceFinder finder(GainFactor(m_options.silence->dDecibels),
                           static_cast<std::uint64_t>(std::ceil(dFewest)), m_format.channels,
                           output);
    m_qwFrames = ChangeSamples(*m_input, m_changes, finder);
    return finder.End();
  }

  [[nodiscard]] static S_FileResult Skipped() {
    S_FileResult result;
    result.eState = tagFileState::FILE_SKIPPED;
    return result;
  }

  S_FileResult Report(const C_SoundOutput& output) {
    S_FileResult result;
    result.dwRate = m_info.dwRate;
    result.qwFrames = m_qwFrames;
    result.qwDamaged = m_input->DamagedFrames();
    result.bCut = IsCutAfter(*m_input, m_qwFrames);
    if (const auto* const pSummed = dynamic_cast<const C_SummedSound*>(m_input.get())) {
      result.qwSum = pSummed->Sum();
    }
    TellDetail();
    TellWidth();
    result.strReason = FaultLine(Source(), *m_input, m_qwFrames, "converted");
    if (!result.strReason.empty()) m_report.Remark(result.strReason);
    TellLimited(output.LimitedSamples());
    TellLost(output.Lost());
    return result;
  }
  void TellDetail() const {
    if (!m_report.TellsAll()) return;
    voxplay::Info written{};
    written.container = m_format.container;
    written.codec = m_format.codec;
    written.bits_per_sample = m_format.bits_per_sample;
    written.bit_rate = m_format.bit_rate == 0 ? kUsualBitRate : m_format.bit_rate;
    m_report.Detail(Source() + ": " + m_info.strFormat + ": becomes " +
                    NameOfTarget(m_job.strTarget) + ", " + FormatText(written) + ", " +
                    std::to_string(m_format.sample_rate) + " Hz");
  }
  // What else changes the samples was asked for.
  void TellWidth() const {
    if (!m_info.bDouble || m_format.codec != VOXPLAY_CODEC_FLOAT) return;
    m_report.Remark(Source() + ": its floating point of 64 bits has become that of 32 bits");
  }
  void TellLimited(std::uint64_t qwLimited) const {
    if (qwLimited == 0) return;
    m_report.Remark(Source() + ": " + Count(qwLimited, "sample") +
                    " louder than full scale, and limited to it");
  }
  void TellLost(const std::vector<std::string>& lost) const {
    if (lost.empty()) return;
    if (!m_report.TellsAll()) return m_report.Remark(Source() + ": " + LostText(lost));
    for (const std::string& strLost : lost) m_report.Detail(Source() + ": not kept: " + strLost);
  }

  static constexpr std::uint32_t kUsualBitRate = 16000;

  const S_FileJob& m_job;
  const S_ConvertOptions& m_options;
  const C_FileReport& m_report;
  C_FileWatch& m_watch;
  std::unique_ptr<I_SoundInput> m_input;
  const S_SoundInfo m_info;
  S_SampleChanges m_changes;
  voxplay::Format m_format{};
  std::uint64_t m_qwFrames = 0;  // that were read
};

}  // namespace

S_FileResult ConvertFile(const S_FileJob& job, const S_ConvertOptions& options, S_TargetRule rule,
                         const C_FileReport& report, C_FileWatch& watch) {
  const bool bFile = job.strTarget != kStandardStream;
  if (job.bChangedTarget && rule.eExisting == tagExisting::EXISTING_REFUSED) {
    throw C_TargetInWay(job.strTarget, "has changed since it was made", "-f replaces it");
  }
  if (!bFile || job.bOwnTarget) rule.eExisting = tagExisting::EXISTING_REPLACED;
  if (!MayWrite(job.strTarget, rule.eExisting)) {
    S_FileResult result;
    result.eState = tagFileState::FILE_SKIPPED;
    return result;
  }
  C_Conversion conversion(job, options, report, watch);
  if (bFile && rule.bMakeFolders) MakeFoldersOf(job.strTarget);
  return conversion.Work(rule.eExisting);
}

}  // namespace tool
