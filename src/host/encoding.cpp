#include "host/encoding.h"

#include "host/gb18030.h"
#include "talm_flow/text.h"

namespace talm_flow::host {
namespace {

// The size of the text's part before the first byte that belongs to no well-formed sequence.
std::size_t WellFormedSize(std::string_view text) {
  std::size_t at = 0;
  while (const std::size_t size = SequenceSize(text.substr(at))) at += size;
  return at;
}

}  // namespace

EncodingResult Encode(TextEncoding encoding, std::string_view text) {
  const std::string_view well_formed = text.substr(0, WellFormedSize(text));
  if (encoding != TextEncoding::kUtf8) return EncodeGb18030(well_formed);
  return {.bytes = std::string(well_formed), .taken = well_formed.size(), .available = true};
}

}  // namespace talm_flow::host
