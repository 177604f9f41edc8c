// Text that qbfs prints, made safe for a terminal. Names come from archives
// (anyone may have written them), from modules' messages and last-error
// texts (which quote those names) and from the file system; a terminal
// would act on some of their characters: change its title or colours, move
// the cursor, or reorder what follows on the line. Every name and every
// message the tool prints passes through terminal_text(), at the place
// where it is printed.
//
// The form, per character:
//   C0 controls U+0000..U+001F and DEL U+007F     \xNN   (its byte: "\x1B")
//   a byte that is not part of UTF-8, and the      \xNN   (that byte: "\x9B")
//     code points U+DC80..U+DCFF by which a module
//     stands for such a byte in a wide name
//   C1 controls U+0080..U+009F                     \uNNNN ("\u009B")
//   bidirectional controls: U+061C, U+200E, U+200F, \uNNNN ("\u202E")
//     U+202A..U+202E, U+2066..U+2069
//   line and paragraph separators U+2028, U+2029   \uNNNN
//   other surrogates U+D800..U+DFFF                \uNNNN
//   (wide text only) values above U+10FFFF         \UNNNNNNNN
//   everything else                                itself, in UTF-8
// Hex digits are upper case. So a raw byte 0x9B and the character U+009B
// (bytes C2 9B) are told apart, and the output holds no byte below 0x20,
// no DEL and no C1 or bidirectional control in any encoding.
//
// A backslash stays as it is. The form is for reading, not for reversing:
// a name that holds "\x1B" as four characters looks like one holding ESC.
// We accept that because it makes the escaping idempotent: text that
// already holds escaped names (a message quoting a path) passes through
// again unchanged, so each printing site applies it to its whole line
// without doubling anything.
#pragma once
#include <string>
#include <string_view>

namespace qbfs::archive {

// `text` as bytes: UTF-8 where it decodes (shortest forms, surrogates
// allowed, as archive paths carry them), any other byte shown as \xNN.
// Never fails; allocates the result only.
std::string terminal_text(std::string_view text);

// The same form for the layer's wide text (a module's message or name).
std::string terminal_text(std::wstring_view text);

}  // namespace qbfs::archive
