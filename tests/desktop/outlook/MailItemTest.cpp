#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/outlook/objects/OutlookApplication.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// What another mail program reads from a message.
std::string ReadMessage(const fs::path& path) {
  const std::string command = "python3 " MESSAGE_READER " '" + path.string() + "' 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string said;
  char buffer[4096];
  for (size_t got; (got = fread(buffer, 1, sizeof buffer, pipe)) > 0;) said.append(buffer, got);
  EXPECT_EQ(pclose(pipe), 0) << said;
  return said;
}

// Text as Python's repr() shows it, for quotes of both kinds.
std::string InPython(const std::string& text) {
  return "'" + ToUtf8(ReplaceAll(ReplaceAll(FromUtf8(text), u"'", u"\\'"), u"\n", u"\\r\\n")) + "'";
}

class MailItemTest : public testing::Test {
 protected:
  fs::path Drafts() const { return folder_.path() / "box/Drafts"; }
  std::vector<fs::path> DraftFiles() const {
    std::vector<fs::path> files;
    if (!fs::exists(Drafts())) return files;
    for (const auto& entry : fs::directory_iterator(Drafts())) {
      if (entry.path().extension() == ".eml") files.push_back(entry.path());
    }
    return files;
  }
  std::string SaveAndRead() const {
    mail_.Call(u"Save");
    return ReadMessage(DraftFiles().at(0));
  }
  String WriteFile(std::string_view name, std::string_view content) const {
    WriteFileAtomically(folder_.path() / name, content);
    return TextFromPath(folder_.path()) + u"\\" + FromUtf8(name);
  }

  PrivateFolder folder_{"kestrelon-mail-test-"};
  ChangedEnvironment mailbox_{"KESTRELON_MAILBOX", (folder_.path() / "box").string()};
  Object mail_ = CreateOutlookApplication().CallChild(u"CreateItem", 0);
};

TEST_F(MailItemTest, WritesAPlainMailAsOneTextPart) {
  mail_.Put(u"To", u"ann@example.org");
  mail_.Put(u"body", u"\u00A3 100 =\r\n.\rFrom x\n\n" + String(1200, u'y') + u"\n");
  EXPECT_EQ(SaveAndRead(),
            "headers ['Date', 'MIME-Version', 'Message-Id', 'Subject', 'To', 'X-Unsent']\n"
            "X-Unsent '1'\nSubject ''\nTo '' ann@example.org\n"
            "text/plain  ''\n= '\u00A3 100 =\\r\\n.\\r\\nFrom x\\r\\n\\r\\n" +
                std::string(1200, 'y') + "\\r\\n'\n");
}

TEST_F(MailItemTest, WritesHtmlWithAnAlternativeAndAttachmentsByType) {
  mail_.GetChild(u"Recipients").Call(u"Add", u"ann@example.org");
  mail_.Put(u"HTMLBody", u"<style>p{}</style><p>Dear \u20AC&amp;</p><p>x</p>");
  const Object attachments = mail_.GetChild(u"Attachments");
  for (const auto* name : {"R\u00E9sum\u00E9.Doc", "b.PDF", "d", "\u4E2D\"'.txt"}) {
    const String path = WriteFile(name, std::string("\0\r\n\xFF", 4));
    EXPECT_EQ(attachments.CallChild(u"Add", path, 1, 1, u"shown").Get(u"FileName").ToText(),
              FromUtf8(name));
    fs::remove(folder_.path() / name);
  }
  EXPECT_EQ(attachments.Get(u"Count").ToLong(), 4);
  EXPECT_EQ(attachments.CallChild(u"Item", 4).Get(u"Size").ToLong(), 4);
  EXPECT_THAT(
      SaveAndRead(),
      HasSubstr("multipart/mixed  ''\n  multipart/alternative  ''\n"
                "    text/plain  ''\n    = 'Dear \u20AC&\\r\\n\\r\\nx'\n"
                "    text/html  ''\n    = '<style>p{}</style><p>Dear \u20AC&amp;</p><p>x</p>'\n"
                "  application/msword attachment 'R\u00E9sum\u00E9.Doc'\n  = b'\\x00\\r\\n\\xff'\n"
                "  application/pdf attachment 'b.PDF'\n  = b'\\x00\\r\\n\\xff'\n"
                "  application/octet-stream attachment 'd'\n"));
  EXPECT_EQ(mail_.Get(u"Body").ToText(), u"Dear \u20AC&\n\nx");
  mail_.Put(u"Body", u"plain");
  EXPECT_EQ(mail_.Get(u"HTMLBody").ToText(), u"");
}

