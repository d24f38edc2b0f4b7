#include "desktop/outlook/formats/Card.h"

#include <algorithm>
#include <charconv>

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kSlot = "X-KESTRELON-SLOT";
constexpr int32_t kLastSlot = 9999;

constexpr std::pair<std::string_view, LineType> kTypeWords[] = {
    {"WORK", kWork},
    {"BUSINESS", kWork},
    {"HOME", kHome},
    {"CELL", kCell},
    {"MOBILE", kCell},
    {"IPHONE", kCell},
    {"FAX", kFax},
    {"PAGER", kPager},
    {"CAR", kCar},
    {"OTHER", kOther},
    {"X-ASSISTANT", kAssistant},
    {"ASSISTANT", kAssistant},
    {"SPOUSE", kSpouse},
    {"X-EVOLUTION-ASSISTANT", kAssistant}};

struct ValueEncoding {
  bool quoted_printable = false;
  bool base64 = false;
  std::string charset;
  bool IsPlain() const { return !quoted_printable && !base64 && charset.empty(); }
};

bool IsEncoding(const Parameter& parameter) {
  if (parameter.name == "ENCODING" || parameter.name == "CHARSET") return true;
  const std::string& word = parameter.values.front();
  return parameter.name.empty() &&
         (EqualAscii(word, "QUOTED-PRINTABLE") || EqualAscii(word, "BASE64"));
}

ValueEncoding EncodingOf(const ContentLines& lines, size_t line) {
  ValueEncoding encoding;
  encoding.quoted_printable = lines.IsQuotedPrintable(line);
  VisitParameters(lines, line, [&](std::string_view name, std::string_view value) {
    if (EqualAscii(name, "CHARSET")) encoding.charset = value;
    if ((EqualAscii(name, "ENCODING") && EqualAscii(value, "B")) ||
        ((EqualAscii(name, "ENCODING") || name.empty()) && EqualAscii(value, "BASE64"))) {
      encoding.base64 = !encoding.quoted_printable;
    }
  });
  return encoding;
}

int32_t ReadNumber(std::string_view text) {
  int32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// `words` may be a list in quotes.
void AddTypes(std::string_view words, LineTypes& types) {
  for (size_t at = 0; at <= words.size();) {
    const size_t end = std::min(words.find(',', at), words.size());
    const std::string_view word = words.substr(at, end - at);
    if (EqualAscii(word, "PREF")) types.preference = std::min(types.preference, 1);
    for (const auto& [name, type] : kTypeWords) {
      if (EqualAscii(word, name)) types.types |= type;
    }
    at = end + 1;
  }
}

}  // namespace

std::string JoinComponents(const std::vector<std::string>& components) {
  std::string value;
  for (const std::string& component : components) {
    if (&component != &components.front()) value += ';';
    value += component;
  }
  return value;
}

uint32_t KindOf(std::string_view name, uint32_t types) {
  const auto first_of = [types](std::initializer_list<uint32_t> kinds) -> uint32_t {
    for (const uint32_t kind : kinds) {
      if ((types & kind) != 0) return kind;
    }
    return 0;
  };
  if (name == "TEL") {
    if ((types & (kFax | kAssistant)) == kFax) return kFax | first_of({kWork, kHome});
    return first_of({kAssistant, kPager, kCell, kCar, kWork, kHome});
  }
  if (name != "ADR") return first_of({kWork, kHome});
  // An address without a type is one at work, which is the default of vCard.
  return types == 0 ? kWork : first_of({kWork, kHome, kOther});
}

// --- Reading ---

std::optional<Card> Card::Read(std::string content) {
  FileText file = DecodeFile(std::move(content));
  ContentLines lines(std::move(file.text));
  const auto component = lines.FindComponent("VCARD", lines.Whole());
  if (!component) return std::nullopt;
  return Card(std::move(file), std::move(lines), *component);
}

Card::Card(FileText file, ContentLines lines, Component component)
    : file_(std::move(file)), lines_(std::move(lines)), component_(component) {
  const auto version = Find("VERSION");
  if (!version) return;
  const std::string text = lines_.RawValue(*version);
  if (text.starts_with("2.1")) version_ = Version::k21;
  if (text.starts_with("4")) version_ = Version::k40;
  if (version_ == Version::k21) lines_.UseOldFolding();
}

const std::string& Card::content() const {
  if (file_.IsAsItStands()) return lines_.text();
  if (encoded_at_ != lines_.changes()) {
    encoded_ = EncodeFile(file_, lines_.text());
    encoded_at_ = lines_.changes();
  }
  return encoded_;
}

std::string Card::Decode(size_t line, std::string raw) const {
  const ValueEncoding encoding = EncodingOf(lines_, line);
  if (encoding.quoted_printable) return DecodeCharset(DecodeQuotedPrintable(raw), encoding.charset);
  if (encoding.base64) return DecodeCharset(DecodeBase64(raw), encoding.charset);
  if (IsAscii(raw) && encoding.charset.empty()) return raw;
  // A mark speaks for the whole file.
  const bool marked =
      file_.encoding != FileText::Encoding::kUtf8 || lines_.text().starts_with("\xEF\xBB\xBF");
  return DecodeCharset(raw, marked ? "" : encoding.charset);
}

