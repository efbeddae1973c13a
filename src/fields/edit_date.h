// Date edit handlers. All skip the value's leading blanks, ignore index,
// first and last, and return null (the caller keeps the current value as a
// hidden field; the radio group NAME overwrites it at submission).
#pragma once

#include "fields/field_model.h"

// Keep "stamp comment" or reset it to Now (posted as the UTC stamp of Now).
// An empty value shows tagNotSet and gets no control.
Finisher inDateCommentOrNow(const char* name, const char* value, int index, bool first, bool last);
// Keep "count stamp address" or reset it to "0 " and the UTC stamp of Now.
// An empty value shows tagNotSet and gets no control.
Finisher inCountDateOrNow(const char* name, const char* value, int index, bool first, bool last);
// A date (page DateEntry control) or not set; a past date shows the disabled
// icon in NAME_IMAGE. Only the word after the stamp is offered as comment.
Finisher inDisableAfter(const char* name, const char* value, int index, bool first, bool last);
// As inDisableAfter, with its own onClick script text.
Finisher inMustLoginBy(const char* name, const char* value, int index, bool first, bool last);
// A date, forever ("FOREVER " and the comment) or not set; a future date or
// forever shows the disabled icon.
Finisher inDisableUntil(const char* name, const char* value, int index, bool first, bool last);
