// Runs JScript and VBScript as a browser does: in this thread, through the engines of the system.
#pragma once

#include <vector>

#include "platform/windows/ComClass.h"

namespace kestrelon::testing {

// Part of an object that may outlive the tests: some script engines keep references for good to
// class factories (JScript of Wine) or to the site that they give to objects (its VBScript).
struct NotCounted {
  NotCounted() { --live_objects; }
  ~NotCounted() { ++live_objects; }
};

enum class Language { kJScript, kVBScript };

// What a host is to its script.
struct ScriptHost {
  Language language = Language::kJScript;
  // The global object `host` of the script; may be null.
  ComPtr<IDispatch> host;
  // Leads from the script to the page it stands on (a service provider); null for no page.
  ComPtr<IUnknown> page;

  // Runs the texts one after the other as one script. What went wrong, with the number of the line
  // within its text, "" for nothing: "line 3: error 0x800A01A8: Object required".
  String Run(const std::vector<String>& texts) const;
};

}  // namespace kestrelon::testing
