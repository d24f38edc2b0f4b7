#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "desktop/opener/Opener.h"
#include "tests/desktop/opener/RecordingOpener.h"
#include "tests/desktop/word/objects/WordWorld.h"

namespace kestrelon::desktop::word {
namespace {

namespace fs = std::filesystem;

TEST(SaveAs, WritesADocumentUnderEveryNameThatIsNotOfAnotherFormat) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("text")));
  const std::pair<const char*, const char*> cases[] = {
      {"a.docx", "a.docx"},         {"b.DOTX", "b.DOTX"}, {"plain", "plain.docx"},
      {"Letter.PDF", "Letter.PDF"}, {"v1.2", "v1.2"},     {"x.pdf ", "x.pdf "}};
  world.Write("a.docx", "old");
  for (const auto& [name, written] : cases) {
    SCOPED_TRACE(name);
    letter.Call(u"SaveAs", ReplaceAll(world.Path(name), u"/", u"\\"));
    EXPECT_TRUE(world.Read(written).starts_with("PK"));
    EXPECT_EQ(letter.Get(u"FullName").ToText(), world.Path(written));
    EXPECT_EQ(world.TextOfFile(written), u"text\r");
  }
  letter.Call(u"SaveAs", Named(u"FileFormat", 16), Named(u"FileName", world.Path("named")));
  EXPECT_TRUE(world.Exists("named.docx"));
}

TEST(SaveAs, SaysWhatIsWrongAndLeavesTheDocumentAsItWas) {
  const WordWorld world;
  const Object letter = world.NewLetter(P(R("text")));
  letter.GetChild(u"Content").Put(u"Text", u"changed");
  ASSERT_EQ(mkfifo(ToUtf8(world.Path("pipe")).c_str(), 0600), 0);
  fs::create_directory(PathFromText(world.Path("folder.docx")));
  const struct {
    std::function<void()> action;
    int32_t number;
    const char16_t* says;
  } cases[] = {
      {[&] { letter.Call(u"SaveAs", world.Path("none/a.docx")); }, kPathNotFound, u"none/a.docx"},
      {[&] { letter.Call(u"SaveAs", world.Path("a.rtf")); }, 4198, u".rtf files"},
      {[&] { letter.Call(u"SaveAs", world.Path("a.docx"), 99); }, 4120, u"FileFormat 99"},
      {[&] { letter.Call(u"SaveAs", world.Path(".Docx")); }, 4120, u"lacks the name"},
      {[&] { letter.Call(u"SaveAs", world.Path("")); }, 4120, u"lacks the name"},
      {[&] { letter.Call(u"SaveAs", world.Path("pipe")); }, 4120, u"folder or device"},
      {[&] { letter.Call(u"SaveAs", world.Path("folder.docx")); }, 4120, u"folder or device"},
      {[&] { letter.Call(u"SaveAs", u""); }, 4120, u"empty"},
      {[&] { letter.Call(u"SaveAs", world.Path("a.docx"), Named(u"Password", u"x")); }, 4120,
       u"password"},
      {[&] { letter.Call(u"ExportAsFixedFormat", world.Path("a.xps"), 18); }, 4120, u"17 (PDF)"},
      {[&] { letter.Call(u"Save"); }, 4198, u"Document1 was never saved"},
      {[&] { letter.Call(u"Close", -1); }, 4198, u"never saved"},
      {[&] { world.word.Call(u"Quit", -1); }, 4198, u"never saved"},
  };
  for (const auto& test : cases) {
    const AutomationError error = FailureOf(test.action);
    EXPECT_EQ(error.number(), test.number);
    EXPECT_NE(error.description().find(test.says), String::npos) << error.what();
  }
  EXPECT_EQ(letter.Get(u"FullName").ToText(), u"Document1");
  EXPECT_FALSE(letter.Get(u"Saved").ToBoolean());
}

TEST(Close, SavesChangesOnlyWhenToldTo) {
  const WordWorld world;
  for (const int32_t save : {0, -1}) {
    const Object documents = world.word.GetChild(u"Documents");
    // The content counts, not the name.
    const String path = world.Write("letter.doc", LetterOf(P(R("old"))));
    const Object letter = documents.CallChild(u"Open", path);
    EXPECT_EQ(documents.CallChild(u"Open", path).Get(u"Path").ToText(),
              TextFromPath(PathFromText(path).parent_path()));
    EXPECT_EQ(documents.Get(u"Count").ToLong(), 1) << "a file is open once";
    EXPECT_TRUE(letter.Get(u"Saved").ToBoolean());
    letter.CallChild(u"Range", 0, 3).Put(u"Text", u"new");
    EXPECT_FALSE(letter.Get(u"Saved").ToBoolean());
    letter.Call(u"Close", save);
    EXPECT_EQ(world.TextOfFile("letter.doc"), save == 0 ? u"old\r" : u"new\r");
  }
}

