// SPDX-License-Identifier: Apache-2.0
#include "manifest/ManifestJobs.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <utility>

#include "base/Interrupt.h"
#include "manifest/Worker.h"

namespace tool {
namespace {

constexpr std::int64_t kFirstBatch = 4;
constexpr std::int64_t kMostInBatch = 256;
constexpr std::chrono::seconds kShortBatch(1);
constexpr std::chrono::seconds kLongBatch(4);
constexpr std::chrono::seconds kBetweenRecords(1);

std::string HexText(std::uint64_t qwValue) {
  std::array<char, 16> digits;
  digits.fill('0');
  std::array<char, 16> text;
  const char* const pEnd = std::to_chars(text.data(), text.data() + text.size(), qwValue, 16).ptr;
  std::copy_backward(static_cast<const char*>(text.data()), pEnd, digits.end());
  return {digits.begin(), digits.end()};
}

std::int64_t Number(tagTargetMaker eMaker) { return static_cast<std::int64_t>(eMaker); }

// A target that is not there now is ours when it is there later, even if this process dies.
tagTargetMaker MakerNow(const std::string& strTarget, tagTargetMaker eBefore,
                        const S_FileStamp& before) {
  if (IsGone(strTarget)) return tagTargetMaker::MAKER_NOBODY;
  const bool bChanged = eBefore == tagTargetMaker::MAKER_US && StampOf(strTarget) != before;
  return bChanged ? tagTargetMaker::MAKER_OTHERS : eBefore;
}

}  // namespace

C_ManifestJobs::C_ManifestJobs(C_Manifest& manifest, S_ManifestWork work)
    : m_manifest(manifest),
      m_select(manifest.Database(),
               "SELECT id, source, target, own, target_bytes, target_modified FROM main.files "
               "WHERE state = 0 ORDER BY id LIMIT ?"),
      m_claim(manifest.Database(),
              "UPDATE main.files SET state = 1, worker = ?, claimed = ?, own = ? WHERE id = ?"),
      m_recordMade(manifest.Database(),
                   "UPDATE main.files SET bytes = ?, modified = ?, reason = ?, state = ?, own = ?, "
                   "target_bytes = ?, target_modified = ?, rate = ?, frames = ?, damaged = ?, "
                   "cut = ?, checksum = ? WHERE id = ? AND state = 1 AND worker = ?"),
      // What stood in place of the target is as it was.
      m_recordFailed(manifest.Database(),
                     "UPDATE main.files SET bytes = ?, modified = ?, reason = ?, state = 3, "
                     "own = CASE own WHEN 3 THEN 0 ELSE own END, in_way = ? "
                     "WHERE id = ? AND state = 1 AND worker = ?"),
      m_nBatch(kFirstBatch),
      m_lastClaim(C_Clock::now()),
      m_lastRecord(C_Clock::now()) {
  Begin(work);
}

C_ManifestJobs::~C_ManifestJobs() {
  try {
    End();
  } catch (...) {  // NOLINT(bugprone-empty-catch): what is not given back is found abandoned later
  }
}

void C_ManifestJobs::Begin(S_ManifestWork work) {
  C_Transaction transaction(m_manifest.Database());
  m_nWorker = NumberOf(ThisWorker(), m_manifest);
  m_qwElsewhere = FreeAbandoned(m_manifest, work.bElsewhere);
  m_qwCount = m_manifest.Count(tagRowState::ROW_PLANNED);
  transaction.Commit();
}

std::optional<S_FileJob> C_ManifestJobs::Next() {
  std::unique_lock lock(m_lock);
  if (m_claimed.empty()) ClaimMore();
  if (m_claimed.empty()) return std::nullopt;
  S_FileJob job = std::move(m_claimed.front());
  m_claimed.pop_front();
  lock.unlock();
  const S_FileStamp stamp = StampOf(job.strSource).value_or(S_FileStamp());
  lock.lock();
  m_begun[job.qwKey] = stamp;
  return job;
}

void C_ManifestJobs::Done(const S_FileJob& job, const S_FileResult& result) {
  const std::lock_guard lock(m_lock);
  m_ended.push_back({job, result, m_begun[job.qwKey]});
  m_begun.erase(job.qwKey);
  if (!Interrupted()) RecordSoon();
}

void C_ManifestJobs::ClaimMore() {
  ChooseBatch();
  C_Transaction transaction(m_manifest.Database());
  RecordAll();
  std::vector<S_FileJob> claimed = Claimed();
  if (claimed.empty()) {
    FreeAbandoned(m_manifest, false);
    claimed = Claimed();
  }
  transaction.Commit();
  m_ended.clear();
  m_claimed.assign(claimed.begin(), claimed.end());
}

// So many that a claim is rare, and so few that others do not run out of work.
void C_ManifestJobs::ChooseBatch() {
  const auto now = C_Clock::now();
  const auto taken = now - std::exchange(m_lastClaim, now);
  if (taken < kShortBatch) m_nBatch = std::min(m_nBatch * 2, kMostInBatch);
  if (taken > kLongBatch) m_nBatch = std::max(m_nBatch / 2, kFirstBatch);
}

std::vector<S_FileJob> C_ManifestJobs::Claimed() {
  std::vector<S_FileJob> jobs;
  std::vector<tagTargetMaker> makers;
  m_select.Bind(1, m_nBatch);
  while (m_select.Next()) {
    S_FileJob& job = jobs.emplace_back();
    job.qwKey = static_cast<std::uint64_t>(m_select.Integer(0));
    job.strSource = m_select.Text(1);
    job.strTarget = m_select.Text(2);
    const auto eBefore = static_cast<tagTargetMaker>(m_select.Integer(3));
    const S_FileStamp before{m_select.Integer(4), m_select.Integer(5)};
    makers.push_back(MakerNow(job.strTarget, eBefore, before));
    job.bOwnTarget = makers.back() != tagTargetMaker::MAKER_OTHERS;
    job.bChangedTarget = !job.bOwnTarget && eBefore == tagTargetMaker::MAKER_US;
  }
  const std::int64_t nNow = std::time(nullptr);
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    m_claim.Bind(1, m_nWorker).Bind(2, nNow).Bind(3, Number(makers[i]));
    m_claim.Bind(4, static_cast<std::int64_t>(jobs[i].qwKey)).Run();
  }
  return jobs;
}

