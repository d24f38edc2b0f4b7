#include <tuple>

#include "outlook/Mails.h"
#include "tests/outlook/OutlookMembers.h"
#include "tests/outlook/ScriptedContacts.h"

namespace kestrelon {
namespace {

using SendWithOriginal = bool (*)(ControlContext&, String&, String&, String&, String&, String&,
                                  String&);

const std::string kMail = "Outlook.Application.CreateItem(0)";

class Mails : public OutlookMembers {
 protected:
  void Generate(String mail_type, String address = u"a@b") {
    String body = u"<p>";
    String subject = u"Q-17";
    String address_type = u"Fax";
    EXPECT_TRUE(GenerateEmail(context, body, address, subject, mail_type, address_type).IsEmpty());
  }
  bool Send(SendWithOriginal send, String body) {
    String address = u"O\\'B";
    String from = u"f";
    String sent = u"s";
    String to = u"t";
    String subject = u"u";
    return send(context, address, from, sent, to, subject, body);
  }
};

TEST_F(Mails, PlaceholdersStandForMissingAddressesAndKindsMatchExactly) {
  EXPECT_EQ(GetRecipientAddress(u"Null", u"Fax", u"Quote"), u"Null");
  EXPECT_EQ(GetRecipientAddress(u"null", u"Fax", u"quote"),
            u"ENTER THE FAX ADDRESS OF THE RECIPIENT OF THE REPORT HERE");
  EXPECT_EQ(GetRecipientAddress(u"", u"fax", u"Quote"),
            u"ENTER THE E-MAIL ADDRESS OF THE RECIPIENT OF THE QUOTE HERE");
  EXPECT_EQ(GetMailSubject(u"", u"Quote"), u"");
  EXPECT_EQ(GetMailSubject(u"Q-17", u"Quote"), u"Quote: Q-17");
  EXPECT_EQ(GetMailSubject(u"Q-17", u"quote"), u"Report on: Q-17");
}

TEST_F(Mails, GeneratedMailFollowsAPictureOfTheScreen) {
  Generate(u"Quote", u"");
  EXPECT_EQ(desktop.log,
            (Lines{"key 44 1 0", "create Outlook.Application", kMail, kMail + ".Recipients",
                   kMail + ".Recipients.Add(\"ENTER THE FAX ADDRESS OF THE RECIPIENT OF THE QUOTE "
                           "HERE\")",
                   kMail + ".Subject = \"Quote: Q-17\"", kMail + ".HTMLBody = \"<p>\"",
                   kMail + ".display()"}));
  EXPECT_EQ(context.state.os_version.size, 148U);
  EXPECT_EQ(context.state.os_version_result, 1);
}

TEST_F(Mails, OldSystemsGetThePictureOfTheWindowUntilANewerOneIsSeen) {
  desktop.os_major_version = 4;
  Generate(u"Quote");
  desktop.log.resize(4);
  EXPECT_EQ(desktop.log, (Lines{"key 18 0 0", "key 44 0 0", "key 44 0 2", "key 18 0 2"}));
  context.state.is_newer_system = true;
  desktop.log.clear();
  Generate(u"Quote");
  EXPECT_EQ(desktop.log[0], "key 44 1 0");
}

TEST_F(Mails, OnlyAMissingOutlookIsReportedForAReport) {
  for (const auto& [mail_type, number, word] : {std::tuple(u"Quote", 429, u"quote"),
                                                {u"Report", 429, u"report"},
                                                {u"quote", 429, u"report"},
                                                {u"Report", 462, u"quote"}}) {
    FailOnly(kMail, AutomationError(number));
    Generate(mail_type);
    const String kind = word;
    EXPECT_EQ(desktop.messages.back().title, u"Unable to send " + kind);
    EXPECT_TRUE(desktop.messages.back().text.starts_with(u"Unable to send this " + kind));
  }
}

TEST_F(Mails, SimpleMailUnescapesItsAddressForTheCallerToo) {
  String address = u"O\\'Brien\\'s; a'b\\";
  EXPECT_TRUE(SendEmail(context, address));
  EXPECT_EQ(address, u"O'Brien's; a'b\\");
  EXPECT_EQ(CallsOn(desktop, kMail), ".To = \"O'Brien's; a'b\\\\\"\n.display()\n");
  desktop.Fail(kMail, AutomationError(5));
  address = u"\\'";
  EXPECT_FALSE(SendEmail(context, address));
  EXPECT_EQ(address, u"\\'") << "the address was changed without a mail to go into";
}

TEST_F(Mails, RepliesQuoteTheOriginalInItsOwnForm) {
  const std::string to = ".To = \"O\\\\'B\"\n";
  const std::string subject = ".Subject = \"RE: u\"\n";
  const std::string display = ".display()\n";
  const std::string plain =
      ".body = \"\\r\\n\\r\\n-----Original Message-----\\r\\nFrom:f\\r\\nSent:s\\r\\nTo:t\\r\\n"
      "Subject:u\\r\\n\\r\\nhello\"\n";
  const std::string html =
      ".HTMLBody = \"<br>-----Original Message-----<br>From:f<br>Sent:s<br>To:t<br>"
      "Subject:u<br><br>a <Html> b\"\n";
  const struct {
    SendWithOriginal send;
    const char16_t* body;
    std::string calls;
  } cases[] = {
      {&SendEmailFull, u"<html>", to + ".Subject = \"u\"\n.body = \"<html>\"\n" + display},
      {&SendEmailWithOriginal, u"hello", to + subject + plain + display},
      {&ForwardEmailWithOriginal, u"a <Html> b", subject + html + display + to},
  };
  for (const auto& example : cases) {
    desktop.log.clear();
    EXPECT_TRUE(Send(example.send, example.body));
    EXPECT_EQ(CallsOn(desktop, kMail), example.calls);
  }
}

TEST_F(Mails, ContactsFolderIsMadeOnlyWhereNoneHasTheName) {
  const std::string top = kNamespace + ".GetDefaultFolder(10)";
  AnswerEach(top + ".Folders", {"A", "B"});
  desktop.Answer("A.Name", {Value(u"Clients")});
  desktop.Answer("B.Name", {Value(u"5")});
  for (const auto& [name, is_made] : {std::pair{Value(u"Clients"), false},
                                      {Value(u"clients"), true},
                                      {Value(int32_t{5}), false},
                                      {Value(u""), true}}) {
    desktop.log.clear();
    Value foldername = name;
    EXPECT_TRUE(CheckForFolder(context, foldername));
    const std::string add = top + ".Folders.Add(\"" + ToUtf8(name.ToText()) + "\", 10)";
    EXPECT_EQ(desktop.log.back(), is_made ? add : "B.Name");
  }
  Value foldername = Value::Null{};
  EXPECT_FALSE(CheckForFolder(context, foldername));
}

}  // namespace
}  // namespace kestrelon
