// One attribute row: status picture, label, and each value through its
// display or edit handler. Cursor contract as for ProcessGroup; on true the
// cursor stands on the ">" of "</Attribute>".
#pragma once

#include "fields/field_model.h"
#include "pages/elements.h"

bool ProcessAttribute(const char*& cursor);

// The handlers of one attribute. A null handler shows (or offers) nothing.
struct RowHandlers {
    bool detail = false;  // the values form a ShowDetail_<name> list
    DisplayHandler display = nullptr;
    EditHandler edit = nullptr;
};

// The Funcs row of `name` (matched without regard to case), else the
// standard text handlers without a detail list.
RowHandlers LookupHandlers(const char* name);

// The row of an attribute that has been read, with `write` already cleared
// for a read-only request. Each value goes to the edit handler when the
// attribute is writable and has one, else to the display handler when it is
// readable; an attribute without values is handled once with the empty text
// and index -1. A value given to an edit handler that returns no finisher is
// carried as a hidden field in OutputFields; the finisher of the last edit
// call is called once after all values.
void WriteAttributeRow(const AttributeElement& attribute, const RowHandlers& handlers);
