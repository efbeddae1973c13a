// Turns the posted fields into the update document written through the API.
#pragma once

#include <string>

#include "cgi/fields.h"

// Builds the document from `fields` (PostData), removing "LXR-USERDN" from it.
// Returns false, with `document` holding only its start, when the posted
// fields have no "LXR-USERDN".
bool BuildUpdateDocument(FieldMap& fields, std::string& document);

// The diagnostic page that shows the document instead of writing it.
void DumpUpdateDocument(const std::string& document);
