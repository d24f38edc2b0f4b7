#include "desktop/outlook/formats/ContactDocument.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "automation/AutomationError.h"
#include "desktop/locale/DateText.h"
#include "desktop/outlook/formats/ContactProperties.h"
#include "desktop/outlook/formats/NewUid.h"
#include "desktop/outlook/formats/UserFieldLines.h"

namespace kestrelon::desktop {
namespace {

using Kind = ContactProperty::Kind;
using NameParts = std::array<String, 5>;  // as N has them: last, first, middle, title, suffix

constexpr int32_t kReadOnly = 440;
constexpr size_t kAddressParts = 7;
constexpr StringView kUnnamed = u"Unnamed";
constexpr std::string_view kTelUri = "tel:";
constexpr std::string_view kSensitivities[] = {"PUBLIC", "X-PERSONAL", "PRIVATE", "CONFIDENTIAL"};

// As it is read back.
String WithLineBreaks(StringView text) { return ReadText(WriteText(text)); }

String Join(std::initializer_list<StringView> pieces, StringView separator) {
  String out;
  for (const StringView piece : pieces) {
    if (piece.empty()) continue;
    if (!out.empty()) out += separator;
    out += piece;
  }
  return out;
}

String ComposeName(const NameParts& parts) {
  return Join({parts[3], parts[1], parts[2], parts[0], parts[4]}, u" ");
}

// "John Paul Smith" or "Smith, John Paul".
NameParts SplitName(const String& text) {
  NameParts parts;
  const String name = Trim(text);
  const size_t comma = name.find(u',');
  const size_t blank = name.rfind(u' ');
  if (comma != String::npos) {
    parts[0] = Trim(StringView(name).substr(0, comma));
    parts[1] = Trim(StringView(name).substr(comma + 1));
  } else {
    parts[0] = blank == String::npos ? name : name.substr(blank + 1);
    parts[1] = blank == String::npos ? String() : Trim(StringView(name).substr(0, blank));
  }
  return parts;
}

bool IsEmpty(const NameParts& parts) {
  return std::all_of(parts.begin(), parts.end(), [](const String& part) { return part.empty(); });
}

int32_t ReadDigits(std::string_view text, size_t at, size_t count) {
  int32_t number = 0;
  for (size_t i = at; i < at + count; ++i) {
    if (i >= text.size() || text[i] < '0' || text[i] > '9') return -1;
    number = number * 10 + (text[i] - '0');
  }
  return number;
}

// 19960415, 1996-04-15, either with a time behind it. A day without a year is no date.
Date ReadDay(std::string_view text) {
  const bool dashes = text.size() > 4 && text[4] == '-';
  DateParts parts{0, 0, 0, 0, 0, 0};
  parts.year = ReadDigits(text, 0, 4);
  parts.month = ReadDigits(text, dashes ? 5 : 4, 2);
  parts.day = ReadDigits(text, dashes ? 8 : 6, 2);
  const bool whole = parts.year >= 100 && parts.month > 0 && parts.day > 0;
  if (!whole || (dashes && text[7] != '-')) return kNoDate;
  Date date = kNoDate;
  IgnoreFailures([&] { date = MakeDate(parts); });
  return date;
}

std::string FormatDay(Date date, bool dashes) {
  const DateParts parts = TakeApart(date);
  char text[40];
  std::snprintf(text, sizeof text, dashes ? "%04d-%02d-%02d" : "%04d%02d%02d", parts.year,
                parts.month, parts.day);
  return text;
}

bool IsYearMark(const Parameter& parameter) {
  return parameter.name == "X-APPLE-OMIT-YEAR" || parameter.name == "VALUE";
}

bool IsValueType(const Parameter& parameter) { return parameter.name == "VALUE"; }

class Contact : public ItemDocument {
 public:
  explicit Contact(Card card) : card_(std::move(card)) {
    for (const char* name : {"KIND", "X-ADDRESSBOOKSERVER-KIND"}) {
      const auto line = card_.Find(name);
      const bool is_plain = line && card_.lines().Group(*line).empty();
      if (is_plain && EqualAscii(card_.Value(*line), "group")) is_list_ = true;
    }
  }

  ItemClass item_class() const override {
    return is_list_ ? ItemClass::kDistributionList : ItemClass::kContact;
  }
  const std::string& content() const override { return card_.content(); }
  std::string Uid() const override { return ToUtf8(card_.TextOf("UID")); }

  bool Has(StringView property) const override { return Find(property) != nullptr; }
  const std::vector<StringView>& PropertyNames() const override;
  Value Get(StringView property) const override;
  void Put(StringView property, const Value& value) override;