TEST_F(MailItemTest, PutsThePicturesOfThePageBesideIt) {
  const std::string kKept =
      "<!-- <img src='data:image/png;base64,AAEC'> --><p>src=\"data:image/png;base64,AAEC\" 1 < 2"
      "<a href=\"data:image/png;base64,AAEC\">x</a><img src=\"data:image/png,AAEC\">"
      "<img src=\"data:text/html;base64,AAEC\"><img src=\"data:image/png;base64,A*EC\">"
      "<img src=\"data:image/;base64,AAEC\"><img src=\"data:image/png;base64,\">"
      "<img src=\"data:image/png;base64,AAECA\"><img src=\"cid:other\"><img alt='src=' / src=";
  const std::string html =
      "<body BACKGROUND='data:image/gif;base64,/w=='><img alt=\"a > b\"\n SRC = "
      "\"DATA:image/png;charset=x;Base64,AA\r\n EC\"><img src=data:image/png;base64,AAEC>"
      "<td style=\"color: red; background: url(&quot;data:image/svg+xml;base64,PHM+&quot;)\">" +
      kKept;
  mail_.Put(u"HTMLBody", FromUtf8(html));
  const std::string message = SaveAndRead();
  EXPECT_EQ(mail_.Get(u"HTMLBody").ToText(), FromUtf8(html));
  const std::string end = "." + DraftFiles().at(0).stem().string() + "@kestrelon.invalid";
  const std::string page =
      "<body BACKGROUND='cid:picture1" + end + "'><img alt=\"a > b\"\n SRC = \"cid:picture2" + end +
      "\"><img src=cid:picture2" + end +
      "><td style=\"color: red; background: url(&quot;cid:picture3" + end + "&quot;)\">" + kKept;
  EXPECT_THAT(message, HasSubstr("multipart/alternative  ''\n  text/plain  ''\n"));
  EXPECT_THAT(message, HasSubstr("  multipart/related  ''\n    text/html  ''\n"));
  EXPECT_THAT(message, HasSubstr(InPython(page)));
  EXPECT_THAT(message, testing::EndsWith("    image/gif inline '' <picture1" + end +
                                         ">\n    = b'\\xff'\n"
                                         "    image/png inline '' <picture2" +
                                         end +
                                         ">\n    = b'\\x00\\x01\\x02'\n"
                                         "    image/svg+xml inline '' <picture3" +
                                         end + ">\n    = b'<s>'\n"));
}

TEST_F(MailItemTest, KeepsEveryRecipientAndLetsNoneInjectAHeader) {
  const Object recipients = mail_.GetChild(u"Recipients");
  const Object placeholder =
      recipients.CallChild(u"Add", u"ENTER THE E-MAIL ADDRESS, \"HERE\"\r\nX-Evil: 1");
  EXPECT_FALSE(placeholder.Call(u"Resolve").ToBoolean());
  EXPECT_EQ(placeholder.Get(u"Address").ToText(), u"");
  const Object joerg = recipients.CallChild(u"Add", u"\"J\u00F6rg, M\" <j@m\u00FCller.example>");
  EXPECT_EQ(joerg.Get(u"Name").ToText(), u"J\u00F6rg, M");
  EXPECT_TRUE(joerg.Get(u"Resolved").ToBoolean());
  recipients.CallChild(u"Add", u"boss@example.org").Put(u"Type", 2);
  mail_.Put(u"BCC",
            u"a@b.c; ;d@e.f;\u2603@x.y;\u00DC "
            u"<\u00FC@\u00FC.example>;a@-\u2603.y;\u2603\u00A0@x.y;a@b@c;" +
                String(2000, u'\u20AC'));
  mail_.Put(u"Subject", u"Ren\u00E9\r\nX-Evil: 2\n\n" + String(200, u'\u20AC'));
  std::string euros;
  for (int i = 0; i < 200; ++i) euros += "\u20AC";
  EXPECT_THAT(
      SaveAndRead(),
      HasSubstr("'Message-Id', 'Subject', 'To', 'X-Unsent']\nX-Unsent '1'\n"
                "Subject 'Ren\u00E9  X-Evil: 2  " +
                euros +
                "'\n"
                "To name 'ENTER THE E-MAIL ADDRESS, \"HERE\"  X-Evil: 1'\n"
                "To 'J\u00F6rg, M' j@xn--mller-kva.example\n"
                "Cc '' boss@example.org\nBcc '' a@b.c\nBcc '' d@e.f\n"
                "Bcc '' \u2603@x.y\nBcc '\u00DC' \u00FC@xn--tda.example\nBcc '' a@-\u2603.y\n"
                "Bcc name '\u2603\\xa0@x.y'\nBcc name 'a@b@c'\nBcc name '" +
                euros.substr(0, 60)));
}

