#pragma once

#include <optional>

#include "talm_flow/host/text_services.h"

namespace talm_flow::host {

class ReferenceDateService : public DateService {
 public:
  /// yyyy-MM-dd HH:mm:ss
  [[nodiscard]] std::string FormatDateTime(DateTime moment) const override;
};

class ReferenceUrlService : public UrlService {
 public:
  [[nodiscard]] std::string EncodeUrl(std::string_view text) const override;
};

/// The machine's local time, unless it was made to stand still.
class ReferenceClock : public Clock {
 public:
  explicit ReferenceClock(std::optional<DateTime> fixed) : fixed_(fixed) {}
  [[nodiscard]] DateTime Now() override;

 private:
  std::optional<DateTime> fixed_;
};

}  // namespace talm_flow::host
