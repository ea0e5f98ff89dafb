// SPDX-License-Identifier: Apache-2.0
//
// Calls of an audio service that may never answer.
#pragma once

#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace toolbox {

// Makes a call on a thread that may be left behind, so the call must keep alive whatever it works
// on. It has released all of that by the time its result is available. Throws when no thread can be
// made.
template <typename Call>
std::future<bool> MakeCall(Call call) {
  auto pAnswer = std::make_shared<std::promise<bool>>();
  auto answer = pAnswer->get_future();
  std::thread([call = std::make_unique<Call>(std::move(call)), pAnswer]() mutable {
    bool bAnswer = false;
    try {
      bAnswer = (*call)();
    } catch (...) {
      bAnswer = false;  // the service's own library has no memory
    }
    call.reset();
    pAnswer->set_value(bAnswer);
  }).detach();
  return answer;
}

// Returns what the call returns, or false when it takes longer than the limit or cannot be made.
template <typename Call>
bool CallService(std::chrono::milliseconds limit, Call call) {
  try {
    auto answer = MakeCall(std::move(call));
    return answer.wait_for(limit) == std::future_status::ready && answer.get();
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace toolbox
