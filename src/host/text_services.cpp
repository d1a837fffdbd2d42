#include "host/text_services.h"

#include <ctime>

namespace talm_flow::host {
namespace {

void AppendPadded(std::string& out, int number, std::size_t width) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) out.append(width - digits.size(), '0');
  out += digits;
}

/// The moment in the machine's time zone, without a place that other threads write to.
void LocalTime(std::time_t moment, std::tm& local) {
#ifdef _WIN32
  (void)localtime_s(&local, &moment);
#else
  (void)localtime_r(&moment, &local);
#endif
}

constexpr bool StandsForItself(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.' || c == '~';
}

}  // namespace

std::string ReferenceDateService::FormatDateTime(DateTime moment) const {
  const DateParts parts = PartsOf(moment);
  std::string text;
  AppendPadded(text, parts.year, 4);
  text += '-';
  AppendPadded(text, parts.month, 2);
  text += '-';
  AppendPadded(text, parts.day, 2);
  text += ' ';
  AppendPadded(text, parts.hour, 2);
  text += ':';
  AppendPadded(text, parts.minute, 2);
  text += ':';
  AppendPadded(text, parts.second, 2);
  return text;
}

std::string ReferenceUrlService::EncodeUrl(std::string_view text) const {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (StandsForItself(c)) {
      out += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out += '%';
    out += kHexDigits[byte >> 4U];
    out += kHexDigits[byte & 0x0FU];
  }
  return out;
}

DateTime ReferenceClock::Now() {
  if (fixed_) return *fixed_;
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  LocalTime(now, local);
  return MakeDateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace talm_flow::host
