// Mails as other programs leave them in a folder.
#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/outlook/mail/MessageDocument.h"
#include "tests/desktop/outlook/Properties.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

class MessageDocumentTest : public testing::Test {
 protected:
  MessageDocumentTest() {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
  }
};

constexpr const char* kMail =
    "Return-Path: <bounce@example.com>\r\n"
    "Received: from a by b\r\n\tfor <me@example.com>; Sat, 21 Nov 2026 10:00:05 +0000\r\n"
    "Received: from x; Fri, 20 Nov 2026 10:00:05 +0000\r\n"
    "Date: Sat, 21 Nov 2026 09:59:00 +0200 (EET)\r\n"
    "From: =?iso-8859-1?Q?J=FCrgen?= Lee <j@example.com>\r\n"
    "To: \"Lee, Ann\" <ann@example.com>, bob@example.com,\r\n Team: c@example.com, D <d@e.f>;\r\n"
    "Cc: Undecided:;\r\n"
    "subject: =?utf-8?B?w6TDtg==?=\r\n =?utf-8?B?w7w=?= and\r\n more\r\n"
    "Message-Id: <id-1@example.com>\r\n"
    "X-Priority: 1 (Highest)\r\nStatus: RO\r\n"
    "MIME-Version: 1.0\r\nContent-Type: multipart/alternative; boundary=b\r\n\r\n"
    "--b\r\nContent-Type: text/html; charset=windows-1250\r\n\r\n<p>\x9A</p>\r\n"
    "--b\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: base64\r\n\r\n"
    "w6QKYg==\r\n--b--\r\n";

TEST_F(MessageDocumentTest, ReadsHeadersAndBodies) {
  const auto mail = ReadMessage(kMail);
  ExpectProperties(*mail,
                   u"subject=äöü and more | sendername=Jürgen Lee | "
                   u"senderemailaddress=j@example.com | "
                   u"to=Lee, Ann; bob@example.com; c@example.com; D | cc=Undecided | bcc= | "
                   u"receivedtime=2026-11-21 11:00:05 | senton=2026-11-21 08:59:00 | "
                   u"unread=False | importance=2 | body=ä\r\nb | htmlbody=<p>š</p>");
  EXPECT_EQ(mail->Uid(), "id-1@example.com");
  for (StringView name : mail->PropertyNames()) EXPECT_TRUE(mail->Has(LowerCase(name)));
}

TEST_F(MessageDocumentTest, GivesItsBestReadingOfBrokenMails) {
  std::string nested = "To: ";
  for (int i = 0; i < 50000; ++i) nested += "g: ";
  const struct {
    std::string mail;
    StringView property;
    const char* value;
  } cases[] = {
      {"", u"subject", ""},
      {"", u"senton", "4501-01-01"},
      {"no header at all\nand more", u"body", "no header at all\r\nand more"},
      {"Subject: \xE4\xF6", u"subject", "\xC3\xA4\xC3\xB6"},
      {"Subject: =?x-none?Q?a_b?= c\n\n", u"subject", "a b c"},
      {"Subject: =?utf-8?B?w6Q\n\n", u"subject", "=?utf-8?B?w6Q"},
      {std::string("Subject: a\0b\n\n", 14), u"subject", "a b"},
      {"From: not an address at all <\nDate: soon\n\n", u"sendername", "not an address at all <"},
      {"Date: 99 Foo 2026\n\n", u"receivedtime", "4501-01-01"},
      {"From me Sat Nov 21\nTo: <a@b>\n\n\xC3\xA4 \n", u"to", "a@b"},
      {"X: \n\n\xC3\xA4\n", u"body", "\xC3\xA4\r\n"},
      {"\n\xE4\n", u"body", "\xC3\xA4\r\n"},
      {"Content-Type: text/plain; charset=klingon\n\n\xE4", u"body", "\xC3\xA4"},
      {"Content-Type: text/html\n\n<p>a<p>b", u"body", "a\r\n\r\nb"},
      {"Content-Type: multipart/mixed\n\nlost", u"body", ""},
      {nested + "\n\nb", u"body", "b"},
      {"X-Unsent: 1\n\n", u"unread", "False"},
      {"X-Mozilla-Status: 0000\n\n", u"unread", "True"},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(Show(*ReadMessage(example.mail), example.property), example.value) << example.mail;
  }
}

TEST_F(MessageDocumentTest, KeepsUserPropertiesBeforeTheMessage) {
  String every;
  for (char16_t c = 1; c < 0x180; ++c) every += c;
  for (const std::string& mail :
       {std::string(kMail), std::string("From x\nA: b\n\nbody"), std::string("\r\n"),
        std::string("  no header"), std::string(" a: b"), std::string("From x"),
        std::string("A: b"), std::string()}) {
    const auto document = ReadMessage(mail);
    document->PutUserField({u"KESTID", 1, u"{1}"});
    document->PutUserField({u"a; b", 3, every});
    document->PutUserField({u"kestid", 1, u"{2}; \r\n=?x"});
    document->Put(u"unread", true);
    const auto again = ReadMessage(document->content());
    ASSERT_EQ(again->UserFields().size(), 2u) << mail;
    EXPECT_EQ(again->FindUserField(u"KestId")->value, u"{2}; \r\n=?x");
    EXPECT_EQ(again->FindUserField(u"A; B")->value, every);
    EXPECT_EQ(again->FindUserField(u"A; B")->type, 3);
    EXPECT_TRUE(again->Get(u"unread").AsBoolean());
    EXPECT_EQ(Show(*again, u"body"), Show(*ReadMessage(mail), u"body"));

    const size_t kept = mail.starts_with("From x\n") ? mail.find('\n') + 1 : 0;
    EXPECT_TRUE(again->content().starts_with(mail.substr(0, kept)));
    EXPECT_TRUE(again->content().ends_with(mail.substr(kept)));
    again->RemoveUserField(u"KESTID");
    EXPECT_FALSE(again->FindUserField(u"KESTID"));
    EXPECT_TRUE(again->FindUserField(u"a; b"));
  }
}

TEST_F(MessageDocumentTest, LeavesTheMessageAlone) {
  const auto mail = ReadMessage(kMail);
  EXPECT_EQ(NumberOf([&] { mail->Put(u"subject", u"x"); }), 440);
  EXPECT_EQ(NumberOf([&] { mail->Put(u"nothing", u"x"); }), kMemberNotFound);
  EXPECT_EQ(NumberOf([&] { mail->Get(u"nothing"); }), kMemberNotFound);
  mail->Put(u"unread", false);
  EXPECT_EQ(mail->content(), kMail);
}

}  // namespace
}  // namespace kestrelon::desktop
