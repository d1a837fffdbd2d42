#pragma once

/// Flow definition texts as they come from people's files.

#include <string>

namespace talm_flow::program {

/// Reads a text whatever it holds: without a byte-order mark, every line end CR LF.
/// @param file  "-" for standard input.
/// @throws UserError  the file cannot be read, or is not UTF-8; the message tells file and line.
[[nodiscard]] std::string ReadDefinitionUnchecked(const std::string& file);

/// Reads a definition text for loading: without a byte-order mark, every line end CR LF.
/// @param file  "-" for standard input.
/// @throws UserError  the file cannot be read, is not UTF-8, has no version line, or holds a line that cannot be loaded;
///                    the message tells file and line.
[[nodiscard]] std::string ReadDefinition(const std::string& file);

}  // namespace talm_flow::program
