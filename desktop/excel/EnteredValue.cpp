#include "desktop/excel/EnteredValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "automation/DispatchObject.h"
#include "desktop/excel/ExcelErrors.h"

namespace kestrelon::desktop::excel {
namespace {

constexpr StringView kBlanks = u" \u00A0\u202F";
constexpr size_t kMostDigits = 15;

struct Number {
  double value = 0;
  std::string format;
};

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool IsBlank(char16_t unit) { return kBlanks.find(unit) != StringView::npos; }

StringView Trimmed(StringView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Takes `part` off the front or the end of the text, and the blanks beside it.
bool TakeFront(StringView& text, StringView part) {
  if (part.empty() || !text.starts_with(part)) return false;
  text = Trimmed(text.substr(part.size()));
  return true;
}
bool TakeEnd(StringView& text, StringView part) {
  if (part.empty() || !text.ends_with(part)) return false;
  text = Trimmed(text.substr(0, text.size() - part.size()));
  return true;
}

// Reads the number behind its sign, as "1,234.50" or "1.5E+3".
class DigitReader {
 public:
  DigitReader(StringView text, const NumberSigns& signs) : rest_(text), signs_(signs) {}

  std::optional<double> Read() {
    TakeDigits();
    const size_t leading = digits_.size();
    while (leading >= 1 && leading <= 3 && TakeGroup()) has_groups_ = true;
    if (rest_.starts_with(signs_.decimal_point)) {
      rest_.remove_prefix(signs_.decimal_point.size());
      digits_ += '.';
      decimals_ = TakeDigits();
    }
    if (CountDigits(false) == 0 || CountDigits(true) > kMostDigits) return std::nullopt;
    if (!TakeExponent() || !rest_.empty()) return std::nullopt;
    double value = 0;
    const char* const end = digits_.data() + digits_.size();
    const auto [stop, error] = std::from_chars(digits_.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
  }

  bool has_groups() const { return has_groups_; }
  bool has_exponent() const { return has_exponent_; }
  size_t decimals() const { return decimals_; }

 private:
  size_t TakeDigits() {
    size_t count = 0;
    for (; !rest_.empty() && IsDigit(rest_.front()); ++count, rest_.remove_prefix(1)) {
      digits_ += static_cast<char>(rest_.front());
    }
    return count;
  }

  // Of all digits, or of those from the first one on that is not 0.
  size_t CountDigits(bool only_significant) const {
    size_t count = 0;
    for (const char c : digits_) {
      if (c != '.' && (c != '0' || count > 0 || !only_significant)) ++count;
    }
    return count;
  }

  bool TakeGroup() {
    const StringView sign = signs_.thousands_separator;
    const bool is_blank = sign.size() == 1 && IsBlank(sign.front());
    const bool is_there = is_blank ? !rest_.empty() && IsBlank(rest_.front())
                                   : !sign.empty() && rest_.starts_with(sign);
    const StringView digits = is_there ? rest_.substr(sign.size(), 4) : StringView();
    if (digits.size() < 3 || !std::all_of(digits.begin(), digits.begin() + 3, IsDigit) ||
        (digits.size() == 4 && IsDigit(digits[3]))) {
      return false;
    }
    rest_.remove_prefix(sign.size());
    TakeDigits();
    return true;
  }

  bool TakeExponent() {
    if (rest_.empty() || (rest_.front() != u'E' && rest_.front() != u'e')) return true;
    has_exponent_ = true;
    rest_.remove_prefix(1);
    digits_ += 'e';
    if (!rest_.empty() && (rest_.front() == u'+' || rest_.front() == u'-')) {
      if (rest_.front() == u'-') digits_ += '-';
      rest_.remove_prefix(1);
    }
    return TakeDigits() > 0;
  }

  StringView rest_;
  const NumberSigns& signs_;
  std::string digits_;
  bool has_groups_ = false;
  bool has_exponent_ = false;
  size_t decimals_ = 0;
};

std::string CurrencyFormat(const NumberSigns& signs, bool is_before, size_t decimals) {
  const std::string symbol = "\"" + ToUtf8(ReplaceAll(signs.currency, u"\"", u"")) + "\"";
  const std::string number = decimals > 0 ? "#,##0.00" : "#,##0";
  return is_before ? symbol + number : number + "\\ " + symbol;
}

std::string FormatOf(const DigitReader& reader) {
  if (reader.has_exponent()) return "0.00E+00";
  if (!reader.has_groups()) return "General";
  return reader.decimals() > 0 ? "#,##0.00" : "#,##0";
}

std::optional<Number> ReadNumber(StringView text, const NumberSigns& signs) {
  text = Trimmed(text);
  const bool has_symbol_first = TakeFront(text, signs.currency);
  const bool is_negative = TakeFront(text, u"-");
  if (!is_negative) TakeFront(text, u"+");
  const bool has_symbol = has_symbol_first || TakeFront(text, signs.currency);
  const bool has_symbol_behind = !has_symbol && TakeEnd(text, signs.currency);
  const bool is_money = has_symbol || has_symbol_behind;
  const bool is_percentage = !is_money && TakeEnd(text, u"%");
  DigitReader reader(text, signs);
  const auto read = reader.Read();
  if (!read) return std::nullopt;
  Number number{is_negative ? -*read : *read, FormatOf(reader)};
  if (is_money) number.format = CurrencyFormat(signs, has_symbol, reader.decimals());
  if (is_percentage) {
    number.value /= 100;
    number.format = reader.decimals() > 0 ? "0.00%" : "0%";
  }
  return number;
}

void EnterText(StringView text, Cell& cell) {
  const String plain = ReplaceAll(ReplaceAll(text, u"\r\n", u"\n"), u"\r", u"\n");
  if (plain.size() > kLongestText) {
    throw ExcelError(u"A cell holds at most 32,767 characters; this text has " +
                     Value(static_cast<int64_t>(plain.size())).ToText() + u". Shorten it.");
  }
  cell.style.wraps = plain.find(u'\n') != String::npos;
  cell.value = plain;
  cell.text = plain;
}

void EnterUnknown(const String& text, const NumberSigns& signs, Cell& cell) {
  if (text.starts_with(u'\'')) {
    cell.style.has_text_prefix = true;
    return EnterText(StringView(text).substr(1), cell);
  }
  if (const auto number = ReadNumber(text, signs)) {
    cell.value = number->value;
    cell.style.number_format = number->format;
    cell.text = number->format == "General" ? cell.value.ToText() : String(Trimmed(text));
    return;
  }
  constexpr StringView kFormulaSigns = u"=+-@";
  if (text.size() > 1 && kFormulaSigns.find(text.front()) != StringView::npos) {
    throw ExcelError(u"Formulas are not calculated here: " + Left(text, 40) +
                     u". Put the result, or an apostrophe before it to have it as text.");
  }
  EnterText(text, cell);
}

void EnterDate(Date date, Cell& cell) {
  if (date.days < 0) {
    throw ExcelError(u"Cells hold no dates before 1900: " + FormatDate(date) +
                     u". Put it as a text.");
  }
  const double whole = std::trunc(date.days);
  const bool has_time = date.days != whole;
  cell.value = date;
  cell.text = FormatDate(date);
  cell.style.number_format = !has_time ? "m/d/yyyy" : whole == 0 ? "h:mm:ss" : "m/d/yyyy h:mm";
}

}  // namespace

void Enter(const Value& value, const NumberSigns& signs, Cell& cell) {
  if (value.IsObject()) return Enter(value.ToObject().GetDefault(), signs, cell);
  if (value.IsArray()) throw AutomationError(kTypeMismatch);
  Cell entered;
  entered.style.bold = cell.style.bold;
  if (value.IsString()) {
    EnterUnknown(value.AsString(), signs, entered);
  } else if (value.IsDate()) {
    EnterDate(value.AsDate(), entered);
  } else if (value.IsBoolean()) {
    entered.value = value;
    entered.text = value.AsBoolean() ? u"TRUE" : u"FALSE";
    // Excel shows the words anyway; an .xls holds a number that needs the format to show them.
    entered.style.number_format = "\"TRUE\";\"TRUE\";\"FALSE\"";
  } else if (value.IsInteger() || value.IsDouble()) {
    if (!std::isfinite(value.ToDouble())) throw ExcelError(u"A cell holds no infinite numbers.");
    entered.value = value.ToDouble();
    entered.text = value.ToText();
  }
  cell = std::move(entered);
}

}  // namespace kestrelon::desktop::excel
