// Edit handlers for text, counts, days, flags and passwords.
#pragma once

#include "fields/field_model.h"

Finisher inStandard(const char* name, const char* value, int index, bool first, bool last);
Finisher inCount(const char* name, const char* value, int index, bool first, bool last);
Finisher inDaysOverride(const char* name, const char* value, int index, bool first, bool last);
Finisher inImmediateChange(const char* name, const char* value, int index, bool first, bool last);
Finisher inPassword(const char* name, const char* value, int index, bool first, bool last);
