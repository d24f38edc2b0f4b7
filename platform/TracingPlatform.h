// A platform that traces: it hands everything on to another one and writes a line for every
// automation call, those that create or attach to a server included.
#pragma once

#include "automation/TracingObject.h"
#include "platform/ForwardingPlatform.h"

namespace kestrelon {

class TracingPlatform final : public ForwardingPlatform {
 public:
  TracingPlatform(Platform& platform, TraceSink sink)
      : ForwardingPlatform(platform), sink_(std::move(sink)) {}

  Object CreateObject(StringView prog_id, StringView server) override;
  Object GetRunningObject(StringView prog_id) override;

 private:
  TraceSink sink_;
};

}  // namespace kestrelon
