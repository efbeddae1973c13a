// Escaping writers for outside data (directory values, request input) that
// our own code inserts into a page. The fixed page texts are sent as they
// have always been sent, unescaped; use these where a text is new and no
// byte-for-byte form binds it. Every function takes a NUL-ended text (null
// gives "") and returns the escaped copy.
#pragma once

#include <string>

// Text between tags: "&", "<" and ">" become entities.
std::string HtmlText(const char* text);

// A value inside a quoted attribute (either quote): as HtmlText, plus the
// double quote as "&quot;" and the apostrophe as "&#39;".
std::string HtmlAttr(const char* text);

// The inside of a JavaScript string literal in either quote, safe within a
// <SCRIPT> element and within an event-handler attribute: backslash and both
// quotes get a backslash; "<", ">", "&" and control characters become \xHH,
// so neither "</SCRIPT>" nor an entity can form; U+2028 and U+2029 become
// \u2028 and \u2029. Other bytes (UTF-8 included) pass unchanged.
std::string ScriptString(const char* text);

// One query argument name or value: every byte but A-Z, a-z, 0-9 and "-", "_",
// ".", "~" as "%" and two upper-case hex digits (a blank as "%20"). Works on
// bytes, so UTF-8 text comes out escaped byte by byte.
std::string UrlArg(const char* text);
