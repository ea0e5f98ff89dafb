// SPDX-License-Identifier: Apache-2.0
#include "base/QuietErrors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace tool {
namespace {

constexpr int kNone = -1;

struct S_Streams {
  std::mutex lock;
  unsigned nQuiet = 0;  // how many objects there are
  int nKept = kNone;    // standard error, while something else stands in its place
};

S_Streams& Streams() {
  static S_Streams streams;
  return streams;
}

// Without the descriptors that it takes, libraries are heard.
void Silence(S_Streams& streams) {
  const int nNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nNull < 0) return;
  streams.nKept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (streams.nKept >= 0) dup2(nNull, STDERR_FILENO);
  close(nNull);
}

void Restore(S_Streams& streams) {
  if (streams.nKept < 0) return;
  dup2(streams.nKept, STDERR_FILENO);
  close(streams.nKept);
  streams.nKept = kNone;
}

}  // namespace

C_QuietErrors::C_QuietErrors() noexcept {
  S_Streams& streams = Streams();
  const std::lock_guard lock(streams.lock);
  if (streams.nQuiet++ == 0) Silence(streams);
}

C_QuietErrors::~C_QuietErrors() {
  S_Streams& streams = Streams();
  const std::lock_guard lock(streams.lock);
  if (--streams.nQuiet == 0) Restore(streams);
}

void WriteToErrors(std::string_view text) noexcept {
  S_Streams& streams = Streams();
  const std::lock_guard lock(streams.lock);
  const int nFile = streams.nKept < 0 ? STDERR_FILENO : streams.nKept;
  while (!text.empty()) {
    const ssize_t cbWritten = write(nFile, text.data(), text.size());
    if (cbWritten < 0 && errno == EINTR) continue;
    if (cbWritten <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(cbWritten));
  }
}

}  // namespace tool
