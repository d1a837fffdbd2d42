#include <array>
#include <charconv>
#include <chrono>

#include "db/characters.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow {
namespace {

// Reads a date text from the left.
class DateReader {
 public:
  explicit DateReader(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }

  // At least `least` and at most `most` digits, as many as there are; a further digit is an error of the next piece.
  [[nodiscard]] bool Number(std::size_t least, std::size_t most, int& number) {
    std::size_t count = 0;
    number = 0;
    while (count < most && count < rest_.size() && IsDigit(rest_[count])) number = number * 10 + (rest_[count++] - '0');
    rest_.remove_prefix(count);
    return count >= least;
  }

  [[nodiscard]] bool Literal(std::string_view literal) {
    if (!rest_.starts_with(literal)) return false;
    rest_.remove_prefix(literal.size());
    return true;
  }

  [[nodiscard]] bool Blanks() {
    const std::size_t before = rest_.size();
    while (!rest_.empty() && IsSpaceOrTab(rest_.front())) rest_.remove_prefix(1);
    return rest_.size() < before;
  }

 private:
  std::string_view rest_;
};

struct DateSpelling {
  std::string_view after_year;
  std::string_view after_month;
  std::string_view after_day;
};

constexpr std::array<DateSpelling, 4> kDateSpellings = {
    {{"-", "-", ""}, {"/", "/", ""}, {".", ".", ""}, {"年", "月", "日"}}};

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

bool IsCalendarDay(int year, int month, int day) {
  return year >= kFirstYear && year <= kLastYear &&
         std::chrono::year_month_day(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day)))
             .ok();
}

bool ReadDay(DateReader& reader, DateParts& parts) {
  if (!reader.Number(4, 4, parts.year)) return false;
  for (const DateSpelling& spelling : kDateSpellings) {
    if (reader.Literal(spelling.after_year)) {
      return reader.Number(1, 2, parts.month) && reader.Literal(spelling.after_month) &&
             reader.Number(1, 2, parts.day) && reader.Literal(spelling.after_day) &&
             IsCalendarDay(parts.year, parts.month, parts.day);
    }
  }
  return false;
}

// H:MM or H:MM:SS, to the end of the text.
bool ReadTime(DateReader& reader, DateParts& parts) {
  if (!reader.Number(1, 2, parts.hour) || !reader.Literal(":") || !reader.Number(2, 2, parts.minute)) return false;
  if (!reader.AtEnd() && (!reader.Literal(":") || !reader.Number(2, 2, parts.second))) return false;
  return reader.AtEnd() && parts.hour < 24 && parts.minute < 60 && parts.second < 60;
}

bool ReadMoment(DateReader& reader, DateParts& parts) {
  if (!ReadDay(reader, parts)) return false;
  return reader.AtEnd() || ((reader.Literal("T") || reader.Blanks()) && ReadTime(reader, parts));
}

void AppendPadded(std::string& out, int number, std::size_t width) {
  std::array<char, 12> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  if (count < width) out.append(width - count, '0');
  out.append(digits.data(), count);
}

void AppendShortDate(std::string& out, const DateParts& parts) {
  AppendPadded(out, parts.year, 4);
  out += '/';
  AppendPadded(out, parts.month, 1);
  out += '/';
  AppendPadded(out, parts.day, 1);
}

}  // namespace

std::optional<DateTime> ParseDate(std::string_view text) {
  text = WithoutOuterBlanks(text);
  DateParts parts;
  DateReader moment(text);
  if (!ReadMoment(moment, parts)) {
    parts = {.year = 1899, .month = 12, .day = 30};
    DateReader time(text);
    if (!ReadTime(time, parts)) return std::nullopt;
  }
  return MakeDateTime(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second);
}

bool IsDate(std::string_view text) { return ParseDate(text).has_value(); }

DateTime MakeDateTime(int year, int month, int day, int hour, int minute, int second) {
  const std::chrono::sys_days days = std::chrono::year(year) / month / day;
  const std::chrono::sys_seconds moment =
      days + std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
  return {moment.time_since_epoch().count()};
}

DateParts PartsOf(DateTime moment) {
  const std::chrono::sys_seconds seconds{std::chrono::seconds(moment.seconds)};
  const auto days = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day date(days);
  const std::chrono::hh_mm_ss time(seconds - days);
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<int>(static_cast<unsigned>(date.month())),
          .day = static_cast<int>(static_cast<unsigned>(date.day())),
          .hour = static_cast<int>(time.hours().count()),
          .minute = static_cast<int>(time.minutes().count()),
          .second = static_cast<int>(time.seconds().count()),
          .weekday = static_cast<int>(std::chrono::weekday(days).iso_encoding())};
}

std::string GeneralDateText(DateTime moment) {
  const DateParts parts = PartsOf(moment);
  std::string text;
  AppendShortDate(text, parts);
  if (parts.hour == 0 && parts.minute == 0 && parts.second == 0) return text;
  text += ' ';
  AppendPadded(text, parts.hour, 1);
  text += ':';
  AppendPadded(text, parts.minute, 2);
  text += ':';
  AppendPadded(text, parts.second, 2);
  return text;
}

std::string ShortDateText(DateTime moment) {
  std::string text;
  AppendShortDate(text, PartsOf(moment));
  return text;
}

DateTime AddHours(DateTime moment, double hours) {
  constexpr std::int64_t kSecondsOfHour = 3600;
  const DateTime result{moment.seconds + kSecondsOfHour * ToInt32(hours)};
  if (result < MakeDateTime(kFirstYear, 1, 1) || result > MakeDateTime(kLastYear, 12, 31, 23, 59, 59)) {
    throw OverflowError("adding " + NumberText(hours) + " hours to " + GeneralDateText(moment) +
                        " leaves the years 100 to 9999");
  }
  return result;
}

}  // namespace talm_flow
