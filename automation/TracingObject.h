// Tracing: a wrapper that writes one line for every automation call that passes through it, with
// the whole path that led to the object.
//
//   Word.Application.Documents.Add("letter.dotx")
//   Word.Application.Selection.Find.Text = "<name>"
//   Word.Application.Selection.Find.Found -> True
//   Outlook.Application.CreateItem(0).Recipients.Add("a") ! error 438: Object doesn't support …
//
// A get or call that returns an object has no "->": what is done with the object follows under its
// path. Texts are written as JSON writes them, cut after 500 units.
#pragma once

#include <functional>
#include <string>

#include "automation/DispatchObject.h"

namespace kestrelon {

// Takes one line, UTF-8, without its line break.
using TraceSink = std::function<void(const std::string& line)>;

// The object behind a tracing wrapper named `path`; Nothing stays Nothing.
Object TraceObject(const Object& object, const std::string& path, const TraceSink& sink);

// One call in words, for the calls that no object takes ("CreateObject(\"Word.Application\")").
std::string DescribeCall(const std::string& path, const Arguments& arguments);
std::string DescribeFailure(const AutomationError& error);

}  // namespace kestrelon
