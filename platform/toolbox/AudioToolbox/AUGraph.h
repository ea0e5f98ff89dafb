// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioUnit.h>

// The audio processing graph: owns units as nodes, connects them and drives them from the output
// node. It opens its device when it is first started; a graph that is never started needs no
// device.

using AUGraph = struct OpaqueAUGraph*;
using AUNode = SInt32;

enum : OSStatus {
  kAUGraphErr_NodeNotFound = -10860,
  kAUGraphErr_InvalidConnection = -10861,
  kAUGraphErr_OutputNodeErr = -10862,
  kAUGraphErr_CannotDoInCurrentContext = -10863,
  kAUGraphErr_InvalidAudioUnit = -10864,
};

extern "C" {
OSStatus NewAUGraph(AUGraph* pGraph);
// Stops, closes and frees the graph.
OSStatus DisposeAUGraph(AUGraph graph);

OSStatus AUGraphAddNode(AUGraph graph, const AudioComponentDescription* pDescription,
                        AUNode* pNode);
// Creates the units of the nodes.
OSStatus AUGraphOpen(AUGraph graph);
// Stops the graph and disposes of its units; the nodes stay.
OSStatus AUGraphClose(AUGraph graph);
// Returns the description and the unit of a node; either pointer may be null. The unit is null
// before `AUGraphOpen`.
OSStatus AUGraphNodeInfo(AUGraph graph, AUNode node, AudioComponentDescription* pDescription,
                         AudioUnit* pUnit);
OSStatus AUGraphConnectNodeInput(AUGraph graph, AUNode sourceNode, UInt32 dwSourceOutput,
                                 AUNode destNode, UInt32 dwDestInput);
OSStatus AUGraphInitialize(AUGraph graph);
// Stops and uninitialises the units; also succeeds when they are not initialised.
OSStatus AUGraphUninitialize(AUGraph graph);

// The callback is called before (kAudioUnitRenderAction_PreRender) and after
// (kAudioUnitRenderAction_PostRender) each cycle with the cycle's time stamp. A cycle has at most
// 512 frames, or 4096 when a render callback feeds interleaved frames to the output.
OSStatus AUGraphAddRenderNotify(AUGraph graph, AURenderCallback callback, void* pRefCon);
OSStatus AUGraphRemoveRenderNotify(AUGraph graph, AURenderCallback callback, void* pRefCon);

// Starting again after a stop continues where rendering stopped.
OSStatus AUGraphStart(AUGraph graph);
// Returns once everything rendered has been played; returns at once when the graph is not running.
OSStatus AUGraphStop(AUGraph graph);
OSStatus AUGraphIsRunning(AUGraph graph, Boolean* pbIsRunning);
}
