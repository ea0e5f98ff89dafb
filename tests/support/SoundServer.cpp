// SPDX-License-Identifier: Apache-2.0
#include "SoundServer.h"

#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): kill
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp, setenv
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <thread>
#include <utility>

#include "FileBytes.h"

// The client libraries are not built for the thread sanitizer, so it does not see how their own
// threads synchronise.
#if defined(__SANITIZE_THREAD__)
extern "C" const char* __tsan_default_suppressions() {  // NOLINT: the sanitizer's name
  return "race:libpulse\nrace:libcubeb\n";
}
#endif

namespace {

using namespace std::chrono_literals;

// On a busy machine the service falls behind now and then. Gaps in every one of the recordings are
// a real fault.
constexpr int kTries = 5;
constexpr auto kPoll = 10ms;
constexpr auto kPatience = 15s;

bool WaitUntil(const std::function<bool()>& bReached) {
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (!bReached()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::sleep_for(kPoll);
  }
  return true;
}

// Runs a program with only PATH and `environment` set, and with its output in a file. The child
// ends with this process, however this process ends.
pid_t Spawn(const std::vector<std::string>& environment, const std::vector<std::string>& command,
            const std::string& strOutput) {
  const char* pszPath = getenv("PATH");
  std::vector<std::string> words = {"/usr/bin/env", "-i",
                                    std::string("PATH=") + (pszPath != nullptr ? pszPath : "")};
  words.insert(words.end(), environment.begin(), environment.end());
  words.insert(words.end(), command.begin(), command.end());
  std::vector<char*> argv;
  for (std::string& strWord : words) argv.push_back(strWord.data());
  argv.push_back(nullptr);

  const pid_t nParent = getpid();
  const pid_t nChild = fork();
  if (nChild != 0) return nChild;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != nParent) _exit(1);
  const int nInput = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const int nOutput = open(strOutput.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int nErrors = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nInput, STDIN_FILENO);
  dup2(nOutput, STDOUT_FILENO);
  dup2(nErrors, STDERR_FILENO);
  execv(argv[0], argv.data());
  _exit(127);
}

void End(pid_t nChild, int nSignal) {
  if (nChild <= 0) return;
  kill(nChild, nSignal);
  waitpid(nChild, nullptr, 0);
}

std::size_t SizeOf(const std::string& strPath) {
  std::error_code error;
  const auto cbFile = std::filesystem::file_size(strPath, error);
  return error ? 0 : static_cast<std::size_t>(cbFile);
}

bool IsSilentFrame(const std::vector<std::uint8_t>& sound, std::size_t nFrame,
                   std::size_t cbFrame) {
  const auto itFrame = sound.begin() + static_cast<std::ptrdiff_t>(nFrame * cbFrame);
  return std::all_of(itFrame, itFrame + static_cast<std::ptrdiff_t>(cbFrame),
                     [](std::uint8_t byValue) { return byValue == 0; });
}

std::vector<std::uint8_t> WithoutSilentFrames(const std::vector<std::uint8_t>& sound,
                                              std::size_t cbFrame) {
  std::vector<std::uint8_t> loud;
  for (std::size_t n = 0; n < sound.size() / cbFrame; ++n) {
    if (IsSilentFrame(sound, n, cbFrame)) continue;
    const auto itFrame = sound.begin() + static_cast<std::ptrdiff_t>(n * cbFrame);
    loud.insert(loud.end(), itFrame, itFrame + static_cast<std::ptrdiff_t>(cbFrame));
  }
  return loud;
}

}  // namespace

std::vector<std::uint8_t> WithoutSilentEnds(const std::vector<std::uint8_t>& sound,
                                            std::size_t cbFrame) {
  std::size_t nBegin = 0;
  std::size_t nEnd = sound.size() / cbFrame;
  while (nBegin < nEnd && IsSilentFrame(sound, nBegin, cbFrame)) ++nBegin;
  while (nEnd > nBegin && IsSilentFrame(sound, nEnd - 1, cbFrame)) --nEnd;
  return {sound.begin() + static_cast<std::ptrdiff_t>(nBegin * cbFrame),
          sound.begin() + static_cast<std::ptrdiff_t>(nEnd * cbFrame)};
}

tagSameSound CompareSounds(const std::vector<std::uint8_t>& want,
                           const std::vector<std::uint8_t>& got, std::size_t cbFrame) {
  if (WithoutSilentEnds(want, cbFrame) == WithoutSilentEnds(got, cbFrame)) {
    return tagSameSound::Exact;
  }
  return WithoutSilentFrames(want, cbFrame) == WithoutSilentFrames(got, cbFrame)
             ? tagSameSound::Gaps
             : tagSameSound::Wrong;
}

std::string S_Recording::Description() const {
  return "wanted " + std::to_string(cbWanted) + " bytes, recorded " + std::to_string(bytes.size()) +
         ", of which the first " + std::to_string(cbSameBegin) + " and the last " +
         std::to_string(cbSameEnd) + " are as wanted";
}

C_SoundServer::C_SoundServer(unsigned nRate, std::string strFormat, unsigned nChannels)
    : m_nRate(nRate), m_strFormat(std::move(strFormat)), m_nChannels(nChannels) {
  char szTemplate[] = "/tmp/voxplay-sound-XXXXXX";
  const char* pszMade = mkdtemp(szTemplate);
  if (pszMade != nullptr) m_strFolder = pszMade;
}

C_SoundServer::~C_SoundServer() {
  Thaw();
  Kill();
  std::error_code error;
  if (!m_strFolder.empty()) std::filesystem::remove_all(m_strFolder, error);
}

std::size_t C_SoundServer::FrameBytes() const {
  return m_nChannels * (m_strFormat.find("32") != std::string::npos ? 4U : 2U);
}

