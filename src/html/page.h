// Page head (stylesheet and script library), body opening, foot and focus
// script. Everything goes out through prtFormatter; every text is a catalogue
// text translated into a 4096-byte buffer (the English default when the
// translators do not exist yet) and inserted unescaped.
#pragma once

#include "state/request_state.h"

// The built-in stylesheet, one rule per line, each line ending in "\n"; the
// rule's name padded with blanks to sixteen columns (at least one blank).
extern const char* const DefaultStyles;

// Writes the page head once per process: title (titleKey) and description
// (descriptionKey) through Lang; the stylesheet inline, or a link to
// "./LXRAdmin.css" when that file exists in the working directory; and the
// script library the page bodies call (Pad2, LogEntry, DateEntry, InvalidDate,
// Now, GetDate, ConvertDate, DocHead, DocFoot, LocalDate, InsertLocalDate2,
// CheckDisabled, CheckDisabled3, NowOnly, NumericCheck, CommentChecked,
// SimpleMove, RadioMove, PasswordCompare). The library carries the month
// names, the alert texts, the label tagDisabled (as filled at the time) and
// the request time Now. `flag` is accepted and ignored.
void HTMLHeader(const char* descriptionKey, const char* descriptionDefault, const char* titleKey,
                const char* titleDefault, bool flag);
// "<body %s>\n" with KV-LXR-12022, then KV-LXR-12023 and a line end unless
// that text begins with a blank (the defaults are one blank each).
void DoBody();
// "</body>\n</html>\n".
void HTMLFooter();
// A script that focuses the first check box, password, radio, select, text
// or textarea element of the page's first form.
void SetFocus();
