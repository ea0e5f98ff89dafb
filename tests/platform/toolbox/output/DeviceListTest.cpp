// SPDX-License-Identifier: Apache-2.0
#include "output/DeviceList.h"

#include <gtest/gtest.h>

#include <chrono>

#include "SoundServer.h"
#include "output/DefaultDevice.h"

namespace {

using std::chrono::milliseconds;
using toolbox::ListDevices;

class C_SilentClient final : public toolbox::I_DeviceClient {
 public:
  void RenderFrames(void* /*pFrames*/, UInt32 /*dwFrames*/) override {}
  void DeviceLost() override {}
};

TEST(DeviceList, OnAServer_NamesItsSinkAndOpensIt) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const auto devices = ListDevices();
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices[0].strName, "rec");
  EXPECT_TRUE(devices[0].bDefault);
  C_SilentClient client;
  EXPECT_NE(toolbox::OpenNamedDevice({16000, 1, false}, client, "rec"), nullptr);
  EXPECT_EQ(toolbox::OpenNamedDevice({16000, 1, false}, client, "nowhere"), nullptr);
}

TEST(DeviceList, OnAFrozenServer_IsEmptyAfterTheLimit) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  server.Freeze();
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(ListDevices(milliseconds(200)).empty());
  EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(200));
  server.Thaw();
}

TEST(DeviceList, WithoutAServer_IsEmpty) {
  UseNoSoundServerInThisProcess();
  EXPECT_TRUE(ListDevices().empty());
}

}  // namespace
