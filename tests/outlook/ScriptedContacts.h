// Contacts in a folder of the scripted desktop.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/ScriptedDesktop.h"

namespace kestrelon::testing {

struct ScriptedContact {
  std::optional<String> stamp;  // the CRM id
  String first_name;
  String last_name;
  String email1{};
  String email2{};
  String email3{};
  int32_t item_class = 40;
};

// The item at `path` has the user property "KESTID" with this value, or none.
inline void ScriptStamp(ScriptedDesktop& desktop, const std::string& path,
                        const std::optional<String>& stamp) {
  const std::string find = path + ".UserProperties.Find(\"KESTID\")";
  desktop.Answer(find, {stamp ? desktop.NamedObject(find) : Value(Object())});
  if (stamp) desktop.Answer(find + ".Value", {Value(*stamp)});
}

// The calls on the object at `path` and on what it returned, from ".Subject = \"…\"" on, one a
// line.
inline std::string CallsOn(const ScriptedDesktop& desktop, const std::string& path) {
  std::string calls;
  for (const std::string& line : desktop.log) {
    if (line.starts_with(path + ".")) calls += line.substr(path.size()) + "\n";
  }
  return calls;
}

// The calls that stamp a contact as a permanent one with this CRM id.
inline std::string StampingCalls(const std::string& id) {
  const std::string properties = ".UserProperties";
  const std::string id_field = properties + ".Add(\"KESTID\", 1)";
  const std::string mark = properties + ".Add(\"Kestrelon\", 1)";
  return properties + "\n" + id_field + "\n" + id_field + ".Value = \"" + id + "\"\n" +  //
         properties + "\n" + mark + "\n" + mark + ".Value = \"true\"\n";
}

inline std::string ItemPath(const std::string& folder, size_t position) {
  return folder + ".Items(" + std::to_string(position) + ")";
}

inline void ScriptContacts(ScriptedDesktop& desktop, const std::string& folder,
                           const std::vector<ScriptedContact>& contacts) {
  desktop.Answer(folder + ".Items.Count", {static_cast<int32_t>(contacts.size())});
  for (size_t i = 0; i < contacts.size(); ++i) {
    const ScriptedContact& contact = contacts[i];
    const std::string path = ItemPath(folder, i + 1);
    ScriptStamp(desktop, path, contact.stamp);
    desktop.Answer(path + ".Class", {contact.item_class});
    desktop.Answer(path + ".FirstName", {Value(contact.first_name)});
    desktop.Answer(path + ".LastName", {Value(contact.last_name)});
    desktop.Answer(path + ".Email1Address", {Value(contact.email1)});
    desktop.Answer(path + ".Email2Address", {Value(contact.email2)});
    desktop.Answer(path + ".Email3Address", {Value(contact.email3)});
  }
}

}  // namespace kestrelon::testing
