#pragma once

/// Reading texts back from scripts and attributes, as a browser does.

#include <optional>
#include <string>
#include <string_view>

namespace talm_flow::fuzz {

/// The value of the string literal with which a script begins, which is taken off the script. Nothing when there is none:
/// it does not begin with the quote, or a line ends before it does.
[[nodiscard]] std::optional<std::string> TakeScriptString(std::string_view& script, char quote);

/// An attribute's value as it is read: character references resolved.
[[nodiscard]] std::string WithoutReferences(std::string_view value);

}  // namespace talm_flow::fuzz
