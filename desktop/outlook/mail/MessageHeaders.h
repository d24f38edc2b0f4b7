// The header fields of a message as they stand in its text, and the fields of our own before them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrelon::desktop {

// Offsets into the message.
struct HeaderField {
  size_t begin;
  size_t colon;
  size_t end;  // behind the line end of its last line
};

class MessageHeaders {
 public:
  explicit MessageHeaders(std::string message);

  const std::string& message() const { return message_; }
  size_t size() const { return fields_.size(); }
  // Names match without regard to case.
  bool Is(size_t field, std::string_view name) const;
  // What stands behind the colon, folds included.
  std::string_view Value(size_t field) const;
  // The value of the first field of that name; "" when there is none.
  std::string_view Find(std::string_view name) const;
  // The values of all of that name, joined by ", ".
  std::string FindAll(std::string_view name) const;

  // Before field `before`, or behind the last.
  void Insert(size_t before, std::string_view name, std::string_view value);
  void Replace(size_t field, std::string_view name, std::string_view value);
  void Remove(size_t field);

 private:
  void ReadFields();
  void Splice(size_t begin, size_t end, std::string_view text);
  std::string_view LineEnd() const;
  std::string Format(std::string_view name, std::string_view value) const;

  std::string message_;
  size_t start_ = 0;  // of the first field
  std::vector<HeaderField> fields_;
};

}  // namespace kestrelon::desktop