TEST_F(MailItemTest, KeepsToAndTheRecipientsInStep) {
  const Object recipients = mail_.GetChild(u"Recipients");
  recipients.Call(u"Add", u"a@b.c;Ann <d@e.f>");
  recipients.CallChild(u"Add", u"copy@b.c").Put(u"Type", 2);
  EXPECT_EQ(mail_.Get(u"To").ToText(), u"a@b.c; Ann <d@e.f>");
  mail_.Put(u"To", u"O'Brien; x@y.z");
  EXPECT_EQ(mail_.Get(u"To").ToText(), u"O'Brien; x@y.z");
  EXPECT_EQ(mail_.Get(u"CC").ToText(), u"copy@b.c");
  EXPECT_EQ(recipients.Get(u"Count").ToLong(), 3);
  String names;
  const auto walk = recipients.Enumerate();
  while (const auto one = walk->Next()) names += one->ToObject().Get(u"Name").ToText() + u"|";
  EXPECT_EQ(names, u"copy@b.c|O'Brien|x@y.z|");
  mail_.Put(u"CC", u"a@b.c, \"Lee; A, B\" <d@e.f>,; Lee, Bob <g@h.i>; 5\" x, y@z.z");
  EXPECT_EQ(mail_.Get(u"CC").ToText(),
            u"a@b.c; \"Lee; A, B\" <d@e.f>; Lee, Bob <g@h.i>; 5\" x, y@z.z");
  mail_.Put(u"CC", u"copy@b.c");
  EXPECT_EQ(FailureOf([&] { recipients.Call(u"Item", 4); }).number(), kArrayIndexOutOfBounds);
  EXPECT_EQ(FailureOf([&] { recipients.Call(u"Add", u" ; "); }).number(), kInvalidProcedureCall);
  EXPECT_EQ(FailureOf([&] { recipients.CallChild(u"Item", 1).Put(u"Type", 0); }).number(),
            kInvalidProcedureCall);
}

TEST_F(MailItemTest, ShowsTheDraftAndRewritesItWhenShownAgain) {
  EXPECT_EQ(mail_.Get(u"EntryID").ToText(), u"");
  {
    const ChangedEnvironment none("KESTRELON_OPENER", (folder_.path() / "none").string());
    const AutomationError error = FailureOf([&] { mail_.Call(u"display"); });
    ASSERT_EQ(DraftFiles().size(), 1u);
    EXPECT_NE(error.description().find(TextFromPath(DraftFiles().front())), String::npos);
  }
  const fs::path draft = DraftFiles().front();
  EXPECT_EQ(fs::status(Drafts()).permissions(), fs::perms::owner_all);
  const RecordingOpener opener;
  mail_.Put(u"To", u"after@display.example");
  mail_.Call(u"Display", false);
  EXPECT_EQ(opener.Next(), draft.string());
  mail_.Put(u"Subject", u"dropped");
  mail_.Call(u"Close", 1);
  EXPECT_EQ(DraftFiles(), std::vector<fs::path>{draft});
  EXPECT_THAT(ReadMessage(draft), HasSubstr("Subject ''\nTo '' after@display.example\n"));
}

TEST_F(MailItemTest, SaysWhatCannotBeAttachedOrCreated) {
  const Object attachments = mail_.GetChild(u"Attachments");
  const String path = TextFromPath(folder_.path() / "x");
  const AutomationError missing = FailureOf([&] { attachments.Call(u"Add", path); });
  EXPECT_EQ(missing.number(), kFileNotFound);
  EXPECT_NE(missing.description().find(path), String::npos);
  EXPECT_EQ(attachments.Get(u"Count").ToLong(), 0);
  const Object outlook = RunningOutlookApplication();
  EXPECT_EQ(FailureOf([&] { outlook.Call(u"CreateItem", 4); }).number(), kNotImplemented);
  EXPECT_EQ(FailureOf([&] { outlook.Call(u"GetNamespace", u"X"); }).number(),
            kInvalidProcedureCall);
  EXPECT_EQ(outlook.CallChild(u"GetNamespace", u"MAPI").GetChild(u"Application").pointer(),
            CreateOutlookApplication().pointer());
}

TEST_F(MailItemTest, SaysWhichMailboxCannotBeWritten) {
  WriteFile("box", "a file");
  const AutomationError error = FailureOf([&] { mail_.Call(u"Save"); });
  EXPECT_EQ(error.number(), kPathNotFound);
  EXPECT_THAT(
      ToUtf8(error.description()),
      testing::AllOf(testing::StartsWith("Path not found. "),
                     HasSubstr(Drafts().parent_path().string()), HasSubstr("KESTRELON_MAILBOX")));
  EXPECT_EQ(mail_.Get(u"EntryID").ToText(), u"");
}

TEST_F(MailItemTest, SavesBesideTheDataOfTheUser) {
  const ChangedEnvironment none("KESTRELON_MAILBOX", "");
  const ChangedEnvironment data("XDG_DATA_HOME", (folder_.path() / "data").string());
  mail_.Call(u"Save");
  EXPECT_TRUE(fs::exists(folder_.path() / "data/kestrelon/mailbox/Drafts"));
}

}  // namespace
}  // namespace kestrelon::desktop
