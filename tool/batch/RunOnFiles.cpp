// SPDX-License-Identifier: Apache-2.0
#include "batch/RunOnFiles.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/EachFile.h"
#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kBetweenLines(100);

// While it lives, threads are made that get no signals. They go to the main thread, where a call
// that waits returns, so that it sees that the user wants to end.
class C_NoSignals {
 public:
  C_NoSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  ~C_NoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  C_NoSignals(const C_NoSignals&) = delete;
  C_NoSignals& operator=(const C_NoSignals&) = delete;

 private:
  sigset_t m_before{};
};

class C_Threads {
 public:
  ~C_Threads() { Join(); }
  // False when there can be no more.
  template <typename Work>
  bool Start(Work&& work) {
    try {
      const C_NoSignals noSignals;
      m_threads.emplace_back(std::forward<Work>(work));
      return true;
    } catch (const std::system_error&) {
      return false;
    }
  }
  void Join() {
    for (std::thread& thread : m_threads) thread.join();
    m_threads.clear();
  }

 private:
  std::vector<std::thread> m_threads;
};

class C_Run {
 public:
  C_Run(I_FileJobs& jobs, const S_RunOptions& options, const PFN_OnFile& fnOnFile,
        C_Console& console)
      : m_jobs(jobs),
        m_options(options),
        m_fnOnFile(fnOnFile),
        m_console(console),
        m_start(std::chrono::steady_clock::now()),
        m_watches(CountThreads()) {
    m_state.qwAll = jobs.Count();
  }

  S_BatchState Work() {
    WorkInThreads();
    m_console.ShowProgress("");
    m_state.dSeconds = Seconds();
    if (m_failure) ThrowOn();
    if (Interrupted()) {
      Say(StoppedText("interrupted", m_state, m_options.strDone));
      throw C_Interrupted();
    }
    // Other processes may have taken a part.
    m_state.qwAll = m_state.Ended();
    if (m_options.bSummary) Say(SummaryText(m_state, m_options.strDone, m_options.strFailed));
    return m_state;
  }

 private:
  [[noreturn]] void ThrowOn() {
    try {
      std::rethrow_exception(m_failure);
    } catch (const C_DiskFailure&) {
      Say(StoppedText("stopped", m_state, m_options.strDone));
      throw;
    }
  }
  [[nodiscard]] std::size_t CountThreads() const {
    const std::uint64_t qwWanted = m_options.nThreads == 0 ? Processors() : m_options.nThreads;
    return static_cast<std::size_t>(
        std::clamp<std::uint64_t>(m_jobs.Count(), 1, std::max<std::uint64_t>(qwWanted, 1)));
  }
  [[nodiscard]] double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
  }
  void Say(const std::string& strLine) {
    if (m_options.eTalk != tagTalk::TALK_ERRORS) m_console.Complain(strLine);
  }

  // The calling thread works as well.
  void WorkInThreads() {
    C_Threads progress;
    if (m_options.bProgress && m_console.ShowsErrors() && m_options.eTalk >= tagTalk::TALK_USUAL) {
      progress.Start([this] { ShowProgress(); });
    }
    {
      C_Threads workers;
      for (std::size_t i = 1; i < m_watches.size(); ++i) {
        if (!workers.Start([this, i] { WorkOnFiles(m_watches[i]); })) break;
      }
      WorkOnFiles(m_watches[0]);
    }
    const std::lock_guard lock(m_lock);
    m_bEnded = true;
    m_ended.notify_all();
  }

  void WorkOnFiles(C_FileWatch& watch) noexcept {
    try {
      while (!m_bStopped && !Interrupted()) {
        const auto job = m_jobs.Next();
        if (!job) return;
        const S_FileResult result = WorkOn(*job, watch);
        m_jobs.Done(*job, result);
        Count(result, watch);
      }
    } catch (const C_Interrupted&) {
      m_bStopped = true;
    } catch (...) {
      const std::lock_guard lock(m_lock);
      m_failure = std::current_exception();
      m_bStopped = true;
    }
  }

  S_FileResult WorkOn(const S_FileJob& job, C_FileWatch& watch) {
    S_FileResult result;
    bool bInWay = false;
    const auto strFailure = FailureOf(job.strSource, [&] {
      try {
        result = m_fnOnFile(job, watch);
      } catch (const C_TargetInWay&) {
        bInWay = true;
        throw;
      }
    });
    if (!strFailure) return result;
    m_console.Complain(*strFailure);
    result.eState = tagFileState::FILE_FAILED;
    result.bTargetInWay = bInWay;
    result.strReason = *strFailure;
    return result;
  }

  void Count(const S_FileResult& result, C_FileWatch& watch) {
    const std::lock_guard lock(m_lock);
    m_state.Count(result);
    watch.Reset();
  }

  void ShowProgress() {
    std::unique_lock lock(m_lock);
    while (!m_ended.wait_for(lock, kBetweenLines, [this] { return m_bEnded; })) {
      m_state.dSeconds = Seconds();
      double dBegun = 0.0;
      double dSeconds = 0.0;
      for (const C_FileWatch& watch : m_watches) {
        dBegun += watch.Part();
        dSeconds += watch.SecondsDone();
      }
      const std::string strLine =
          ProgressText(m_state, dBegun, dSeconds, m_console.Columns(), m_options.strFailed);
      // A terminal that stands still holds up this thread alone.
      lock.unlock();
      m_console.ShowProgress(strLine);
      lock.lock();
    }
  }

  I_FileJobs& m_jobs;
  const S_RunOptions& m_options;
  const PFN_OnFile& m_fnOnFile;
  C_Console& m_console;
  std::chrono::steady_clock::time_point m_start;
  std::vector<C_FileWatch> m_watches;  // one for each thread
  std::atomic<bool> m_bStopped = false;

  std::mutex m_lock;  // of what follows
  std::condition_variable m_ended;
  bool m_bEnded = false;
  S_BatchState m_state;
  std::exception_ptr m_failure;
};

}  // namespace

S_BatchState RunOnFiles(I_FileJobs& jobs, const S_RunOptions& options, const PFN_OnFile& fnOnFile,
                        C_Console& console) {
  return C_Run(jobs, options, fnOnFile, console).Work();
}

unsigned Processors() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) {
    return std::max(std::thread::hardware_concurrency(), 1U);
  }
  return static_cast<unsigned>(std::max(CPU_COUNT(&processors), 1));
}

}  // namespace tool
