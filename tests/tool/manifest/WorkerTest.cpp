// SPDX-License-Identifier: Apache-2.0
#include "manifest/Worker.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "ManifestFixture.h"
#include "manifest/ManifestJobs.h"
#include "manifest/Retry.h"

namespace tool {
namespace {

class WorkerTest : public test::C_ManifestTest {
 protected:
  static tagWorkerState Seen(const S_Worker& worker) { return StateOf(worker, ThisWorker()); }

  // Claims so many files for a worker.
  static void Claim(C_Manifest& manifest, const S_Worker& worker, int nFiles) {
    const std::int64_t nWorker = NumberOf(worker, manifest);
    manifest.Database().Execute("UPDATE files SET state = 1, worker = " + std::to_string(nWorker) +
                                " WHERE id IN (SELECT id FROM files WHERE state = 0 LIMIT " +
                                std::to_string(nFiles) + ")");
  }
};

TEST_F(WorkerTest, ThisProcess_IsAlive) {
  EXPECT_EQ(Seen(ThisWorker()), tagWorkerState::WORKER_ALIVE);
}

TEST_F(WorkerTest, KilledProcess_IsDeadBeforeItsParentKnows) {
  const pid_t nChild = fork();
  if (nChild == 0) {
    pause();
    _exit(0);
  }
  S_Worker worker = ThisWorker();
  worker.nProcess = nChild;
  kill(nChild, SIGKILL);
  siginfo_t info{};
  waitid(P_PID, static_cast<id_t>(nChild), &info, WEXITED | WNOWAIT);
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_DEAD);
  waitpid(nChild, nullptr, 0);
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_DEAD);
}

TEST_F(WorkerTest, LaterProcessOfTheSameNumber_IsAnotherOne) {
  S_Worker worker = ThisWorker();
  --worker.nStart;
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_DEAD);
}

TEST_F(WorkerTest, ProcessBeforeTheMachineStartedAnew_IsDead) {
  S_Worker worker = ThisWorker();
  worker.strMachine[0] = worker.strMachine[0] == 'x' ? 'y' : 'x';
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_DEAD);
  worker.strHost += "2";
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_ELSEWHERE);
}

TEST_F(WorkerTest, ProcessOfAnotherContainer_IsElsewhere) {
  S_Worker worker = ThisWorker();
  worker.strMachine += "1";
  EXPECT_EQ(Seen(worker), tagWorkerState::WORKER_ELSEWHERE);
}

TEST_F(WorkerTest, ClaimsOfDeadProcesses_AreFreed) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 10);
  S_Worker dead = ThisWorker();
  --dead.nStart;
  S_Worker elsewhere = ThisWorker();
  elsewhere.strHost = "other";
  elsewhere.strMachine = "other";
  Claim(manifest, dead, 3);
  Claim(manifest, elsewhere, 2);
  Claim(manifest, ThisWorker(), 4);
  EXPECT_EQ(FreeAbandoned(manifest, false), 2U);
  EXPECT_EQ(manifest.Counts().qwPlanned, 4U);
  EXPECT_EQ(FreeAbandoned(manifest, true), 0U);
  EXPECT_EQ(manifest.Counts().qwPlanned, 6U);
  EXPECT_EQ(manifest.Counts().qwClaimed, 4U);
}

TEST_F(WorkerTest, Jobs_AreGivenToOneProcessOnly) {
  C_Manifest first = Made();
  PlanFiles(first, 10);
  C_Manifest second = Opened();
  {
    C_ManifestJobs jobs(first, {});
    C_ManifestJobs others(second, {});
    EXPECT_EQ(jobs.Count(), 10U);
    ASSERT_TRUE(jobs.Next());
    const std::uint64_t qwClaimed = first.Counts().qwClaimed;
    EXPECT_GE(qwClaimed, 4U);
    EXPECT_LT(qwClaimed, 10U);
    std::uint64_t qwOthers = 0;
    while (const auto job = others.Next()) {
      EXPECT_GT(job->qwKey, qwClaimed);
      ++qwOthers;
    }
    EXPECT_EQ(qwOthers, 10U - qwClaimed);
  }
  EXPECT_EQ(first.Counts().qwPlanned, 10U);
}

