#pragma once

/// What the checks of all properties use: breaking off when one does not hold, and taking an input apart.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace talm_flow::fuzz {

/// A property does not hold for an input. No code under test raises or catches this.
class Broken : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, std::string_view property) {
  if (!holds) throw Broken(std::string(property));
}

/// As `Require` with what was found and what was due.
inline void RequireEqual(std::string_view found, std::string_view due, std::string_view property) {
  if (found == due) return;
  throw Broken(std::string(property) + "\n found: " + std::string(found) + "\n due:   " + std::string(due));
}

/// What ends a record of an input that holds several texts: no text of a flow needs this character.
inline constexpr char kRecordEnd = '\x1e';

/// The records of an input; at least one.
[[nodiscard]] inline std::vector<std::string_view> Records(std::string_view input) {
  std::vector<std::string_view> records;
  for (std::size_t end; (end = input.find(kRecordEnd)) != input.npos; input.remove_prefix(end + 1)) {
    records.push_back(input.substr(0, end));
  }
  records.push_back(input);
  return records;
}

/// Choices that an input makes, one a byte; zeros behind its end.
class Choices {
 public:
  explicit Choices(std::string_view bytes) : rest_(bytes) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  /// 0 to `count` - 1.
  [[nodiscard]] std::size_t Of(std::size_t count) {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte % count;
  }

  /// True once in `count` times.
  [[nodiscard]] bool Once(std::size_t count) { return Of(count) == count - 1; }

  /// The next bytes, as many as there are.
  [[nodiscard]] std::string_view Bytes(std::size_t count) {
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

 private:
  std::string_view rest_;
};

}  // namespace talm_flow::fuzz
