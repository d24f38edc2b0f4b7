// A long document for the benchmarks, made from the example template.
#pragma once

#include <string>

namespace kestrelon::benchmarks {

struct LongDocument {
  std::string package;     // a .docx
  std::string record_xml;  // a record with a value for each of its tags
};

// `pages` pages of about 3,000 characters with 25 tag occurrences each, of 30 tags. Everything else
// in the package is that of `template_package`.
LongDocument MakeLongDocument(const std::string& template_package, int pages);

}  // namespace kestrelon::benchmarks
