#include "platform/TracingPlatform.h"

namespace kestrelon {
namespace {

template <typename Obtain>
Object TraceObtained(const std::string& line, StringView prog_id, const TraceSink& sink,
                     const Obtain& obtain) {
  try {
    const Object object = obtain();
    sink(line);
    return TraceObject(object, ToUtf8(prog_id), sink);
  } catch (const AutomationError& error) {
    sink(line + DescribeFailure(error));
    throw;
  }
}

}  // namespace

Object TracingPlatform::CreateObject(StringView prog_id, StringView server) {
  Arguments arguments;
  arguments.Add(Value(prog_id));
  if (!server.empty()) arguments.Add(Value(server));
  return TraceObtained(DescribeCall("CreateObject", arguments), prog_id, sink_,
                       [&] { return ForwardingPlatform::CreateObject(prog_id, server); });
}

Object TracingPlatform::GetRunningObject(StringView prog_id) {
  Arguments arguments;
  arguments.Add(Value(prog_id));
  return TraceObtained(DescribeCall("GetRunningObject", arguments), prog_id, sink_,
                       [&] { return ForwardingPlatform::GetRunningObject(prog_id); });
}

}  // namespace kestrelon
