#include "frontends/activex/Registry.h"

namespace kestrelon {
namespace {

// The first of the keys that lead to `key` which does not exist; empty when all do.
String FirstMissing(HKEY root, const String& key) {
  for (size_t end = key.find(u'\\');; end = key.find(u'\\', end + 1)) {
    String level = key.substr(0, end);
    if (!HasRegistryKey(root, level)) return level;
    if (end == String::npos) return {};
  }
}

}  // namespace

String TextOf(REFGUID guid) {
  wchar_t text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return FromWide(text);
}

bool HasRegistryKey(HKEY root, const String& key, REGSAM view) {
  RegistryKey opened;
  return opened.Open(root, key, KEY_QUERY_VALUE | view) != ERROR_FILE_NOT_FOUND;
}

String ReadRegistryText(HKEY root, const String& key) {
  DWORD size = 0;  // in bytes, with the terminating zero
  if (RegGetValueW(root, AsWide(key), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
      ERROR_SUCCESS) {
    return {};
  }
  std::wstring text(size / sizeof(wchar_t), L'\0');
  if (RegGetValueW(root, AsWide(key), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
      ERROR_SUCCESS) {
    return {};
  }
  return FromWide(text.c_str());
}

LSTATUS DeleteRegistryTree(HKEY root, const String& key) {
  const LSTATUS status = RegDeleteTreeW(root, AsWide(key));
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

void DeleteEmptyRegistryKey(HKEY root, const String& key) { RegDeleteKeyW(root, AsWide(key)); }

RegistryChanges::~RegistryChanges() {
  for (auto undo = undo_.rbegin(); undo != undo_.rend(); ++undo) {
    if (undo->is_new_key) {
      DeleteRegistryTree(root_, undo->key);
      continue;
    }
    RegistryKey key;
    if (key.Open(root_, undo->key, KEY_SET_VALUE) != ERROR_SUCCESS) continue;
    if (undo->old_value) {
      RegSetValueExW(key.get(), AsWide(undo->name), 0, undo->old_value->type,
                     undo->old_value->bytes.data(),
                     static_cast<DWORD>(undo->old_value->bytes.size()));
    } else {
      RegDeleteValueW(key.get(), AsWide(undo->name));
    }
  }
}

LSTATUS RegistryChanges::Write(const String& key, const String& name, const String& text) {
  // What is to be undone is noted before it is done: nothing may fail in between.
  const String missing = FirstMissing(root_, key);
  if (!missing.empty()) undo_.push_back({missing, true, {}, std::nullopt});
  RegistryKey opened;
  const LSTATUS status = opened.Create(root_, key, KEY_QUERY_VALUE | KEY_SET_VALUE);
  if (status != ERROR_SUCCESS) return status;
  if (missing.empty()) undo_.push_back({key, false, name, Read(opened.get(), name)});
  return RegSetValueExW(opened.get(), AsWide(name), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>((text.size() + 1) * sizeof(char16_t)));
}

std::optional<RegistryChanges::Value> RegistryChanges::Read(HKEY key, const String& name) const {
  DWORD size = 0;
  if (RegQueryValueExW(key, AsWide(name), nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  Value value;
  value.bytes.resize(size);
  if (RegQueryValueExW(key, AsWide(name), nullptr, &value.type, value.bytes.data(), &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return value;
}

}  // namespace kestrelon
