// The files that go with an item.
#pragma once

#include <string>
#include <vector>

#include "desktop/server/ServerObject.h"

namespace kestrelon::desktop {

class Attachment final : public ServerObject<Attachment> {
 public:
  Attachment(String file_name, String display_name, std::string content)
      : file_name_(std::move(file_name)),
        display_name_(std::move(display_name)),
        content_(std::move(content)) {}

  static const MemberTable<Attachment>& Members();

  const String& file_name() const { return file_name_; }
  const String& display_name() const { return display_name_; }
  const std::string& content() const { return content_; }

 private:
  Value GetFileName() { return file_name_; }
  Value GetDisplayName() { return display_name_; }
  Value GetSize() { return static_cast<int64_t>(content_.size()); }

  String file_name_;
  String display_name_;
  std::string content_;
};

// Counts from 1.
class Attachments final : public ServerObject<Attachments> {
 public:
  static const MemberTable<Attachments>& Members();
  std::unique_ptr<Enumerator> Enumerate() override;

  const std::vector<std::shared_ptr<Attachment>>& all() const { return attachments_; }
  void Append(std::shared_ptr<Attachment> attachment) {
    attachments_.push_back(std::move(attachment));
  }

 private:
  Value GetCount();
  Value Item(const MethodArguments& arguments);
  // Takes a copy at once: the caller may delete the file. Error 53 when it is missing.
  Value Add(const MethodArguments& arguments);

  std::vector<std::shared_ptr<Attachment>> attachments_;
};

}  // namespace kestrelon::desktop
