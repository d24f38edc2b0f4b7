#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop/filesystem/FileSystemObject.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "tests/support/Failures.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;

constexpr int32_t kReading = 1;
constexpr int32_t kWriting = 2;
constexpr int32_t kAppending = 8;
constexpr int32_t kUnicode = -1;

class FileSystemObjectTest : public testing::Test {
 protected:
  String Path(StringView name) const { return TextFromPath(folder_.path()) + u"\\" + String(name); }
  fs::path RealPath(std::string_view name) const { return folder_.path() / name; }
  void Write(std::string_view name, std::string_view content) const {
    WriteFileAtomically(RealPath(name), content);
  }
  std::string Read(std::string_view name) const { return ReadWholeFile(RealPath(name)); }

  PrivateFolder folder_{"kestrelon-files-test-"};
  Object files_ = CreateFileSystemObject();
};

TEST_F(FileSystemObjectTest, ReadsTextInEitherFormat) {
  Write("ansi.txt", "\xA3 1\r\n\xE2\x82\xAC\n\nlast");
  const Object ansi = files_.CallChild(u"OpenTextFile", Path(u"ansi.txt"));
  EXPECT_EQ(ansi.Call(u"Read", 1).ToText(), u"\u00A3");
  EXPECT_EQ(ansi.Call(u"ReadLine").ToText(), u" 1");
  EXPECT_EQ(ansi.Call(u"ReadLine").ToText(), u"\u00E2\u201A\u00AC");
  EXPECT_EQ(ansi.Call(u"ReadLine").ToText(), u"");
  EXPECT_FALSE(ansi.Get(u"AtEndOfStream").ToBoolean());
  EXPECT_EQ(ansi.Call(u"ReadAll").ToText(), u"last");
  EXPECT_TRUE(ansi.Get(u"AtEndOfStream").ToBoolean());
  for (const auto* member : {u"ReadAll", u"ReadLine"}) {
    EXPECT_EQ(NumberOf([&] { ansi.Call(member); }), kInputPastEndOfFile);
  }
  EXPECT_EQ(NumberOf([&] { ansi.Call(u"Read", 1); }), kInputPastEndOfFile);
  EXPECT_EQ(NumberOf([&] { ansi.Call(u"Write", u"x"); }), 54);
  ansi.Call(u"Close");
  EXPECT_EQ(NumberOf([&] { ansi.Call(u"ReadAll"); }), kObjectVariableNotSet);

  Write("wide.txt", std::string_view("\xFF\xFE\xA3\0\xAC\x20", 6));
  const Object wide =
      files_.CallChild(u"OpenTextFile", Path(u"wide.txt"), kReading, false, kUnicode);
  EXPECT_EQ(wide.Call(u"ReadAll").ToText(), u"\u00A3\u20AC");
}

TEST_F(FileSystemObjectTest, KeepsEveryByteOfAnAnsiFileThatIsReadAndWritten) {
  std::string bytes;
  for (int code = 0; code < 256; ++code) bytes += static_cast<char>(code);
  Write("all.bin", bytes);
  const String path = Path(u"all.bin");
  const String text = files_.CallChild(u"OpenTextFile", path).Call(u"ReadAll").ToText();
  const Object stream = files_.CallChild(u"OpenTextFile", path, kWriting);
  stream.Call(u"Write", text);
  EXPECT_EQ(Read("all.bin"), bytes) << "the old file stands until the new one is whole";
  stream.Call(u"Close");
  EXPECT_EQ(Read("all.bin"), bytes);
}

TEST_F(FileSystemObjectTest, CopiesOneFileWholeOrNotAtAll) {
  const auto copy = [&](StringView from, StringView to, auto... overwrite) {
    return NumberOf([&] { files_.Call(u"CopyFile", Path(from), Path(to), overwrite...); });
  };
  const std::string bytes("\0\xA3\r\n", 4);
  Write("a.htm", bytes);
  fs::create_directory(RealPath("folder"));
  EXPECT_EQ(copy(u"a.htm", u"b.htm"), 0);
  EXPECT_EQ(copy(u"a.htm", u"folder/"), 0);
  EXPECT_EQ(Read("b.htm") + Read("folder/a.htm"), bytes + bytes);
  Write("b.htm", "old");
  EXPECT_EQ(copy(u"a.htm", u"b.htm", false), 58);
  EXPECT_EQ(copy(u"a.htm", u"new.htm", false), 0);
  EXPECT_EQ(copy(u"none.htm", u"b.htm"), kFileNotFound);
  EXPECT_EQ(copy(u"a.htm", u"none/b.htm"), kPathNotFound);
  EXPECT_EQ(copy(u"a.htm", u"a.htm"), kPermissionDenied);
  EXPECT_EQ(copy(u"a.htm", u"folder"), kPermissionDenied);
  EXPECT_EQ(Read("b.htm") + Read("new.htm") + Read("a.htm"), "old" + bytes + bytes);
}

