// Edit handlers for histories and generational redirects: attributes with
// one entry per value.
#pragma once

#include "fields/field_model.h"

// Shows one history entry as outHistory does and returns ResetHistory, so no
// hidden field is recorded per entry.
Finisher inHistory(const char* name, const char* value, int index, bool first, bool last);
// The finisher of a history: after `count` entries (none: nothing) a Clear box
// NAME and the attribute's one hidden field, "0", posted as "1" when checked.
void ResetHistory(const char* name, int count);
// One redirect entry as a table row with its own Clear box; a checked box
// posts KEY "=0" in place of the entry, through the entry's own hidden field
// (the caller records it, as this returns null). With several values the
// copy statement addresses field `index`.
Finisher inGenRedirect(const char* name, const char* value, int index, bool first, bool last);
