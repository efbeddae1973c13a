// Page head (stylesheet and script library), body opening, foot and focus
// script. Everything goes out through prtFormatter.
#pragma once

// True once the head has been written; a second HTMLHeader writes nothing.
extern bool bOutputHTMLHeader;
// The built-in stylesheet, one rule per line.
extern const char* const DefaultStyles;

void HTMLHeader(const char* descriptionKey, const char* descriptionDefault, const char* titleKey,
                const char* titleDefault, bool flag);
void DoBody();
void HTMLFooter();
void SetFocus();