TEST_F(FileSystemObjectTest, WritesAppendsAndCreates) {
  const Object created = files_.CallChild(u"CreateTextFile", Path(u"a.txt"));
  EXPECT_TRUE(files_.Call(u"FileExists", Path(u"a.txt")).ToBoolean());
  created.Call(u"WriteLine", u"\u00A3");
  created.Call(u"Close");
  Object appended = files_.CallChild(u"OpenTextFile", Path(u"a.txt"), kAppending);
  appended.Call(u"Write", u"b");
  EXPECT_EQ(NumberOf([&] { appended.Call(u"ReadAll"); }), 54);
  EXPECT_EQ(NumberOf([&] { appended.Call(u"Write", u"\u4E2D"); }), kInvalidProcedureCall);
  appended.Release();
  EXPECT_EQ(Read("a.txt"), "\xA3\r\nb") << "a stream that is let go has written";
  Object refused = files_.CallChild(u"OpenTextFile", Path(u"a.txt"), kWriting);
  EXPECT_EQ(NumberOf([&] { refused.Call(u"Write", u"\u4E2D"); }), kInvalidProcedureCall);
  refused.Release();
  EXPECT_EQ(Read("a.txt"), "\xA3\r\nb") << "nothing takes its place";

  for (int i = 0; i < 2; ++i) {
    const Object wide =
        files_.CallChild(u"OpenTextFile", Path(u"w.txt"), kAppending, true, kUnicode);
    wide.Call(u"Write", u"\u20AC");
    wide.Call(u"Close");
  }
  EXPECT_EQ(Read("w.txt"), "\xFF\xFE\xAC\x20\xAC\x20");
  EXPECT_EQ(NumberOf([&] { files_.Call(u"CreateTextFile", Path(u"a.txt"), false); }), 58);
  files_.CallChild(u"CreateTextFile", Path(u"a.txt"), true).Call(u"Close");
  EXPECT_EQ(Read("a.txt"), "");
}

TEST_F(FileSystemObjectTest, ReportsWhatIsMissingOrForbiddenByItsNumber) {
  Write("a.txt", "a");
  fs::create_directory(RealPath("sub"));
  const auto open = [&](StringView name, int32_t mode, bool create) {
    return NumberOf([&] { files_.Call(u"OpenTextFile", Path(name), mode, create); });
  };
  EXPECT_EQ(open(u"none.txt", kReading, false), kFileNotFound);
  EXPECT_EQ(open(u"none/a.txt", kWriting, true), kPathNotFound);
  EXPECT_EQ(open(u"a.txt/b", kReading, false), kPathNotFound);
  EXPECT_EQ(open(u"sub", kWriting, true), kPermissionDenied);
  EXPECT_EQ(open(u"a.txt", 3, false), kInvalidProcedureCall);
  EXPECT_EQ(NumberOf([&] { files_.Call(u"DeleteFile", Path(u"none.txt"), true); }), kFileNotFound);
  EXPECT_EQ(NumberOf([&] { files_.Call(u"DeleteFile", Path(u"sub"), true); }), kFileNotFound);
  EXPECT_EQ(NumberOf([&] { files_.Call(u"GetFile", Path(u"sub")); }), kFileNotFound);
  EXPECT_EQ(NumberOf([&] { files_.Call(u"GetFolder", Path(u"a.txt")); }), kPathNotFound);
  EXPECT_FALSE(files_.Call(u"FileExists", Path(u"sub")).ToBoolean());
  EXPECT_TRUE(files_.Call(u"FolderExists", Path(u"sub\\")).ToBoolean());
  EXPECT_FALSE(files_.Call(u"FolderExists", Path(u"a.txt")).ToBoolean());
}

TEST_F(FileSystemObjectTest, DeletesFilesByNameAndByWildcard) {
  for (const auto* name : {"a1.tmp", "a2.tmp", "b.tmp", "[x].tmp", "keep.txt", "locked.txt"}) {
    Write(name, "x");
  }
  fs::create_directory(RealPath("a3.tmp"));
  fs::permissions(RealPath("locked.txt"), fs::perms::owner_read);
  files_.Call(u"DeleteFile", Path(u"a?.tmp"));
  EXPECT_FALSE(fs::exists(RealPath("a2.tmp")));
  EXPECT_TRUE(fs::exists(RealPath("a3.tmp")));
  files_.Call(u"DeleteFile", Path(u"[x]*"));
  EXPECT_FALSE(fs::exists(RealPath("[x].tmp")));
  EXPECT_EQ(NumberOf([&] { files_.Call(u"DeleteFile", Path(u"*.none")); }), kFileNotFound);
  EXPECT_EQ(NumberOf([&] { files_.Call(u"DeleteFile", Path(u"locked.txt")); }), kPermissionDenied);
  files_.Call(u"DeleteFile", Path(u"*.*"), true);
  EXPECT_EQ(files_.CallChild(u"GetFolder", Path(u"")).GetChild(u"Files").Get(u"Count").ToLong(), 0);
}

