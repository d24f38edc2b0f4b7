// Reads whatever comes as a card, puts every property, and reads what was put.
#include <cstdint>

#include "automation/AutomationError.h"
#include "desktop/outlook/formats/ContactDocument.h"
#include "tests/fuzz/Require.h"

namespace kestrelon::desktop {
namespace {

constexpr StringView kText = u"a;b,c\r\nß\\n=";

void TryCard(const std::string& content) {
  const auto item = ReadContact(content);
  const auto item_class = item ? std::optional(item->item_class()) : std::nullopt;
  Require(ClassOfCard(content) == item_class);
  Require((item == nullptr) == SplitCards(content).empty());
  if (item == nullptr) return;
  Require(item->content() == content);
  item->UserFields();
  item->PutUserField({u"Name \"x\"", 1, String(kText)});
  for (const StringView name : item->PropertyNames()) {
    const String property = LowerCase(name);
    const Value old = item->Get(property);
    const bool text = old.IsString() && property != u"categories";
    const auto error = IgnoreFailures([&] { item->Put(property, text ? Value(kText) : old); });
    const auto again = ReadContact(item->content());
    Require(again != nullptr && again->item_class() == item->item_class());
    Require(again->Get(property).ToText() == item->Get(property).ToText());
    Require(!text || error || again->Get(property).ToText() == kText);
    Require(again->FindUserField(u"NAME \"X\"")->value == kText);
  }
  ReadContact(CardToSend(*item));
}

}  // namespace
}  // namespace kestrelon::desktop

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kestrelon::desktop::TryCard(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
