#include "desktop/outlook/formats/UserFieldLines.h"

#include <charconv>

namespace kestrelon::desktop {
namespace {

constexpr int32_t kTextType = 1;

UserField ReadField(const ContentLines& lines, size_t line) {
  UserField field;
  VisitParameters(lines, line, [&](std::string_view name, std::string_view value) {
    if (EqualAscii(name, "X-NAME") && field.name.empty()) field.name = FromUtf8(value);
    if (EqualAscii(name, "X-TYPE")) {
      int32_t type = kTextType;
      std::from_chars(value.data(), value.data() + value.size(), type);
      field.type = type;
    }
  });
  field.value = ReadText(lines.RawValue(line));
  return field;
}

std::optional<size_t> FindLine(const ContentLines& lines, const Component& component,
                               StringView name, size_t from = 0) {
  auto line = lines.Find(kUserFieldLine, component, from);
  for (; line; line = lines.Find(kUserFieldLine, component, *line + 1)) {
    std::optional<bool> is_wanted;  // by the first name that the line gives
    VisitParameters(lines, *line, [&](std::string_view parameter, std::string_view value) {
      if (is_wanted || !EqualAscii(parameter, "X-NAME")) return;
      is_wanted = EqualIgnoringCase(FromUtf8(value), name);
    });
    if (is_wanted.value_or(false)) break;
  }
  return line;
}

}  // namespace

std::vector<UserField> ReadUserFields(const ContentLines& lines, const Component& component) {
  std::vector<UserField> fields;
  auto line = lines.Find(kUserFieldLine, component);
  for (; line; line = lines.Find(kUserFieldLine, component, *line + 1)) {
    fields.push_back(ReadField(lines, *line));
  }
  return fields;
}

std::optional<UserField> FindUserField(const ContentLines& lines, const Component& component,
                                       StringView name) {
  const auto line = FindLine(lines, component, name);
  if (!line) return std::nullopt;
  return ReadField(lines, *line);
}

void PutUserField(ContentLines& lines, Component& component, const UserField& field) {
  const std::string value = WriteText(field.value);
  const std::string type = std::to_string(field.type);
  if (const auto line = FindLine(lines, component, field.name)) {
    const UserField old = ReadField(lines, *line);
    if (old.type != field.type) lines.SetParameter(*line, "X-TYPE", type);
    if (WriteText(old.value) != value) lines.SetRawValue(*line, value);
    return;
  }
  std::string content(kUserFieldLine);
  content += FormatParameter("X-NAME", ToUtf8(field.name));
  content += FormatParameter("X-TYPE", type) + ":" + value;
  lines.Insert(component.end, content);
  ++component.end;
}

void RemoveUserField(ContentLines& lines, Component& component, StringView name) {
  while (const auto line = FindLine(lines, component, name)) {
    lines.Remove(*line);
    --component.end;
  }
}

}  // namespace kestrelon::desktop
