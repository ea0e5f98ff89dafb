// SPDX-License-Identifier: Apache-2.0
#include "plot/FilePicture.h"

#include <filesystem>
#include <span>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/ReplacedFile.h"
#include "plot/Picture.h"
#include "sound/SoundFaults.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

void RefuseSameFile(const std::string& strSource, const std::string& strTarget) {
  std::error_code error;
  if (!std::filesystem::equivalent(strSource, strTarget, error) || error) return;
  throw C_Failure(strTarget, "is not written", "it is the sound itself");
}

class C_FilePicture {
 public:
  C_FilePicture(const S_FileJob& job, const S_PlotOptions& options, C_FileWatch& watch)
      : m_job(job), m_options(options), m_watch(watch) {}

  // Keeps what was read for the result, and for Report.
  std::string Draw() {
    const C_SoundInputPtr input = OpenSound(m_job.strSource);
    const std::uint32_t dwRate = input->Info().dwRate;
    S_Picture picture = PictureOf(*input, NameOf(m_job.strSource), m_options,
                                  [&](std::uint64_t qwDone, std::uint64_t qwAll) {
                                    m_watch.TellFrames(qwDone, qwAll, dwRate);
                                    m_result.qwFrames = qwDone;
                                  });
    m_result.dwRate = dwRate;
    m_result.qwDamaged = input->DamagedFrames();
    m_result.bCut = picture.bCut;
    if (picture.bCut) {
      m_strCut = CutLine(NameOf(m_job.strSource), *input, picture.qwFrames, "drawn");
    }
    return std::move(picture.strFile);
  }
  [[nodiscard]] S_FileResult Report(const C_FileReport& report) const {
    const std::string strName = NameOf(m_job.strSource);
    if (m_result.qwDamaged != 0) {
      report.Remark(DamagedLine(strName, m_result.qwDamaged, m_result.qwFrames));
    }
    if (m_result.bCut) report.Remark(m_strCut);
    return m_result;
  }
  S_FileResult Skip() {
    m_result.eState = tagFileState::FILE_SKIPPED;
    return m_result;
  }

 private:
  const S_FileJob& m_job;
  const S_PlotOptions& m_options;
  C_FileWatch& m_watch;
  S_FileResult m_result;
  std::string m_strCut;  // what is said of a cut file
};

void WriteTo(const std::string& strTarget, const std::string& strPicture, bool bMayReplace) {
  C_ReplacedFile target(strTarget, bMayReplace);
  target.Write(std::as_bytes(std::span(strPicture)));
  ThrowIfInterrupted();
  target.TakePlace();
}

}  // namespace

S_FileResult DrawFile(const S_FileJob& job, const S_PlotOptions& options, const S_TargetRule& rule,
                      const C_FileReport& report, C_FileWatch& watch, C_Console& console) {
  C_FilePicture picture(job, options, watch);
  if (job.strTarget == kStandardStream) {
    console.Print(picture.Draw());
    return picture.Report(report);
  }
  RefuseSameFile(job.strSource, job.strTarget);
  if (!MayWrite(job.strTarget, rule.eExisting)) return picture.Skip();
  const std::string strPicture = picture.Draw();
  if (rule.bMakeFolders) MakeFoldersOf(job.strTarget);
  WriteTo(job.strTarget, strPicture, rule.eExisting == tagExisting::EXISTING_REPLACED);
  return picture.Report(report);
}

}  // namespace tool
