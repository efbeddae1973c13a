// Date edit handlers: reset-to-now and schedule dates.
#pragma once

#include "fields/field_model.h"

Finisher inDateCommentOrNow(const char* name, const char* value, int index, bool first, bool last);
Finisher inCountDateOrNow(const char* name, const char* value, int index, bool first, bool last);
Finisher inDisableAfter(const char* name, const char* value, int index, bool first, bool last);
Finisher inMustLoginBy(const char* name, const char* value, int index, bool first, bool last);
Finisher inDisableUntil(const char* name, const char* value, int index, bool first, bool last);