std::vector<std::string> Card::Components(size_t line) const {
  const ValueEncoding encoding = EncodingOf(lines_, line);
  if (encoding.base64) return SplitEscaped(Value(line), ';');
  const std::string plain = lines_.RawValue(line);
  if (encoding.IsPlain() && IsAscii(plain)) return SplitEscaped(plain, ';');
  std::vector<std::string> components;
  for (std::string& raw : SplitEscaped(plain, ';')) {
    // A semicolon that was encoded does not separate.
    const std::vector<std::string> pieces = SplitEscaped(Decode(line, std::move(raw)), ';');
    std::string component = pieces.front();
    for (size_t i = 1; i < pieces.size(); ++i) component.append("\\;").append(pieces[i]);
    components.push_back(std::move(component));
  }
  return components;
}

String Card::TextOf(std::string_view name) const {
  const auto line = Find(name);
  return line ? Text(*line) : String();
}

std::string Card::Escape(StringView text) const {
  if (version_ != Version::k21) return WriteText(text);
  std::string out;
  for (const char c : ToUtf8(ReadText(WriteText(text)))) {
    if (c == ';' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

// --- Writing ---

void Card::SetValue(size_t line, std::string_view value) {
  const bool encode = version_ == Version::k21 &&
                      (!IsAscii(value) || value.find_first_of("\r\n") != std::string_view::npos);
  const ValueEncoding now = EncodingOf(lines_, line);
  const bool fits =
      encode ? now.quoted_printable && EqualAscii(now.charset, "UTF-8") : now.IsPlain();
  if (!fits) {
    lines_.SetRawValue(line, "");
    lines_.RemoveParameters(line, IsEncoding);
    if (encode) {
      lines_.SetParameter(line, "CHARSET", "UTF-8");
      lines_.SetParameter(line, "ENCODING", "QUOTED-PRINTABLE");
    }
  }
  if (encode) return lines_.SetRawValue(line, EncodeQuotedPrintable(value));
  if (value.find_first_of("\r\n") == std::string_view::npos) return lines_.SetRawValue(line, value);
  // Line breaks of what was quoted-printable.
  std::string plain;
  for (const char c : value) {
    if (c == '\n') plain += "\\n";
    if (c != '\n' && c != '\r') plain += c;
  }
  lines_.SetRawValue(line, plain);
}

std::string Card::FormatTypes(std::string_view types) const {
  std::string out;
  for (std::string& type : SplitEscaped(types, ',')) {
    const bool old_word = type == "INTERNET" && version_ == Version::k40;
    if (type.empty() || old_word) continue;
    if (version_ == Version::k40) {
      std::transform(type.begin(), type.end(), type.begin(),
                     [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    }
    const bool bare = version_ == Version::k21;
    out.append(bare ? ";" : out.empty() ? ";TYPE=" : ",").append(type);
  }
  return out;
}

size_t Card::Insert(std::string_view name, std::string_view types, std::string_view value,
                    std::optional<size_t> before) {
  const size_t place = before.value_or(component_.end);
  lines_.Insert(place, std::string(name) + FormatTypes(types) + ":");
  ++component_.end;
  SetValue(place, value);
  return place;
}

void Card::Remove(size_t line) {
  lines_.Remove(line);
  --component_.end;
}

void Card::RemoveParameters(size_t line, bool (*drop)(const Parameter&)) {
  lines_.RemoveParameters(line, drop);
}

// --- Slots ---

LineTypes Card::TypesOf(size_t line) const {
  LineTypes types;
  VisitParameters(lines_, line, [&](std::string_view name, std::string_view value) {
    if (name.empty() || EqualAscii(name, "TYPE")) {
      AddTypes(value, types);
    } else if (EqualAscii(name, "PREF")) {
      const int32_t number = ReadNumber(value);
      if (number >= 1 && number <= 100) types.preference = number;
    } else if (EqualAscii(name, kSlot)) {
      const int32_t number = ReadNumber(value);
      if (number >= 1 && number <= kLastSlot) types.slot = number;
    }
  });
  return types;
}

// item1.X-ABRELATEDNAMES:Ann / item1.X-ABLABEL:_$!<Spouse>!$_
bool Card::HasLabel(size_t line, std::string_view label) const {
  const std::string_view group = lines_.Group(line);
  if (group.empty()) return false;
  auto at = Find("X-ABLABEL");
  for (; at; at = lines_.Find("X-ABLABEL", component_, *at + 1)) {
    if (!EqualAscii(lines_.Group(*at), group)) continue;
    return UpperAscii(lines_.RawValue(*at)).find(label) != std::string::npos;
  }
  return false;
}

bool Card::Belongs(size_t line, const LineSet& set, LineTypes& types) const {
  if (EqualAscii(lines_.Name(line).substr(0, 4), "X-AB") && !HasLabel(line, set.label))
    return false;
  types = TypesOf(line);
  if (lines_.Is(line, "RELATED")) {
    return (types.types & kSpouse) != 0 && !lines_.RawValue(line).starts_with("urn:");
  }
  return set.types == kAnyType || KindOf(set.names.front(), types.types) == set.types;
}

const std::vector<Card::SlottedLine>& Card::Slots(const LineSet& set) const {
  KnownSlots& known = known_slots_;
  const bool is_known = known.changes == lines_.changes() && known.name == set.names.front() &&
                        known.types == set.types && known.label == set.label;
  if (!is_known)
    known = {lines_.changes(), set.names.front(), set.types, set.label, FindSlots(set)};
  return known.slots;
}

std::vector<Card::SlottedLine> Card::FindSlots(const LineSet& set) const {
  struct Candidate {
    size_t line;
    int32_t rank;
    int32_t slot;
  };
  std::vector<Candidate> candidates;
  for (size_t rank = 0; rank < set.names.size() && !set.names[rank].empty(); ++rank) {
    auto line = Find(set.names[rank]);
    for (; line; line = lines_.Find(set.names[rank], component_, *line + 1)) {
      LineTypes types;
      if (!Belongs(*line, set, types)) continue;
      candidates.push_back(
          {*line, static_cast<int32_t>(rank) * 1000 + types.preference, types.slot});
    }
  }
  if (candidates.empty()) return {};
  if (candidates.size() == 1) return {{candidates[0].line, std::max(candidates[0].slot, 1)}};
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.rank < b.rank; });
  std::vector<SlottedLine> slots;
  std::vector<bool> taken(1, true);
  const auto take = [&](size_t line, int32_t slot) {
    taken.resize(std::max(taken.size(), static_cast<size_t>(slot) + 1));
    taken[static_cast<size_t>(slot)] = true;
    slots.push_back({line, slot});
  };
  for (Candidate& candidate : candidates) {
    const auto slot = static_cast<size_t>(candidate.slot);
    if (slot < taken.size() && taken[slot]) {
      candidate.slot = 0;
    } else {
      take(candidate.line, candidate.slot);
    }
  }
  size_t free = 1;
  for (const Candidate& candidate : candidates) {
    if (candidate.slot != 0) continue;
    while (free < taken.size() && taken[free]) ++free;
    take(candidate.line, static_cast<int32_t>(free));
  }
  std::sort(slots.begin(), slots.end(),
            [](const SlottedLine& a, const SlottedLine& b) { return a.line < b.line; });
  return slots;
}

std::optional<size_t> Card::FindSlot(const LineSet& set, int32_t slot) const {
  for (const SlottedLine& at : Slots(set)) {
    if (at.slot == slot) return at.line;
  }
  return std::nullopt;
}

void Card::PutSlot(const LineSet& set, int32_t slot, const std::optional<std::string>& value) {
  std::vector<SlottedLine> slots = Slots(set);
  const auto found = std::find_if(slots.begin(), slots.end(),
                                  [&](const SlottedLine& at) { return at.slot == slot; });
  if (found != slots.end() && value) return SetValue(found->line, *value);
  if (found == slots.end() && !value) return;
  if (value) {
    const auto next = std::find_if(slots.begin(), slots.end(),
                                   [&](const SlottedLine& at) { return at.slot > slot; });
    size_t place = component_.end;
    if (next != slots.end()) {
      place = next->line;
    } else if (!slots.empty()) {
      place = slots.back().line + 1;
    }
    Insert(set.names.front(), set.written_types, *value, place);
    for (SlottedLine& at : slots) at.line += at.line >= place ? 1 : 0;
    slots.push_back({place, slot});
  } else {
    const size_t removed = found->line;
    Remove(removed);
    slots.erase(found);
    for (SlottedLine& at : slots) at.line -= at.line > removed ? 1 : 0;
  }
  KeepSlots(set, slots);
}

// Lines whose place alone does not tell their slot are given it.
void Card::KeepSlots(const LineSet& set, std::vector<SlottedLine> wanted) {
  std::sort(wanted.begin(), wanted.end(),
            [](const SlottedLine& a, const SlottedLine& b) { return a.line < b.line; });
  for (bool settled = false; !settled;) {
    settled = true;
    const std::vector<SlottedLine> slots = Slots(set);
    for (size_t i = 0; i < slots.size() && i < wanted.size(); ++i) {
      const int32_t slot = wanted[i].slot;
      const bool given = TypesOf(slots[i].line).slot == slot;
      if (slots[i].slot == slot || given || slot > kLastSlot) continue;
      lines_.SetParameter(slots[i].line, kSlot, std::to_string(slot));
      settled = false;
    }
  }
}

}  // namespace kestrelon::desktop
