// Text between libxml2 and the automation world.
#pragma once

#include <libxml/xmlstring.h>

#include <memory>
#include <string>
#include <string_view>

#include "automation/Text.h"

namespace kestrelon::desktop {

struct LibxmlFree {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using LibxmlString = std::unique_ptr<xmlChar, LibxmlFree>;

inline std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}
inline String Text(const xmlChar* text) { return FromUtf8(View(text)); }
inline const xmlChar* Chars(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

}  // namespace kestrelon::desktop
