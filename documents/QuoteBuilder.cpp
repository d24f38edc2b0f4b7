#include "documents/QuoteBuilder.h"

#include <limits>

#include "Control/ErrorReporting.h"
#include "documents/QuoteServices.h"
#include "documents/QuoteTable.h"
#include "documents/QuoteTemplate.h"
#include "documents/TableTemplate.h"
#include "documents/TagData.h"
#include "documents/TagReplacement.h"

namespace kestrelon {
namespace {

constexpr const char16_t* kTitle = u"Kestrelon";

class QuoteBuilder {
 public:
  QuoteBuilder(ControlContext& context, const Object& xmlDoc, const Object& wordApp,
               const Object& document)
      : context_(context), xml_(xmlDoc), word_(wordApp), document_(document) {}

  bool Build(const String& strTemplate, const String& strReplaceinheader);

 private:
  // Ways to report a failed stage: with the error's description, or without it.
  auto Describe(const String& lead = {}) {
    return [this, lead](const AutomationError& error) { Tell(lead + error.description()); };
  }
  auto TellOnly(const String& text) {
    return [this, text](const AutomationError&) { Tell(text); };
  }
  void Tell(const String& text) {
    ShowMessage(context_, text + u"Step Information: " + step_, kOkOnly, kTitle);
  }

  int16_t CountLines() const {
    const Object rows = xml_.CallChild(u"selectSingleNode", u"Data/quoterows");
    return rows ? rows.GetChild(u"childNodes").Get(u"length").ToInteger() : int16_t{0};
  }

  bool InsertTableTemplate(const String& path) {
    step_ = u"Processing external table template";
    String copy;
    if (!Attempt([&] { copy = CopyTableTemplate(context_, path); },
                 TellOnly(u"An Error occurred on first reference to html template '" + path +
                          u"'Ensure that the html file exists in the quotes templates directory "
                          u"and can be accessed"))) {
      return false;
    }
    const bool is_inserted =
        Attempt([&] { ExpandQuoteTemplate(context_, copy, xml_); },
                TellOnly(u"An Error occurred adding data to html template '" + path +
                         u"': Ensure that html table template is correctly formatted")) &&
        Attempt([&] { InsertTableFile(word_, copy); },
                Describe(u"An Error occurred Inserting the HTML template from path '" + path +
                         u"' into the word document: "));
    DeleteFileQuietly(context_, copy);
    return is_inserted;
  }

  bool FillFirstTable(int16_t lines) {
    step_ = u"Processing in-line table";
    const auto fill = [&] {
      const Object tables = document_.GetChild(u"Tables");
      if (tables.Get(u"count").ToLong() == 0) {
        ShowMessage(context_, u"The quote template has no table for line data", kInformation,
                    kTitle);
      } else {
        FillQuoteTable(tables.CallChild(u"item", 1), xml_, lines, step_);
      }
    };
    return Attempt(fill, Describe());
  }

  bool ReplaceTags(const String& strReplaceinheader) {
    step_ = u"Extracting Tag Data";
    ExtractTagData(context_, xml_);
    step_ = u"Performing document data replacement";
    const auto replace = [&] {
      const int32_t last = context_.state.tag_table.UpperBound();
      for (int32_t i = 0; i <= last; ++i) {
        // The index is a 16-bit one.
        if (i > std::numeric_limits<int16_t>::max()) throw AutomationError(kOverflow);
        const Value end = document_.CallChild(u"Range").Get(u"End");
        document_.CallChild(u"Range", Named(u"Start", 0), Named(u"End", end)).Call(u"Select");
        ReplaceOneTag(context_, document_, word_, static_cast<int16_t>(i), strReplaceinheader);
      }
    };
    return Attempt(replace, Describe(u"An error has occurred replacing the document tags: "));
  }

  ControlContext& context_;
  const Object& xml_;
  const Object& word_;
  const Object& document_;
  String step_;
};

bool QuoteBuilder::Build(const String& strTemplate, const String& strReplaceinheader) {
  std::optional<String> table_template;
  int16_t lines = 0;
  const auto look = [&] {
    step_ = u"Searching for external table tag";
    table_template = TakeTableTemplatePath(word_, strTemplate);
    step_ = u"Retrieving quote rows from XML data";
    lines = CountLines();
  };
  if (!Attempt(look, Describe())) return false;
  const bool has_lines =
      table_template ? InsertTableTemplate(*table_template) : FillFirstTable(lines);
  return has_lines && ReplaceTags(strReplaceinheader);
}

}  // namespace

bool BuildQuoteDocument(ControlContext& context, const Object& xmlDoc, const Object& wordApp,
                        const Object& document, const String& strTemplate,
                        const String& strReplaceinheader) {
  return QuoteBuilder(context, xmlDoc, wordApp, document).Build(strTemplate, strReplaceinheader);
}

}  // namespace kestrelon
