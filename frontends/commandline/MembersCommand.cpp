#include "frontends/commandline/MembersCommand.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "Control/InterfaceTable.h"
#include "frontends/commandline/ExitStatus.h"
#include "frontends/commandline/JsonValue.h"

namespace kestrelon::commandline {
namespace {

using Json = nlohmann::ordered_json;

const char* KindWord(MemberKind kind) {
  return kind == MemberKind::kPropertyPut ? "propertyput" : "method";
}

Json DescribeParameter(const Parameter& parameter) {
  Json json = {{"name", ToUtf8(parameter.name)},
               {"type", TypeWord(parameter.type)},
               {"optional", parameter.optional}};
  if (parameter.default_value) json["default"] = ToJson(*parameter.default_value);
  return json;
}

Json DescribeMember(const Member& member) {
  Json parameters = Json::array();
  for (const Parameter& parameter : member.parameters) {
    parameters.push_back(DescribeParameter(parameter));
  }
  return {{"name", ToUtf8(member.name)},
          {"dispid", member.dispid},
          {"kind", KindWord(member.kind)},
          {"result", TypeWord(member.result)},
          {"parameters", parameters}};
}

// "OpenFile(filePath: String, [ManagedStorage: Boolean = false]) -> String"
std::string Signature(const Member& member) {
  std::string list;
  for (const Parameter& parameter : member.parameters) {
    std::string text = ToUtf8(parameter.name) + ": " + TypeWord(parameter.type);
    if (parameter.default_value) text += " = " + ToJson(*parameter.default_value).dump();
    if (parameter.optional) text = "[" + text + "]";
    list += (list.empty() ? "" : ", ") + text;
  }
  std::string signature = ToUtf8(member.name) + "(" + list + ")";
  if (member.result != ParameterType::kNone) {
    signature += std::string(" -> ") + TypeWord(member.result);
  }
  return signature;
}

}  // namespace

const char* TypeWord(ParameterType type) {
  switch (type) {
    case ParameterType::kString:
      return "String";
    case ParameterType::kBoolean:
      return "Boolean";
    case ParameterType::kInteger:
      return "Integer";
    case ParameterType::kVariant:
      return "Variant";
    case ParameterType::kXmlDocument:
      return "XMLDocument";
    case ParameterType::kHtmlDocument:
      return "HTMLDocument";
    case ParameterType::kObject:
      return "Object";
    case ParameterType::kNone:
      break;
  }
  return "none";
}

int PrintMembers(std::ostream& out, bool json) {
  if (json) {
    Json members = Json::array();
    for (const Member& member : InterfaceTable()) members.push_back(DescribeMember(member));
    out << members.dump(2) << "\n";
    return kSuccess;
  }
  for (const Member& member : InterfaceTable()) {
    char dispid[16];
    std::snprintf(dispid, sizeof dispid, "0x%08X", member.dispid);
    out << dispid << "  " << Signature(member) << "\n";
  }
  return kSuccess;
}

}  // namespace kestrelon::commandline
