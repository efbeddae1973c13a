// The attribute handler table and what the handlers collect while the user
// display page is written: hidden fields, input checks, copy statements.
#pragma once

#include "state/request_state.h"

// Fills the tag... labels (request_state.h) from Lang, in table order.
void FillTags();

using DisplayHandler = void (*)(const char* value, int index, bool first, bool last);
using Finisher = void (*)(const char* name, int count);
using EditHandler = Finisher (*)(const char* name, const char* value, int index, bool first,
                                 bool last);

struct FUNCS {
    const char* name;
    int detail;
    DisplayHandler display;
    EditHandler edit;
};

// The 26 rows, ended by a row whose name is null.
extern const FUNCS Funcs[];

// The first row whose name matches `name` without regard to case, or null.
const FUNCS* FindFuncs(const char* name);
