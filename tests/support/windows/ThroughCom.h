// Scripted objects led through COM and back.
#pragma once

namespace kestrelon::testing {

// From now on the objects of every ScriptedDesktop are handed out as a COM client has them, which
// calls them through their IDispatch. A LoopCut still comes out of the call that it ended, although
// COM knows nothing of it.
void LeadScriptedObjectsThroughCom();

}  // namespace kestrelon::testing
