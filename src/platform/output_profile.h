// The output profile: how texts from the request or the directory are put
// into a page. By default they go out exactly as they arrive, the bytes every
// page has always had. A server that sets LXR_OUTPUT_PROFILE=strict in the
// program's environment chooses the strict profile, in which each such text
// is escaped for the place it lands (escape.h) and a return address is taken
// only when it is relative or http(s).
//
// Each Out... function returns its text unchanged in the default profile and
// the escaped form in the strict one; null gives "". Page code wraps every
// request or directory text in the function for its context; catalogue texts
// and the program's own fixed texts are not wrapped.
#pragma once

#include <string>

// True when this process writes in the strict profile. Read from the
// environment once, at the first call.
bool StrictOutput();

// Chooses the profile, overriding the environment (tests).
void SetStrictOutput(bool strict);

// Text between tags.
std::string OutText(const char* text);
inline std::string OutText(const std::string& text) {
    return OutText(text.c_str());
}

// A value inside a quoted attribute.
std::string OutAttr(const char* text);
inline std::string OutAttr(const std::string& text) {
    return OutAttr(text.c_str());
}

// The inside of a quoted string literal in a <SCRIPT> element.
std::string OutScript(const char* text);
inline std::string OutScript(const std::string& text) {
    return OutScript(text.c_str());
}

// The inside of a quoted string literal in an event-handler attribute
// (onClick="...'%s'..."): the script escaping, then the attribute escaping,
// which the browser undoes before the script sees the text.
std::string OutHandler(const char* text);
inline std::string OutHandler(const std::string& text) {
    return OutHandler(text.c_str());
}

// The inside of a quoted script string whose value the page's script writes
// into the document as markup (document.write, LogEntry): HTML text first,
// then the script escaping.
std::string OutScriptHtml(const char* text);
inline std::string OutScriptHtml(const std::string& text) {
    return OutScriptHtml(text.c_str());
}

// One query argument name or value.
std::string OutUrlArg(const char* text);
inline std::string OutUrlArg(const std::string& text) {
    return OutUrlArg(text.c_str());
}

// A return address the page sends the browser to (Cancel, Help, the result
// page's continuation). In the strict profile an address with a control
// character or a leading blank, or with a scheme other than http or https
// ("javascript:", "data:", ...), gives ""; relative addresses pass. Not
// escaped: the caller escapes the result for its context.
std::string OutAddress(const char* text);
inline std::string OutAddress(const std::string& text) {
    return OutAddress(text.c_str());
}
