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

tagRowState RowStateOf(tagFileState eState) {
  switch (eState) {
    case tagFileState::FILE_DONE:
      return tagRowState::ROW_DONE;
    case tagFileState::FILE_SKIPPED:
      return tagRowState::ROW_SKIPPED;
    case tagFileState::FILE_FAILED:
      break;
  }
  return tagRowState::ROW_FAILED;
}

}  // namespace

C_ManifestJobs::C_ManifestJobs(C_Manifest& manifest, S_ManifestWork work)
    : m_manifest(manifest),
      m_select(manifest.Database(),
               "SELECT id, source, target, own FROM main.files WHERE state = 0 "
               "ORDER BY id LIMIT ?"),
      m_claim(manifest.Database(),
              "UPDATE main.files SET state = 1, worker = ?, claimed = ?, own = ? WHERE id = ?"),
      m_record(manifest.Database(),
               "UPDATE main.files SET state = ?, bytes = ?, modified = ?, target_bytes = ?, "
               "rate = ?, frames = ?, damaged = ?, checksum = ?, reason = ? "
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
  if (work.bRetryFailed) {
    m_manifest.Database().Execute("UPDATE main.files SET state = 0, reason = NULL WHERE state = 3");
  }
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

// A target that is not there now is ours when it is there later, even if this process dies.
std::vector<S_FileJob> C_ManifestJobs::Claimed() {
  std::vector<S_FileJob> jobs;
  m_select.Bind(1, m_nBatch);
  while (m_select.Next()) {
    S_FileJob& job = jobs.emplace_back();
    job.qwKey = static_cast<std::uint64_t>(m_select.Integer(0));
    job.strSource = m_select.Text(1);
    job.strTarget = m_select.Text(2);
    job.bOwnTarget = m_select.Integer(3) != 0 || !StampOf(job.strTarget);
  }
  const std::int64_t nNow = std::time(nullptr);
  for (const S_FileJob& job : jobs) {
    m_claim.Bind(1, m_nWorker).Bind(2, nNow).Bind(3, std::int64_t{job.bOwnTarget ? 1 : 0});
    m_claim.Bind(4, static_cast<std::int64_t>(job.qwKey)).Run();
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
  const S_FileResult& result = ended.result;
  m_record.Bind(1, static_cast<std::int64_t>(RowStateOf(result.eState)));
  m_record.Bind(2, ended.source.nBytes).Bind(3, ended.source.nModified);
  m_record.Bind(4, StampOf(ended.job.strTarget).value_or(S_FileStamp()).nBytes);
  m_record.Bind(5, std::int64_t{result.dwRate});
  m_record.Bind(6, static_cast<std::int64_t>(result.qwFrames));
  m_record.Bind(7, static_cast<std::int64_t>(result.qwDamaged));
  m_record.BindNothing(8).BindNothing(9);
  if (result.qwSum) m_record.Bind(8, HexText(*result.qwSum));
  if (!result.strReason.empty()) m_record.Bind(9, result.strReason);
  m_record.Bind(10, static_cast<std::int64_t>(ended.job.qwKey)).Bind(11, m_nWorker).Run();
}

void C_ManifestJobs::RecordAll() {
  for (const S_Ended& ended : m_ended) Record(ended);
  m_lastRecord = C_Clock::now();
}

void C_ManifestJobs::GiveBack() {
  C_Statement(m_manifest.Database(),
              "UPDATE main.files SET state = 0, worker = NULL, claimed = NULL "
              "WHERE state = 1 AND worker = ?")
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
