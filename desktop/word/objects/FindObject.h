// Find and its Replacement. Both write to the settings of the Range or Selection they came from, so
// that script may ask for them anew in every line.
#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "desktop/word/objects/TextObject.h"

namespace kestrelon::desktop::word {

class FindObject final : public WordObject<FindObject> {
 public:
  FindObject(Owner owner, std::shared_ptr<TextPlace> place)
      : WordObject(std::move(owner)), place_(std::move(place)) {}
  static const MemberTable<FindObject>& Members();

  Value GetText() { return settings().text; }
  void PutText(const Value& value);
  Value GetMatchCase() { return settings().match_case; }
  void PutMatchCase(const Value& value);
  Value GetForward() { return settings().forward; }
  void PutForward(const Value& value) { settings().forward = value.ToBoolean(); }
  Value GetWrap() { return settings().wrap; }
  void PutWrap(const Value& value);
  Value GetFound() { return settings().found; }
  Value GetReplacement();
  // Formatting is no part of a search here, so none is ever set.
  Value ClearFormatting(const MethodArguments&) { return {}; }
  // Arguments that are given become the settings. Searches, moves the range or selection to the
  // match and replaces one (Replace 1) or every one (2). True when something was found.
  Value Execute(const MethodArguments& arguments);

 private:
  FindSettings& settings() { return place_->find_settings(); }
  void TakeArguments(const MethodArguments& arguments);
  const FindPattern& Pattern();
  std::optional<Span> FindNext();
  // Returns the span of what was put in.
  Span ReplaceMatch(Span match);
  bool ReplaceNext();
  bool ReplaceEvery();
  bool ReplaceWithin(Span scope);

  std::shared_ptr<TextPlace> place_;
};

class ReplacementObject final : public WordObject<ReplacementObject> {
 public:
  ReplacementObject(Owner owner, std::shared_ptr<TextPlace> place)
      : WordObject(std::move(owner)), place_(std::move(place)) {}
  static const MemberTable<ReplacementObject>& Members();

  Value GetText() { return place_->find_settings().replacement; }
  void PutText(const Value& value);
  Value ClearFormatting(const MethodArguments&) { return {}; }

 private:
  std::shared_ptr<TextPlace> place_;
};

}  // namespace kestrelon::desktop::word
