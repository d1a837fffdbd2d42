#include "component/automation.h"

#include <algorithm>
#include <array>

#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

constexpr std::size_t kGuidTextSize = 38;
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

/// The bytes in the order in which they are written.
std::array<std::uint8_t, 16> Bytes(const TalmGuid& id) {
  std::array<std::uint8_t, 16> bytes{};
  for (unsigned i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(id.data1 >> (24U - 8U * i));
  for (unsigned i = 0; i < 2; ++i) {
    bytes[4 + i] = static_cast<std::uint8_t>(id.data2 >> (8U - 8U * i));
    bytes[6 + i] = static_cast<std::uint8_t>(id.data3 >> (8U - 8U * i));
  }
  std::ranges::copy(id.data4, bytes.begin() + 8);
  return bytes;
}

constexpr bool HyphenStandsBefore(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

}  // namespace

std::string GuidText(const TalmGuid& id) {
  const auto bytes = Bytes(id);
  std::string text = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (HyphenStandsBefore(i)) text += '-';
    text += kHexDigits[bytes[i] >> 4U];
    text += kHexDigits[bytes[i] & 0x0FU];
  }
  return text + "}";
}

std::optional<TalmGuid> ParseGuid(std::string_view text) {
  if (text.size() != kGuidTextSize) return std::nullopt;
  std::array<std::uint32_t, 16> bytes{};
  std::size_t at = 1;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (HyphenStandsBefore(i)) ++at;
    const auto high = kHexDigits.find(text[at++]);
    const auto low = kHexDigits.find(text[at++]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    bytes[i] = static_cast<std::uint32_t>(high << 4U | low);
  }
  TalmGuid id{.data1 = bytes[0] << 24U | bytes[1] << 16U | bytes[2] << 8U | bytes[3],
              .data2 = static_cast<std::uint16_t>(bytes[4] << 8U | bytes[5]),
              .data3 = static_cast<std::uint16_t>(bytes[6] << 8U | bytes[7]),
              .data4 = {}};
  for (std::size_t i = 0; i < 8; ++i) id.data4[i] = static_cast<std::uint8_t>(bytes[8 + i]);
  // Braces and hyphens must stand where they belong.
  return GuidText(id) == text ? std::optional(id) : std::nullopt;
}

TalmText NewText(std::u16string_view characters) {
  const TalmText text = TalmAllocateText(characters.data(), static_cast<std::uint32_t>(characters.size()));
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

TalmText NewText(std::string_view utf8) { return NewText(ToUtf16(utf8)); }

void GiveMessage(TalmText* message, std::string_view utf8) noexcept {
  if (message == nullptr) return;
  try {
    *message = NewText(utf8);
  } catch (const std::bad_alloc&) {
    *message = nullptr;
  }
}

}  // namespace talm_flow::component
