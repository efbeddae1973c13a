// Edit handlers for text, counts, days, flags and passwords. Each writes its
// controls into DisplayForm, adds its copy statement to DataMoves (and a
// check to DataEdits where one exists), ignores index, first and last, and
// returns null so that the caller also records the current value as a
// hidden field. Values are written into VALUE attributes unescaped.
#pragma once

#include "fields/field_model.h"

// A 30-wide text box holding the value exactly as received.
Finisher inStandard(const char* name, const char* value, int index, bool first, bool last);
// A list of counts 0 to 5 (0 posts ""); a stored count above 5 selects none.
Finisher inCount(const char* name, const char* value, int index, bool first, bool last);
// NAME_DAYS (default, never, 1 to 365 days with whole weeks shown as weeks)
// and NAME_COMMENT; posts "", the days, or the days, a blank and the comment.
Finisher inDaysOverride(const char* name, const char* value, int index, bool first, bool last);
// A checkbox and NAME_COMMENT holding the stored text; a checked box with an
// empty comment posts "YES via LXRAdmin".
Finisher inImmediateChange(const char* name, const char* value, int index, bool first, bool last);
// NAME and NAME_CONFIRM password boxes, both empty; the value is ignored so
// that a password never reaches the page.
Finisher inPassword(const char* name, const char* value, int index, bool first, bool last);
