#include "adapters/odbc_url.h"

#include <charconv>
#include <optional>

#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr int kLongestLogin = 3600;

/// Takes a connection string part by part.
class Parts {
 public:
  explicit Parts(std::string_view rest) : rest_(rest) {}

  /// @returns whether there was one more.
  bool Next() {
    while (!rest_.empty() && (rest_.front() == ';' || rest_.front() == ' ')) rest_.remove_prefix(1);
    if (rest_.empty()) return false;
    const std::size_t equals = rest_.find('=');
    if (equals == rest_.npos || rest_.find(';') < equals || TrimBlanks(rest_.substr(0, equals)).empty()) {
      // It is not shown: it may be the rest of a password.
      Refuse(key_.empty() ? "the odbc URL does not begin with an option=value"
                          : "behind the option " + std::string(key_) +
                                " of the odbc URL stands something that is no option=value; a value with \";\" in it "
                                "stands in braces");
    }
    key_ = TrimBlanks(rest_.substr(0, equals));
    const std::size_t end = EndOfValue(equals + 1);
    part_ = rest_.substr(0, end);
    value_ = TrimBlanks(rest_.substr(equals + 1, end - equals - 1));
    rest_.remove_prefix(end);
    return true;
  }

  [[nodiscard]] std::string_view key() const { return key_; }
  [[nodiscard]] std::string_view value() const { return value_; }
  /// Key and value as they stand in the string.
  [[nodiscard]] std::string_view part() const { return part_; }

 private:
  [[noreturn]] static void Refuse(const std::string& message) { throw ArgumentError(message); }

  [[nodiscard]] std::size_t EndOfValue(std::size_t at) const {
    while (at < rest_.size() && rest_[at] == ' ') ++at;
    if (at == rest_.size() || rest_[at] != '{') return std::min(rest_.find(';', at), rest_.size());
    for (++at;; at += 2) {
      at = rest_.find('}', at);
      if (at == rest_.npos) Refuse("the braces around the value of " + std::string(key_) + " are not closed");
      if (at + 1 == rest_.size() || rest_[at + 1] != '}') break;
    }
    ++at;
    while (at < rest_.size() && rest_[at] == ' ') ++at;
    if (at < rest_.size() && rest_[at] != ';') {
      Refuse("behind the braces around the value of " + std::string(key_) + " something follows that is no \";\"");
    }
    return at;
  }

  std::string_view rest_;
  std::string_view key_;
  std::string_view value_;
  std::string_view part_;
};

int SecondsOf(std::string_view value) {
  int seconds = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), seconds);
  if (error != std::errc() || end != value.data() + value.size() || seconds < 1 || seconds > kLongestLogin) {
    throw ArgumentError("login_timeout in the odbc URL is a whole number of seconds from 1 to " +
                        std::to_string(kLongestLogin) + ", not \"" + std::string(value) + "\"");
  }
  return seconds;
}

void RefuseSecond(bool first_seen, std::string_view key) {
  if (first_seen) throw ArgumentError("the odbc URL has the option " + std::string(key) + " twice");
}

}  // namespace

OdbcUrl ParseOdbcUrl(std::string_view rest) {
  OdbcUrl url;
  bool has_timeout = false;
  for (Parts parts(rest); parts.Next();) {
    if (EqualIgnoringAsciiCase(parts.key(), "dialect")) {
      RefuseSecond(url.dialect != nullptr, "dialect");
      url.dialect = &DialectNamed(parts.value());
    } else if (EqualIgnoringAsciiCase(parts.key(), "login_timeout")) {
      RefuseSecond(has_timeout, "login_timeout");
      has_timeout = true;
      url.login_timeout = SecondsOf(parts.value());
    } else {
      url.connection_string.append(url.connection_string.empty() ? "" : ";").append(parts.part());
    }
  }
  if (url.connection_string.empty()) {
    throw ArgumentError("the odbc URL names no driver; one is odbc:Driver=MariaDB Unicode;Server=...;dialect=mariadb");
  }
  if (url.dialect == nullptr) {
    throw ArgumentError("the odbc URL does not say what the server speaks; add ;dialect= and one of " +
                        KnownDialects());
  }
  return url;
}

bool HasOption(std::string_view connection_string, std::string_view key) {
  for (Parts parts(connection_string); parts.Next();) {
    if (EqualIgnoringAsciiCase(parts.key(), key)) return true;
  }
  return false;
}

}  // namespace talm_flow::adapters
