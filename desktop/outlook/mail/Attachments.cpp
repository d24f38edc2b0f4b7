#include "desktop/outlook/mail/Attachments.h"

#include "desktop/outlook/formats/OutlookErrors.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"

namespace kestrelon::desktop {
namespace {

// Well above what mail servers take.
constexpr size_t kLargestAttachment = size_t{256} << 20;

std::string ReadAttachment(const String& source) {
  try {
    return ReadWholeFile(PathFromText(source), kLargestAttachment);
  } catch (const AutomationError& error) {
    const String reason =
        error.number() == kOutOfMemory ? u"It is larger than 256 MiB" : error.description();
    throw AutomationError(error.number(), u"Cannot attach \"" + source + u"\": " + reason +
                                              u". Check the path and the file name.");
  }
}

}  // namespace

const MemberTable<Attachment>& Attachment::Members() {
  static const MemberTable<Attachment> table =
      MemberTable<Attachment>(u"Attachment")
          .Property(u"FileName", &Attachment::GetFileName)
          .Property(u"DisplayName", &Attachment::GetDisplayName)
          .Property(u"", &Attachment::GetDisplayName)
          .Property(u"Size", &Attachment::GetSize);
  return table;
}

const MemberTable<Attachments>& Attachments::Members() {
  static const MemberTable<Attachments> table =
      MemberTable<Attachments>(u"Attachments")
          .Property(u"Count", &Attachments::GetCount)
          .Method(u"Item", &Attachments::Item, {u"Index"})
          .Method(u"", &Attachments::Item, {u"Index"})
          .Method(u"Add", &Attachments::Add, {u"Source", u"Type", u"Position", u"DisplayName"});
  return table;
}

std::unique_ptr<Enumerator> Attachments::Enumerate() {
  return std::make_unique<VectorEnumerator>(
      std::vector<Value>(attachments_.begin(), attachments_.end()));
}

Value Attachments::GetCount() { return static_cast<int64_t>(attachments_.size()); }

Value Attachments::Item(const MethodArguments& arguments) {
  return Object(attachments_[PlaceInCollection(arguments.Require(0), attachments_.size())]);
}

// The position counts characters of a rich text, which these mails do not have.
Value Attachments::Add(const MethodArguments& arguments) {
  constexpr int32_t kByValue = 1;
  if (arguments.Has(1) && arguments[1].ToLong() != kByValue) {
    throw AutomationError(kNotImplemented, u"Files can be attached by value (1) only");
  }
  const Value& source = arguments.Require(0);
  if (source.IsObject()) {
    throw AutomationError(kNotImplemented, u"Files can be attached by their path only");
  }
  const String path = source.ToText();
  const String name = TextFromPath(PathFromText(path).filename());
  auto attachment = std::make_shared<Attachment>(
      name, arguments.Has(3) ? arguments[3].ToText() : name, ReadAttachment(path));
  attachments_.push_back(attachment);
  return Object(attachment);
}

}  // namespace kestrelon::desktop
