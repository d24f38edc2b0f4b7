#include "desktop/tapi/DialRequest.h"

#include "automation/AutomationError.h"

namespace kestrelon::desktop {
namespace {

constexpr std::string_view kNumber = "{number}";
constexpr std::string_view kParameters = "{parameters}";

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Stands between digits for the eye: blanks (also those that keep a number on one line), hyphens
// and dashes, dots, slashes, brackets.
bool IsSeparator(char16_t unit) {
  constexpr StringView kSeparators = u" \t-./()\u00A0\u2007\u2009\u202F\u2010\u2011\u2012\u2013";
  return kSeparators.find(unit) != StringView::npos;
}

AutomationError NoNumber(StringView number) {
  if (Trim(number).empty()) {
    return AutomationError(kInvalidProcedureCall,
                           u"There is no number to call. Add \"number=\" and the telephone number "
                           u"to the parameters.");
  }
  return AutomationError(kInvalidProcedureCall,
                         u"\"" + String(number) +
                             u"\" is no telephone number. Give its digits, led by \"+\" and the "
                             u"country for a number abroad, as +44 20 7946 0000.");
}

// The "{name}" in letters that begins at or after `from`; its position is npos when there is none.
struct Placeholder {
  size_t position;
  std::string_view text;
};

Placeholder FindPlaceholder(std::string_view word, size_t from) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  for (size_t at = word.find('{', from); at != word.npos; at = word.find('{', at + 1)) {
    const size_t end = word.find_first_not_of(kLetters, at + 1);
    if (end != word.npos && end > at + 1 && word[end] == '}') {
      return {at, word.substr(at, end + 1 - at)};
    }
  }
  return {word.npos, {}};
}

}  // namespace

String NumberToDial(StringView parameters) {
  for (const String& item : Split(parameters, u";")) {
    const size_t equals = item.find(u'=');
    if (equals != String::npos && EqualIgnoringCase(StringView(item).substr(0, equals), u"number"))
      return item.substr(equals + 1);
  }
  return {};
}

std::string TelephoneLink(StringView number) {
  const String trimmed = Trim(number);
  const bool is_global = trimmed.starts_with(u'+');
  const String digits = is_global ? ReplaceAll(trimmed.substr(1), u"(0)", u"") : trimmed;
  std::string link = is_global ? "tel:+" : "tel:";
  const size_t prefix = link.size();
  for (const char16_t unit : digits) {
    if (IsDigit(unit)) {
      link += static_cast<char>(unit);
    } else if (!IsSeparator(unit)) {
      throw NoNumber(number);
    }
  }
  if (link.size() == prefix) throw NoNumber(number);
  return link;
}

std::string FillPlaceholders(const std::string& word, StringView parameters) {
  std::string filled;
  size_t from = 0;
  for (Placeholder found = FindPlaceholder(word, 0); found.position != word.npos;
       found = FindPlaceholder(word, from)) {
    filled += word.substr(from, found.position - from);
    filled += ToUtf8(found.text == kNumber ? Trim(NumberToDial(parameters)) : String(parameters));
    from = found.position + found.text.size();
  }
  filled += word.substr(from);
  if (filled.find('\0') != filled.npos) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The parameters of the call hold a NUL character. Leave it out.");
  }
  // What a page sends must not switch on options of the user's program.
  if (filled.starts_with('-') && !word.starts_with('-')) {
    throw AutomationError(kInvalidProcedureCall,
                          u"The dialer's program would read \"" + FromUtf8(filled) +
                              u"\" as an option. Give a number that does not begin with \"-\".");
  }
  return filled;
}

std::string UnknownPlaceholder(const std::string& word) {
  for (Placeholder found = FindPlaceholder(word, 0); found.position != word.npos;
       found = FindPlaceholder(word, found.position + 1)) {
    if (found.text != kNumber && found.text != kParameters) return std::string(found.text);
  }
  return {};
}

}  // namespace kestrelon::desktop
