// A contact from the form fields of a page.
#pragma once

#include "Control/ObjectState.h"
#include "Control/PageDocuments.h"

namespace kestrelon {

// The value of the page's element `id`. Error 91 when the page has none.
String ReadPageField(const HtmlDocument& page, StringView id);

// Fills the contact with the names, addresses, numbers and dates of the page. Fails at the first
// element that the page lacks.
void FillContactFromPage(const Object& contact, const HtmlDocument& page);

}  // namespace kestrelon
