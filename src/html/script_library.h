// The script library of the page head, and the stylesheet choice it shares
// with the head. Internal to src/html.
#pragma once

namespace html {

// The stylesheet link written instead of the inline styles, without a line end.
extern const char kStyleSheetLink[];

// True when "./LXRAdmin.css" exists in the working directory. Asked each time
// a head is written: once for the page, once for DocHead.
bool StyleSheetFileExists();

// Writes the library's functions, in order, each as "function Name(params)",
// "{", the body indented four blanks per level, "}".
void WriteScriptLibrary();

}  // namespace html
