// `kestrelon session`: many calls on one control, one JSON object a line.
//
//   in   {"member":"…","args":{"NAME":VALUE,…},"answers":[BUTTON,…]}
//   out
//   {"result":…,"args":{…},"messages":[{"text","flags","title"}],"error":{"number","description"}}
//
// A request that cannot be read is answered like a failed call: error 5 says what is wrong with it,
// 438 that there is no such member, 448 that a member has no such parameter.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Control/KestrelonControl.h"
#include "automation/TracingObject.h"

namespace kestrelon::commandline {

// The message boxes of one call, answered in order; OK when no answer is left.
class MessageLog {
 public:
  int32_t Show(const String& text, int32_t flags, const std::optional<String>& title);
  void Begin(std::vector<int32_t> answers);
  const nlohmann::ordered_json& messages() const { return messages_; }

 private:
  nlohmann::ordered_json messages_ = nlohmann::ordered_json::array();
  std::vector<int32_t> answers_;
};

class Session {
 public:
  // Both must outlive the session; `messages` is what the platform shows its message boxes to.
  // `trace` takes the calls on documents that come as arguments; none when empty.
  Session(Platform& platform, MessageLog& messages, TraceSink trace = {})
      : control_(platform), messages_(messages), trace_(std::move(trace)) {}

  // The response to one line, without line breaks.
  std::string Answer(std::string_view line);

 private:
  KestrelonControl control_;
  MessageLog& messages_;
  TraceSink trace_;
};

}  // namespace kestrelon::commandline
