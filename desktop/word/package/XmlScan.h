// A glance over the XML of a part that may never be read: enough to know that it does no harm in
// the hands of the next program, at little more than the cost of finding its tags.
//
// Refused (kCorruptDocument): a DOCTYPE, nesting deeper than 256, elements that are not closed or
// closed too often, anything that is cut off. UTF-8 and what is like it in ASCII, and UTF-16.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrelon::desktop::word {

class XmlScan {
 public:
  // `part` is named in errors and must outlive the scan.
  explicit XmlScan(std::string_view part) : part_(part) {}

  // The next piece of the part; pieces may end anywhere.
  void Read(std::string_view piece);
  // The part ends here. An empty part is none of ours.
  void Finish() const;

 private:
  enum class State : uint8_t {
    kText,
    kMarkup,  // behind a "<"
    kEndTag,
    kTag,
    kQuoted,  // in an attribute's value
    kComment,
    kSection,  // CDATA
    kInstruction,
  };
  enum class Encoding : uint8_t { kUnknown, kBytes, kLittleEndian, kBigEndian };

  Encoding FindEncoding(std::string_view start) const;
  // The ASCII of UTF-16; any other unit as a letter.
  std::string Narrow(std::string_view piece);
  void ReadBytes(std::string_view text);
  size_t ReadMarkup(std::string_view text, size_t at);
  size_t ReadTag(std::string_view text, size_t at);
  // Up to the ">" that ends a comment, section or instruction.
  size_t SkipTo(std::string_view closing, std::string_view text, size_t at);
  void Begin(State state);
  void OpenElement();
  void CloseElement();

  std::string_view part_;
  Encoding encoding_ = Encoding::kUnknown;
  State state_ = State::kText;
  int depth_ = 0;
  bool any_ = false;          // something was read
  bool any_element_ = false;  // an element has begun
  char quote_ = '"';
  char last_ = ' ';               // of a tag, to know "/>" by
  std::string markup_;            // "!" and what follows it, until that tells what it is
  std::array<char, 2> before_{};  // the characters before the next, within this comment
  int first_half_ = -1;           // of a UTF-16 unit that was cut
};

}  // namespace kestrelon::desktop::word
