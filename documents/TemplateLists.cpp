#include "documents/TemplateLists.h"

#include <algorithm>
#include <array>

#include "Control/ErrorReporting.h"
#include "Control/FileAccess.h"

namespace kestrelon {
namespace {

constexpr size_t kLinkSlots = 1001;
constexpr StringView kAnchor = u"<A HREF";
// More than any page lists, unless its anchors have no ends and so share their texts.
constexpr size_t kLongestList = size_t{1} << 26;

constexpr const char16_t* kNoAccess =
    u"This file may have been added from a location which you do not have access to.";
constexpr const char16_t* kNoFolderAccess =
    u"This folder may reside at a location which you do not have access to.";
constexpr const char16_t* kWhomToAsk =
    u" This may be a network drive or another users local drive. Please contact the user who added "
    u"this document or your system administrator";

// Closed at the end of its scope; 0 is none.
class InternetHandle {
 public:
  InternetHandle(Platform& platform, SystemHandle handle) : platform_(platform), handle_(handle) {}
  ~InternetHandle() {
    if (handle_ != 0) platform_.CloseInternetHandle(handle_);
  }
  InternetHandle(const InternetHandle&) = delete;
  InternetHandle& operator=(const InternetHandle&) = delete;
  SystemHandle get() const { return handle_; }

 private:
  Platform& platform_;
  SystemHandle handle_;
};

// The whole body of a URL; "" when it cannot be had.
String ReadUrl(ControlContext& context, const String& url) {
  Platform& platform = context.platform;
  const InternetHandle connection(platform, platform.OpenInternet(u"VB OpenUrl", 0));
  if (connection.get() == 0) return {};
  const InternetHandle page(platform,
                            platform.OpenInternetUrl(connection.get(), url, kInternetReload));
  if (page.get() == 0) return {};
  std::string body;
  std::array<char, 2048> buffer{};
  uint32_t bytes_read = 0;
  while (platform.ReadInternetFile(page.get(), buffer.data(), buffer.size(), bytes_read) &&
         bytes_read != 0) {
    body.append(buffer.data(), bytes_read);
  }
  return FromAnsi(body);
}

// The texts of a page's anchors, "" in the slots that are left. Error 9 when there are more anchors
// than slots.
std::array<StringView, kLinkSlots> CollectLinks(StringView page) {
  std::array<StringView, kLinkSlots> links;
  size_t count = 0;
  size_t close = 0;  // the ends last found serve further anchors, so that the page is read once
  size_t next = 0;
  for (size_t at = page.find(kAnchor); at != StringView::npos; at = page.find(kAnchor, at + 1)) {
    if (count == kLinkSlots) throw AutomationError(kSubscriptOutOfRange);
    if (close <= at) close = page.find(u'>', at);
    if (close != StringView::npos) {
      const size_t text = close + 1;
      if (next < text) next = page.find(u'<', text);
      links[count] = page.substr(text, std::min(next, page.size()) - text);
    }
    ++count;
  }
  return links;
}

String WebTemplateList(ControlContext& context, const String& url) {
  String list;
  const auto collect = [&] {
    const String page = ReadUrl(context, url);
    const std::array<StringView, kLinkSlots> links = CollectLinks(page);
    // NOTE: the last slot is never read: pages have always been offered a thousand templates.
    for (size_t i = 0; i + 1 < kLinkSlots; ++i) {
      // Servers put the way up to the parent folder in brackets.
      if (links[i].empty() || links[i].front() == u'[') continue;
      if (list.size() + links[i].size() > kLongestList) throw AutomationError(kOutOfMemory);
      if (!list.empty()) list += u'\\';
      list += links[i];
    }
  };
  const auto report = [&](const AutomationError& error) {
    ShowMessage(context, u"Error retrieving template list from web path '" + url + u"' - " +
                             error.description());
  };
  return Attempt(collect, report) ? list : String();
}

// The kinds of address share the template folder itself.
bool IsAddressType(const String& listtype) {
  const String type = LowerCase(listtype);
  return type == u"business" || type == u"home" || type == u"shipping" || type == u"billing";
}

bool IsWordTemplate(const String& name) {
  const String extension = LowerCase(StringView(name).substr(name.rfind(u'.') + 1));
  // Word's lock files begin with "~".
  return (extension == u"dotx" || extension == u"dot") && !name.starts_with(u'~');
}

// Calls `visit` with the name of each file of the folder until it returns false.
template <typename Visit>
void ForEachFileName(ControlContext& context, const String& folder, const Visit& visit) {
  const Object files = FileSystemOf(context).CallChild(u"GetFolder", folder).GetChild(u"Files");
  const std::unique_ptr<Enumerator> walk = files.Enumerate();
  while (const std::optional<Value> file = walk->Next()) {
    if (!visit(file->ToObject().Get(u"Name").ToText())) return;
  }
}

}  // namespace

String GetTemplateList(ControlContext& context, String& folderpath, String& listtype) {
  String list;
  const auto collect = [&] {
    const bool is_web = LowerCase(Left(folderpath, 4)) == u"http";
    String folder = folderpath;
    if (folder.ends_with(u'\\')) folder.pop_back();
    if (!IsAddressType(listtype)) {
      // "/" separates as well; a web server need not take two for one.
      if (folder.ends_with(u'/')) folder.pop_back();
      folder += u'\\' + listtype;
    }
    if (is_web) {
      list = WebTemplateList(context, ReplaceAll(folder, u"\\", u"/"));
      return;
    }
    ForEachFileName(context, folder, [&list](const String& name) {
      if (IsWordTemplate(name)) list += name + u'\\';
      return true;
    });
  };
  const auto report = [&](const AutomationError&) {
    ShowMessage(context, u"Unable to retrieve a list of templates from '" + folderpath +
                             u"'. Please check with your system administrator that you have access "
                             u"to this location.");
    list.clear();
  };
  Attempt(collect, report);
  return list.empty() ? u"Empty" : list;
}

bool FindFile(ControlContext& context, String& path) {
  StringView file = path;
  if (file.ends_with(u'\\') || file.ends_with(u'/')) file.remove_suffix(1);
  const size_t separator = file.find_last_of(u"\\/");
  const String name(file.substr(separator + 1));
  // The root has nothing before its "/".
  const size_t folder_length = separator == 0 && file.front() == u'/' ? 1 : separator;
  const String folder(file.substr(0, separator == StringView::npos ? 0 : folder_length));

  bool found = false;
  const auto look = [&] {
    ForEachFileName(context, folder, [&](const String& other) {
      found = other == name;
      return !found;
    });
  };
  const auto report = [&](const AutomationError&) {
    ShowMessage(context,
                u"Unable to find the folder '" + folder + u"'. " + kNoFolderAccess + kWhomToAsk,
                kInformation, u"Unable to find folder '" + folder + u"'");
  };
  if (!Attempt(look, report)) return false;
  if (!found) {
    ShowMessage(context,
                u"Unable to find the file '" + name + u"' in folder '" + folder + u"'. " +
                    kNoAccess + kWhomToAsk,
                kInformation, u"Unable to find file '" + name + u"'");
  }
  return found;
}

}  // namespace kestrelon
