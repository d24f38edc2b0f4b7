// The world of the Outlook members' tests: the scripted desktop, and one control's context on it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Failures.h"
#include "tests/support/ScriptedDesktop.h"

namespace kestrelon {

using Lines = std::vector<std::string>;
using testing::ShownMessage;
using Messages = std::vector<ShownMessage>;

const std::string kOutlook = "Outlook.Application";
const std::string kNamespace = kOutlook + ".GetNamespace(\"MAPI\")";

// A message box with an OK button only and the desktop's title.
inline ShownMessage PlainMessage(const String& text) { return {text, 0, std::nullopt}; }

class OutlookMembers : public ::testing::Test {
 protected:
  // From now on this call fails, and no other.
  void FailOnly(const std::string& call, const AutomationError& error) {
    desktop.StopFailing();
    desktop.Fail(call, error);
  }
  // A walk over `collection` gives objects with these names.
  void AnswerEach(const std::string& collection, const std::vector<std::string>& names) {
    Value::Array objects;
    for (const std::string& name : names) objects.push_back(desktop.NamedObject(name));
    desktop.Answer(collection + ".Each", {Value(std::move(objects))});
  }

  testing::ScriptedDesktop desktop;
  ControlContext context{desktop};
};

}  // namespace kestrelon
