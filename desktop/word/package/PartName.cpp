#include "desktop/word/package/PartName.h"

#include <algorithm>
#include <vector>

namespace kestrelon::desktop::word {
namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string PercentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const bool escape = text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 &&
                        HexDigit(text[i + 2]) >= 0;
    decoded +=
        escape ? static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2])) : text[i];
    if (escape) i += 2;
  }
  return decoded;
}

std::string_view FolderOf(std::string_view name) { return name.substr(0, name.rfind('/') + 1); }

std::vector<std::string_view> Segments(std::string_view path) {
  std::vector<std::string_view> segments;
  size_t from = 0;
  while (from <= path.size()) {
    const size_t end = std::min(path.find('/', from), path.size());
    segments.push_back(path.substr(from, end - from));
    from = end + 1;
  }
  return segments;
}

}  // namespace

std::string PartKey(std::string_view name) {
  std::string key = PercentDecoded(name);
  for (char& c : key) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

std::string ResolveTarget(std::string_view source, std::string_view target) {
  target = target.substr(0, target.find('#'));
  if (target.empty()) return std::string(source);
  std::string path(target.starts_with('/') ? std::string_view() : FolderOf(source));
  path += target;
  std::vector<std::string_view> resolved;
  for (const std::string_view segment : Segments(path)) {
    if (segment == "..") {
      if (!resolved.empty()) resolved.pop_back();
    } else if (!segment.empty() && segment != ".") {
      resolved.push_back(segment);
    }
  }
  std::string name;
  for (const std::string_view segment : resolved) name.append("/").append(segment);
  return name;
}

std::string ReferenceTo(std::string_view source, std::string_view name) {
  const std::string_view folder = source.empty() ? "/" : FolderOf(source);
  return std::string(name.starts_with(folder) ? name.substr(folder.size()) : name);
}

std::string RelationshipsPartOf(std::string_view source) {
  const std::string_view folder = source.empty() ? "/" : FolderOf(source);
  const std::string_view leaf = source.empty() ? source : source.substr(folder.size());
  return std::string(folder) + "_rels/" + std::string(leaf) + ".rels";
}

bool IsRelationshipsPart(std::string_view name) {
  const std::string key = PartKey(name);
  return key.ends_with(".rels") && FolderOf(key).ends_with("/_rels/");
}

std::string SourceOfRelationships(std::string_view relationships_part) {
  constexpr size_t kFolder = sizeof("_rels/") - 1;
  constexpr size_t kEnding = sizeof(".rels") - 1;
  const std::string_view folder = FolderOf(relationships_part);
  std::string_view leaf = relationships_part.substr(folder.size());
  leaf.remove_suffix(kEnding);
  if (leaf.empty()) return "";
  return std::string(folder.substr(0, folder.size() - kFolder)) + std::string(leaf);
}

std::string_view NameFault(std::string_view name) {
  const std::string decoded = PercentDecoded(name);
  if (decoded.empty()) return "an empty name";
  if (decoded.front() == '/') return "an absolute name";
  if (decoded.find('\\') != std::string::npos) return "a backslash in its name";
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
  if (std::ranges::any_of(decoded, is_control)) return "a control character in its name";
  // One "/" at the end is the entry of a folder itself.
  std::string_view path = decoded;
  if (path.back() == '/') path.remove_suffix(1);
  for (const std::string_view segment : Segments(path)) {
    if (segment == ".." || segment == ".") return "a name that leads outside the package";
    if (segment.empty()) return "an empty folder in its name";
  }
  if (path.size() > 1 && path[1] == ':') return "a drive in its name";
  return "";
}

}  // namespace kestrelon::desktop::word
