#include "adapters/shape_pattern.h"

#include <cstring>

namespace talm_flow::adapters {
namespace {

/// More might be the one number that stays in the shape.
constexpr std::size_t kMostDigits = 18;

}  // namespace

// A sign's meaning depends on what is before it and on the kind of what follows: where the literals are of the same
// kinds and all else is the same, everything means the same. A number that begins with a point is no literal where one
// that begins with a digit is a part of a name ("a.5", "a5"), so that its shape is not recognised at all.
ShapePattern::ShapePattern(const ScannedText& scanned) {
  std::size_t begin = 0;
  std::size_t source_end = 0;
  const char* const text = scanned.text.data();
  for (const Literal& literal : scanned.literals) {
    const bool is_text = IsText(literal);
    const std::size_t quote = is_text ? 1 : 0;
    if (!is_text && !IsDigit(literal.source.front())) return;
    const auto source_begin = static_cast<std::size_t>(literal.source.data() - text);
    const std::size_t size = source_begin - quote - source_end;
    fragments_.append(scanned.shape, begin, size);
    parts_.push_back({size, is_text});
    begin += size + 1;
    source_end = source_begin + literal.source.size() + quote;
  }
  fragments_.append(scanned.shape, begin);
  rest_size_ = scanned.shape.size() - begin;
  usable_ = !scanned.unterminated;
}

bool ShapePattern::Match(std::string_view text, std::vector<Literal>& literals) const {
  // Without a literal in between this compares all; else the first fragment alone tells most texts apart.
  if (!usable_ || text.size() < fragments_.size() + parts_.size()) return false;
  literals.clear();
  const char* at = text.data();
  const char* const end = at + text.size();
  const char* fragment = fragments_.data();
  for (const Part& part : parts_) {
    if (static_cast<std::size_t>(end - at) <= part.size || std::memcmp(at, fragment, part.size) != 0) return false;
    at += part.size;
    fragment += part.size;
    const char* begin = at;
    if (part.is_text) {
      if (*at != '\'') return false;
      ++begin;
      at = static_cast<const char*>(std::memchr(begin, '\'', static_cast<std::size_t>(end - begin)));
      if (at == nullptr || (at + 1 != end && at[1] == '\'')) return false;
      literals.push_back({Literal::Kind::kText, {begin, static_cast<std::size_t>(at - begin)}});
      ++at;
    } else {
      while (at != end && IsDigit(*at)) ++at;
      const auto digits = static_cast<std::size_t>(at - begin);
      if (digits == 0 || digits > kMostDigits) return false;
      literals.push_back({Literal::Kind::kWhole, {begin, digits}});
    }
  }
  return static_cast<std::size_t>(end - at) == rest_size_ && std::memcmp(at, fragment, rest_size_) == 0;
}

}  // namespace talm_flow::adapters
