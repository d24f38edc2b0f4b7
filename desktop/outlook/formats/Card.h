// One vCard of a file as lines with decoded values, whatever its version and encodings.
//
// A *value* here is UTF-8, free of quoted-printable and character sets, with its backslash escapes:
// what stands behind the colon of a plain line. Text() takes the escapes out.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/outlook/formats/CardEncoding.h"
#include "desktop/outlook/formats/ContentLines.h"

namespace kestrelon::desktop {

// What the TYPE of a line says, as far as it matters.
enum LineType : uint32_t {
  kWork = 1,
  kHome = 2,
  kCell = 4,
  kFax = 8,
  kPager = 16,
  kCar = 32,
  kAssistant = 64,
  kOther = 128,
  kSpouse = 256,
};

constexpr uint32_t kAnyType = ~0u;

struct LineTypes {
  uint32_t types = 0;
  int32_t preference = 101;  // 1 is the most preferred, 101 says nothing
  int32_t slot = 0;          // the slot that the line was given; 0 for none
};

// The lines that hold one kind of value, in slots from 1: preferred ones first, else in the order
// of the file; a line that was given a slot is there.
struct LineSet {
  std::array<std::string_view, 5> names = {};  // the first one is written
  uint32_t types = kAnyType;                   // as KindOf gives them
  std::string_view written_types = {};         // of a new line: "WORK,VOICE"
  std::string_view label = {};  // of lines that only a label in their group tells apart
};

// Of a line's types those that decide which property it stands for, so that it stands for one.
uint32_t KindOf(std::string_view name, uint32_t types);

// The value of a structured line.
std::string JoinComponents(const std::vector<std::string>& components);

class Card {
 public:
  enum class Version { k21, k30, k40 };

  // nullopt when there is no card in the file; of several, the first.
  static std::optional<Card> Read(std::string content);

  const std::string& content() const;
  Version version() const { return version_; }
  const ContentLines& lines() const { return lines_; }
  const Component& component() const { return component_; }

  // The first line of that name.
  std::optional<size_t> Find(std::string_view name) const { return lines_.Find(name, component_); }
  std::string Value(size_t line) const { return Decode(line, lines_.RawValue(line)); }
  std::vector<std::string> Components(size_t line) const;
  String Text(size_t line) const { return ReadText(Value(line)); }
  // "" when there is no such line.
  String TextOf(std::string_view name) const;
  // The value that reads as `text`.
  std::string Escape(StringView text) const;

  // Encodes as the version wants it; the rest of the line stays.
  void SetValue(size_t line, std::string_view value);
  // `types`: "WORK,VOICE" or "". `before`: the number of a line, or the card's end.
  size_t Insert(std::string_view name, std::string_view types, std::string_view value,
                std::optional<size_t> before = std::nullopt);
  void Remove(size_t line);
  void RemoveParameters(size_t line, bool (*drop)(const Parameter&));

  std::optional<size_t> FindSlot(const LineSet& set, int32_t slot) const;
  // Puts the value into that slot; nullopt empties it. No other line changes its slot.
  void PutSlot(const LineSet& set, int32_t slot, const std::optional<std::string>& value);

  template <typename Edit>
  auto EditLines(Edit edit) {
    return edit(lines_, component_);
  }

 private:
  struct SlottedLine {
    size_t line;
    int32_t slot;
  };

  Card(FileText file, ContentLines lines, Component component);
  std::string Decode(size_t line, std::string raw) const;
  LineTypes TypesOf(size_t line) const;
  bool Belongs(size_t line, const LineSet& set, LineTypes& types) const;
  bool HasLabel(size_t line, std::string_view label) const;
  const std::vector<SlottedLine>& Slots(const LineSet& set) const;
  std::vector<SlottedLine> FindSlots(const LineSet& set) const;
  void KeepSlots(const LineSet& set, std::vector<SlottedLine> wanted);
  std::string FormatTypes(std::string_view types) const;

  // The slots that were asked for last: the properties of one set are read one after the other.
  struct KnownSlots {
    uint64_t changes = static_cast<uint64_t>(-1);  // of the lines
    std::string_view name;
    uint32_t types = 0;
    std::string_view label;
    std::vector<SlottedLine> slots;
  };

  FileText file_;  // its text is in lines_
  ContentLines lines_;
  Component component_;
  Version version_ = Version::k30;
  mutable KnownSlots known_slots_;
  mutable std::string encoded_;  // of a file that is not as it stands
  mutable uint64_t encoded_at_ = static_cast<uint64_t>(-1);
};

}  // namespace kestrelon::desktop
