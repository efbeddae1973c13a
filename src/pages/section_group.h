// Section heading rows and group membership rows. Both take the cursor just
// after the element name; true with the cursor on the element's last
// character, false with it on the fault and nothing written.
#pragma once

#include "pages/elements.h"

bool ProcessSection(const char*& cursor);
bool ProcessGroup(const char*& cursor);

// The row of a section that has been read.
void WriteSectionRow(const SectionElement& section);
// The row of a group that has been read, with `write` already cleared for a
// read-only request. A changeable group adds its hidden field to OutputFields
// and its copy statement to DataMoves.
void WriteGroupRow(const GroupElement& group);
