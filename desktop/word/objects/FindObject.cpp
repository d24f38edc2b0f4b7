#include "desktop/word/objects/FindObject.h"

#include <array>
#include <utility>

namespace kestrelon::desktop::word {
namespace {

constexpr size_t kTextLimit = 255;
constexpr int32_t kFindStop = 0;
constexpr int32_t kFindContinue = 1;
constexpr int32_t kFindAsk = 2;  // nobody is asked here: the search stops
constexpr int32_t kReplaceNone = 0;
constexpr int32_t kReplaceOne = 1;
constexpr int32_t kReplaceAll = 2;

// Places of Execute's parameters.
enum ExecuteParameter : size_t {
  kFindText,
  kMatchCase,
  kMatchWholeWord,
  kMatchWildcards,
  kMatchSoundsLike,
  kMatchAllWordForms,
  kForward,
  kWrap,
  kFormat,
  kReplaceWith,
  kReplace,
};

// Ways of matching that are not known here: searching without them would find the wrong text.
struct UnknownWay {
  size_t parameter;
  StringView name;
};
constexpr std::array<UnknownWay, 4> kUnknownWays = {{{kMatchWholeWord, u"MatchWholeWord"},
                                                     {kMatchWildcards, u"MatchWildcards"},
                                                     {kMatchSoundsLike, u"MatchSoundsLike"},
                                                     {kMatchAllWordForms, u"MatchAllWordForms"}}};

String CheckedText(const Value& value) {
  String text = value.ToText();
  if (text.size() > kTextLimit) throw ParameterTooLong();
  return text;
}

int32_t CheckedWrap(const Value& value) {
  const int32_t wrap = value.ToLong();
  if (wrap < kFindStop || wrap > kFindAsk) throw BadParameter(u"Wrap is 0, 1 or 2.");
  return wrap;
}

}  // namespace

Value MakeFind(const Owner& owner, std::shared_ptr<TextPlace> place) {
  return MakeObject<FindObject>(owner, std::move(place));
}

const MemberTable<FindObject>& FindObject::Members() {
  static const MemberTable<FindObject> table =
      MemberTable<FindObject>(u"Find")
          .Property(u"Text", &FindObject::GetText, &FindObject::PutText)
          .Property(u"MatchCase", &FindObject::GetMatchCase, &FindObject::PutMatchCase)
          .Property(u"Forward", &FindObject::GetForward, &FindObject::PutForward)
          .Property(u"Wrap", &FindObject::GetWrap, &FindObject::PutWrap)
          .Property(u"Found", &FindObject::GetFound)
          .Property(u"Replacement", &FindObject::GetReplacement)
          .Method(u"ClearFormatting", &FindObject::ClearFormatting)
          .Method(
              u"Execute", &FindObject::Execute,
              {u"FindText", u"MatchCase", u"MatchWholeWord", u"MatchWildcards", u"MatchSoundsLike",
               u"MatchAllWordForms", u"Forward", u"Wrap", u"Format", u"ReplaceWith", u"Replace",
               u"MatchKashida", u"MatchDiacritics", u"MatchAlefHamza", u"MatchControl"});
  return table;
}

void FindObject::PutText(const Value& value) {
  String text = CheckedText(value);
  // A script sets the same text again for every occurrence; the pattern stands.
  if (text == settings().text) return;
  settings().text = std::move(text);
  settings().pattern.reset();
}

void FindObject::PutMatchCase(const Value& value) {
  const bool match_case = value.ToBoolean();
  if (match_case == settings().match_case) return;
  settings().match_case = match_case;
  settings().pattern.reset();
}

void FindObject::PutWrap(const Value& value) { settings().wrap = CheckedWrap(value); }

Value FindObject::GetReplacement() { return MakeObject<ReplacementObject>(owner(), place_); }

Value FindObject::Execute(const MethodArguments& arguments) {
  TakeArguments(arguments);
  const int32_t replace = arguments.Has(kReplace) ? arguments[kReplace].ToLong() : kReplaceNone;
  bool& found = settings().found;
  found = false;
  if (settings().text.empty()) return false;
  switch (replace) {
    case kReplaceNone:
      if (const std::optional<Span> match = FindNext()) {
        place_->MoveTo(*match);
        found = true;
      }
      break;
    case kReplaceOne:
      found = ReplaceNext();
      break;
    case kReplaceAll:
      found = ReplaceEvery();
      break;
    default:
      throw BadParameter(u"Replace is 0 (none), 1 (one) or 2 (all).");
  }
  return found;
}

void FindObject::TakeArguments(const MethodArguments& arguments) {
  for (const UnknownWay& way : kUnknownWays) {
    if (arguments.Has(way.parameter) && arguments[way.parameter].ToBoolean()) {
      throw BadParameter(String(way.name) + u" is not known here. Leave it out.");
    }
  }
  if (arguments.Has(kFindText)) PutText(arguments[kFindText]);
  if (arguments.Has(kMatchCase)) PutMatchCase(arguments[kMatchCase]);
  if (arguments.Has(kForward)) PutForward(arguments[kForward]);
  if (arguments.Has(kWrap)) PutWrap(arguments[kWrap]);
  if (arguments.Has(kReplaceWith)) {
    settings().replacement = CheckedText(arguments[kReplaceWith]);
  }
}

const FindPattern& FindObject::Pattern() {
  FindSettings& now = settings();
  if (now.pattern == nullptr) {
    now.pattern = std::make_shared<const FindPattern>(now.text, now.match_case);
  }
  return *now.pattern;
}

// A search looks through the range first. When the range is itself a match, as an earlier search
// has left it, the search goes on behind it. Then, if it may continue, through the rest of the
// story.
std::optional<Span> FindObject::FindNext() {
  Story& story = place_->story();
  const int32_t length = story.Length();
  const Span from = place_->span();
  const bool forward = settings().forward;
  const bool may_continue = settings().wrap == kFindContinue;
  const auto search = [&](int32_t start, int32_t end) {
    return story.Find(Pattern(), start, end, forward);
  };
  std::optional<Span> inside;
  if (from.start != from.end) {
    inside = search(from.start, from.end);
    if (inside && *inside != from) return inside;
    if (!inside && (!may_continue || from == Span{0, length})) return std::nullopt;
  }
  const int32_t origin = forward == inside.has_value() ? from.end : from.start;
  const std::optional<Span> ahead = forward ? search(origin, length) : search(0, origin);
  if (ahead || !may_continue) return ahead;
  return search(0, length);
}

Span FindObject::ReplaceMatch(Span match) {
  Story& story = place_->story();
  return story.Replace(match, ExpandReplacement(settings().replacement, story.Text(match)));
}

bool FindObject::ReplaceNext() {
  const std::optional<Span> match = FindNext();
  if (!match) return false;
  place_->MoveTo(ReplaceMatch(*match));
  document().NoteEdit();
  return true;
}

bool FindObject::ReplaceEvery() {
  Story& story = place_->story();
  const Span whole = {0, story.Length()};
  Span scope = place_->span();
  if (scope.start == scope.end) {
    scope = settings().forward ? Span{scope.start, whole.end} : Span{0, scope.end};
  }
  const bool replaced = settings().wrap == kFindContinue || scope == whole
                            ? story.ReplaceAll(Pattern(), settings().replacement) != 0
                            : ReplaceWithin(scope);
  if (replaced) document().NoteEdit();
  return replaced;
}

bool FindObject::ReplaceWithin(Span scope) {
  bool replaced = false;
  while (const std::optional<Span> match =
             place_->story().Find(Pattern(), scope.start, scope.end)) {
    const Span put = ReplaceMatch(*match);
    scope = {put.end, scope.end + put.end - match->end};
    replaced = true;
  }
  return replaced;
}

const MemberTable<ReplacementObject>& ReplacementObject::Members() {
  static const MemberTable<ReplacementObject> table =
      MemberTable<ReplacementObject>(u"Replacement")
          .Property(u"Text", &ReplacementObject::GetText, &ReplacementObject::PutText)
          .Method(u"ClearFormatting", &ReplacementObject::ClearFormatting);
  return table;
}

void ReplacementObject::PutText(const Value& value) {
  place_->find_settings().replacement = CheckedText(value);
}

}  // namespace kestrelon::desktop::word
