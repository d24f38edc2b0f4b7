#include "desktop/locale/DateText.h"

#include <array>
#include <optional>

#include "automation/AutomationError.h"
#include "desktop/locale/UserLocale.h"

namespace kestrelon::desktop {
namespace {

constexpr std::array<StringView, 12> kMonths = {
    u"january", u"february", u"march",     u"april",   u"may",      u"june",
    u"july",    u"august",   u"september", u"october", u"november", u"december"};

[[noreturn]] void Refuse() { throw AutomationError(kTypeMismatch); }

// A number or a month of the date.
struct Piece {
  int32_t value = 0;
  size_t digits = 0;  // 0 for a month name
  bool is_name() const { return digits == 0; }
  bool is_long_year() const { return digits == 3 || digits == 4; }
};

// Reads a text in lower case from left to right.
class Scanner {
 public:
  explicit Scanner(String text) : text_(std::move(text)) {}

  bool AtEnd() const { return at_ == text_.size(); }

  bool Take(StringView expected) {
    if (StringView(text_).substr(at_, expected.size()) != expected) return false;
    at_ += expected.size();
    return true;
  }

  void SkipBlanks() {
    while (Take(u" ")) continue;
  }

  Piece TakeNumber() {
    Piece number;
    for (; at_ < text_.size() && text_[at_] >= u'0' && text_[at_] <= u'9'; ++at_) {
      if (++number.digits > 4) Refuse();
      number.value = number.value * 10 + (text_[at_] - u'0');
    }
    if (number.digits == 0) Refuse();
    return number;
  }

  Piece TakeNumberOrMonth() {
    const size_t start = at_;
    while (at_ < text_.size() && text_[at_] >= u'a' && text_[at_] <= u'z') ++at_;
    const StringView name = StringView(text_).substr(start, at_ - start);
    if (name.empty()) return TakeNumber();
    for (size_t i = 0; i < kMonths.size(); ++i) {
      if (name == kMonths[i] || name == kMonths[i].substr(0, 3) || (name == u"sept" && i == 8)) {
        return Piece{static_cast<int32_t>(i) + 1, 0};
      }
    }
    Refuse();
  }

  // What parts two pieces, without its blanks.
  String TakeSeparator() {
    String separator;
    const size_t start = at_;
    for (; at_ < text_.size() && StringView(u" /.-,").find(text_[at_]) != StringView::npos; ++at_) {
      if (text_[at_] != u' ') separator += text_[at_];
    }
    if (at_ == start || separator.size() > 1) Refuse();
    return separator;
  }

 private:
  String text_;
  size_t at_ = 0;
};

int32_t FullYear(const Piece& year) {
  if (year.is_name()) Refuse();
  if (year.is_long_year()) return year.value;
  return year.value + (year.value < 30 ? 2000 : 1900);
}

void PutDay(DateParts& parts, const Piece& year, Piece month, Piece day) {
  if (month.value > 12 && !day.is_name()) std::swap(month, day);
  if (day.is_name() || day.is_long_year() || month.is_long_year()) Refuse();
  parts.year = FullYear(year);
  parts.month = month.value;
  parts.day = day.value;
}

void TakeDay(Scanner& scanner, const std::string& order, DateParts& parts) {
  const Piece first = scanner.TakeNumberOrMonth();
  const String separator = scanner.TakeSeparator();
  const Piece second = scanner.TakeNumberOrMonth();
  const String second_separator = scanner.TakeSeparator();
  const Piece third = scanner.TakeNumberOrMonth();
  const bool has_name = first.is_name() || second.is_name();
  if (!has_name && (separator != second_separator || separator == u",")) Refuse();

  const bool year_first =
      first.is_long_year() || (order == "2" && !has_name && !third.is_long_year());
  if (year_first) {
    PutDay(parts, first, second, third);
  } else if (first.is_name() || (!second.is_name() && order != "1")) {
    PutDay(parts, third, first, second);
  } else {
    PutDay(parts, third, second, first);
  }
}

void TakeTime(Scanner& scanner, DateParts& parts) {
  const auto take = [&scanner] {
    const Piece number = scanner.TakeNumber();
    if (number.digits > 2) Refuse();
    return number.value;
  };
  parts.hour = take();
  if (!scanner.Take(u":")) Refuse();
  parts.minute = take();
  if (scanner.Take(u":")) parts.second = take();
  scanner.SkipBlanks();
  const bool morning = scanner.Take(u"am");
  const bool afternoon = !morning && scanner.Take(u"pm");
  if (!morning && !afternoon) return;
  if (parts.hour > 12) Refuse();
  parts.hour = parts.hour % 12 + (afternoon ? 12 : 0);
}

}  // namespace

Date DateFromUserText(StringView text) { return DateFromText(text, ShortDateOrder()); }

Date DateFromText(StringView text, const std::string& order) {
  std::optional<Date> date;
  IgnoreFailures([&] { date = ParseDate(text); });
  if (date) return *date;
  Scanner scanner(LowerCase(Trim(text)));
  DateParts parts;
  TakeDay(scanner, order, parts);
  if (!scanner.AtEnd()) {
    if (!scanner.Take(u" ")) Refuse();
    scanner.SkipBlanks();
    TakeTime(scanner, parts);
  }
  if (!scanner.AtEnd()) Refuse();
  IgnoreFailures([&] { date = MakeDate(parts); });
  if (!date) Refuse();
  return *date;
}

}  // namespace kestrelon::desktop
