// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AUGraph.h>

#include <memory>
#include <mutex>
#include <vector>

#include "unit/OutputUnit.h"

namespace toolbox {

// The object behind an AUGraph: nodes, their units while the graph is open, connections, and the
// render notifications. Every operation does what the AUGraph call of the same name does; see
// there.
class C_AudioGraph {
 public:
  C_AudioGraph();
  ~C_AudioGraph();
  C_AudioGraph(const C_AudioGraph&) = delete;
  C_AudioGraph& operator=(const C_AudioGraph&) = delete;

  OSStatus AddNode(const AudioComponentDescription& description, AUNode& node);
  OSStatus Open();
  OSStatus Close();
  OSStatus NodeInfo(AUNode node, AudioComponentDescription* pDescription, AudioUnit* pUnit);
  OSStatus ConnectNodeInput(AUNode source, UInt32 dwOutput, AUNode dest, UInt32 dwInput);
  OSStatus Initialize();
  OSStatus Uninitialize();
  OSStatus AddRenderNotify(const AURenderCallbackStruct& notify);
  OSStatus RemoveRenderNotify(const AURenderCallbackStruct& notify);
  OSStatus Start();
  OSStatus Stop();
  bool IsRunning();

 private:
  struct S_Node {
    AUNode node;
    AudioComponentDescription description;
    AudioUnit unit;
    std::shared_ptr<I_Unit> pUnit;
  };
  S_Node* Find(AUNode node);
  OSStatus OpenNode(S_Node& node);
  OSStatus InitializeUnits();
  OSStatus UninitializeUnits();
  // The unit of the output node; null while the graph is closed or has no output node.
  std::shared_ptr<C_OutputUnit> Output();
  void CloseUnits();

  std::mutex m_lock;
  std::vector<S_Node> m_nodes;
  AUNode m_lastNode = 0;
  // The node that feeds the output node; 0 when there is none.
  AUNode m_sourceNode = 0;
  std::vector<AURenderCallbackStruct> m_notifies;
  bool m_bOpen = false;
  bool m_bInitialized = false;
};

}  // namespace toolbox
