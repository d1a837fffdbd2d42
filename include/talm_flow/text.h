#pragma once

/// @file
/// Texts as the system sees them: UTF-8, counted in Unicode code points, never torn inside one.
///
/// A byte that belongs to no well-formed sequence counts as one character and is kept as it is.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/export.h"

namespace talm_flow {

/// How many characters the text has.
[[nodiscard]] TALM_FLOW_API std::size_t CharacterCount(std::string_view text);

/// The first `count` characters (the whole text when it is shorter).
[[nodiscard]] TALM_FLOW_API std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// The byte offset of the character at 0-based `index`; the text's size when it has no such character.
[[nodiscard]] TALM_FLOW_API std::size_t OffsetOfCharacter(std::string_view text, std::size_t index);

/// Without the spaces at both ends (spaces only: no tabs, no line breaks).
[[nodiscard]] TALM_FLOW_API std::string_view TrimBlanks(std::string_view text);

/// The pieces between the separators, empty ones included; the empty text has none. `separator` must not be empty.
/// The views point into `text`.
[[nodiscard]] TALM_FLOW_API std::vector<std::string_view> Split(std::string_view text, std::string_view separator);

/// Every occurrence of `sought` (not empty) replaced, from the left, without looking into what was put in.
[[nodiscard]] TALM_FLOW_API std::string ReplaceAll(std::string_view text, std::string_view sought,
                                                   std::string_view replacement);

/// Each character mapped one to one, independent of any locale.
[[nodiscard]] TALM_FLOW_API std::string LowerCase(std::string_view text);
/// As `LowerCase`, the other way.
[[nodiscard]] TALM_FLOW_API std::string UpperCase(std::string_view text);

/// How many bytes the well-formed UTF-8 sequence at the text's beginning has; 0 when there is none.
[[nodiscard]] TALM_FLOW_API std::size_t SequenceSize(std::string_view text);

/// The code point of a text that is one well-formed sequence.
[[nodiscard]] TALM_FLOW_API char32_t CodePointOf(std::string_view sequence);

/// Appends a code point's sequence.
TALM_FLOW_API void AppendUtf8(std::string& out, char32_t code_point);

/// The text in UTF-16; each byte that belongs to no well-formed sequence becomes U+FFFD.
[[nodiscard]] TALM_FLOW_API std::u16string ToUtf16(std::string_view text);

/// The text in UTF-8; each half of a character becomes U+FFFD.
[[nodiscard]] TALM_FLOW_API std::string ToUtf8(std::u16string_view text);

/// Equal when A to Z and a to z are taken as the same; for names of columns, tables and keywords.
[[nodiscard]] TALM_FLOW_API bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b);

}  // namespace talm_flow