void C_ManifestJobs::RecordSoon() {
  if (C_Clock::now() - m_lastRecord < kBetweenRecords) return;
  C_Transaction transaction(m_manifest.Database());
  RecordAll();
  transaction.Commit();
  m_ended.clear();
}

void C_ManifestJobs::Record(const S_Ended& ended) {
  const bool bFailed = ended.result.eState == tagFileState::FILE_FAILED;
  C_Statement& record = bFailed ? m_recordFailed : m_recordMade;
  record.Bind(1, ended.source.nBytes).Bind(2, ended.source.nModified).BindNothing(3);
  if (!ended.result.strReason.empty()) record.Bind(3, ended.result.strReason);
  bFailed ? RecordFailed(ended) : RecordMade(ended);
}

void C_ManifestJobs::RecordMade(const S_Ended& ended) {
  const S_FileResult& result = ended.result;
  const bool bDone = result.eState == tagFileState::FILE_DONE;
  const S_FileStamp target = StampOf(ended.job.strTarget).value_or(S_FileStamp());
  m_recordMade.Bind(
      4, static_cast<std::int64_t>(bDone ? tagRowState::ROW_DONE : tagRowState::ROW_SKIPPED));
  m_recordMade.Bind(5, Number(bDone ? tagTargetMaker::MAKER_US : tagTargetMaker::MAKER_OTHERS));
  m_recordMade.Bind(6, target.nBytes).Bind(7, target.nModified);
  m_recordMade.Bind(8, std::int64_t{result.dwRate});
  m_recordMade.Bind(9, static_cast<std::int64_t>(result.qwFrames));
  m_recordMade.Bind(10, static_cast<std::int64_t>(result.qwDamaged));
  m_recordMade.Bind(11, std::int64_t{result.bCut ? 1 : 0}).BindNothing(12);
  if (result.qwSum) m_recordMade.Bind(12, HexText(*result.qwSum));
  m_recordMade.Bind(13, static_cast<std::int64_t>(ended.job.qwKey)).Bind(14, m_nWorker).Run();
}

void C_ManifestJobs::RecordFailed(const S_Ended& ended) {
  m_recordFailed.Bind(4, std::int64_t{ended.result.bTargetInWay ? 1 : 0});
  m_recordFailed.Bind(5, static_cast<std::int64_t>(ended.job.qwKey)).Bind(6, m_nWorker).Run();
}

void C_ManifestJobs::RecordAll() {
  for (const S_Ended& ended : m_ended) Record(ended);
  m_lastRecord = C_Clock::now();
}

void C_ManifestJobs::GiveBack() {
  C_Statement(m_manifest.Database(),
              "UPDATE main.files SET state = 0, worker = NULL, claimed = NULL, "
              "own = CASE own WHEN 3 THEN 0 ELSE own END WHERE state = 1 AND worker = ?")
      .Bind(1, m_nWorker)
      .Run();
}

void C_ManifestJobs::End() {
  const std::lock_guard lock(m_lock);
  if (std::exchange(m_bEnded, true)) return;
  m_manifest.Database().IgnoreInterrupts();
  C_Transaction transaction(m_manifest.Database());
  RecordAll();
  GiveBack();
  transaction.Commit();
  m_ended.clear();
}

}  // namespace tool
