// What Range and Selection have in common: a place in a story, its text, and what is done there.
#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "desktop/word/objects/WordObject.h"

namespace kestrelon::desktop::word {

// A place in a story that a Find can search from and move.
class TextPlace {
 public:
  virtual ~TextPlace() = default;
  virtual Story& story() = 0;
  virtual Span span() = 0;
  virtual void MoveTo(Span span) = 0;
  virtual FindSettings& find_settings() = 0;
};

// The objects that a place leads to; made where they are known.
Value MakeFind(const Owner& owner, std::shared_ptr<TextPlace> place);
Value MakeRange(const Owner& owner, Story& story, Span span);
Value MakeTables(const Owner& owner, Story& story, Span span);

// The part of `span` that may be replaced or deleted: the last paragraph mark of a story stays.
Span WithoutLastMark(const Story& story, Span span);
// `span` with one end moved by `count` units, within the story; the other end gives way.
// A surrogate pair is one character.
// Error 4120 for units other than character (1) and story (6).
Span MoveStartOf(const Story& story, Span span, int32_t unit, int32_t count);
Span MoveEndOf(const Story& story, Span span, int32_t unit, int32_t count);
// Error 4608 unless 0 <= start <= end <= length of the story.
Span CheckedSpan(const Story& story, int32_t start, int32_t end);
// What Information(type) says of the span. Error 4120 for a type that is not known here.
Value InformationOf(const Story& story, Span span, int32_t type);
// Deletes the span whatever `count` says, or, where it is empty, `count` characters after it
// (before it, when negative). How many pieces went.
int32_t DeleteAt(Story& story, Span span, int32_t unit, int32_t count);

// Puts a file in the place of the span; the arguments are those of InsertFile. Returns the span of
// what was inserted. Error 5174 for a missing file, 4120 for a part of a file and for a link.
Span InsertFileAt(const Owner& owner, Story& story, Span span, const MethodArguments& arguments);

template <class Server>
class TextObject : public WordObject<Server>, public TextPlace {
 public:
  using WordObject<Server>::WordObject;

  Value GetStart() { return span().start; }
  Value GetEnd() { return span().end; }
  void PutStart(const Value& value) {
    const int32_t start = value.ToLong();
    MoveTo(CheckedSpan(story(), start, std::max(start, span().end)));
  }
  void PutEnd(const Value& value) {
    const int32_t end = value.ToLong();
    MoveTo(CheckedSpan(story(), std::min(end, span().start), end));
  }
  Value GetStoryType() { return static_cast<int32_t>(story().type()); }
  Value Information(const MethodArguments& arguments) {
    return InformationOf(story(), span(), arguments.Require(0).ToLong());
  }
  Value MoveStart(const MethodArguments& arguments) {
    const Span before = span();
    MoveTo(MoveStartOf(story(), before, UnitOf(arguments), CountOf(arguments)));
    return span().start - before.start;
  }
  Value MoveEnd(const MethodArguments& arguments) {
    const Span before = span();
    MoveTo(MoveEndOf(story(), before, UnitOf(arguments), CountOf(arguments)));
    return span().end - before.end;
  }
  // Direction 1 (or none) to the start, 0 to the end.
  Value Collapse(const MethodArguments& arguments) {
    const Span at = span();
    const bool to_end = arguments.Has(0) && arguments[0].ToLong() == 0;
    MoveTo(to_end ? Span{at.end, at.end} : Span{at.start, at.start});
    return {};
  }
  Value Delete(const MethodArguments& arguments) {
    const int32_t deleted = DeleteAt(story(), span(), UnitOf(arguments), CountOf(arguments));
    if (deleted != 0) this->document().NoteEdit();
    return deleted;
  }
  // A range covers what was inserted, a selection stands behind it.
  Value InsertFile(const MethodArguments& arguments) {
    static_cast<Server&>(*this).TakeInserted(
        InsertFileAt(this->owner(), story(), span(), arguments));
    this->document().NoteEdit();
    return {};
  }
  Value GetFind() {
    return MakeFind(this->owner(), std::static_pointer_cast<Server>(this->shared_from_this()));
  }
  Value GetTables() { return MakeTables(this->owner(), story(), span()); }
  Value GetDuplicate() { return MakeRange(this->owner(), story(), span()); }

  using TextPlace::MoveTo;
  using TextPlace::span;
  using TextPlace::story;

 protected:
  static MemberTable<Server> TextMembers(StringView type_name) {
    return MemberTable<Server>(type_name)
        .Property(u"Start", &Server::GetStart, &Server::PutStart)
        .Property(u"End", &Server::GetEnd, &Server::PutEnd)
        .Property(u"StoryType", &Server::GetStoryType)
        .Property(u"Find", &Server::GetFind)
        .Property(u"Tables", &Server::GetTables)
        .Method(u"Information", &Server::Information, {u"Type"})
        .Method(u"MoveStart", &Server::MoveStart, {u"Unit", u"Count"})
        .Method(u"MoveEnd", &Server::MoveEnd, {u"Unit", u"Count"})
        .Method(u"Collapse", &Server::Collapse, {u"Direction"})
        .Method(u"Delete", &Server::Delete, {u"Unit", u"Count"})
        .Method(u"InsertFile", &Server::InsertFile,
                {u"FileName", u"Range", u"ConfirmConversions", u"Link", u"Attachment"});
  }

 private:
  static int32_t UnitOf(const MethodArguments& arguments) {
    return arguments.Has(0) ? arguments[0].ToLong() : 1;
  }
  static int32_t CountOf(const MethodArguments& arguments) {
    return arguments.Has(1) ? arguments[1].ToLong() : 1;
  }
};

}  // namespace kestrelon::desktop::word
