#pragma once

/// The bytes of a text file.

#include <cstddef>
#include <string>
#include <string_view>

#include "talm_flow/host/reference_host.h"

namespace talm_flow::host {

/// How far a text could be encoded.
struct EncodingResult {
  std::string bytes;      ///< of the text, or of its part before the first character that has none
  std::size_t taken = 0;  ///< the bytes of the text that stand for them: all of it when everything could be encoded
  bool available = true;  ///< false when the machine does not know the encoding at all
};

/// The text is UTF-8; a byte that belongs to no well-formed sequence has no form in any encoding.
[[nodiscard]] EncodingResult Encode(TextEncoding encoding, std::string_view text);

}  // namespace talm_flow::host
