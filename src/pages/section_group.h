// Section heading rows and group membership rows. Both take the cursor just
// after the element name; true with the cursor on the element's last
// character, false with it on the fault and nothing written.
#pragma once

bool ProcessSection(const char*& cursor);
bool ProcessGroup(const char*& cursor);
