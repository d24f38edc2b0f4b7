#include "frontends/activex/AccessPolicy.h"

// These stand on Win32.h.
#include <shlwapi.h>
#include <urlmon.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "frontends/activex/Identifiers.h"
#include "frontends/activex/Registry.h"
#include "platform/windows/Variants.h"

namespace kestrelon {
namespace {

constexpr char16_t kPolicyAllowList[] =
    u"SOFTWARE\\Policies\\Kestrelon\\KestrelonControl2005\\AllowedSites";
constexpr char16_t kAllowList[] = u"SOFTWARE\\Kestrelon\\KestrelonControl2005\\AllowedSites";
constexpr char16_t kKillFlags[] =
    u"SOFTWARE\\Microsoft\\Internet Explorer\\ActiveX Compatibility\\";
constexpr DWORD kKilled = 0x400;

LSTATUS OpenOfMachine(const String& path, REGSAM view, RegistryKey& key) {
  return key.Open(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE | view);
}

// What an address says of where a page comes from, in canonical form.
struct Origin {
  DWORD scheme;
  String host;
  DWORD port;

  bool operator==(const Origin&) const = default;
};

// Null for no address, and for one with control characters, which readers drop or end at as they
// like.
ComPtr<IUri> ParseAddress(const String& address) {
  ComPtr<IUri> uri;
  const auto is_control = [](char16_t unit) { return unit < u' '; };
  if (std::any_of(address.begin(), address.end(), is_control)) return nullptr;
  if (FAILED(CreateUri(AsWide(address), Uri_CREATE_CANONICALIZE, 0, &uri))) return nullptr;
  return uri;
}

// "" for a part that the address does not have.
String PartOf(IUri& uri, Uri_PROPERTY part) {
  Bstr text;
  return SUCCEEDED(uri.GetPropertyBSTR(part, text.Receive(), 0)) ? String(text.text()) : String();
}

DWORD SchemeOf(IUri& uri) {
  DWORD scheme = URL_SCHEME_INVALID;
  return SUCCEEDED(uri.GetScheme(&scheme)) ? scheme : static_cast<DWORD>(URL_SCHEME_INVALID);
}

// Whether it is clear which machine an address names. What is escaped in a name, one reader leaves
// and another takes for the end of it; a user's name is there to look like a machine's.
bool HasClearHost(IUri& uri) {
  const String host = PartOf(uri, Uri_PROPERTY_HOST);
  return PartOf(uri, Uri_PROPERTY_USER_INFO).empty() &&
         host.find_first_of(u" !\"#$%&'()*+,/;<=>?@[\\]^`{|}~") == String::npos;
}

// Nothing for what does not come from a web server, or not clearly from which.
std::optional<Origin> OriginOf(IUri& uri) {
  Origin origin{SchemeOf(uri), PartOf(uri, Uri_PROPERTY_HOST), 0};
  if (origin.scheme != URL_SCHEME_HTTP && origin.scheme != URL_SCHEME_HTTPS) return std::nullopt;
  if (origin.host.empty() || !HasClearHost(uri)) return std::nullopt;
  if (uri.GetPort(&origin.port) != S_OK) return std::nullopt;
  return origin;
}

// Nothing for an entry with more in it than an origin.
std::optional<Origin> OriginOfEntry(const String& entry) {
  const ComPtr<IUri> uri = ParseAddress(entry);
  if (uri == nullptr) return std::nullopt;
  const String path_and_query = PartOf(*uri.Get(), Uri_PROPERTY_PATH_AND_QUERY);
  if (path_and_query != u"/" || !PartOf(*uri.Get(), Uri_PROPERTY_FRAGMENT).empty()) {
    return std::nullopt;
  }
  return OriginOf(*uri.Get());
}

// The texts among the values of a key.
std::vector<String> TextsOf(HKEY key) {
  std::vector<String> texts;
  DWORD count = 0;
  DWORD longest_name = 0;
  DWORD longest_data = 0;
  if (RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                       &longest_name, &longest_data, nullptr, nullptr) != ERROR_SUCCESS) {
    return texts;
  }
  std::wstring name(longest_name + 1, L'\0');
  std::wstring data(longest_data / sizeof(wchar_t) + 1, L'\0');
  for (DWORD i = 0; i < count; ++i) {
    DWORD name_length = static_cast<DWORD>(name.size());
    DWORD size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
    DWORD type = REG_NONE;
    if (RegEnumValueW(key, i, name.data(), &name_length, nullptr, &type,
                      reinterpret_cast<BYTE*>(data.data()), &size) != ERROR_SUCCESS ||
        type != REG_SZ) {
      continue;
    }
    const std::wstring_view text(data.data(), size / sizeof(wchar_t));
    texts.push_back(FromWide(text.substr(0, text.find(L'\0'))));
  }
  return texts;
}

bool IsOnAllowList(const Origin& origin) {
  RegistryKey key;
  LSTATUS opened = OpenOfMachine(kPolicyAllowList, KEY_WOW64_64KEY, key);
  // A policy that is there and cannot be read allows nothing.
  if (opened == ERROR_FILE_NOT_FOUND) opened = OpenOfMachine(kAllowList, KEY_WOW64_64KEY, key);
  if (opened != ERROR_SUCCESS) return false;
  const std::vector<String> entries = TextsOf(key.get());
  return std::any_of(entries.begin(), entries.end(),
                     [&](const String& entry) { return OriginOfEntry(entry) == origin; });
}

bool IsInTrustedZone(IUri& uri) {
  ComPtr<IInternetSecurityManager> manager;
  if (FAILED(CoInternetCreateSecurityManager(nullptr, &manager, 0))) return false;
  // The canonical form: two readings of one address must not differ about its host.
  const String address = PartOf(uri, Uri_PROPERTY_ABSOLUTE_URI);
  DWORD zone = URLZONE_UNTRUSTED;
  if (FAILED(manager->MapUrlToZone(AsWide(address), &zone, 0))) return false;
  return zone == URLZONE_INTRANET || zone == URLZONE_TRUSTED;
}

// "/C:/…": there are other ways to write the file of another machine than with its name as host.
bool IsOnDrive(IUri& uri) {
  const String path = PartOf(uri, Uri_PROPERTY_PATH);
  if (!PartOf(uri, Uri_PROPERTY_HOST).empty() || path.size() < 4) return false;
  const char16_t drive = path[1] | 0x20;
  return path[0] == u'/' && drive >= u'a' && drive <= u'z' && path[2] == u':' && path[3] == u'/';
}

bool IsKilledIn(REGSAM view) {
  RegistryKey key;
  LSTATUS result = OpenOfMachine(kKillFlags + TextOf(kControlClass), view, key);
  if (result == ERROR_FILE_NOT_FOUND) return false;
  if (result != ERROR_SUCCESS) return true;
  DWORD flags = 0;
  DWORD size = sizeof(flags);
  result = RegGetValueW(key.get(), nullptr, L"Compatibility Flags", RRF_RT_REG_DWORD, nullptr,
                        &flags, &size);
  if (result == ERROR_FILE_NOT_FOUND) return false;
  return result != ERROR_SUCCESS || (flags & kKilled) != 0;
}

}  // namespace

bool IsAllowedAddress(const String& address) {
  const ComPtr<IUri> uri = ParseAddress(address);
  if (uri == nullptr) return false;
  if (SchemeOf(*uri.Get()) == URL_SCHEME_FILE) {
    return IsOnDrive(*uri.Get()) || (HasClearHost(*uri.Get()) && IsInTrustedZone(*uri.Get()));
  }
  const std::optional<Origin> origin = OriginOf(*uri.Get());
  return origin.has_value() && (IsInTrustedZone(*uri.Get()) || IsOnAllowList(*origin));
}

bool IsKilled() { return IsKilledIn(KEY_WOW64_64KEY) || IsKilledIn(KEY_WOW64_32KEY); }

}  // namespace kestrelon
