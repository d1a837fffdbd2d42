#pragma once

/// Texts in pages and pictures.

#include <string>
#include <string_view>

namespace talm_flow::program {

/// Safe in an element and in a quoted attribute, in HTML and in XML.
[[nodiscard]] std::string Escaped(std::string_view text);

/// What a browser makes of an attribute's text that was written with `Escaped` or by the host: references resolved.
[[nodiscard]] std::string WithoutReferences(std::string_view text);

/// Well-formed UTF-8 with U+FFFD for what is none and for U+0000, as a browser would read it.
[[nodiscard]] std::string WellFormed(std::string_view text);

}  // namespace talm_flow::program
