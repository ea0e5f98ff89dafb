// SPDX-License-Identifier: Apache-2.0
#include "manifest/Worker.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

namespace tool {
namespace {

std::string FirstLine(const std::string& strPath) {
  std::ifstream file(strPath);
  std::string strLine;
  std::getline(file, strLine);
  return strLine;
}

std::string LinkText(const char* pszPath) {
  std::array<char, 256> text{};
  const ssize_t nLength = readlink(pszPath, text.data(), text.size());
  return nLength < 0 ? "" : std::string(text.data(), static_cast<std::size_t>(nLength));
}

std::string HostName() {
  std::array<char, HOST_NAME_MAX + 1> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

struct S_Process {
  char chState = ' ';
  std::int64_t nStart = 0;
};

// The second field of the line is a name in brackets, which may hold anything.
std::optional<S_Process> ProcessOf(std::int64_t nProcess) {
  const std::string strLine = FirstLine("/proc/" + std::to_string(nProcess) + "/stat");
  const std::size_t nName = strLine.rfind(')');
  if (nName == std::string::npos) return std::nullopt;
  std::istringstream fields(strLine.substr(nName + 1));
  S_Process process;
  fields >> process.chState;
  constexpr int kFieldsUpToStart = 18;
  std::string strField;
  for (int i = 0; i < kFieldsUpToStart; ++i) fields >> strField;
  fields >> process.nStart;
  return fields ? std::optional(process) : std::nullopt;
}

bool IsAlive(const S_Worker& worker) {
  if (const auto process = ProcessOf(worker.nProcess)) {
    const bool bEnded = process->chState == 'Z' || process->chState == 'X';
    return !bEnded && process->nStart == worker.nStart;
  }
  // Some systems hide the processes of others.
  return kill(static_cast<pid_t>(worker.nProcess), 0) == 0 || errno != ESRCH;
}

// "BOOT pid:[NUMBER]": the part before the space.
std::string_view BootOf(const std::string& strMachine) {
  return std::string_view(strMachine).substr(0, strMachine.find(' '));
}

struct S_KnownWorker {
  std::int64_t nNumber;
  S_Worker worker;
};

std::vector<S_KnownWorker> WorkersWithClaims(C_Manifest& manifest) {
  C_Statement select(manifest.Database(),
                     "SELECT id, host, machine, process, start FROM main.workers WHERE id IN "
                     "(SELECT worker FROM main.files WHERE state = 1)");
  std::vector<S_KnownWorker> workers;
  while (select.Next()) {
    workers.push_back({select.Integer(0),
                       {select.Text(1), select.Text(2), select.Integer(3), select.Integer(4)}});
  }
  return workers;
}

std::uint64_t ClaimsOf(std::int64_t nWorker, C_Manifest& manifest) {
  C_Statement select(manifest.Database(),
                     "SELECT COUNT(*) FROM main.files WHERE state = 1 AND worker = ?");
  select.Bind(1, nWorker);
  return select.Next() ? static_cast<std::uint64_t>(select.Integer(0)) : 0;
}

// Nobody knows whether it had made its targets.
void Free(std::int64_t nWorker, C_Manifest& manifest) {
  C_Statement(manifest.Database(),
              "UPDATE main.files SET state = 0, worker = NULL, claimed = NULL, "
              "own = CASE own WHEN 0 THEN 0 ELSE 2 END WHERE state = 1 AND worker = ?")
      .Bind(1, nWorker)
      .Run();
}

}  // namespace

S_Worker ThisWorker() {
  const std::int64_t nProcess = getpid();
  S_Worker worker;
  worker.strHost = HostName();
  worker.strMachine =
      FirstLine("/proc/sys/kernel/random/boot_id") + ' ' + LinkText("/proc/self/ns/pid");
  worker.nProcess = nProcess;
  worker.nStart = ProcessOf(nProcess).value_or(S_Process()).nStart;
  return worker;
}

tagWorkerState StateOf(const S_Worker& worker, const S_Worker& seenFrom) {
  if (worker.strMachine == seenFrom.strMachine) {
    return IsAlive(worker) ? tagWorkerState::WORKER_ALIVE : tagWorkerState::WORKER_DEAD;
  }
  const bool bStartedAnew = worker.strHost == seenFrom.strHost &&
                            BootOf(worker.strMachine) != BootOf(seenFrom.strMachine);
  return bStartedAnew ? tagWorkerState::WORKER_DEAD : tagWorkerState::WORKER_ELSEWHERE;
}

std::int64_t NumberOf(const S_Worker& worker, C_Manifest& manifest) {
  const auto Bind = [&](C_Statement& statement) {
    statement.Bind(1, worker.strHost).Bind(2, worker.strMachine);
    statement.Bind(3, worker.nProcess).Bind(4, worker.nStart);
  };
  C_Statement insert(manifest.Database(),
                     "INSERT OR IGNORE INTO main.workers(host, machine, process, start) "
                     "VALUES(?, ?, ?, ?)");
  Bind(insert);
  insert.Run();
  C_Statement select(manifest.Database(),
                     "SELECT id FROM main.workers WHERE host = ? AND machine = ? AND process = ? "
                     "AND start = ?");
  Bind(select);
  return select.Next() ? select.Integer(0) : 0;
}

std::uint64_t FreeAbandoned(C_Manifest& manifest, bool bElsewhere) {
  const S_Worker here = ThisWorker();
  std::uint64_t qwElsewhere = 0;
  for (const auto& [nNumber, worker] : WorkersWithClaims(manifest)) {
    const tagWorkerState eState = StateOf(worker, here);
    const bool bIsElsewhere = eState == tagWorkerState::WORKER_ELSEWHERE;
    if (eState == tagWorkerState::WORKER_DEAD || (bIsElsewhere && bElsewhere)) {
      Free(nNumber, manifest);
    } else if (bIsElsewhere) {
      qwElsewhere += ClaimsOf(nNumber, manifest);
    }
  }
  return qwElsewhere;
}

}  // namespace tool
