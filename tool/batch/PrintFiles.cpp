// SPDX-License-Identifier: Apache-2.0
#include "batch/PrintFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "base/EachFile.h"
#include "base/Interrupt.h"
#include "batch/ListedJobs.h"
#include "batch/RunOnFiles.h"

namespace tool {
namespace {

constexpr std::size_t kTurnsPerThread = 8;
constexpr std::chrono::milliseconds kBetweenLooks(100);

// What reads a pipe may use the terminal as well, and a progress line would spoil its picture.
bool IsPiped() {
  struct stat status {};
  return fstat(STDOUT_FILENO, &status) == 0 &&
         (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

// Gives the files of a list, and prints what is said of them. A file is given only when the ones
// far before it have been printed, so that a slow one does not make the others pile up.
class C_PrintedJobs final : public I_FileJobs {
 public:
  C_PrintedJobs(std::vector<S_ListedFile> files, std::size_t nTurns, const S_PrintRule& rule,
                C_Console& console)
      : m_jobs(std::move(files)), m_rule(rule), m_console(console), m_turns(nTurns) {}

  std::optional<S_FileJob> Next() override {
    std::unique_lock lock(m_lock);
    while (!m_bFailed && m_nGiven - m_nPrinted == m_turns.size()) {
      ThrowIfInterrupted();
      m_printed.wait_for(lock, kBetweenLooks);
    }
    if (m_bFailed) return std::nullopt;
    auto job = m_jobs.Next();
    if (job) ++m_nGiven;
    return job;
  }
  void Done(const S_FileJob& job, const S_FileResult& /*result*/) override {
    const std::lock_guard lock(m_lock);
    TurnOf(job.qwKey).bReady = true;
    PrintWhatIsReady();
    m_printed.notify_all();
  }
  [[nodiscard]] std::uint64_t Count() const noexcept override { return m_jobs.Count(); }

  // Of a file that is being read.
  C_FileOutput& OutputOf(const S_FileJob& job) { return TurnOf(job.qwKey).output; }
  // After all files.
  void End() {
    m_console.Print(m_bAny ? m_rule.strAfter : m_rule.strNothing);
    m_console.Flush();
  }

 private:
  struct S_Turn {
    C_FileOutput output;
    bool bReady = false;
  };

  S_Turn& TurnOf(std::uint64_t qwFile) {
    return m_turns[static_cast<std::size_t>(qwFile % m_turns.size())];
  }
  void PrintWhatIsReady() {
    m_bFailed = true;  // unless it comes to the end of this
    while (TurnOf(m_nPrinted).bReady) {
      S_Turn& turn = TurnOf(m_nPrinted);
      Print(turn.output);
      turn = {};
      ++m_nPrinted;
    }
    m_bFailed = false;
  }
  void Print(const C_FileOutput& output) {
    if (output.Prints()) {
      m_console.Print(std::exchange(m_bAny, true) ? m_rule.strBetween : m_rule.strBefore);
    }
    output.SendTo(m_console);
  }

  C_ListedJobs m_jobs;
  const S_PrintRule& m_rule;
  C_Console& m_console;
  std::mutex m_lock;  // of what follows, but an output is its file's until that is done
  std::condition_variable m_printed;
  std::vector<S_Turn> m_turns;
  std::size_t m_nGiven = 0;
  std::size_t m_nPrinted = 0;
  bool m_bAny = false;
  bool m_bFailed = false;
};

S_RunOptions RunOptionsOf(const S_BatchOptions& options, const S_PrintRule& rule) {
  S_RunOptions run;
  run.nThreads = options.nThreads == 0 ? Processors() : options.nThreads;
  run.eTalk = options.Talk();
  run.bProgress = !IsPiped();
  run.bSummary = false;  // it comes after all that is printed
  run.strDone = rule.strDone;
  run.strFailed = rule.strFailed;
  return run;
}

}  // namespace

S_PrintRule JsonArrayRule() {
  S_PrintRule rule;
  rule.strBefore = "[\n";
  rule.strBetween = ",\n";
  rule.strAfter = "\n]\n";
  rule.strNothing = "[]\n";
  return rule;
}

int PrintFiles(const S_BatchOptions& options, const S_PrintRule& rule, const PFN_PrintFile& fnPrint,
               C_Console& console) {
  C_FileList list = options.List(console);
  const std::size_t nNamed = list.Files().size() + list.Failures();
  const S_RunOptions run = RunOptionsOf(options, rule);
  C_PrintedJobs jobs(list.TakeFiles(), kTurnsPerThread * run.nThreads, rule, console);
  const PFN_OnFile fnOnFile = [&](const S_FileJob& job, C_FileWatch& watch) {
    C_FileOutput& output = jobs.OutputOf(job);
    S_FileResult result;
    const auto strFailure =
        FailureOf(job.strSource, [&] { result = fnPrint(job.strSource, output, watch); });
    if (strFailure) {
      output.Complain(*strFailure);
      result.eState = tagFileState::FILE_FAILED;
      result.strReason = *strFailure;
    }
    return result;
  };
  const S_BatchState state = RunOnFiles(jobs, run, fnOnFile, console);
  jobs.End();
  if (nNamed != 1 && run.eTalk != tagTalk::TALK_ERRORS) {
    console.Complain(SummaryText(state, rule.strDone, rule.strFailed));
  }
  return state.qwFailed == 0 && list.Failures() == 0 ? 0 : 1;
}

}  // namespace tool