TEST(Open, RefusesWhatItCannotReadNamingTheFile) {
  const WordWorld world;
  const Object documents = world.word.GetChild(u"Documents");
  ASSERT_EQ(mkfifo(ToUtf8(world.Path("pipe")).c_str(), 0600), 0);
  String encrypted = u"EncryptedPackage";
  const std::string compound =
      "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" +
      std::string(reinterpret_cast<const char*>(encrypted.data()), encrypted.size() * 2);
  const struct {
    const char16_t* method;
    String path;
    int32_t number;
  } cases[] = {
      {u"Add", world.Path("missing.dotx"), 5151},
      {u"Add", world.Path("no folder/missing.dotx"), 5151},
      {u"Open", world.Path("missing.docx"), 5174},
      {u"Add", world.Path("pipe"), 70},
      {u"Add", world.Path(""), 70},
      {u"Open", world.Write("damaged.docx", "PK\x03\x04 and no more"), 5792},
      {u"Open", world.Write("broken.docx", Packed(Main("<w:p a></w:p>"))), 5792},
      {u"Open", world.Write("picture.png", "\x89PNG"), 5792},
      {u"Add", world.Write("secret.docx", compound), 5408},
  };
  for (const auto& test : cases) {
    const AutomationError error = FailureOf([&] { documents.Call(test.method, test.path); });
    EXPECT_EQ(error.number(), test.number) << error.what();
    EXPECT_NE(error.description().find(test.path), String::npos) << error.what();
    EXPECT_EQ(error.description().find(u".. "), String::npos) << error.what();
  }
  EXPECT_EQ(documents.Get(u"Count").ToLong(), 0);
  EXPECT_EQ(FailureOf([&] { world.word.GetChild(u"ActiveDocument"); }).number(), 4248);
}

TEST(Converted, FormatsAreReadAndWrittenThroughTheConverter) {
  const WordWorld world;
  const String path = world.Write("template.docx", "{\\rtf1\\ansi Dear <name>\\par}");
  const Object letter = world.word.GetChild(u"Documents").CallChild(u"Add", path);
  letter.CallChild(u"Range", 5, 11).Put(u"Text", u"S\u00F6hne");
  letter.Call(u"SaveAs", Named(u"FileName", world.Path("a.tmp")), Named(u"FileFormat", 8));
  EXPECT_NE(world.Read("a.tmp").find("Dear S"), std::string::npos);
  letter.Call(u"ExportAsFixedFormat", Named(u"OutputFileName", world.Path("a.pdf")),
              Named(u"ExportFormat", 17));
  EXPECT_TRUE(world.Read("a.pdf").starts_with("%PDF"));
  EXPECT_EQ(letter.Get(u"Name").ToText(), u"a.tmp");
}

TEST(Converted, FieldsShowTheNameOfTheTarget) {
  const WordWorld world;
  const Object letter = world.NewLetter(P("<w:fldSimple w:instr=\" FILENAME \"/>"));
  letter.Call(u"SaveAs", world.Path("Letter %20 \u00C4.htm"), 8);
  EXPECT_NE(world.Read("Letter %20 \u00C4.htm").find("Letter %20 \xC4.docx"), std::string::npos)
      << world.Read("Letter %20 \u00C4.htm");
}

TEST(Converted, TellsTheReaderNeitherWhatWasDeletedNorTheComments) {
  const WordWorld world;
  const auto gone = [](const std::string& text) {
    return "<w:del w:id=\"1\" w:author=\"a\">" + Rx(Element("delText", text)) + "</w:del>";
  };
  const std::string header = "<w:hdr xmlns:w=\"" + std::string(kWordUri) + "\">" +
                             P(R("head"), gone("headsecret")) + "</w:hdr>";
  const std::string comments = "<w:comments xmlns:w=\"" + std::string(kWordUri) +
                               "\"><w:comment w:id=\"0\" w:author=\"a\">" + P(R("note")) +
                               "</w:comment></w:comments>";
  const std::string type = "application/vnd.openxmlformats-officedocument.wordprocessingml.";
  const std::string moved = "<w:moveFromRangeStart w:id=\"3\" w:name=\"m\"/><w:moveFrom>" +
                            R("movesecret") + "</w:moveFrom><w:moveFromRangeEnd w:id=\"3\"/>";
  const std::string body =
      P("<w:commentRangeStart w:id=\"0\"/>", R("kept "), gone("mainsecret"), moved,
        "<w:ins w:id=\"2\" w:author=\"a\">" + R("added") + "</w:ins>",
        "<w:commentRangeEnd w:id=\"0\"/>", Rx("<w:commentReference w:id=\"0\"/>")) +
      Tbl(Tr(C("cell")), Tr("<w:trPr><w:del w:id=\"4\"/></w:trPr>", C("rowsecret"))) + P() +
      Element("sectPr", "<w:headerReference w:type=\"default\" r:id=\"rId1\"/>");
  // The converter wants the real namespace of relationships.
  const std::string main =
      ToUtf8(ReplaceAll(FromUtf8(Main(body)), u"urn:r",
                        u"http://schemas.openxmlformats.org/officeDocument/2006/relationships"));
  const String path = world.Write(
      "reviewed.docx",
      Packed(main, {{"/x/header.xml", "/header", header, type + "header+xml"},
                    {"/x/comments.xml", "/comments", comments, type + "comments+xml"}}));
  const Object letter = world.word.GetChild(u"Documents").CallChild(u"Open", path);
  letter.Call(u"ExportAsFixedFormat", world.Path("a.pdf"), 17);
  letter.Call(u"SaveAs", world.Path("a.htm"), 8);
  letter.Call(u"SaveAs", world.Path("saved.docx"), 16);
  const std::string command =
      "pdftotext " + ToUtf8(world.Path("a.pdf")) + " " + ToUtf8(world.Path("pdf.txt"));
  ASSERT_EQ(std::system(command.c_str()), 0);
  for (const char* name : {"pdf.txt", "a.htm"}) {
    SCOPED_TRACE(name);
    const std::string text = world.Read(name);
    for (const char* kept : {"kept", "added", "head", "cell"}) {
      EXPECT_NE(text.find(kept), std::string::npos) << kept;
    }
    EXPECT_EQ(text.find("secret"), std::string::npos) << text;
    EXPECT_EQ(text.find("note"), std::string::npos) << text;
  }
  const std::string saved = world.Read("saved.docx");
  EXPECT_EQ(PartOf(saved, "/letter/main.xml"), main);
  EXPECT_EQ(PartOf(saved, "/x/header.xml"), header);
  EXPECT_EQ(PartOf(saved, "/x/comments.xml"), comments);
}

