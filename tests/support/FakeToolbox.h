// SPDX-License-Identifier: Apache-2.0
//
// A toolbox that plays nothing: it records every call with its arguments, fails the calls that a
// test names, and lets the test drive the render thread. It also takes the place of usleep, so that
// pauses show in the log and take a millisecond at most. Link it instead of the real toolbox.
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

class C_FakeToolbox {
 public:
  // The object that the calls go to.
  static C_FakeToolbox& Get();

  // Restores the state before the first call.
  void Reset();

  // What was called so far, one line for each call: "AUGraphStart(graph1)". The same pause several
  // times in a row is one line.
  std::vector<std::string> Log();
  // The index of the first line of the log that begins with strStart, or -1 when there is no such
  // line.
  int Find(const std::string& strStart);
  int Count(const std::string& strStart);
  void ClearLog();

  // The nOccurrence-th call with this name (from now on, counted from 1) returns nStatus and has no
  // effect. AudioComponentFindNext and the URL return null instead.
  void Fail(const std::string& strName, OSStatus nStatus, int nOccurrence = 1);

  // Makes the notification of one render cycle, as the graph would.
  OSStatus Notify(AudioUnitRenderActionFlags dwFlags, double dSampleTime);
  [[nodiscard]] bool HasNotify() const { return m_notify.inputProc != nullptr; }

  // Called inside AUGraphStart and at each pause.
  std::function<void()> onStart;
  std::function<void()> onPause;

  // What the opened files and units answer.
  UInt64 qwPacketCount = 32000;
  UInt32 cbLayout = 0;
  AudioStreamBasicDescription fileFormat{};
  AudioTimeStamp startStamp{};
  Boolean bRunning = 0;

  // What the one component answers. Without a name it returns success and no string.
  bool bComponentHasName = true;
  std::string strComponentName = "Fakes: Some Unit";
  AudioComponentDescription componentDescription{};

  // The callback that the output unit was given, and the bytes that the unit pulled while it ran.
  // It pulls slices of cbSlice bytes, which are filled with bySliceFill beforehand.
  AURenderCallbackStruct renderCallback{};
  UInt32 cbSlice = 3200;
  UInt8 bySliceFill = 0;
  std::vector<UInt8> Pulled();

  // For the toolbox functions: records the call and returns the status for it.
  OSStatus Call(const std::string& strName, const std::string& strArguments);
  void SetNotify(AURenderCallback callback, void* pRefCon) { m_notify = {callback, pRefCon}; }
  int NewGraph() { return m_nGraphs++; }
  void StartPulling();
  void StopPulling();

 private:
  void Pull();

  std::mutex m_lock;
  std::vector<std::string> m_log;
  std::map<std::string, int> m_calls;
  std::map<std::pair<std::string, int>, OSStatus> m_failures;
  AURenderCallbackStruct m_notify{};
  int m_nGraphs = 0;
  std::thread m_puller;
  bool m_bPulling = false;
  std::vector<UInt8> m_pulled;
};
