#include "documents/TemplateLists.h"
#include "tests/support/FailEachCall.h"

namespace kestrelon {
namespace {

using testing::ScriptedDesktop;

void AnswerFiles(ScriptedDesktop& desktop, const std::string& folder, std::vector<String> names) {
  std::vector<Value> files;
  for (const String& name : names) {
    files.push_back(desktop.NamedObject("file " + ToUtf8(name)));
    desktop.Answer("file " + ToUtf8(name) + ".Name", {Value(name)});
  }
  desktop.Answer("Scripting.FileSystemObject.GetFolder(\"" + folder + "\").Files.Each", {files});
}

struct TemplateLists : ::testing::Test {
  String List(String folder, String type = u"home") {
    const String passed = folder + type;
    String list = GetTemplateList(context, folder, type);
    EXPECT_EQ(folder + type, passed);
    return list;
  }
  bool Find(String path) { return FindFile(context, path); }
  ScriptedDesktop desktop;
  ControlContext context{desktop};
};

TEST_F(TemplateLists, DiskFoldersGiveTheirTemplatesInTheirOrder) {
  AnswerFiles(desktop, "C:\\\\T",
              {u"z.DOTX", u"Letter.dot", u"~$Letter.dot", u"Notes.txt", u"dot", u"a.dot.doc"});
  AnswerFiles(desktop, "/t\\\\Day", {u"a.b.dotx"});
  for (const char16_t* type : {u"Business", u"home", u"SHIPPING", u"billing"}) {
    EXPECT_EQ(List(u"C:\\T\\", type), u"z.DOTX\\Letter.dot\\dot\\");
  }
  EXPECT_EQ(List(u"/t/", u"Day"), u"a.b.dotx\\");
}

TEST_F(TemplateLists, WebFoldersAreAskedForWithSlashes) {
  desktop.web_page =
      "<A HREF=\"/\">[To Parent Directory]</A> <a href=x>small</a><A HREF=\"q\">Quote.dotx</A>"
      "<A HREF=\"e\"></A><A HREF=\"l\">Caf\xE9 \x80.txt";
  EXPECT_EQ(List(u"HTTPS://h\\t\\"), u"Quote.dotx\\Café €.txt");
  EXPECT_EQ(desktop.log, (std::vector<std::string>{"internet VB OpenUrl", "url HTTPS://h/t",
                                                   "close 2", "close 1"}));
  for (const char16_t* folder : {u"http://h/t", u"http://h/t/", u"http://h\\t\\"}) {
    List(folder, u"Day");
    EXPECT_EQ(*(desktop.log.end() - 3), "url http://h/t/Day");
  }
  desktop.web_page.reset();
  EXPECT_EQ(List(u"http://h/t"), u"Empty");
  EXPECT_EQ(desktop.log.back(), "close 1");
}

TEST_F(TemplateLists, AThousandLinksAreListedAndMoreThanOneOverIsAnError) {
  desktop.web_page = "x>y<A HREF<A HREF>1</A>";
  for (int i = 3; i <= 1001; ++i) *desktop.web_page += "<A HREF>" + std::to_string(i) + "</A>";
  const String list = List(u"http://h");
  EXPECT_TRUE(list.starts_with(u"1\\1\\3\\4\\") && list.ends_with(u"\\999\\1000"));
  *desktop.web_page += "<A HREF";
  EXPECT_EQ(List(u"http://h\\"), u"Empty");
  EXPECT_EQ(desktop.messages.at(0).text,
            u"Error retrieving template list from web path 'http://h' - Subscript out of range");
}

TEST_F(TemplateLists, FilesAreFoundByTheirExactName) {
  AnswerFiles(desktop, "C:\\\\D", {u"A.doc", u"b.doc"});
  AnswerFiles(desktop, "/", {u"b.doc"});
  for (const char16_t* path : {u"C:\\D\\b.doc", u"C:\\D\\b.doc\\", u"C:\\D/b.doc/", u"/b.doc"}) {
    EXPECT_TRUE(Find(path)) << ToUtf8(path);
  }
  desktop.Fail("Scripting.FileSystemObject.GetFolder(\"\")", AutomationError(kPathNotFound));
  EXPECT_FALSE(Find(u"C:\\D\\a.doc"));
  EXPECT_FALSE(Find(u"a.doc"));
  const String whom =
      u"which you do not have access to. This may be a network drive or another users local drive. "
      u"Please contact the user who added this document or your system administrator";
  const String of_file =
      u"'a.doc' in folder 'C:\\D'. This file may have been added from a location ";
  const String of_folder = u"''. This folder may reside at a location ";
  using testing::ShownMessage;
  EXPECT_EQ(desktop.messages.at(0), (ShownMessage{u"Unable to find the file " + of_file + whom, 64,
                                                  u"Unable to find file 'a.doc'"}));
  EXPECT_EQ(desktop.messages.at(1), (ShownMessage{u"Unable to find the folder " + of_folder + whom,
                                                  64, u"Unable to find folder ''"}));
}

TEST_F(TemplateLists, EachFailureIsToldOnce) {
  const auto script = [](ScriptedDesktop& desktop) {
    AnswerFiles(desktop, "/t", {u"b.dot", u"a.dot"});
  };
  const auto run = [](ControlContext& context, ScriptedDesktop& desktop) {
    String folder = u"/t\\";
    String type = u"home";
    String path = u"/t/a.dot";
    const String list = GetTemplateList(context, folder, type);
    const bool has_list = list != u"Empty";
    EXPECT_EQ(list, has_list ? u"b.dot\\a.dot\\" : u"Empty");
    const bool has_file = FindFile(context, path);
    EXPECT_EQ(has_list && has_file, desktop.failed_line.empty());
    EXPECT_EQ(desktop.messages.size(), has_list && has_file ? 0U : 1U);
    if (has_list) return;
    EXPECT_EQ(desktop.messages.at(0).text,
              u"Unable to retrieve a list of templates from '/t\\'. Please check with your system "
              u"administrator that you have access to this location.");
  };
  EXPECT_EQ(testing::FailEachCall(script, run), 11);
}

}  // namespace
}  // namespace kestrelon
