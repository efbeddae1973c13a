// The attribute handler table and what the handlers collect while the user
// display page is written: hidden fields, input checks, copy statements.
#pragma once

#include <ctime>
#include <string>
#include <vector>

// One hidden field of PostForm: the attribute name and its initial value.
struct OUTPUTFIELD {
    std::string name;
    std::string value;
};

// Written by the group rows, the attribute rows and the edit handlers while
// the page's rows are written; read by the page writer afterwards. Records are
// never freed: they live for the one request.
extern std::vector<OUTPUTFIELD*> OutputFields;
// Script expressions that are true when a control's entry is invalid.
extern std::vector<std::string> DataEdits;
// Script statements that copy DisplayForm controls into PostForm.
extern std::vector<std::string> DataMoves;

// The fixed labels every handler prints, filled once per page by FillTags.
extern std::string tagLocal, tagComment, tagWhen, tagTimes, tagDays, tagDay, tagWeeks, tagWeek,
    tagIP, tagClear, tagNotSet, tagNow, tagStatus, tagYES, tagNO, tagUseConfig, tagNever,
    tagForever, tagDisabled, tagRedisable;

// The time the process started (LXR_NOW, seconds since the epoch, fixes it
// for tests); set by InitNow at start-up.
extern time_t Now;
void InitNow();

// Fills the tag... labels from Lang, in table order.
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
