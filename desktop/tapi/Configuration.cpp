#include "desktop/tapi/Configuration.h"

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "automation/AutomationError.h"
#include "desktop/storage/AtomicFile.h"
#include "desktop/storage/Paths.h"
#include "desktop/tapi/DialRequest.h"

namespace kestrelon::desktop {
namespace fs = std::filesystem;
namespace {

using Json = nlohmann::json;

constexpr size_t kLargestFile = size_t{1} << 20;

fs::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// "" when the user has no folder for it.
fs::path ConfigurationFile() {
  const fs::path chosen = FromEnvironment("KESTRELON_CONFIG");
  std::error_code error;
  if (!chosen.empty()) return fs::absolute(chosen, error);
  fs::path folder = FromEnvironment("XDG_CONFIG_HOME");
  if (!folder.is_absolute()) {
    const fs::path home = FromEnvironment("HOME");
    if (!home.is_absolute()) return {};
    folder = home / ".config";
  }
  return folder / "kestrelon/config.json";
}

AutomationError ConfigurationError(const std::string& place, const std::string& reason) {
  return AutomationError(kCannotCreateObject,
                         FromUtf8("The configuration file " + place + " " + reason));
}

// The characters of a text, telling how far they have been read.
class ReadingPosition {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  ReadingPosition(const char* at, const char*& read) : at_(at), read_(&read) {}
  reference operator*() const { return *at_; }
  ReadingPosition& operator++() {
    *read_ = ++at_;
    return *this;
  }
  ReadingPosition operator++(int) {
    const ReadingPosition before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const ReadingPosition& a, const ReadingPosition& b) {
    return a.at_ == b.at_;
  }

 private:
  const char* at_;
  const char** read_;
};

// Takes the file as it is parsed, so that what does not belong there is told with its line.
class ConfigurationReader final : public nlohmann::json_sax<Json> {
 public:
  ConfigurationReader(const std::string& text, Configuration& configuration)
      : text_(text), read_(text.data()), configuration_(configuration) {}

  void Read() {
    const char* const begin = text_.data();
    Json::sax_parse(ReadingPosition(begin, read_), ReadingPosition(begin + text_.size(), read_),
                    this);
  }

  bool key(string_t& name) override {
    if (depth_ == 1) {
      if (name != "lines" && name != "dialers") Refuse(Quoted(name) + " is not known", kTopKeys);
    } else if (depth_ == 2) {
      AddDialer(name);
    } else if (name != "call" && name != "hangup" && name != "version") {
      Refuse(Quoted(name) + " is not known", kDialerKeys);
    }
    keys_.resize(depth_);
    keys_.back() = name;
    return true;
  }
  bool start_object(size_t) override {
    const bool is_expected =
        depth_ == 0 || (!in_list_ && depth_ <= 2 && keys_.front() == "dialers");
    if (!is_expected) RefuseValue("an object");
    ++depth_;
    return true;
  }
  bool end_object() override {
    if (depth_ == 3 && configuration_.dialers.back().call.empty()) {
      Refuse("the dialer " + Quoted(keys_[1]) + " has no program to call with", kDialerKeys);
    }
    --depth_;
    keys_.resize(depth_);
    return true;
  }
  bool start_array(size_t) override {
    if (in_list_ || !(AtLines() || AtCommand())) RefuseValue("a list");
    in_list_ = true;
    if (AtCommand()) Command().clear();
    return true;
  }
  bool end_array() override {
    if (AtCommand() && (Command().empty() || Command().front().empty())) {
      Refuse(Quoted(keys_.back()) + " names no program", kDialerKeys);
    }
    in_list_ = false;
    return true;
  }
  bool string(string_t& text) override {
    if (in_list_ && AtLines()) {
      configuration_.lines.push_back(FromUtf8(text));
    } else if (in_list_) {
      AddWord(text);
    } else if (depth_ == 3 && keys_.back() == "version") {
      configuration_.dialers.back().version = FromUtf8(text);
    } else {
      RefuseValue("a text");
    }
    return true;
  }
  bool null() override { return RefuseValue("null"); }
  bool boolean(bool) override { return RefuseValue("a true or false"); }
  bool number_integer(number_integer_t) override { return RefuseValue("a number"); }
  bool number_unsigned(number_unsigned_t) override { return RefuseValue("a number"); }
  bool number_float(number_float_t, const string_t&) override { return RefuseValue("a number"); }
  bool binary(binary_t&) override { return RefuseValue("binary data"); }
  bool parse_error(size_t, const std::string&, const nlohmann::detail::exception& error) override {
    const std::string what = error.what();
    const size_t colon = what.find(": ");
    Refuse("this is no JSON: " + what.substr(colon == std::string::npos ? 0 : colon + 2),
           "Correct the file there, or remove it to go without");
    return false;
  }