std::string C_SoundServer::Environment() const { return "PULSE_SERVER=unix:" + Path("native"); }

void C_SoundServer::UseInThisProcess() const {
  setenv("PULSE_SERVER", ("unix:" + Path("native")).c_str(), 1);
}

void UseNoSoundServerInThisProcess() {
  setenv("PULSE_SERVER", "unix:/nonexistent/native", 1);
  setenv("ALSA_CONFIG_PATH", "/dev/null", 1);
  setenv("JACK_NO_START_SERVER", "1", 1);
}

bool C_SoundServer::Start() {
  if (m_strFolder.empty()) return false;
  LaunchAll();
  return WaitUntil([this] { return Answers(); });
}

// Without norewinds, the sink hands out the first milliseconds of every stream and then takes them
// back, so that the recording misses them.
void C_SoundServer::LaunchAll() {
  const std::string strSink = "module-null-sink sink_name=rec rate=" + std::to_string(m_nRate) +
                              " format=" + m_strFormat +
                              " channels=" + std::to_string(m_nChannels) + " norewinds=1";
  Launch({"HOME=" + m_strFolder, "XDG_RUNTIME_DIR=" + m_strFolder,
          "PULSE_RUNTIME_PATH=" + m_strFolder, "PULSE_STATE_PATH=" + m_strFolder, "LC_ALL=C"},
         {"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
          "--disable-shm=yes", "--high-priority=no", "--realtime=no",
          "--log-target=file:" + Path("pa.log"), "-L",
          "module-native-protocol-unix auth-anonymous=1 socket=" + Path("native"), "-L", strSink});
}

void C_SoundServer::Launch(const Texts& environment, const Texts& command) {
  m_processes.push_back(Spawn(environment, command, Path("out")));
}

void C_SoundServer::WaitForFile(const char* pszName) const {
  WaitUntil([&] { return std::filesystem::exists(Path(pszName)); });
}

std::string C_SoundServer::Ask(const Texts& question) const {
  Texts command = {"pactl"};
  command.insert(command.end(), question.begin(), question.end());
  const pid_t nAsker =
      Spawn({Environment(), "HOME=" + m_strFolder, "LC_ALL=C"}, command, Path("info"));
  int nStatus = 0;
  if (nAsker <= 0 || waitpid(nAsker, &nStatus, 0) != nAsker || nStatus != 0) return {};
  const std::vector<std::uint8_t> answer = FileBytes(Path("info"));
  return {answer.begin(), answer.end()};
}

// Some kinds of server answer before they have their sink.
bool C_SoundServer::Answers() const { return Ask({"get-default-sink"}) == "rec\n"; }

// A stream that is paused, or not yet started, is corked.
bool C_SoundServer::WaitForStreams(std::size_t nStreams) const {
  return WaitUntil([&] {
    const std::string strStreams = Ask({"list", "sink-inputs"});
    const std::string strPlays = "Corked: no\n";
    std::size_t nFound = 0;
    for (std::size_t n = 0; (n = strStreams.find(strPlays, n)) != std::string::npos; ++n) ++nFound;
    return nFound >= nStreams;
  });
}

void C_SoundServer::Kill() {
  SendAll(SIGKILL);
  for (const pid_t nProcess : m_processes) waitpid(nProcess, nullptr, 0);
  m_processes.clear();
}

void C_SoundServer::Freeze() const { SendAll(SIGSTOP); }

void C_SoundServer::Thaw() const { SendAll(SIGCONT); }

void C_SoundServer::SendAll(int nSignal) const {
  for (const pid_t nProcess : m_processes) {
    if (nProcess > 0) kill(nProcess, nSignal);
  }
}

std::vector<std::uint8_t> C_SoundServer::RecordWhile(const std::function<void()>& play) const {
  const std::string strFile = Path("recorded");
  std::filesystem::remove(strFile);
  const pid_t nRecorder = Spawn(
      {Environment(), "HOME=" + m_strFolder},
      {"parec", "--device=rec.monitor", "--raw", "--rate=" + std::to_string(m_nRate),
       "--format=" + m_strFormat, "--channels=" + std::to_string(m_nChannels), "--latency-msec=20"},
      strFile);
  const std::size_t cbSecond = m_nRate * FrameBytes();
  const bool bRecording = WaitUntil([&] { return SizeOf(strFile) > cbSecond / 4; });
  if (bRecording) {
    play();
    const std::size_t cbPlayed = SizeOf(strFile);
    WaitUntil([&] { return SizeOf(strFile) >= cbPlayed + cbSecond / 2; });
  }
  End(nRecorder, SIGTERM);
  return bRecording ? FileBytes(strFile) : std::vector<std::uint8_t>{};
}

S_Recording C_SoundServer::RecordUntilSame(const std::vector<std::uint8_t>& want,
                                           const std::function<void()>& play) const {
  S_Recording result;
  const auto loud = WithoutSilentEnds(want, FrameBytes());
  result.cbWanted = loud.size();
  for (int nTry = 0; nTry < kTries; ++nTry) {
    const auto got = RecordWhile(play);
    result.same = CompareSounds(want, got, FrameBytes());
    result.bytes = WithoutSilentEnds(got, FrameBytes());
    const auto begin = std::ranges::mismatch(loud, result.bytes);
    result.cbSameBegin = static_cast<std::size_t>(begin.in1 - loud.begin());
    const auto end =
        std::mismatch(loud.rbegin(), loud.rend(), result.bytes.rbegin(), result.bytes.rend());
    result.cbSameEnd = static_cast<std::size_t>(end.first - loud.rbegin());
    if (!MayBeDisturbed(result.same)) break;
  }
  return result;
}
