// A text file that is being read or written.
#pragma once

#include <filesystem>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

enum class OpenMode : int32_t { kReading = 1, kWriting = 2, kAppending = 8 };
enum class TextFormat { kAnsi, kUnicode };
enum class Creation {
  kNever,        // error 53 when the file is missing
  kWhenMissing,  // created when missing
  kAlways,       // error 58 "File already exists" when it is there
};

// Reading and ANSI when omitted; error 5 for numbers that mean nothing.
OpenMode OpenModeOf(const Value& value);
TextFormat TextFormatOf(const Value& value);

Object OpenTextStream(const std::filesystem::path& path, OpenMode mode, Creation creation,
                      TextFormat format);

// What is written reaches the file as a whole when the stream is closed or let go: until then, and
// when writing fails, an existing file keeps its content. So it does when the stream is let go
// before anything was written, as by a caller whose only text was refused. A closed stream is error
// 91.
class TextStream final : public ServerObject<TextStream> {
 public:
  TextStream(std::filesystem::path path, OpenMode mode, TextFormat format);
  ~TextStream() override;

  static const MemberTable<TextStream>& Members();

 private:
  void RequireReading() const;
  void RequireMore() const;
  void Append(StringView text);
  void Save();

  Value GetAtEndOfStream();
  Value ReadAll(const MethodArguments& arguments);
  Value Read(const MethodArguments& arguments);
  Value ReadLine(const MethodArguments& arguments);
  Value Write(const MethodArguments& arguments);
  Value WriteLine(const MethodArguments& arguments);
  Value Close(const MethodArguments& arguments);

  std::filesystem::path path_;
  OpenMode mode_;
  TextFormat format_;
  bool is_open_ = true;
  String text_;      // of a file being read
  size_t next_ = 0;  // position in it
  std::string written_;
  bool has_written_ = false;
};

}  // namespace kestrelon::desktop
