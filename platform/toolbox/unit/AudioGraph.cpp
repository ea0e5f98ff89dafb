// SPDX-License-Identifier: Apache-2.0
#include "unit/AudioGraph.h"

#include <algorithm>

#include "unit/AudioComponent.h"

namespace toolbox {
namespace {

bool IsOutput(const AudioComponentDescription& description) {
  return description.componentType == kAudioUnitType_Output;
}

}  // namespace

C_AudioGraph::C_AudioGraph() { m_notifies.reserve(kSureNotifies); }

C_AudioGraph::~C_AudioGraph() { CloseUnits(); }

C_AudioGraph::S_Node* C_AudioGraph::Find(AUNode node) {
  const auto it = std::find_if(m_nodes.begin(), m_nodes.end(),
                               [node](const S_Node& held) { return held.node == node; });
  return it != m_nodes.end() ? &*it : nullptr;
}

std::shared_ptr<C_OutputUnit> C_AudioGraph::Output() {
  for (const S_Node& node : m_nodes) {
    if (auto pOutput = std::dynamic_pointer_cast<C_OutputUnit>(node.pUnit)) return pOutput;
  }
  return nullptr;
}

OSStatus C_AudioGraph::AddNode(const AudioComponentDescription& description, AUNode& node) {
  const std::lock_guard lock(m_lock);
  AudioComponent component = AudioComponentFindNext(nullptr, &description);
  if (component == nullptr) return kAUGraphErr_InvalidAudioUnit;
  S_Node added{m_lastNode + 1, description, nullptr, nullptr};
  AudioComponentGetDescription(component, &added.description);
  const bool bSecondOutput = IsOutput(added.description) &&
                             std::any_of(m_nodes.begin(), m_nodes.end(), [](const S_Node& held) {
                               return IsOutput(held.description);
                             });
  if (bSecondOutput) return kAUGraphErr_OutputNodeErr;
  const OSStatus nStatus = m_bOpen ? OpenNode(added) : OSStatus{noErr};
  if (nStatus != noErr) return nStatus;
  m_nodes.push_back(std::move(added));
  node = ++m_lastNode;
  return noErr;
}

OSStatus C_AudioGraph::OpenNode(S_Node& node) {
  AudioComponent component = AudioComponentFindNext(nullptr, &node.description);
  const OSStatus nStatus = AudioComponentInstanceNew(component, &node.unit);
  if (nStatus != noErr) return nStatus;
  node.pUnit = FindUnit(node.unit);
  if (const auto pOutput = std::dynamic_pointer_cast<C_OutputUnit>(node.pUnit)) {
    pOutput->OpenDeviceAtStart();
    for (const AURenderCallbackStruct& notify : m_notifies) pOutput->AddNotify(notify);
  }
  return noErr;
}

OSStatus C_AudioGraph::Open() {
  const std::lock_guard lock(m_lock);
  if (m_bOpen) return noErr;
  for (S_Node& node : m_nodes) {
    const OSStatus nStatus = OpenNode(node);
    if (nStatus != noErr) return nStatus;
  }
  m_bOpen = true;
  return noErr;
}

OSStatus C_AudioGraph::Close() {
  const std::lock_guard lock(m_lock);
  CloseUnits();
  return noErr;
}

void C_AudioGraph::CloseUnits() {
  UninitializeUnits();
  for (S_Node& node : m_nodes) {
    if (node.unit != nullptr) AudioComponentInstanceDispose(node.unit);
    node.unit = nullptr;
    node.pUnit.reset();
  }
  m_bOpen = false;
}

OSStatus C_AudioGraph::NodeInfo(AUNode node, AudioComponentDescription* pDescription,
                                AudioUnit* pUnit) {
  const std::lock_guard lock(m_lock);
  const S_Node* pNode = Find(node);
  if (pNode == nullptr) return kAUGraphErr_NodeNotFound;
  if (pDescription != nullptr) *pDescription = pNode->description;
  if (pUnit != nullptr) *pUnit = pNode->unit;
  return noErr;
}

OSStatus C_AudioGraph::ConnectNodeInput(AUNode source, UInt32 dwOutput, AUNode dest,
                                        UInt32 dwInput) {
  const std::lock_guard lock(m_lock);
  const S_Node* pSource = Find(source);
  const S_Node* pDest = Find(dest);
  if (pSource == nullptr || pDest == nullptr) return kAUGraphErr_NodeNotFound;
  const bool bFits = dwOutput == 0 && dwInput == 0 && !IsOutput(pSource->description) &&
                     IsOutput(pDest->description) && m_sourceNode == 0;
  if (!bFits) return kAUGraphErr_InvalidConnection;
  if (m_bInitialized) return kAUGraphErr_CannotDoInCurrentContext;
  m_sourceNode = source;
  return noErr;
}

OSStatus C_AudioGraph::Initialize() {
  const std::lock_guard lock(m_lock);
  if (!m_bOpen) return kAUGraphErr_CannotDoInCurrentContext;
  if (m_bInitialized) return noErr;
  const OSStatus nStatus = InitializeUnits();
  if (nStatus != noErr) return nStatus;
  m_bInitialized = true;
  return noErr;
}

// The output plays in whatever format its source delivers.
OSStatus C_AudioGraph::InitializeUnits() {
  const auto pOutput = Output();
  if (pOutput == nullptr) return kAUGraphErr_OutputNodeErr;
  if (const S_Node* pSource = Find(m_sourceNode)) {
    AudioStreamBasicDescription format{};
    UInt32 cbFormat = sizeof format;
    OSStatus nStatus = pSource->pUnit->GetProperty(
        {kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output, 0}, &format, cbFormat);
    if (nStatus == noErr) {
      nStatus = pOutput->SetProperty({kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0},
                                     &format, sizeof format);
    }
    if (nStatus != noErr) return nStatus;
    pOutput->Connect(pSource->pUnit);
  }
  for (const S_Node& node : m_nodes) {
    const OSStatus nStatus = node.pUnit->Initialize();
    if (nStatus != noErr) return nStatus;
  }
  return noErr;
}

OSStatus C_AudioGraph::Uninitialize() {
  const std::lock_guard lock(m_lock);
  return UninitializeUnits();
}

// The output is uninitialised first, so that nothing is pulled from the other units afterwards.
OSStatus C_AudioGraph::UninitializeUnits() {
  if (const auto pOutput = Output()) {
    pOutput->Uninitialize();
    pOutput->Connect(nullptr);
  }
  for (const S_Node& node : m_nodes) {
    if (node.pUnit != nullptr) node.pUnit->Uninitialize();
  }
  m_bInitialized = false;
  return noErr;
}

OSStatus C_AudioGraph::AddRenderNotify(const AURenderCallbackStruct& notify) {
  if (notify.inputProc == nullptr) return kAudio_ParamError;
  const std::lock_guard lock(m_lock);
  m_notifies.reserve(m_notifies.size() + 1);
  if (const auto pOutput = Output()) pOutput->AddNotify(notify);
  m_notifies.push_back(notify);
  return noErr;
}

OSStatus C_AudioGraph::RemoveRenderNotify(const AURenderCallbackStruct& notify) {
  const std::lock_guard lock(m_lock);
  const auto nRemoved = std::erase_if(m_notifies, [&](const auto& held) {
    return held.inputProc == notify.inputProc && held.inputProcRefCon == notify.inputProcRefCon;
  });
  if (nRemoved == 0) return kAudio_ParamError;
  if (const auto pOutput = Output()) pOutput->RemoveNotify(notify);
  return noErr;
}

OSStatus C_AudioGraph::Start() {
  const std::lock_guard lock(m_lock);
  if (!m_bInitialized) return kAudioUnitErr_Uninitialized;
  return Output()->Start();
}

OSStatus C_AudioGraph::Stop() {
  const std::lock_guard lock(m_lock);
  const auto pOutput = Output();
  return pOutput != nullptr ? pOutput->Stop() : OSStatus{noErr};
}

bool C_AudioGraph::IsRunning() {
  const std::lock_guard lock(m_lock);
  const auto pOutput = Output();
  return pOutput != nullptr && pOutput->IsRunning();
}

}  // namespace toolbox
