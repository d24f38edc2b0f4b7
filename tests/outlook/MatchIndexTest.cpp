// The index against the walk that it stands for: every row in turn, its id before its names.
#include <gtest/gtest.h>

#include <algorithm>

#include "outlook/ContactRecords.h"
#include "outlook/MatchIndex.h"
#include "tests/outlook/ScriptedContacts.h"
#include "tests/support/Dice.h"

namespace kestrelon {
namespace {

using testing::Dice;
using testing::ItemPath;
using testing::ScriptedContact;
using testing::ScriptedDesktop;

struct Record {
  String id;
  String first_name;
  String last_name;
  String email;
  bool by_name;
};

struct Outcome {
  ContactMatch match = ContactMatch::kNone;
  size_t position = 0;  // of the contact that was fetched; 0 for none
  bool operator==(const Outcome&) const = default;
};

bool HasId(const String& stored, const String& id) {
  return EqualIgnoringCase(stored, id) || EqualIgnoringCase(stored, u"{" + id + u"}");
}

// `indexed` is the folder as it was when the index was built.
Outcome WalkRows(const std::vector<ScriptedContact>& indexed,
                 const std::vector<ScriptedContact>& now, const Record& record) {
  const bool by_name = record.by_name && !record.first_name.empty() && !record.last_name.empty() &&
                       !record.email.empty();
  for (size_t row = 0; row < indexed.size(); ++row) {
    const ScriptedContact& contact = indexed[row];
    if (HasId(contact.stamp.value_or(u""), record.id)) {
      const bool is_still_it = now[row].stamp && HasId(*now[row].stamp, record.id);
      return {is_still_it ? ContactMatch::kFound : ContactMatch::kFailed, row + 1};
    }
    const bool has_email = EqualIgnoringCase(contact.email1, record.email) ||
                           EqualIgnoringCase(contact.email2, record.email) ||
                           EqualIgnoringCase(contact.email3, record.email);
    if (by_name && contact.item_class == 40 &&
        EqualIgnoringCase(contact.first_name, record.first_name) &&
        EqualIgnoringCase(contact.last_name, record.last_name) && has_email) {
      return {ContactMatch::kFound, row + 1};
    }
  }
  return {};
}

// Few texts, which differ in case and braces and make each other up when they are joined.
const std::vector<String> kIds = {u"a",   u"A",      u"{a}",      u"{A}", u"{{a}}",
                                  u"{a}", u"\u00E9", u"{\u00C9}", u"b",   u"c"};
const std::vector<String> kNames = {u"", u"x", u"X", u"y", u"xy", u"yx", u"x\u0001"};
const std::vector<String> kEmails = {u"", u"", u"m", u"M", u"ym", u"n"};

ScriptedContact RandomContact(Dice& dice) {
  ScriptedContact contact;
  if (dice.Roll(3) == 0) contact.stamp = dice.OneOf(kIds);
  contact.first_name = dice.OneOf(kNames);
  contact.last_name = dice.OneOf(kNames);
  contact.email1 = dice.OneOf(kEmails);
  contact.email2 = dice.OneOf(kEmails);
  contact.email3 = dice.OneOf(kEmails);
  if (dice.Roll(6) == 0) contact.item_class = 69;
  return contact;
}

TEST(MatchIndex, FindsWhatTheWalkFinds) {
  Dice dice;
  int outcomes[3] = {};
  for (int round = 0; round < 400; ++round) {
    std::vector<ScriptedContact> contacts(dice.Roll(12));
    for (ScriptedContact& contact : contacts) contact = RandomContact(dice);
    ScriptedDesktop desktop;
    ScriptContacts(desktop, "F", contacts);
    ControlContext context{desktop};
    context.state.bound_contact_folder = desktop.NamedObject("F").ToObject();
    bool off = false;
    CheckOutLookContactExists(context, u"none", u"", u"", u"", off);  // builds the index
    // The folder goes on without it.
    const std::vector<ScriptedContact> indexed = contacts;
    for (size_t i = 0; i < contacts.size(); ++i) {
      if (dice.Roll(4) != 0) continue;
      contacts[i].stamp = dice.Roll(2) == 0 ? std::nullopt : std::optional(dice.OneOf(kIds));
      ScriptStamp(desktop, ItemPath("F", i + 1), contacts[i].stamp);
    }
    for (int query = 0; query < 20; ++query) {
      const Record record = {dice.OneOf(kIds), dice.OneOf(kNames), dice.OneOf(kNames),
                             dice.OneOf(kEmails), dice.Roll(4) != 0};
      context.state.current_contact.Release();
      bool by_name = record.by_name;
      Outcome outcome;
      outcome.match = CheckOutLookContactExists(context, record.id, record.first_name,
                                                record.last_name, record.email, by_name);
      const Outcome expected = WalkRows(indexed, contacts, record);
      if (context.state.current_contact) {
        outcome.position = expected.position;
        EXPECT_EQ(desktop.PathOf(context.state.current_contact), ItemPath("F", expected.position));
      }
      EXPECT_EQ(outcome, expected) << "round " << round << ", id " << ToUtf8(record.id);
      ++outcomes[static_cast<int>(outcome.match) + 1];
    }
  }
  for (const int count : outcomes) EXPECT_GT(count, 300);
}

TEST(MatchIndex, ReadsTheFolderOnceAndEachItemOnce) {
  ScriptedDesktop desktop;
  ScriptContacts(desktop, "F", {{u"a", u"x", u"y", u"m", u"", u""}, {std::nullopt, u"x", u"y"}});
  desktop.Answer("F.Items(2).Class", {69});
  BuildMatchIndex(desktop.NamedObject("F").ToObject());
  const std::string stamp = ".UserProperties\n.UserProperties.Find(\"KESTID\")\n";
  EXPECT_EQ(CallsOn(desktop, "F.Items(1)"),
            stamp +
                ".UserProperties.Find(\"KESTID\").Value\n.Class\n.FirstName\n.LastName\n"
                ".Email1Address\n.Email2Address\n.Email3Address\n");
  EXPECT_EQ(CallsOn(desktop, "F.Items(2)"), stamp + ".Class\n");
  for (const char* line : {"F.Items", "F.Items.Count", "F.Items(1)", "F.Items(2)"}) {
    EXPECT_EQ(std::count(desktop.log.begin(), desktop.log.end(), line), 1) << line;
  }
}

}  // namespace
}  // namespace kestrelon
