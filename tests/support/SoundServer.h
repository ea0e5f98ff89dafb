// SPDX-License-Identifier: Apache-2.0
//
// A private sound server with a clocked sink that plays nothing, and recordings of what was played
// on it. Add tests/support/SoundServer.cpp to the sources of the test and RUN_SERIAL TRUE to its
// properties (whatever runs beside a recording can starve it).
//
//   C_SoundServer server(16000, "s16le", 1);              // the sink's own rate, format, channels
//   ASSERT_TRUE(server.Start());
//   server.UseInThisProcess();                            // or pass Environment() to a child
//   const auto sound = server.RecordUntilSame(want, [&] { Play(); });
//   EXPECT_EQ(tagSameSound::Exact, sound.same) << sound.Description();
//
// What is played arrives unchanged, byte for byte, only in the sink's own rate and format. Silence
// at both ends is removed from both sides of a comparison: a recording begins and ends with some.
// The server needs no network, no message bus and no user's configuration, and it runs as root.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

enum class tagSameSound {
  Exact,
  Gaps,   // everything arrived, in order, but with silence between: the machine was too busy
  Wrong,  // something is missing or different
};

// The sound without the frames of `cbFrame` bytes at both ends that are all zero.
[[nodiscard]] std::vector<std::uint8_t> WithoutSilentEnds(const std::vector<std::uint8_t>& sound,
                                                          std::size_t cbFrame);

// Compares without the silence at both ends.
[[nodiscard]] tagSameSound CompareSounds(const std::vector<std::uint8_t>& want,
                                         const std::vector<std::uint8_t>& got, std::size_t cbFrame);

// What a recording holds, compared with what was wanted.
struct S_Recording {
  tagSameSound same = tagSameSound::Wrong;
  std::vector<std::uint8_t> bytes;  // without silence at both ends
  std::size_t cbWanted = 0;         // likewise
  // Where it begins to differ, from its beginning and from its end, in bytes.
  std::size_t cbSameBegin = 0;
  std::size_t cbSameEnd = 0;
  [[nodiscard]] std::string Description() const;
};

class C_SoundServer {
 public:
  using Texts = std::vector<std::string>;

  // Formats are the server's names, for example "s16le" and "float32le".
  C_SoundServer(unsigned nRate, std::string strFormat, unsigned nChannels);
  // Ends the server and removes its folder.
  virtual ~C_SoundServer();
  C_SoundServer(const C_SoundServer&) = delete;
  C_SoundServer& operator=(const C_SoundServer&) = delete;

  // True when the server answers. A server that was killed can be started again, in its old place.
  bool Start();
  // Ends the server at once, without giving it time to close its connections.
  void Kill();
  // True as soon as this many streams play on the server; false when they take longer than 15
  // seconds.
  [[nodiscard]] bool WaitForStreams(std::size_t nStreams) const;
  // Stops the server from running, so that it answers nothing; and lets it run again.
  void Freeze() const;
  void Thaw() const;

  // "PULSE_SERVER=unix:..." for the environment of a program that is to play on this server.
  [[nodiscard]] std::string Environment() const;
  // Makes this process play on this server.
  void UseInThisProcess() const;

  // What the sink played while `play` ran and for 0.5 s afterwards, raw. Empty when the recording
  // could not be started.
  [[nodiscard]] std::vector<std::uint8_t> RecordWhile(const std::function<void()>& play) const;
  // Records `play`. When the machine was too busy for it, records it again, up to five times in
  // all.
  [[nodiscard]] S_Recording RecordUntilSame(const std::vector<std::uint8_t>& want,
                                            const std::function<void()>& play) const;
  [[nodiscard]] std::size_t FrameBytes() const;

 protected:
  // Starts the processes that make up the server.
  virtual void LaunchAll();
  // Starts one of them, with PATH and these settings as its environment.
  void Launch(const Texts& environment, const Texts& command);
  // Whether a busy machine can be why a recording is not exact.
  [[nodiscard]] virtual bool MayBeDisturbed(tagSameSound same) const {
    return same == tagSameSound::Gaps;
  }
  // Waits until the file exists, for 15 seconds at most.
  void WaitForFile(const char* pszName) const;
  [[nodiscard]] const std::string& Folder() const { return m_strFolder; }
  [[nodiscard]] std::string Path(const char* pszName) const { return m_strFolder + "/" + pszName; }
  [[nodiscard]] unsigned Rate() const { return m_nRate; }

 private:
  [[nodiscard]] bool Answers() const;
  // What the server says; empty when it does not answer.
  [[nodiscard]] std::string Ask(const Texts& question) const;
  void SendAll(int nSignal) const;

  unsigned m_nRate;
  std::string m_strFormat;
  unsigned m_nChannels;
  std::string m_strFolder;
  std::vector<pid_t> m_processes;
};

// Makes this process find neither a sound server nor a sound card, wherever it runs. This cannot be
// undone.
void UseNoSoundServerInThisProcess();