TEST_F(FileSystemObjectTest, RenamesAFileButNeverOverAnother) {
  Write("Kes1.tmp", "text");
  Write("taken.htm", "other");
  const Object file = files_.CallChild(u"GetFile", Path(u"Kes1.tmp"));
  EXPECT_EQ(file.Get(u"Size").ToLong(), 4);
  EXPECT_EQ(NumberOf([&] { file.Put(u"Name", u"taken.htm"); }), 58);
  for (const auto* name : {u"", u"..", u"a/b", u"a\\b"}) {
    EXPECT_EQ(NumberOf([&] { file.Put(u"Name", name); }), kInvalidProcedureCall);
  }
  file.Put(u"Name", u"Kes1.htm");
  EXPECT_EQ(file.GetDefault().ToText(), TextFromPath(RealPath("Kes1.htm")));
  const Object stream = file.CallChild(u"OpenAsTextStream", kWriting);
  stream.Call(u"WriteLine", u"<p>");
  stream.Call(u"Close");
  EXPECT_EQ(Read("Kes1.htm"), "<p>\r\n");
  EXPECT_EQ(Read("taken.htm"), "other");
  file.Call(u"Delete", true);
  EXPECT_EQ(NumberOf([&] { file.Get(u"Size"); }), kFileNotFound);
}

TEST_F(FileSystemObjectTest, ListsAFolderByName) {
  for (const auto* name : {"b.dot", "A.doc", "c.txt"}) Write(name, "");
  fs::create_directory(RealPath("sub"));
  fs::create_symlink("none", RealPath("link to nothing"));
  fs::create_symlink("sub", RealPath("z"));
  const Object folder = files_.CallChild(u"GetFolder", Path(u""));
  EXPECT_EQ(folder.Get(u"Name").ToText(), TextFromPath(folder_.path().filename()));
  String names;
  const auto walk = folder.GetChild(u"Files").Enumerate();
  while (const auto file = walk->Next()) names += file->ToObject().Get(u"Name").ToText() + u" ";
  EXPECT_EQ(names, u"A.doc b.dot c.txt ");
  EXPECT_EQ(folder.GetChild(u"SubFolders").Get(u"Count").ToLong(), 2);
  EXPECT_EQ(folder.GetChild(u"Files", u"c.txt").Get(u"Name").ToText(), u"c.txt");
  EXPECT_EQ(NumberOf([&] { folder.GetChild(u"Files", u"d.txt"); }), kFileNotFound);
}

TEST_F(FileSystemObjectTest, RelativePathsFailLikeOthersWhenTheCurrentFolderIsGone) {
  const fs::path before = fs::current_path();
  fs::create_directory(RealPath("gone"));
  fs::current_path(RealPath("gone"));
  fs::remove(RealPath("gone"));
  const int32_t number = NumberOf([&] { files_.Call(u"GetFolder", u"."); });
  fs::current_path(before);
  EXPECT_EQ(number, kPathNotFound);
}

TEST_F(FileSystemObjectTest, TakesPathsApart) {
  for (const auto& [path, name, base, extension, parent] :
       {std::tuple{u"C:\\a\\b.tar.gz", u"b.tar.gz", u"b.tar", u"gz", u"C:\\a"},
        {u"/a/b/", u"b", u"b", u"", u"/a"},
        {u"/a", u"a", u"a", u"", u"/"},
        {u"", u"", u"", u"", u""},
        {u"a.b/c", u"c", u"c", u"", u"a.b"}}) {
    EXPECT_EQ(files_.Call(u"GetFileName", path).ToText(), name);
    EXPECT_EQ(files_.Call(u"GetBaseName", path).ToText(), base);
    EXPECT_EQ(files_.Call(u"GetExtensionName", path).ToText(), extension);
    EXPECT_EQ(files_.Call(u"GetParentFolderName", path).ToText(), parent) << ToUtf8(path);
  }
  EXPECT_EQ(files_.Call(u"BuildPath", u"/a\\", u"b").ToText(), u"/a\\b");
  EXPECT_EQ(files_.Call(u"BuildPath", u"/a", u"b").ToText(), u"/a/b");
}

}  // namespace
}  // namespace kestrelon::desktop
