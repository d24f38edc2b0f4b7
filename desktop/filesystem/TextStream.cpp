#include "desktop/filesystem/TextStream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "desktop/filesystem/FileErrors.h"
#include "desktop/storage/AtomicFile.h"

namespace kestrelon::desktop {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xFF\xFE";

std::string ToUtf16Bytes(StringView text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

String FromUtf16Bytes(std::string_view bytes) {
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  String text;
  text.reserve(bytes.size() / 2);
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    text += static_cast<char16_t>(low | high << 8);
  }
  return text;
}

void RequireAnsi(StringView text) {
  for (const char16_t unit : text) {
    if (unit != u'?' && AnsiCode(unit) == '?') {
      throw AutomationError(kInvalidProcedureCall,
                            u"The character \"" + String(1, unit) +
                                u"\" cannot be written to an ANSI text file; open the file as a "
                                u"Unicode one");
    }
  }
}

// A character that would turn into "?" is refused: what is written must be there to be read.
std::string ToAnsiBytes(StringView text) {
  std::string bytes = ToAnsi(text);
  if (bytes.find('?') != std::string::npos) RequireAnsi(text);
  return bytes;
}

// The file is there from the moment it is opened, so that a wrong path shows at once.
void PrepareForWriting(const fs::path& path, Creation creation) {
  const int flags = creation == Creation::kNever    ? O_WRONLY
                    : creation == Creation::kAlways ? O_WRONLY | O_CREAT | O_EXCL
                                                    : O_WRONLY | O_CREAT;
  const int file = open(path.c_str(), flags | O_CLOEXEC, 0666);
  if (file >= 0) {
    close(file);
    return;
  }
  if (errno == EEXIST) throw AutomationError(kFileAlreadyExists, u"File already exists");
  if (errno == EISDIR) throw AutomationError(kPermissionDenied);
  throw FileError(errno, path);
}

}  // namespace

OpenMode OpenModeOf(const Value& value) {
  const int32_t mode = value.IsOmitted() ? 1 : value.ToLong();
  if (mode != 1 && mode != 2 && mode != 8) {
    throw AutomationError(kInvalidProcedureCall,
                          u"A text file is opened for reading (1), writing (2) or appending (8)");
  }
  return static_cast<OpenMode>(mode);
}

TextFormat TextFormatOf(const Value& value) {
  constexpr int32_t kUnicode = -1;
  constexpr int32_t kSystemDefault = -2;
  const int32_t format = value.IsOmitted() ? 0 : value.ToLong();
  if (format == kUnicode) return TextFormat::kUnicode;
  if (format == 0 || format == kSystemDefault) return TextFormat::kAnsi;
  throw AutomationError(kInvalidProcedureCall,
                        u"The format of a text file is ANSI (0), Unicode (-1) or the default (-2)");
}

Object OpenTextStream(const fs::path& path, OpenMode mode, Creation creation, TextFormat format) {
  if (mode != OpenMode::kReading || creation != Creation::kNever) PrepareForWriting(path, creation);
  return Object(std::make_shared<TextStream>(path, mode, format));
}

TextStream::TextStream(fs::path path, OpenMode mode, TextFormat format)
    : path_(std::move(path)), mode_(mode), format_(format) {
  if (mode_ == OpenMode::kReading) {
    const std::string bytes = ReadWholeFile(path_);
    text_ = format_ == TextFormat::kUnicode ? FromUtf16Bytes(bytes) : FromAnsi(bytes);
  } else if (mode_ == OpenMode::kAppending) {
    written_ = ReadWholeFile(path_);
  }
  const bool starts_file = mode_ != OpenMode::kReading && written_.empty();
  if (starts_file && format_ == TextFormat::kUnicode) written_ = kByteOrderMark;
}

TextStream::~TextStream() {
  if (is_open_ && has_written_) IgnoreFailures([&] { Save(); });
}

const MemberTable<TextStream>& TextStream::Members() {
  static const MemberTable<TextStream> table =
      MemberTable<TextStream>(u"TextStream")
          .Property(u"AtEndOfStream", &TextStream::GetAtEndOfStream)
          .Method(u"ReadAll", &TextStream::ReadAll)
          .Method(u"Read", &TextStream::Read, {u"Characters"})
          .Method(u"ReadLine", &TextStream::ReadLine)
          .Method(u"Write", &TextStream::Write, {u"Text"})
          .Method(u"WriteLine", &TextStream::WriteLine, {u"Text"})
          .Method(u"Close", &TextStream::Close);
  return table;
}

void TextStream::RequireReading() const {
  if (!is_open_) throw AutomationError(kObjectVariableNotSet);
  if (mode_ != OpenMode::kReading) throw AutomationError(kBadFileMode, u"Bad file mode");
}

void TextStream::RequireMore() const {
  RequireReading();
  if (next_ >= text_.size()) throw AutomationError(kInputPastEndOfFile);
}

void TextStream::Append(StringView text) {
  if (!is_open_) throw AutomationError(kObjectVariableNotSet);
  if (mode_ == OpenMode::kReading) throw AutomationError(kBadFileMode, u"Bad file mode");
  std::string bytes = format_ == TextFormat::kUnicode ? ToUtf16Bytes(text) : ToAnsiBytes(text);
  written_ = written_.empty() ? std::move(bytes) : std::move(written_) + bytes;
  has_written_ = true;
}

void TextStream::Save() {
  if (mode_ != OpenMode::kReading) WriteFileAtomically(path_, written_);
}

Value TextStream::GetAtEndOfStream() {
  RequireReading();
  return next_ >= text_.size();
}

// NOTE: an empty file has no text to read, which is error 62 and not "".
Value TextStream::ReadAll(const MethodArguments&) {
  RequireMore();
  const size_t from = next_;
  next_ = text_.size();
  return text_.substr(from);
}

Value TextStream::Read(const MethodArguments& arguments) {
  const int32_t count = arguments.Require(0).ToLong();
  if (count < 0) throw AutomationError(kInvalidProcedureCall);
  RequireMore();
  const size_t from = next_;
  next_ = std::min(text_.size(), next_ + static_cast<size_t>(count));
  return text_.substr(from, next_ - from);
}

Value TextStream::ReadLine(const MethodArguments&) {
  RequireMore();
  const size_t from = next_;
  const size_t end = std::min(text_.find(u'\n', from), text_.size());
  next_ = end + 1;
  const bool ends_in_return = end < text_.size() && end > from && text_[end - 1] == u'\r';
  return text_.substr(from, end - from - (ends_in_return ? 1 : 0));
}

Value TextStream::Write(const MethodArguments& arguments) {
  // A whole file may come at once: not copied first.
  const Value& text = arguments.Require(0);
  if (text.IsString()) {
    Append(text.AsString());
  } else {
    Append(text.ToText());
  }
  return {};
}

Value TextStream::WriteLine(const MethodArguments& arguments) {
  Append((arguments.Has(0) ? arguments[0].ToText() : String()) + u"\r\n");
  return {};
}

Value TextStream::Close(const MethodArguments&) {
  if (!is_open_) return {};
  is_open_ = false;
  Save();
  return {};
}

}  // namespace kestrelon::desktop
