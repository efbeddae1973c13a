// Values as the program's pages can take them. The program writes the
// values of a user document unescaped into HTML text, into double-quoted
// attribute values and into single-quoted script strings, so a value that
// holds '<', '>', '"', '\'', '\\' or a control character could end the text
// it stands in and run as markup or script in an administrator's browser.
// Values are therefore refused with such characters when they are written,
// and neutralised when a store hands them back, whoever wrote them.
#pragma once

#include <string>
#include <string_view>

namespace lxrapi {

// True for the characters above.
bool BreaksPages(unsigned char c);

// The offset of the first such character in `text`, or npos.
size_t FindPageBreaker(std::string_view text);

// The character in words, for messages, which may not hold the character
// itself: "a less-than sign", "an apostrophe", "the control character U+000A".
std::string DescribeCharacter(unsigned char c);

// The character's code point as "U+003C": how a translated message names it.
std::string CharacterCode(unsigned char c);

// `text` with every such character replaced: '<' by U+2039, '>' by U+203A,
// '"' by U+201D, '\'' by U+2019, '\\' by U+FF3C (their typographic
// look-alikes), tab, CR and LF by a blank and any other control character by
// '?'. Other bytes, UTF-8 included, stay as they are.
std::string NeutraliseForPages(std::string_view text);

// `text` with every apostrophe from offset `from` on replaced by U+2019, the
// typographic apostrophe a word processor would set: an administrator's
// "don't" in a comment is kept in the form it can be shown in.
std::string TypographicApostrophes(std::string_view text, size_t from = 0);

}  // namespace lxrapi
