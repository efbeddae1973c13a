// Display handlers: the read-only form of one attribute value, written into
// the current cell of the user page through prtFormatter. Every handler skips
// the value's leading blanks; a null value counts as empty. `index`, `first`
// and `last` are those of the calling contract in field_model.h; only
// outGenRedirect uses them (to open and close its table).
#pragma once

// The value and "\n"; an empty value shows tagNotSet.
void outStandard(const char* value, int index, bool first, bool last);
// tagYES " - " and the flag's text; an empty value shows tagNO.
void outImmediateChange(const char* value, int index, bool first, bool last);
// "stamp comment" (DateSomething with tagComment).
void outDateComment(const char* value, int index, bool first, bool last);
// "stamp address" (DateSomething with tagIP).
void outDateIP(const char* value, int index, bool first, bool last);
// "count stamp address" (outSomethingDateSomething with tagTimes and tagIP).
void outCountDateIP(const char* value, int index, bool first, bool last);
// "word stamp address" without a label for the word. Bound to no table row.
void outSomethingDateIP(const char* value, int index, bool first, bool last);
// "count comment"; an empty value shows tagNotSet without a newline.
void outCountComment(const char* value, int index, bool first, bool last);
// "days comment" with leading zeros dropped (0 shows tagNever); an empty value
// shows tagUseConfig. Neither ends in a newline.
void outDaysOverride(const char* value, int index, bool first, bool last);
// "stamp status address"; the status word also names a STATUS... style
// class. Bound to no table row.
void outDateStatusIP(const char* value, int index, bool first, bool last);
// One history entry "stamp status address rest" as a LogEntry(W, ...) script
// statement: the output forms the body of ShowDetail_NAME(W, bDoc). Texts go
// into the single-quoted script strings unescaped.
void outHistory(const char* value, int index, bool first, bool last);
// One redirect entry "KEY=TARGET stamp address comment" as a table row; the
// first value opens the table and the last closes it. The key is shown as
// its catalogue text, the key itself serving as message key and default.
void outGenRedirect(const char* value, int index, bool first, bool last);
