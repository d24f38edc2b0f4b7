#include "desktop/word/objects/DocumentFiles.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "automation/Value.h"
#include "desktop/converter/Converter.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/word/objects/WordErrors.h"

namespace kestrelon::desktop::word {
namespace fs = std::filesystem;
namespace {

constexpr size_t kLargestFile = size_t{512} << 20;
constexpr std::string_view kZipSignature = "PK\x03\x04";
constexpr std::string_view kCompoundSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::string_view kRtfSignature = "{\\rtf";
// An open-document package starts with an entry of this name, so that it stands at a fixed place.
constexpr std::string_view kOpenDocumentMark = "mimetype";
constexpr size_t kFirstEntryName = 30;

struct FormatRow {
  FileFormat format;
  StringView extension;
  std::optional<DocumentKind> engine;  // written by the engine as this kind …
  ConversionFormat converter;          // … or by the converter as this
};

// The first row of an extension is the one that the extension stands for.
constexpr std::array<FormatRow, 9> kFormats = {{
    {FileFormat::kDefault, u".docx", DocumentKind::kDocx, ConversionFormat::kDocx},
    {FileFormat::kDocx, u".docx", DocumentKind::kDocx, ConversionFormat::kDocx},
    {FileFormat::kDocm, u".docm", DocumentKind::kDocm, ConversionFormat::kDocx},
    {FileFormat::kDotx, u".dotx", DocumentKind::kDotx, ConversionFormat::kDocx},
    {FileFormat::kDotm, u".dotm", DocumentKind::kDotm, ConversionFormat::kDocx},
    {FileFormat::kDocument97, u".doc", std::nullopt, ConversionFormat::kDoc},
    {FileFormat::kHtml, u".htm", std::nullopt, ConversionFormat::kHtml},
    {FileFormat::kFilteredHtml, u".htm", std::nullopt, ConversionFormat::kHtml},
    {FileFormat::kPdf, u".pdf", std::nullopt, ConversionFormat::kPdf},
}};

constexpr std::array<StringView, 9> kReadByConverter = {
    u".doc", u".dot", u".rtf", u".odt", u".ott", u".htm", u".html", u".txt", u".fodt"};
constexpr std::array<StringView, 8> kNotWritten = {u".dot", u".rtf", u".odt", u".ott",
                                                   u".txt", u".xml", u".xps", u".mht"};

String ExtensionOf(const fs::path& path) { return LowerCase(TextFromPath(path.extension())); }

template <size_t Size>
bool Contains(const std::array<StringView, Size>& list, StringView text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

const FormatRow& RowOf(FileFormat format) {
  return *std::find_if(kFormats.begin(), kFormats.end(),
                       [&](const FormatRow& row) { return row.format == format; });
}

// Encrypted packages are compound files, too, with a stream of this name.
bool IsEncryptedPackage(std::string_view bytes) {
  std::string name;
  for (const char letter : std::string_view("EncryptedPackage")) {
    name += letter;
    name += '\0';
  }
  return bytes.find(name) != std::string_view::npos;
}

bool NeedsConverter(const fs::path& path, std::string_view bytes) {
  if (bytes.starts_with(kZipSignature)) {
    return bytes.size() > kFirstEntryName &&
           bytes.substr(kFirstEntryName).starts_with(kOpenDocumentMark);
  }
  if (bytes.starts_with(kCompoundSignature)) {
    if (IsEncryptedPackage(bytes)) {
      throw AutomationError(kEncrypted,
                            u"The document is protected by a password and cannot be opened. Save "
                            u"a copy without a password.");
    }
    return true;
  }
  return bytes.starts_with(kRtfSignature) || Contains(kReadByConverter, ExtensionOf(path));
}

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

// A pipe or device: reading could wait for ever, and replacing would take it away from others.
bool IsSpecialFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_other(path, ignored);
}

// Runs `action`; its errors name the file.
template <typename Action>
auto NamingFile(const fs::path& path, const Action& action) {
  try {
    return action();
  } catch (const AutomationError& error) {
    const String name = TextFromPath(path);
    if (error.description().find(name) != String::npos) throw;
    throw AutomationError(error.number(), name + u": " + error.description());
  }
}

FileFormat FormatOfExtension(const String& extension) {
  if (extension == u".html") return FileFormat::kHtml;
  if (extension == u".pdf") return FileFormat::kDefault;
  for (const FormatRow& row : kFormats) {
    if (row.extension == extension) return row.format;
  }
  if (Contains(kNotWritten, extension)) {
    throw AutomationError(kCommandFailed, u"Command failed: " + extension +
                                              u" files cannot be written. Save as .docx, .docm, "
                                              u".dotx, .dotm, .doc or .htm, or export as PDF.");
  }
  return FileFormat::kDefault;
}

bool IsKnownExtension(const String& extension) {
  return Contains(kReadByConverter, extension) || Contains(kNotWritten, extension) ||
         std::any_of(kFormats.begin(), kFormats.end(),
                     [&](const FormatRow& row) { return row.extension == extension; });
}

// ".docx" alone is what a script writes whose name came out empty.
void RequireFileName(const fs::path& path) {
  const String name = LowerCase(TextFromPath(path.filename()));
  if (name.empty() || IsKnownExtension(name)) {
    throw BadParameter(TextFromPath(path) + u" lacks the name of a file. Add it to the folder" +
                       (name.empty() ? u"." : u", before the extension."));
  }
}

void RefuseToReplace(const fs::path& path) {
  throw BadParameter(TextFromPath(path) +
                     u" is a folder or device and cannot be replaced. Give another file name.");
}

}  // namespace

std::unique_ptr<Document> ReadDocument(const fs::path& path) {
  return NamingFile(path, [&] {
    if (IsFolder(path) || IsSpecialFile(path)) {
      throw AutomationError(kPermissionDenied,
                            u"Permission denied: a folder or device is no "
                            u"document. Give the path of a file.");
    }
    std::string bytes = ReadWholeFile(path, kLargestFile);
    if (NeedsConverter(path, bytes)) {
      bytes = Converter::OfThisProcess().ConvertToBytes(path, ConversionFormat::kDocx);
    }
    return Document::Open(std::move(bytes));
  });
}

FileFormat FormatOfNumber(int32_t number) {
  for (const FormatRow& row : kFormats) {
    if (static_cast<int32_t>(row.format) == number) return row.format;
  }
  throw BadParameter(u"FileFormat " + Value(number).ToText() +
                     u" cannot be written. Use 0 (.doc), 8 or 10 (HTML), 12 or 16 (.docx), 13 "
                     u"(.docm), 14 (.dotx), 15 (.dotm) or 17 (PDF).");
}

SaveTarget ResolveSaveTarget(fs::path path, std::optional<FileFormat> format) {
  RequireFileName(path);
  if (IsSpecialFile(path)) RefuseToReplace(path);
  const String extension = ExtensionOf(path);
  const FileFormat chosen = format ? *format : FormatOfExtension(extension);
  if (extension.empty()) path += ToUtf8(RowOf(chosen).extension);
  if (IsFolder(path)) RefuseToReplace(path);
  return {std::move(path), chosen};
}

void WriteDocument(Document& document, const SaveTarget& target) {
  const FormatRow& row = RowOf(target.format);
  NamingFile(target.path, [&] {
    if (row.engine) {
      WriteFileAtomically(target.path, document.Save(*row.engine));
      return;
    }
    const fs::path name = target.path.stem() += ".docx";
    Converter::OfThisProcess().Convert(document.SaveForReading(), name, target.path, row.converter);
  });
}

}  // namespace kestrelon::desktop::word