// What Visible does with the documents, as the opener tells it.
class Visible : public ::testing::Test {
 protected:
  size_t PrivateFolders() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(temporary_.path()), {}));
  }
  // Nothing was opened since the last Next().
  void ExpectNothingMore() const {
    OpenForUser("/the next");
    EXPECT_EQ(opener_.Next(), "/the next");
  }

  const WordWorld world_;
  const RecordingOpener opener_;
  PrivateFolder temporary_{"kestrelon-visible-test-"};
  ChangedEnvironment variable_{"TMPDIR", temporary_.path().string()};
};

TEST_F(Visible, HandsThePrivateCopyOfAnUnsavedDocumentToTheUserOncePerState) {
  Object letter = world_.NewLetter(P(R("text")));
  world_.word.Put(u"Visible", true);
  const fs::path copy = opener_.Next();
  EXPECT_EQ(copy.filename(), "Document1.docx");
  struct stat status {};
  ASSERT_EQ(stat(copy.parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700U);
  world_.word.Put(u"Visible", true);
  ExpectNothingMore();
  letter.GetChild(u"Content").Put(u"Text", u"changed");
  world_.word.Put(u"Visible", true);
  EXPECT_NE(opener_.Next(), copy);
  EXPECT_TRUE(world_.word.Get(u"Visible").ToBoolean());
  letter.Release();
  world_.word.Call(u"Quit");
  EXPECT_TRUE(fs::exists(copy)) << "the copy is the user's";
}

TEST_F(Visible, HandsTheSavedFileOverWhileItHoldsTheDocument) {
  const Object letter = world_.NewLetter(P(R("text")));
  letter.Call(u"SaveAs", world_.Path("letter.docx"));
  world_.word.Put(u"Visible", true);
  EXPECT_EQ(opener_.Next(), ToUtf8(world_.Path("letter.docx")));
  EXPECT_EQ(PrivateFolders(), 0U);
  letter.GetChild(u"Content").Put(u"Text", u"changed");
  world_.word.Put(u"Visible", false);
  world_.word.Put(u"Visible", true);
  EXPECT_EQ(fs::path(opener_.Next()).parent_path().parent_path(), temporary_.path());
}

TEST_F(Visible, OpensNothingWithoutAnOpener) {
  const ChangedEnvironment none("KESTRELON_OPENER", "");
  const ChangedEnvironment no_display("DISPLAY", "");
  const ChangedEnvironment no_wayland("WAYLAND_DISPLAY", "");
  const Object letter = world_.NewLetter(P(R("text")));
  world_.word.Put(u"Visible", true);
  EXPECT_EQ(PrivateFolders(), 0U);
}

TEST_F(Visible, SaysWhereTheDocumentIsWhenTheOpenerCannotBeStarted) {
  const ChangedEnvironment broken("KESTRELON_OPENER", "/nonexistent/viewer");
  const Object letter = world_.NewLetter(P(R("text")));
  const AutomationError error = FailureOf([&] { world_.word.Put(u"Visible", true); });
  EXPECT_EQ(error.number(), 4198);
  EXPECT_NE(error.description().find(TextFromPath(temporary_.path())), String::npos);
  EXPECT_EQ(PrivateFolders(), 1U);
}

}  // namespace
}  // namespace kestrelon::desktop::word
