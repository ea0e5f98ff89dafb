// SPDX-License-Identifier: Apache-2.0
#include "PipeWireServer.h"

#include <filesystem>
#include <fstream>

namespace {

const char* const kLibraries =
    "context.spa-libs = { audio.convert.* = audioconvert/libspa-audioconvert"
    " support.* = support/libspa-support }\n";

std::string Modules(const std::vector<std::string>& names) {
  std::string strModules = "context.modules = [";
  for (const std::string& strName : names) {
    strModules += " { name = libpipewire-module-" + strName + " }";
  }
  return strModules + " ]\n";
}

// One rate for everything, so that nothing is resampled.
std::string DaemonConfiguration(const std::string& strRate) {
  return "context.properties = { core.daemon = true core.name = pipewire-0 support.dbus = false"
         " default.clock.rate = " +
         strRate + " default.clock.allowed-rates = [ " + strRate + " ] }\n" + kLibraries +
         Modules({"protocol-native", "metadata", "spa-node-factory", "client-node", "access",
                  "adapter", "link-factory", "session-manager"}) +
         "context.objects = [ { factory = adapter args = {"
         " factory.name = support.null-audio-sink node.name = rec media.class = Audio/Sink"
         " object.linger = true audio.position = [ FL FR ] audio.rate = " +
         strRate + " } } ]\n";
}

std::string PulseConfiguration(const std::string& strSocket) {
  return std::string("context.properties = { support.dbus = false }\n") + kLibraries +
         Modules({"protocol-native", "client-node", "adapter", "metadata", "protocol-pulse"}) +
         "pulse.properties = { server.address = [ \"unix:" + strSocket + "\" ] }\n";
}

std::string ManagerConfiguration() {
  return std::string(
             "context.properties = { wireplumber.script-engine = lua-scripting"
             " support.dbus = false }\n") +
         kLibraries +
         Modules({"protocol-native", "client-node", "client-device", "adapter", "metadata",
                  "session-manager"}) +
         "wireplumber.components = ["
         " { name = libwireplumber-module-lua-scripting, type = module }"
         " { name = main.lua, type = config/lua } ]\n";
}

// Loads what links a player to the sink, and nothing that looks for hardware.
const char* const kManagerScript = R"(components = {}
local function module(name)
  components[name] = { "libwireplumber-module-" .. name, type = "module", args = {} }
end
local function script(name, arguments)
  components[name] = { name, type = "script/lua", args = arguments }
end
module("metadata")
module("default-nodes")
module("si-node")
module("si-audio-adapter")
module("si-standard-link")
module("si-audio-endpoint")
module("default-nodes-api")
module("mixer-api")
script("access/access-default.lua", { rules = {} })
script("static-endpoints.lua", {})
script("create-item.lua", {})
script("policy-node.lua", { move = true, follow = true })
)";

void WriteText(const std::string& strPath, const std::string& strText) {
  std::ofstream(strPath) << strText;
}

}  // namespace

void C_PipeWireServer::WriteConfiguration() const {
  std::filesystem::create_directories(Path("main.lua.d"));
  const std::string strRate = std::to_string(Rate());
  WriteText(Path("pipewire.conf"), DaemonConfiguration(strRate));
  WriteText(Path("pipewire-pulse.conf"), PulseConfiguration(Path("native")));
  WriteText(Path("wireplumber.conf"), ManagerConfiguration());
  WriteText(Path("main.lua.d/player.lua"), kManagerScript);
}

// The programs that start later give up when they do not find the first one.
void C_PipeWireServer::LaunchAll() {
  WriteConfiguration();
  std::filesystem::remove(Path("pipewire-0"));
  const Texts environment = {"HOME=" + Folder(),
                             "XDG_RUNTIME_DIR=" + Folder(),
                             "PIPEWIRE_RUNTIME_DIR=" + Folder(),
                             "PIPEWIRE_CONFIG_DIR=" + Folder(),
                             "WIREPLUMBER_CONFIG_DIR=" + Folder(),
                             "XDG_STATE_HOME=" + Path("state"),
                             "LC_ALL=C"};
  Launch(environment, {"pipewire"});
  WaitForFile("pipewire-0");
  Launch(environment, {"wireplumber"});
  Launch(environment, {"pipewire-pulse"});
}