  std::vector<UserField> UserFields() const override {
    return ReadUserFields(card_.lines(), card_.component());
  }
  std::optional<UserField> FindUserField(StringView name) const override {
    return desktop::FindUserField(card_.lines(), card_.component(), name);
  }
  void PutUserField(const UserField& field) override {
    Edit(false, [&] {
      card_.EditLines([&](auto& lines, auto& at) { desktop::PutUserField(lines, at, field); });
    });
  }
  void RemoveUserField(StringView name) override {
    Edit(false, [&] {
      card_.EditLines([&](auto& lines, auto& at) { desktop::RemoveUserField(lines, at, name); });
    });
  }

 private:
  const ContactProperty* Find(StringView name) const {
    const ContactProperty* found = FindContactProperty(name);
    const bool is_ours = found != nullptr && (is_list_ ? found->of_lists : found->of_contacts);
    return is_ours ? found : nullptr;
  }
  const ContactProperty& FindProperty(StringView name) const {
    const ContactProperty* found = Find(name);
    if (found == nullptr) throw AutomationError(kMemberNotFound);
    return *found;
  }
  String GetText(const ContactProperty& property) const;
  void PutText(const ContactProperty& property, const String& text);
  void PutDay(const ContactProperty& property, const Value& value);
  void PutSensitivity(int32_t sensitivity);

  // Components are values of the card.
  std::vector<std::string> ComponentsAt(const LineSet& lines) const;
  void PutComponents(const LineSet& lines, const std::vector<std::string>& components);
  String PartText(const LineSet& lines, size_t part) const;
  void PutPart(const LineSet& lines, size_t part, const String& text);

  const NameParts& GetNameParts() const;
  NameParts ReadNameParts() const;
  void PutNameParts(const NameParts& parts);
  String FullName() const;
  void PutFullName(const String& text);
  String StandInName() const;
  bool IsStandIn(const String& name) const;
  String FileAs() const;
  String Street(const LineSet& lines) const;
  String Address(const LineSet& lines) const;
  String Telephone(size_t line) const;
  void PutTelephone(const ContactProperty& property, const String& text);
  String Categories() const;
  void PutCategories(const String& text);
  int32_t Sensitivity() const;
  int32_t MemberCount() const;

  // An edit, and what it makes necessary elsewhere in the card; `of_name` when it may change the
  // name or what stands in for one.
  template <typename Change>
  void Edit(bool of_name, Change change) {
    const uint64_t before = card_.lines().changes();
    const String name = of_name ? card_.TextOf("FN") : String();
    const bool stood_in = of_name && IsStandIn(name);
    change();
    if (card_.lines().changes() == before) return;
    CompleteName(stood_in && card_.TextOf("FN") == name);
    UpdateRevision();
  }
  void CompleteName(bool stood_in);
  void UpdateRevision();
  void SetLine(std::string_view name, const String& text);

