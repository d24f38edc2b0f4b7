#include "desktop/filesystem/FileSystemObject.h"

#include <fnmatch.h>

#include <filesystem>

#include "desktop/filesystem/FileObject.h"
#include "desktop/filesystem/FolderObject.h"
#include "desktop/filesystem/PathNames.h"
#include "desktop/filesystem/TextStream.h"
#include "desktop/server/ServerObject.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;

// The files that the last name of `pattern` stands for.
std::vector<fs::path> ExpandWildcards(const fs::path& pattern) {
  std::string name = pattern.filename();
  if (name.find_first_of("*?") == std::string::npos) return {pattern};
  // "*.*" has always meant every file; "[" means nothing here.
  if (name == "*.*") name = "*";
  for (size_t at = name.find('['); at != std::string::npos; at = name.find('[', at + 3)) {
    name.replace(at, 1, "[[]");
  }
  const fs::path folder = pattern.has_parent_path() ? pattern.parent_path() : fs::path(".");
  std::vector<fs::path> files;
  for (const fs::path& entry : ListFolder(folder, EntryKind::kFile)) {
    if (fnmatch(name.c_str(), entry.filename().c_str(), FNM_NOESCAPE) == 0) files.push_back(entry);
  }
  if (files.empty()) throw AutomationError(kFileNotFound);
  return files;
}

class FileSystemObject final : public ServerObject<FileSystemObject> {
 public:
  static const MemberTable<FileSystemObject>& Members() {
    using Self = FileSystemObject;
    static const MemberTable<Self> table =
        MemberTable<Self>(u"FileSystemObject")
            .Method(u"OpenTextFile", &Self::OpenFile,
                    {u"FileName", u"IOMode", u"Create", u"Format"})
            .Method(u"CreateTextFile", &Self::CreateFile, {u"FileName", u"Overwrite", u"Unicode"})
            .Method(u"CopyFile", &Self::CopyOneFile, {u"Source", u"Destination", u"OverWriteFiles"})
            .Method(u"DeleteFile", &Self::DeleteFiles, {u"FileSpec", u"Force"})
            .Method(u"FileExists", &Self::FileExists, {u"FileSpec"})
            .Method(u"FolderExists", &Self::FolderExists, {u"FolderSpec"})
            .Method(u"GetFile", &Self::GetFile, {u"FilePath"})
            .Method(u"GetFolder", &Self::GetFolder, {u"FolderPath"})
            .Method(u"BuildPath", &Self::Build, {u"Path", u"Name"})
            .Method(u"GetFileName", &Self::NameOf, {u"Path"})
            .Method(u"GetBaseName", &Self::BaseNameOf, {u"Path"})
            .Method(u"GetExtensionName", &Self::ExtensionOf, {u"Path"})
            .Method(u"GetParentFolderName", &Self::ParentOf, {u"Path"});
    return table;
  }

 private:
  Value OpenFile(const MethodArguments& arguments) {
    const fs::path path = PathFromText(arguments.Require(0).ToText());
    return OpenTextStream(
        path, OpenModeOf(arguments[1]),
        arguments.Has(2) && arguments[2].ToBoolean() ? Creation::kWhenMissing : Creation::kNever,
        TextFormatOf(arguments[3]));
  }

  Value CreateFile(const MethodArguments& arguments) {
    const fs::path path = PathFromText(arguments.Require(0).ToText());
    const bool overwrite = !arguments.Has(1) || arguments[1].ToBoolean();
    const bool unicode = arguments.Has(2) && arguments[2].ToBoolean();
    return OpenTextStream(path, OpenMode::kWriting,
                          overwrite ? Creation::kWhenMissing : Creation::kAlways,
                          unicode ? TextFormat::kUnicode : TextFormat::kAnsi);
  }

  // Plain names only. A destination that ends in a separator is a folder.
  Value CopyOneFile(const MethodArguments& arguments) {
    const fs::path source = PathFromText(arguments.Require(0).ToText());
    fs::path target = PathFromText(arguments.Require(1).ToText());
    if (!target.has_filename()) target /= source.filename();
    const bool overwrite = !arguments.Has(2) || arguments[2].ToBoolean();
    CopyFileTo(source, target, overwrite);
    return {};
  }

  Value DeleteFiles(const MethodArguments& arguments) {
    const bool force = arguments.Has(1) && arguments[1].ToBoolean();
    for (const fs::path& file : ExpandWildcards(PathFromText(arguments.Require(0).ToText()))) {
      DeleteOneFile(file, force);
    }
    return {};
  }

  Value FileExists(const MethodArguments& arguments) {
    std::error_code ignored;
    const fs::path path = PathFromText(arguments.Require(0).ToText());
    return fs::exists(path, ignored) && !fs::is_directory(path, ignored);
  }
  Value FolderExists(const MethodArguments& arguments) {
    std::error_code ignored;
    return fs::is_directory(PathFromText(arguments.Require(0).ToText()), ignored);
  }
  Value GetFile(const MethodArguments& arguments) {
    return OpenFileObject(PathFromText(arguments.Require(0).ToText()));
  }
  Value GetFolder(const MethodArguments& arguments) {
    return OpenFolderObject(PathFromText(arguments.Require(0).ToText()));
  }
  Value Build(const MethodArguments& arguments) {
    return BuildPath(arguments.Require(0).ToText(), arguments.Require(1).ToText());
  }
  Value NameOf(const MethodArguments& arguments) { return FileName(arguments.Require(0).ToText()); }
  Value BaseNameOf(const MethodArguments& arguments) {
    return BaseName(arguments.Require(0).ToText());
  }
  Value ExtensionOf(const MethodArguments& arguments) {
    return ExtensionName(arguments.Require(0).ToText());
  }
  Value ParentOf(const MethodArguments& arguments) {
    return ParentFolderName(arguments.Require(0).ToText());
  }
};

}  // namespace

Object CreateFileSystemObject() { return Object(std::make_shared<FileSystemObject>()); }

}  // namespace kestrelon::desktop
