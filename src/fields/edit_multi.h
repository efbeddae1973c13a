// Edit handlers for histories and generational redirects.
#pragma once

#include "fields/field_model.h"

Finisher inHistory(const char* name, const char* value, int index, bool first, bool last);
void ResetHistory(const char* name, int count);
Finisher inGenRedirect(const char* name, const char* value, int index, bool first, bool last);