  Card card_;
  bool is_list_ = false;
  // The name as of that many changes: its parts are read one after the other.
  mutable NameParts name_;
  mutable uint64_t name_read_at_ = static_cast<uint64_t>(-1);
};

const LineSet kEmails = {.names = {"EMAIL"}};
const LineSet kCompany = {.names = {"ORG"}};

const std::vector<StringView>& Contact::PropertyNames() const {
  static const auto names_of = [](bool lists) {
    std::vector<StringView> names;
    for (const ContactProperty& property : ContactProperties()) {
      if (lists ? property.of_lists : property.of_contacts) names.push_back(property.name);
    }
    return names;
  };
  static const std::vector<StringView> of_contacts = names_of(false);
  static const std::vector<StringView> of_lists = names_of(true);
  return is_list_ ? of_lists : of_contacts;
}

Value Contact::Get(StringView name) const {
  const ContactProperty& property = FindProperty(name);
  if (property.kind == Kind::kSensitivity) return Sensitivity();
  if (property.kind == Kind::kMemberCount) return MemberCount();
  if (property.kind != Kind::kDate) return GetText(property);
  const auto line = card_.FindSlot(property.lines, property.slot);
  if (!line) return kNoDate;
  const std::vector<Parameter> parameters = card_.lines().Parameters(*line);
  if (FindParameter(parameters, "X-APPLE-OMIT-YEAR") != nullptr) return kNoDate;
  return ReadDay(card_.Value(*line));
}

String Contact::GetText(const ContactProperty& property) const {
  switch (property.kind) {
    case Kind::kNamePart:
      return GetNameParts()[property.part];
    case Kind::kFullName:
      return FullName();
    case Kind::kFileAs:
      return FileAs();
    case Kind::kCompanyPart:
    case Kind::kAddressPart:
      return PartText(property.lines, property.part);
    case Kind::kStreet:
      return Street(property.lines);
    case Kind::kAddress:
      return Address(property.lines);
    case Kind::kCategories:
      return Categories();
    default:
      break;
  }
  const auto line = card_.FindSlot(property.lines, property.slot);
  if (!line) return {};
  return property.kind == Kind::kTelephone ? Telephone(*line) : card_.Text(*line);
}

void Contact::Put(StringView name, const Value& value) {
  const ContactProperty& property = FindProperty(name);
  if (property.kind == Kind::kAddress || property.kind == Kind::kMemberCount) {
    throw AutomationError(kReadOnly, u"Property is read-only");
  }
  const bool of_name = property.kind == Kind::kNamePart || property.kind == Kind::kFullName ||
                       property.kind == Kind::kCompanyPart ||
                       property.lines.names.front() == kEmails.names.front();
  Edit(of_name, [&] {
    if (property.kind == Kind::kDate) {
      PutDay(property, value);
    } else if (property.kind == Kind::kSensitivity) {
      PutSensitivity(value.ToLong());
    } else {
      const String text = WithLineBreaks(value.ToText());
      if (text != GetText(property)) PutText(property, text);
    }
  });
}

void Contact::PutText(const ContactProperty& property, const String& text) {
  switch (property.kind) {
    case Kind::kNamePart: {
      NameParts parts = GetNameParts();
      parts[property.part] = text;
      PutNameParts(parts);
      const String full_name = ComposeName(parts);
      return SetLine("FN", full_name.empty() ? StandInName() : full_name);
    }
    case Kind::kFullName:
      return PutFullName(text);
    case Kind::kCompanyPart:
    case Kind::kAddressPart:
      return PutPart(property.lines, property.part, text);
    case Kind::kStreet: {
      std::vector<std::string> components = ComponentsAt(property.lines);
      components.resize(std::max(components.size(), kAddressParts));
      components[1].clear();
      components[2] = card_.Escape(text);
      return PutComponents(property.lines, components);
    }
    case Kind::kTelephone:
      return PutTelephone(property, text);
    case Kind::kCategories:
      return PutCategories(text);
    default:
      break;
  }
  std::string value = card_.Escape(text);
  if (property.kind == Kind::kUri) {
    // Commas and semicolons of an address are its own.
    std::string plain;
    for (size_t i = 0; i < value.size(); ++i) {
      if (value[i] == '\\' && i + 1 < value.size() && value[i + 1] == '\\') {
        plain += value[i++];
      } else if (value[i] == '\\' && (value[i + 1] == ',' || value[i + 1] == ';')) {
        continue;
      }
      plain += value[i];
    }
    value = plain;
  }
  card_.PutSlot(property.lines, property.slot,
                text.empty() ? std::nullopt : std::optional<std::string>(value));
}

// --- Structured values ---

std::vector<std::string> Contact::ComponentsAt(const LineSet& lines) const {
  const auto line = card_.FindSlot(lines, 1);
  return line ? card_.Components(*line) : std::vector<std::string>();
}

void Contact::PutComponents(const LineSet& lines, const std::vector<std::string>& components) {
  const bool empty = std::all_of(components.begin(), components.end(),
                                 [](const std::string& part) { return part.empty(); });
  card_.PutSlot(lines, 1, empty ? std::nullopt : std::optional(JoinComponents(components)));
}

String Contact::PartText(const LineSet& lines, size_t part) const {
  const std::vector<std::string> components = ComponentsAt(lines);
  return part < components.size() ? ReadText(components[part]) : String();
}

void Contact::PutPart(const LineSet& lines, size_t part, const String& text) {
  std::vector<std::string> components = ComponentsAt(lines);
  const size_t least = lines.names.front() == "ADR" ? kAddressParts : 1;
  components.resize(std::max({components.size(), least, part + 1}));
  components[part] = card_.Escape(text);
  while (components.size() > least && components.back().empty()) components.pop_back();
  PutComponents(lines, components);
}

String Contact::Street(const LineSet& lines) const {
  return Join({PartText(lines, 1), PartText(lines, 2)}, u"\r\n");
}

String Contact::Address(const LineSet& lines) const {
  const String town =
      Join({PartText(lines, 3), Join({PartText(lines, 4), PartText(lines, 5)}, u" ")}, u", ");
  return Join({PartText(lines, 0), Street(lines), town, PartText(lines, 6)}, u"\r\n");
}

// --- Names ---

const NameParts& Contact::GetNameParts() const {
  if (name_read_at_ != card_.lines().changes()) {
    name_ = ReadNameParts();
    name_read_at_ = card_.lines().changes();
  }
  return name_;
}

// A card without N has only its FN to tell.
NameParts Contact::ReadNameParts() const {
  NameParts parts;
  const auto line = card_.Find("N");
  if (!line) {
    const String name = card_.TextOf("FN");
    return IsStandIn(name) ? parts : SplitName(name);
  }
  const std::vector<std::string> components = card_.Components(*line);
  for (size_t i = 0; i < parts.size() && i < components.size(); ++i) {
    // Several names of one kind, which vCard 2.1 does not have.
    if (card_.version() == Card::Version::k21 || components[i].find(',') == std::string::npos) {
      parts[i] = ReadText(components[i]);
      continue;
    }
    for (const std::string& name : SplitEscaped(components[i], ',')) {
      parts[i] = Join({parts[i], ReadText(name)}, u" ");
    }
  }
  return parts;
}

void Contact::PutNameParts(const NameParts& parts) {
  const NameParts old = GetNameParts();
  const auto line = card_.Find("N");
  std::vector<std::string> components;
  if (line) components = card_.Components(*line);
  components.resize(std::max(components.size(), parts.size()));
  for (size_t i = 0; i < parts.size(); ++i) {
    if (!line || parts[i] != old[i]) components[i] = card_.Escape(parts[i]);
  }
  card_.SetValue(line ? *line : card_.Insert("N", "", ""), JoinComponents(components));
}

// What a card without a name has for one.
String Contact::StandInName() const {
  if (is_list_) return String(kUnnamed);
  for (const String& name : {PartText(kCompany, 0), PartText(kCompany, 1)}) {
    if (!Trim(name).empty()) return name;
  }
  const auto email = card_.FindSlot(kEmails, 1);
  const String address = email ? card_.Text(*email) : String();
  return Trim(address).empty() ? String(kUnnamed) : address;
}

bool Contact::IsStandIn(const String& name) const {
  return name.empty() || name == kUnnamed || name == StandInName();
}

String Contact::FullName() const {
  const String name = card_.TextOf("FN");
  if (is_list_) return name == kUnnamed ? String() : name;
  const NameParts parts = GetNameParts();
  if (name.empty()) return ComposeName(parts);
  return IsEmpty(parts) && IsStandIn(name) ? String() : name;
}

void Contact::PutFullName(const String& text) {
  if (!is_list_) {
    const NameParts parts = SplitName(text);
    if (ComposeName(GetNameParts()) != text || text.empty()) PutNameParts(parts);
  }
  SetLine("FN", text.empty() ? StandInName() : text);
}

String Contact::FileAs() const {
  const auto line = card_.FindSlot(FindContactProperty(u"fileas")->lines, 1);
  if (line) return card_.Text(*line);
  const NameParts parts = GetNameParts();
  const String name = Join({parts[0], Join({parts[1], parts[2]}, u" ")}, u", ");
  if (!name.empty()) return name;
  return is_list_ || !FullName().empty() ? FullName() : PartText(kCompany, 0);
}

void Contact::SetLine(std::string_view name, const String& text) {
  const auto line = card_.Find(name);
  if (!line) {
    card_.Insert(name, "", card_.Escape(text));
  } else if (card_.Text(*line) != text) {
    card_.SetValue(*line, card_.Escape(text));
  }
}

void Contact::CompleteName(bool stood_in) {
  const String name = card_.TextOf("FN");
  if (!stood_in && !name.empty()) return;
  const bool has_parts = !is_list_ && (!stood_in || card_.Find("N"));
  const String composed = has_parts ? ComposeName(GetNameParts()) : String();
  if (!name.empty() && !composed.empty()) return;
  SetLine("FN", composed.empty() ? StandInName() : composed);
}

// --- Other values ---

String Contact::Telephone(size_t line) const {
  std::string value = card_.Value(line);
  if (!EqualAscii(std::string_view(value).substr(0, kTelUri.size()), kTelUri)) {
    return ReadText(value);
  }
  const std::vector<std::string> pieces = SplitEscaped(value.substr(kTelUri.size()), ';');
  std::string number = pieces.front();
  for (const std::string& piece : pieces) {
    if (piece.starts_with("ext=")) number += " ext. " + piece.substr(4);
  }
  return ReadText(number);
}

void Contact::PutTelephone(const ContactProperty& property, const String& text) {
  const auto line = card_.FindSlot(property.lines, property.slot);
  std::string value = card_.Escape(text);
  if (line && !text.empty() &&
      EqualAscii(std::string_view(card_.Value(*line)).substr(0, kTelUri.size()), kTelUri)) {
    if (value.find_first_not_of("+0123456789-.()") == std::string::npos) {
      value = std::string(kTelUri) + value;
    } else {
      card_.RemoveParameters(*line, IsValueType);
    }
  }
  card_.PutSlot(property.lines, property.slot,
                text.empty() ? std::nullopt : std::optional<std::string>(value));
}

void Contact::PutDay(const ContactProperty& property, const Value& value) {
  Date date = value.IsString() ? DateFromUserText(value.AsString()) : value.ToDate();
  date.days = std::floor(date.days);
  if (Get(LowerCase(property.name)).AsDate() == date) return;
  const auto line = card_.FindSlot(property.lines, property.slot);
  if (date == kNoDate) return card_.PutSlot(property.lines, property.slot, std::nullopt);
  const bool modern = card_.version() == Card::Version::k40;
  const std::string day = FormatDay(date, !modern);
  if (line) card_.RemoveParameters(*line, IsYearMark);
  LineSet lines = property.lines;
  if (!line && modern && lines.names[1] == "ANNIVERSARY") std::swap(lines.names[0], lines.names[1]);
  card_.PutSlot(lines, property.slot, day);
}

int32_t Contact::Sensitivity() const {
  const auto line = card_.Find("CLASS");
  const std::string value = line ? UpperAscii(card_.Value(*line)) : "";
  for (int32_t i = 1; i <= 3; ++i) {
    if (value == kSensitivities[i]) return i;
  }
  return value == "PERSONAL" ? 1 : 0;
}

void Contact::PutSensitivity(int32_t sensitivity) {
  if (sensitivity < 0 || sensitivity > 3) throw AutomationError(kInvalidProcedureCall);
  if (sensitivity == Sensitivity()) return;
  const auto line = card_.Find("CLASS");
  const std::string_view value = kSensitivities[sensitivity];
  if (!line) {
    card_.Insert("CLASS", "", value);
  } else {
    card_.SetValue(*line, value);
  }
}

String Contact::Categories() const {
  String out;
  auto line = card_.Find("CATEGORIES");
  for (; line; line = card_.lines().Find("CATEGORIES", card_.component(), *line + 1)) {
    for (const std::string& category : SplitEscaped(card_.Value(*line), ',')) {
      out = Join({out, Trim(ReadText(category))}, u", ");
    }
  }
  return out;
}

void Contact::PutCategories(const String& text) {
  std::string value;
  String normal;
  for (const String& piece : Split(ReplaceAll(text, u";", u","), u",")) {
    const String category = Trim(piece);
    if (category.empty()) continue;
    normal = Join({normal, category}, u", ");
    value += (value.empty() ? "" : ",") + card_.Escape(category);
  }
  if (normal == Categories()) return;
  const auto first = card_.Find("CATEGORIES");
  while (const auto line =
             card_.lines().Find("CATEGORIES", card_.component(), first ? *first + 1 : 0)) {
    card_.Remove(*line);
  }
  if (value.empty()) {
    if (first) card_.Remove(*first);
  } else if (first) {
    card_.SetValue(*first, value);
  } else {
    card_.Insert("CATEGORIES", "", value);
  }
}

int32_t Contact::MemberCount() const {
  int32_t count = 0;
  for (const char* name : {"MEMBER", "X-ADDRESSBOOKSERVER-MEMBER"}) {
    auto line = card_.Find(name);
    for (; line; line = card_.lines().Find(name, card_.component(), *line + 1)) ++count;
  }
  return count;
}

void Contact::UpdateRevision() {
  const auto line = card_.Find("REV");
  if (!line) return;
  const std::string old = card_.Value(*line);
  const bool dashes = old.size() > 4 && old[4] == '-';
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  gmtime_r(&now, &utc);
  char text[40];
  std::strftime(text, sizeof text, dashes ? "%Y-%m-%dT%H:%M:%SZ" : "%Y%m%dT%H%M%SZ", &utc);
  if (old != text) card_.SetValue(*line, text);
}

}  // namespace

std::unique_ptr<ItemDocument> ReadContact(std::string content) {
  std::optional<Card> card = Card::Read(std::move(content));
  if (!card) return nullptr;
  return std::make_unique<Contact>(std::move(*card));
}

std::unique_ptr<ItemDocument> NewContact() {
  return ReadContact("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + NewUid() +
                     "\r\nN:;;;;\r\nFN:" + ToUtf8(kUnnamed) + "\r\nEND:VCARD\r\n");
}

}  // namespace kestrelon::desktop
