// One attribute row: status picture, label, and each value through its
// display or edit handler. Cursor contract as for ProcessGroup; on true the
// cursor stands on the ">" of "</Attribute>".
#pragma once

bool ProcessAttribute(const char*& cursor);
