#include "utf8.h"

namespace talm_flow::program {

std::size_t SequenceLength(std::string_view text) {
  const auto at = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const auto continues = [&](std::size_t i) { return (at(i) & 0xC0U) == 0x80U; };
  const auto lead = at(0);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return continues(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool second_fits = lead == 0xE0 ? at(1) >= 0xA0 : lead == 0xED ? at(1) <= 0x9F : true;
    return continues(1) && second_fits && continues(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool second_fits = lead == 0xF0 ? at(1) >= 0x90 : lead == 0xF4 ? at(1) <= 0x8F : true;
    return continues(1) && second_fits && continues(2) && continues(3) ? 4 : 0;
  }
  return 0;
}

}  // namespace talm_flow::program
