// SPDX-License-Identifier: Apache-2.0
#include "convert/ManifestRun.h"

#include <string>
#include <utility>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "batch/RunOnFiles.h"
#include "batch/TargetNames.h"
#include "batch/Targets.h"
#include "convert/Conversion.h"
#include "convert/StoredOptions.h"
#include "manifest/ManifestJobs.h"
#include "manifest/Plan.h"
#include "manifest/Retry.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

void CheckArguments(const S_ConvertArguments& arguments) {
  if (!arguments.target.strFile.empty()) {
    throw C_UsageFailure("--manifest needs -d DIR in place of -o");
  }
  const bool bFolder = !arguments.target.strFolder.empty();
  if (arguments.batch.AreNamed() && !bFolder) {
    throw C_UsageFailure("-d DIR has to say where the files go");
  }
}

class C_ManifestRun {
 public:
  C_ManifestRun(S_ConvertArguments arguments, C_Console& console)
      : m_arguments(std::move(arguments)),
        m_console(console),
        m_report(console, m_arguments.batch.Talk()),
        m_manifest(m_arguments.strManifest, m_arguments.batch.AreNamed()
                                                ? tagManifestUse::MANIFEST_MAYBE_NEW
                                                : tagManifestUse::MANIFEST_EXISTING) {
    TakeStored();
    m_options = ConvertOptionsOf(m_arguments);
    m_options.bSum = true;
  }

  int Work() {
    const bool bListed = !m_arguments.batch.AreNamed() || Plan();
    Retry();
    if (m_arguments.bPlanOnly) return bListed ? 0 : 1;
    C_ManifestJobs jobs(m_manifest, {m_arguments.bReclaim});
    const S_BatchState state = Convert(jobs);
    jobs.End();
    const bool bAll = TellFailed(state) && TellElsewhere(jobs);
    return bListed && bAll ? 0 : 1;
  }

 private:
  void TakeStored() {
    TakeStoredOptions(m_manifest.Setting(kOptionsSetting), m_manifest.Name(), m_arguments);
    // Who lists files says anew what happens to targets that exist.
    if (m_arguments.batch.AreNamed()) return;
    TakeStoredRule(m_manifest.Setting(kExistingSetting), m_arguments.target);
  }

  // False when something could not be listed.
  bool Plan() {
    const std::string& strFolder = m_arguments.target.strFolder;
    const C_TargetNames names(strFolder, ExtensionOfFormat(FormatNameOf(m_arguments)));
    const auto TargetOf = [&names](const S_ListedFile& file, unsigned nChoice) {
      const std::string strTarget = names.Name(file, nChoice);
      return strTarget.empty() ? strTarget : PlainPath(strTarget);
    };
    C_Plan plan(m_manifest, TargetOf);
    const C_FileList list =
        m_arguments.batch.List(m_console, strFolder, [&](const S_ListedFile& file) {
          if (file.strPath == kStandardStream) {
            throw C_UsageFailure("standard input has no name, which a manifest needs");
          }
          const S_ListedFile plain = PlainFile(file);
          plan.Add(plain.strPath, TargetOf(plain, 0), plain.nKept);
        });
    const S_PlanCounts counts =
        plan.Finish(StoredOptions(m_arguments), StoredRule(m_arguments.target));
    TellPlan(counts);
    return list.Failures() == 0;
  }
  void TellPlan(const S_PlanCounts& counts) const {
    const std::string strName = m_manifest.Name() + ": ";
    m_report.Remark(strName + CountedText(counts.qwFiles, "file") + " listed, " +
                    CountText(counts.qwNew) + " new, " + CountText(counts.qwChanged) +
                    " changed; " + OptionsText(m_arguments));
    if (counts.qwKept == 0) return;
    m_report.Remark(strName + CountedText(counts.qwKept, "file") +
                    (counts.qwKept == 1 ? " keeps its" : " keep their") +
                    " first target: " + counts.strKept);
  }

  // The pieces of a plan are converted by the rule that it has.
  void Retry() {
    if (m_arguments.bPlanOnly) m_manifest.Set(kExistingSetting, StoredRule(m_arguments.target));
    const tagExisting eExisting = m_arguments.target.Rule().eExisting;
    const S_RetryCounts counts =
        PlanAgain(m_manifest, {m_arguments.bRetryFailed, eExisting != tagExisting::EXISTING_REFUSED,
                               eExisting == tagExisting::EXISTING_REPLACED});
    TellThose(counts.qwAgain, "that failed", "planned again");
    TellThose(counts.qwSkipped, "skipped before", "planned again");
    TellThose(counts.qwGone, "that failed", "gone, and forgotten");
  }
  void TellThose(std::uint64_t qwCount, const std::string& strWhich, const std::string& strAre) {
    if (qwCount == 0) return;
    m_report.Remark(m_manifest.Name() + ": " + CountedText(qwCount, "file") + ' ' + strWhich +
                    (qwCount == 1 ? " is " : " are ") + strAre);
  }

  S_BatchState Convert(C_ManifestJobs& jobs) {
    S_RunOptions run;
    run.nThreads = m_arguments.batch.nThreads;
    run.eTalk = m_arguments.batch.Talk();
    run.strDone = "converted";
    S_TargetRule rule = m_arguments.target.Rule();
    rule.bMakeFolders = true;
    return RunOnFiles(
        jobs, run,
        [&](const S_FileJob& job, C_FileWatch& watch) {
          return ConvertFile(job, m_options, rule, m_report, watch);
        },
        m_console);
  }

  // These two return whether there was nothing to tell.
  bool TellFailed(const S_BatchState& state) {
    const std::uint64_t qwFailed = m_manifest.Count(tagRowState::ROW_FAILED);
    if (qwFailed > state.qwFailed) {
      m_report.Remark(m_manifest.Name() + ": " + CountedText(qwFailed, "file") +
                      " failed in all: --retry-failed tries them again");
    }
    return qwFailed == 0;
  }
  bool TellElsewhere(const C_ManifestJobs& jobs) {
    const std::uint64_t qwElsewhere = jobs.ClaimedElsewhere();
    if (qwElsewhere == 0) return true;
    m_console.Complain(m_manifest.Name() + ": " + CountedText(qwElsewhere, "file") +
                       " left to other machines: --reclaim takes them over");
    return false;
  }

  S_ConvertArguments m_arguments;
  C_Console& m_console;
  C_FileReport m_report;
  C_Manifest m_manifest;
  S_ConvertOptions m_options;
};

}  // namespace

int ConvertByManifest(S_ConvertArguments arguments, C_Console& console) {
  CheckArguments(arguments);
  return C_ManifestRun(std::move(arguments), console).Work();
}

}  // namespace tool
