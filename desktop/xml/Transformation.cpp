#include "desktop/xml/Transformation.h"

#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "automation/AutomationError.h"
#include "desktop/xml/LibxmlText.h"
#include "desktop/xml/SortInstruction.h"

namespace kestrelon::desktop {
namespace {

constexpr auto kUnspecifiedError = static_cast<int32_t>(0x80004005);
constexpr const char* kTextEncoding = "UTF-16";

struct FreeContext {
  void operator()(xsltTransformContextPtr context) const { xsltFreeTransformContext(context); }
};

// What libxslt, and libxml2 beneath it, say meanwhile; as one line.
class ErrorText {
 public:
  ErrorText() {
    xsltSetGenericErrorFunc(this, Add);
    xmlSetGenericErrorFunc(this, Add);
  }
  ~ErrorText() {
    xsltSetGenericErrorFunc(nullptr, nullptr);
    xmlSetGenericErrorFunc(xml_context_, xml_function_);
  }
  ErrorText(const ErrorText&) = delete;
  ErrorText& operator=(const ErrorText&) = delete;

  static void Add(void* self, const char* format, ...) {
    char piece[500];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(piece, sizeof piece, format, arguments);
    va_end(arguments);
    auto& text = static_cast<ErrorText*>(self)->text_;
    constexpr size_t kLongest = 1000;
    for (const char* at = piece; *at != '\0' && text.size() < kLongest; ++at) {
      text += *at == '\n' ? ' ' : *at;
    }
  }

  AutomationError Error() const {
    return AutomationError(kUnspecifiedError, u"The transformation failed: " +
                                                  Trim(FromUtf8(text_.empty() ? "error" : text_)));
  }

 private:
  void* xml_context_ = xmlGenericErrorContext;
  xmlGenericErrorFunc xml_function_ = xmlGenericError;
  std::string text_;
};

// Holds for every transformation of the process.
void ForbidFilesAndNetwork() {
  static const xsltSecurityPrefsPtr preferences = [] {
    const xsltSecurityPrefsPtr all = xsltNewSecurityPrefs();
    if (all == nullptr) throw AutomationError(kOutOfMemory);
    for (const xsltSecurityOption option :
         {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY,
          XSLT_SECPREF_READ_NETWORK, XSLT_SECPREF_WRITE_NETWORK}) {
      xsltSetSecurityPrefs(all, option, xsltSecurityForbid);
    }
    return all;
  }();
  xsltSetDefaultSecurityPrefs(preferences);
}

// The XML declaration, which the DOM has as a node, is nothing to XSLT.
xmlNodePtr DeclarationIn(xmlDocPtr document) {
  const xmlNodePtr first = document->children;
  return first != nullptr && first->type == XML_PI_NODE && View(first->name) == "xml" ? first
                                                                                      : nullptr;
}

XmlDocumentPointer CopyAsDocument(xmlNodePtr node) {
  const bool is_document = node->type == XML_DOCUMENT_NODE;
  XmlDocumentPointer copy(is_document ? xmlCopyDoc(node->doc, 1) : xmlNewDoc(nullptr));
  if (!copy) throw AutomationError(kOutOfMemory);
  if (!is_document) xmlDocSetRootElement(copy.get(), xmlDocCopyNode(node, copy.get(), 1));
  if (const xmlNodePtr declaration = DeclarationIn(copy.get())) {
    xmlUnlinkNode(declaration);
    xmlFreeNode(declaration);
  }
  return copy;
}

}  // namespace

XmlDocumentPointer TransformationResult::ToDocument() && {
  int elements = 0;
  bool has_text = false;
  for (const xmlNode* node = document_->children; node != nullptr; node = node->next) {
    elements += node->type == XML_ELEMENT_NODE ? 1 : 0;
    has_text |= node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
  }
  if (elements != 1 || has_text) {
    throw AutomationError(kUnspecifiedError,
                          u"The result of the transformation is no document: it does not have "
                          u"exactly one top element");
  }
  document_->type = XML_DOCUMENT_NODE;  // it may have been made for HTML
  MarkAsText(document_.get());
  return std::move(document_);
}

String TransformationResult::ToText() && {
  // The stylesheet's own encoding is one for files.
  xmlFree(stylesheet_->encoding);
  stylesheet_->encoding = xmlStrdup(reinterpret_cast<const xmlChar*>(kTextEncoding));
  xmlChar* bytes = nullptr;
  int size = 0;
  if (xsltSaveResultToString(&bytes, &size, document_.get(), stylesheet_.get()) < 0) {
    throw AutomationError(kOutOfMemory);
  }
  const LibxmlString owned(bytes);
  String text(static_cast<size_t>(size) / sizeof(char16_t), u'\0');
  if (bytes != nullptr) std::memcpy(text.data(), bytes, text.size() * sizeof(char16_t));
  if (text.starts_with(u'\xFEFF')) text.erase(0, 1);
  return text;
}

TransformationResult Transform(xmlNodePtr source, xmlNodePtr stylesheet) {
  ForbidFilesAndNetwork();
  const ErrorText errors;
  XmlDocumentPointer sheet = CopyAsDocument(stylesheet);
  TransformationResult::Stylesheet compiled(xsltParseStylesheetDoc(sheet.get()));
  if (!compiled) throw errors.Error();
  sheet.release();  // the stylesheet's own from now on

  const bool is_changed = compiled->stripSpaces != nullptr;
  XmlDocumentPointer copy;
  if (source->type != XML_DOCUMENT_NODE || is_changed || DeclarationIn(source->doc) != nullptr) {
    copy = CopyAsDocument(source);
  }
  const xmlDocPtr document = copy ? copy.get() : source->doc;
  const std::unique_ptr<xsltTransformContext, FreeContext> context(
      xsltNewTransformContext(compiled.get(), document));
  if (!context) throw AutomationError(kOutOfMemory);
  SortByLanguage(context.get());
  XmlDocumentPointer result(
      xsltApplyStylesheetUser(compiled.get(), document, nullptr, nullptr, nullptr, context.get()));
  if (!result || context->state != XSLT_STATE_OK) throw errors.Error();
  return TransformationResult(std::move(compiled), std::move(result));
}

}  // namespace kestrelon::desktop