TEST_F(WorkerTest, Results_AreRecorded) {
  MakeSources(3);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  {
    C_ManifestJobs jobs(manifest, {});
    S_FileResult result;
    result.dwRate = 16000;
    result.qwFrames = 8000;
    result.qwDamaged = 2;
    result.bCut = true;
    result.strReason = "1: 2 of 8,000 frames are damaged";
    result.qwSum = 0xABC;
    Write("o1", {1, 2, 3, 4, 5});
    jobs.Done(*jobs.Next(), result);
    result = {};
    result.eState = tagFileState::FILE_FAILED;
    result.strReason = "2: is no sound: at all";
    jobs.Done(*jobs.Next(), result);
    jobs.End();
  }
  const S_ManifestCounts counts = manifest.Counts();
  EXPECT_EQ(counts.qwDone, 1U);
  EXPECT_EQ(counts.qwDamaged, 1U);
  EXPECT_EQ(counts.qwCut, 1U);
  EXPECT_EQ(Value(manifest, "SELECT reason FROM files WHERE state = 2"),
            "1: 2 of 8,000 frames are damaged");
  EXPECT_EQ(counts.qwFailed, 1U);
  EXPECT_EQ(counts.qwPlanned, 1U);
  EXPECT_EQ(counts.dSeconds, 0.5);
  EXPECT_EQ(Value(manifest, "SELECT checksum || target_bytes FROM files WHERE state = 2"),
            "0000000000000abc5");
  EXPECT_EQ(Value(manifest, "SELECT reason FROM files WHERE state = 3"), "2: is no sound: at all");
  // Whatever gets its name later is not ours.
  EXPECT_EQ(Value(manifest, "SELECT own FROM files WHERE state = 3"), "0");
}

TEST_F(WorkerTest, TargetsThatWereThere_AreNotOurs) {
  MakeSources(2);
  Write("o2", {1});
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  C_ManifestJobs jobs(manifest, {});
  EXPECT_TRUE(jobs.Next()->bOwnTarget);
  const auto second = jobs.Next();
  EXPECT_FALSE(second->bOwnTarget);
  EXPECT_FALSE(second->bChangedTarget);
  EXPECT_FALSE(jobs.Next());
}

TEST_F(WorkerTest, TargetOfAProcessThatHasDied_IsOurs) {
  MakeSources(2);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  Write("o2", {1});
  {
    C_ManifestJobs jobs(manifest, {});
    while (jobs.Next()) {
    }
    S_Worker dead = ThisWorker();
    --dead.nStart;
    const std::int64_t nDead = NumberOf(dead, manifest);
    manifest.Database().Execute("UPDATE files SET worker = " + std::to_string(nDead));
  }
  Write("o1", {1, 2, 3});
  C_ManifestJobs jobs(manifest, {});
  EXPECT_TRUE(jobs.Next()->bOwnTarget);
  EXPECT_FALSE(jobs.Next()->bOwnTarget);
}

TEST_F(WorkerTest, FailedFiles_AreTriedAgainWhenItIsAsked) {
  MakeSources(3);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 4);
  manifest.Database().Execute("UPDATE files SET state = 3, reason = 'none', in_way = (id = 2)");
  EXPECT_EQ(C_ManifestJobs(manifest, {}).Count(), 0U);
  EXPECT_EQ(PlanAgain(manifest, {}).qwAgain, 0U);
  EXPECT_EQ(PlanAgain(manifest, {false, true}).qwAgain, 1U);
  EXPECT_EQ(manifest.Counts().qwFailed, 3U);
  const S_RetryCounts counts = PlanAgain(manifest, {true, false});
  EXPECT_EQ(counts.qwAgain, 2U);
  EXPECT_EQ(counts.qwGone, 1U);
  EXPECT_EQ(manifest.Counts().All(), 3U);
  EXPECT_EQ(C_ManifestJobs(manifest, {}).Count(), 3U);
  EXPECT_EQ(Value(manifest, "SELECT SUM(plan) FROM files"), "3");
}

TEST_F(WorkerTest, SkippedFiles_AreTriedAgainWhenItIsAsked) {
  MakeSources(3);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  manifest.Database().Execute("UPDATE files SET state = CASE id WHEN 1 THEN 2 ELSE 4 END");
  EXPECT_EQ(PlanAgain(manifest, {true, true, false}).qwSkipped, 0U);
  const S_RetryCounts counts = PlanAgain(manifest, {false, true, true});
  EXPECT_EQ(counts.qwSkipped, 2U);
  EXPECT_EQ(counts.qwAgain, 0U);
  EXPECT_EQ(C_ManifestJobs(manifest, {}).Count(), 2U);
}

}  // namespace
}  // namespace tool
