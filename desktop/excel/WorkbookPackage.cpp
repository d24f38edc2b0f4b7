#include "desktop/excel/WorkbookPackage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <utility>

#include "desktop/word/package/ZipWriter.h"
#include "desktop/word/xml/XmlText.h"

namespace kestrelon::desktop::excel {
namespace {

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
const std::string kOffice = "http://schemas.openxmlformats.org/";
const std::string kMain = "xmlns=\"" + kOffice + "spreadsheetml/2006/main\"";
const std::string kRelationship = kOffice + "officeDocument/2006/relationships";

// Formats that every reader knows by number; the dates among them follow the reader's locale.
constexpr std::array<std::pair<std::string_view, int>, 9> kKnownFormats = {{
    {"General", 0},
    {"#,##0", 3},
    {"#,##0.00", 4},
    {"0%", 9},
    {"0.00%", 10},
    {"0.00E+00", 11},
    {"m/d/yyyy", 14},
    {"h:mm:ss", 21},
    {"m/d/yyyy h:mm", 22},
}};
constexpr int kFirstOwnFormat = 164;

std::string Encoded(StringView text) {
  std::string xml;
  word::EncodeXml(word::WithoutForbidden(text), xml);
  return xml;
}

std::string EncodedAttribute(StringView text) {
  return ToUtf8(ReplaceAll(FromUtf8(Encoded(text)), u"\"", u"&quot;"));
}

bool IsHexDigit(char16_t unit) {
  return StringView(u"0123456789ABCDEFabcdef").find(unit) != StringView::npos;
}

// "_x0041_" in a text would be read as the character of that code.
String WithoutCodes(const String& text) {
  String escaped;
  for (size_t i = 0; i < text.size(); ++i) {
    const StringView code = StringView(text).substr(i, 7);
    const bool is_code = code.size() == 7 && code.starts_with(u"_x") && code.back() == u'_' &&
                         std::all_of(code.begin() + 2, code.end() - 1, IsHexDigit);
    escaped += is_code ? u"_x005F_" : String(1, text[i]);
  }
  return escaped;
}

std::string NumberText(double number) {
  char buffer[32];
  const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), number);
  return {buffer, end};
}

// The styles in use, numbered as the cells name them.
class StyleSheet {
 public:
  StyleSheet() { NumberOf(Style()); }

  size_t NumberOf(const Style& style) {
    const auto [entry, is_new] = numbers_.try_emplace(style, styles_.size());
    if (is_new) styles_.push_back(style);
    return entry->second;
  }

  std::string Xml() {
    std::string formats;
    for (const Style& style : styles_) AddStyle(style);
    for (const auto& [code, number] : own_formats_) {
      formats += "<numFmt numFmtId=\"" + std::to_string(number) + "\" formatCode=\"" +
                 EncodedAttribute(FromUtf8(code)) + "\"/>";
    }
    if (!formats.empty()) {
      formats = "<numFmts count=\"" + std::to_string(own_formats_.size()) + "\">" + formats +
                "</numFmts>";
    }
    const std::string font = "<sz val=\"11\"/><name val=\"Calibri\"/><family val=\"2\"/></font>";
    return kDeclaration + "<styleSheet " + kMain + ">" + formats + "<fonts count=\"2\"><font>" +
           font + "<font><b/>" + font +
           "</fonts><fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill><fill>"
           "<patternFill patternType=\"gray125\"/></fill></fills><borders count=\"1\"><border>"
           "<left/><right/><top/><bottom/><diagonal/></border></borders><cellStyleXfs count=\"1\">"
           "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
           "<cellXfs count=\"" +
           std::to_string(styles_.size()) + "\">" + cell_formats_ +
           "</cellXfs><cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" "
           "builtinId=\"0\"/></cellStyles></styleSheet>";
  }

 private:
  int FormatNumber(const std::string& code) {
    const auto* const known = std::find_if(kKnownFormats.begin(), kKnownFormats.end(),
                                           [&](const auto& entry) { return entry.first == code; });
    if (known != kKnownFormats.end()) return known->second;
    const auto next = kFirstOwnFormat + static_cast<int>(own_formats_.size());
    return own_formats_.try_emplace(code, next).first->second;
  }

  void AddStyle(const Style& style) {
    cell_formats_ += "<xf numFmtId=\"" + std::to_string(FormatNumber(style.number_format)) +
                     "\" fontId=\"" + (style.bold ? "1" : "0") +
                     "\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\" "
                     "applyFont=\"1\"";
    if (style.has_text_prefix) cell_formats_ += " quotePrefix=\"1\"";
    cell_formats_ += style.wraps
                         ? " applyAlignment=\"1\"><alignment vertical=\"top\" wrapText=\"1\"/></xf>"
                         : "/>";
  }

