// What registering needs of the registry. Keys are paths from a root such as HKEY_LOCAL_MACHINE.
#pragma once

#include <optional>
#include <vector>

#include "platform/windows/Win32.h"

namespace kestrelon {

// Owns an open key.
class RegistryKey {
 public:
  RegistryKey() = default;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  ~RegistryKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }

  // Once. `access` may also name a view: KEY_WOW64_32KEY or KEY_WOW64_64KEY.
  LSTATUS Open(HKEY root, const String& key, REGSAM access) {
    return RegOpenKeyExW(root, AsWide(key), 0, access, &key_);
  }
  // The same for a key that may be missing, which is made then.
  LSTATUS Create(HKEY root, const String& key, REGSAM access) {
    return RegCreateKeyExW(root, AsWide(key), 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr,
                           &key_, nullptr);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

// A GUID as keys and values spell it.
String TextOf(REFGUID guid);

// Also whether there is one that must not be read. `view` is KEY_WOW64_32KEY or KEY_WOW64_64KEY for
// the keys of the other architecture, 0 for those of this one.
bool HasRegistryKey(HKEY root, const String& key, REGSAM view = 0);
// The default text of a key; empty where there is none.
String ReadRegistryText(HKEY root, const String& key);
// Deletes a key with everything in it; a missing one is as good as deleted.
LSTATUS DeleteRegistryTree(HKEY root, const String& key);
// Deletes a key that has no keys in it, and leaves it otherwise.
void DeleteEmptyRegistryKey(HKEY root, const String& key);

// Values written one after another; all of it is taken back when the object goes, unless kept.
class RegistryChanges {
 public:
  explicit RegistryChanges(HKEY root) : root_(root) {}
  RegistryChanges(const RegistryChanges&) = delete;
  RegistryChanges& operator=(const RegistryChanges&) = delete;
  ~RegistryChanges();

  // Writes a text, making the key where it is missing. An empty name is the key's default value.
  LSTATUS Write(const String& key, const String& name, const String& text);
  void Keep() { undo_.clear(); }

 private:
  struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
  };
  // Either the topmost key made, or the value that was overwritten (none where there was none).
  struct Undo {
    String key;
    bool is_new_key = false;
    String name;
    std::optional<Value> old_value;
  };
  std::optional<Value> Read(HKEY key, const String& name) const;

  HKEY root_;
  std::vector<Undo> undo_;
};

}  // namespace kestrelon
