// Messages for the program. The program writes an API message unescaped into
// alert("...") and <h1>...</h1> on its pages, and redirects the browser to any
// message that begins like an address ("/", "http:", "https:"), so every
// message the library hands out must hold none of '"', '\', '<', '>' or a line
// end and must begin with a word.
#pragma once

#include <string>
#include <string_view>

namespace lxrapi {

// Outside data (a typed user name, a posted group name, a rejected value, a
// path) as it may stand inside a message: '"', '\', '<', '>' and control
// characters become '?'. When `limit` is non-zero, text longer than `limit`
// bytes is cut (at a character boundary) and "..." added.
std::string Shown(std::string_view text, size_t limit = 0);

// Shown(text) between single quotes: 'text'.
std::string Quoted(std::string_view text, size_t limit = 0);

// The last guard, applied to every message at the C boundary: '"' becomes
// "'", '\', '<', '>' and control characters become '?', CR, LF and tab become
// a blank, and a message that would begin like an address is prefixed with
// "Error: " so that the program shows it instead of redirecting to it.
std::string SafeMessage(std::string_view text);

// True when `text` may be shown by the program as it stands.
bool IsSafeMessage(std::string_view text);

// `text` cut to at most `size` bytes without splitting a UTF-8 character.
std::string_view CutAtCharacter(std::string_view text, size_t size);

}  // namespace lxrapi