  std::map<Style, size_t> numbers_;
  std::vector<Style> styles_;
  std::map<std::string, int> own_formats_;
  std::string cell_formats_;
};

void AddCell(const std::string& place, const Cell& cell, size_t style, std::string& xml) {
  xml += "<c r=\"" + place + "\"";
  if (style != 0) xml += " s=\"" + std::to_string(style) + "\"";
  const Value& value = cell.value;
  if (value.IsString()) {
    xml += " t=\"inlineStr\"><is><t xml:space=\"preserve\">" +
           Encoded(WithoutCodes(value.AsString())) + "</t></is></c>";
  } else if (value.IsBoolean()) {
    xml += std::string(" t=\"b\"><v>") + (value.AsBoolean() ? "1" : "0") + "</v></c>";
  } else if (value.IsDouble() || value.IsDate()) {
    xml += "><v>" + NumberText(value.ToDouble()) + "</v></c>";
  } else {
    xml += "/>";
  }
}

std::string SheetXml(const Sheet& sheet, bool is_active, StyleSheet& styles) {
  std::string xml = kDeclaration + "<worksheet " + kMain + "><sheetViews><sheetView " +
                    (is_active ? "tabSelected=\"1\" " : "") +
                    "workbookViewId=\"0\"/></sheetViews><sheetFormatPr defaultRowHeight=\"15\"/>";
  if (!sheet.column_widths.empty()) {
    xml += "<cols>";
    for (const auto& [column, width] : sheet.column_widths) {
      const std::string number = std::to_string(column);
      xml += "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" + NumberText(width) +
             "\" bestFit=\"1\" customWidth=\"1\"/>";
    }
    xml += "</cols>";
  }
  xml += "<sheetData>";
  for (const auto& [number, row] : sheet.rows()) {
    const std::string name = std::to_string(number);
    xml += "<row r=\"" + name + "\">";
    for (const auto& [column, cell] : row) {
      AddCell(LettersOfColumn(column) + name, cell, styles.NumberOf(cell.style), xml);
    }
    xml += "</row>";
  }
  return xml + "</sheetData></worksheet>";
}

std::string Relationship(const std::string& id, const std::string& type, const std::string& to) {
  return "<Relationship Id=\"" + id + "\" Type=\"" + kRelationship + "/" + type + "\" Target=\"" +
         to + "\"/>";
}

std::string Relationships(const std::string& list) {
  return kDeclaration + "<Relationships xmlns=\"" + kOffice + "package/2006/relationships\">" +
         list + "</Relationships>";
}

std::string TypeOf(const std::string& part, const std::string& kind) {
  return "<Override PartName=\"/xl/" + part +
         "\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml." + kind +
         "+xml\"/>";
}

}  // namespace

std::string WorkbookPackage(const Sheets& sheets, size_t active) {
  StyleSheet styles;
  std::string types = TypeOf("workbook.xml", "sheet.main") + TypeOf("styles.xml", "styles");
  std::string names;
  std::string links = Relationship("styles", "styles", "styles.xml");
  word::ZipWriter zip(0);
  for (size_t i = 0; i < sheets.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    const std::string part = "worksheets/sheet" + number + ".xml";
    const std::string id = "sheet" + number;
    zip.Add("xl/" + part, SheetXml(*sheets[i], i == active, styles));
    types += TypeOf(part, "worksheet");
    names += "<sheet name=\"" + EncodedAttribute(sheets[i]->name) + "\" sheetId=\"" + number +
             "\" r:id=\"" + id + "\"/>";
    links += Relationship(id, "worksheet", part);
  }
  zip.Add("xl/styles.xml", styles.Xml());
  zip.Add("xl/workbook.xml", kDeclaration + "<workbook " + kMain + " xmlns:r=\"" + kRelationship +
                                 "\"><bookViews><workbookView activeTab=\"" +
                                 std::to_string(active) + "\"/></bookViews><sheets>" + names +
                                 "</sheets></workbook>");
  zip.Add("xl/_rels/workbook.xml.rels", Relationships(links));
  zip.Add("_rels/.rels",
          Relationships(Relationship("workbook", "officeDocument", "xl/workbook.xml")));
  zip.Add("[Content_Types].xml",
          kDeclaration + "<Types xmlns=\"" + kOffice +
              "package/2006/content-types\"><Default Extension=\"rels\" "
              "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
              "<Default Extension=\"xml\" ContentType=\"application/xml\"/>" +
              types + "</Types>");
  return std::move(zip).Finish();
}

}  // namespace kestrelon::desktop::excel
