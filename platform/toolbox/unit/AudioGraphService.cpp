// SPDX-License-Identifier: Apache-2.0
#include <AudioToolbox/AUGraph.h>

#include "object/Guarded.h"
#include "object/HandleTable.h"
#include "unit/AudioGraph.h"

namespace toolbox {
namespace {

// Never destroyed, so that late callers still find a table.
C_HandleTable<AUGraph, C_AudioGraph>& Graphs() {
  static auto& table = *new C_HandleTable<AUGraph, C_AudioGraph>;
  return table;
}

// Calls an operation of the graph behind the handle.
template <typename... Params, typename... Args>
OSStatus Call(AUGraph graph, OSStatus (C_AudioGraph::*pOperation)(Params...), Args&&... args) {
  const auto pGraph = Graphs().Find(graph);
  if (pGraph == nullptr) return kAudio_ParamError;
  return Guarded([&] { return (pGraph.get()->*pOperation)(std::forward<Args>(args)...); });
}

}  // namespace
}  // namespace toolbox

using toolbox::C_AudioGraph;
using toolbox::Call;

extern "C" {

OSStatus NewAUGraph(AUGraph* pGraph) {
  if (pGraph == nullptr) return kAudio_ParamError;
  return toolbox::Guarded([pGraph] {
    *pGraph = toolbox::Graphs().Insert(std::make_shared<C_AudioGraph>());
    return OSStatus{noErr};
  });
}

OSStatus DisposeAUGraph(AUGraph graph) {
  return toolbox::Graphs().Remove(graph) != nullptr ? noErr : kAudio_ParamError;
}

OSStatus AUGraphAddNode(AUGraph graph, const AudioComponentDescription* pDescription,
                        AUNode* pNode) {
  if (pDescription == nullptr || pNode == nullptr) return kAudio_ParamError;
  return Call(graph, &C_AudioGraph::AddNode, *pDescription, *pNode);
}

OSStatus AUGraphOpen(AUGraph graph) { return Call(graph, &C_AudioGraph::Open); }

OSStatus AUGraphClose(AUGraph graph) { return Call(graph, &C_AudioGraph::Close); }

OSStatus AUGraphNodeInfo(AUGraph graph, AUNode node, AudioComponentDescription* pDescription,
                         AudioUnit* pUnit) {
  return Call(graph, &C_AudioGraph::NodeInfo, node, pDescription, pUnit);
}

OSStatus AUGraphConnectNodeInput(AUGraph graph, AUNode sourceNode, UInt32 dwSourceOutput,
                                 AUNode destNode, UInt32 dwDestInput) {
  return Call(graph, &C_AudioGraph::ConnectNodeInput, sourceNode, dwSourceOutput, destNode,
              dwDestInput);
}

OSStatus AUGraphInitialize(AUGraph graph) { return Call(graph, &C_AudioGraph::Initialize); }

OSStatus AUGraphUninitialize(AUGraph graph) { return Call(graph, &C_AudioGraph::Uninitialize); }

OSStatus AUGraphAddRenderNotify(AUGraph graph, AURenderCallback callback, void* pRefCon) {
  return Call(graph, &C_AudioGraph::AddRenderNotify, AURenderCallbackStruct{callback, pRefCon});
}

OSStatus AUGraphRemoveRenderNotify(AUGraph graph, AURenderCallback callback, void* pRefCon) {
  return Call(graph, &C_AudioGraph::RemoveRenderNotify, AURenderCallbackStruct{callback, pRefCon});
}

OSStatus AUGraphStart(AUGraph graph) { return Call(graph, &C_AudioGraph::Start); }

OSStatus AUGraphStop(AUGraph graph) { return Call(graph, &C_AudioGraph::Stop); }

OSStatus AUGraphIsRunning(AUGraph graph, Boolean* pbIsRunning) {
  if (pbIsRunning == nullptr) return kAudio_ParamError;
  const auto pGraph = toolbox::Graphs().Find(graph);
  if (pGraph == nullptr) return kAudio_ParamError;
  *pbIsRunning = pGraph->IsRunning() ? 1 : 0;
  return noErr;
}

}  // extern "C"