 private:
  static constexpr const char* kTopKeys =
      "The file holds \"lines\", a list of names, and \"dialers\", an object of dialers by name";
  static constexpr const char* kDialerKeys =
      "A dialer has \"call\" and, if it can, \"hangup\", each a list of a program and its "
      "arguments, and \"version\", a text";

  static std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

  bool AtLines() const { return depth_ == 1 && keys_.front() == "lines"; }
  bool AtCommand() const { return depth_ == 3 && keys_.back() != "version"; }
  CommandWords& Command() {
    DialerSettings& dialer = configuration_.dialers.back();
    return keys_.back() == "call" ? dialer.call : dialer.hangup;
  }

  void AddDialer(const std::string& name) {
    const String prog_id = FromUtf8(name);
    const auto& dialers = configuration_.dialers;
    const bool is_known = std::any_of(
        dialers.begin(), dialers.end(),
        [&](const DialerSettings& dialer) { return EqualIgnoringCase(dialer.prog_id, prog_id); });
    if (is_known) Refuse("the dialer " + Quoted(name) + " is there twice", "Remove one of them");
    if (prog_id.empty() || EqualIgnoringCase(prog_id, kLinkDialer)) {
      Refuse("the dialer " + Quoted(name) + " cannot have this name",
             "Give it one of its own, as \"Company.Dialer\"");
    }
    configuration_.dialers.push_back({prog_id, {}, {}, {}});
  }

  void AddWord(const std::string& word) {
    const std::string unknown = UnknownPlaceholder(word);
    if (!unknown.empty()) {
      Refuse(Quoted(unknown) + " is not known", "\"{number}\" and \"{parameters}\" are");
    }
    if (word.find('\0') != word.npos) {
      Refuse("a NUL character cannot stand in " + Quoted(keys_.back()), kDialerKeys);
    }
    Command().push_back(word);
  }

  [[noreturn]] void Refuse(const std::string& reason, const std::string& advice) const {
    // The line of the last character that was read.
    const char* const last = std::max(read_ - 1, text_.data());
    const auto line = 1 + std::count(text_.data(), last, '\n');
    throw ConfigurationError(configuration_.file.string() + ", line " + std::to_string(line) + ":",
                             reason + ". " + advice + ".");
  }
  bool RefuseValue(const std::string& kind) const {
    const std::string place = keys_.empty() ? "the file" : Quoted(keys_.back());
    Refuse(kind + " cannot stand in " + place, depth_ < 2 ? kTopKeys : kDialerKeys);
  }

  const std::string& text_;
  const char* read_;
  Configuration& configuration_;
  size_t depth_ = 0;               // of objects; lists are not counted
  std::vector<std::string> keys_;  // the last key of each open object
  bool in_list_ = false;
};

}  // namespace

Configuration ReadConfiguration() {
  Configuration configuration{ConfigurationFile(), {}, {}};
  std::error_code error;
  const fs::file_status status = fs::status(configuration.file, error);
  if (configuration.file.empty() || status.type() == fs::file_type::not_found) {
    return configuration;
  }
  std::string text;
  const auto unread =
      IgnoreFailures([&] { text = ReadWholeFile(configuration.file, kLargestFile); });
  if (unread && unread->number() == kOutOfMemory) {
    throw ConfigurationError(configuration.file.string(),
                             "is longer than 1 MiB. Check KESTRELON_CONFIG, or shorten the file.");
  }
  if (unread) {
    throw ConfigurationError(configuration.file.string(),
                             "cannot be read: " + ToUtf8(unread->description()) +
                                 ". Check KESTRELON_CONFIG and the rights of the file.");
  }
  ConfigurationReader(text, configuration).Read();
  return configuration;
}

}  // namespace kestrelon::desktop
