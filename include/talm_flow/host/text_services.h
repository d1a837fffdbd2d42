#pragma once

#include <string>
#include <string_view>

#include "talm_flow/conversion.h"

namespace talm_flow::host {

/// Formats moments for the host's date columns.
class DateService {
 public:
  virtual ~DateService() = default;
  [[nodiscard]] virtual std::string FormatDateTime(DateTime moment) const = 0;
};

/// Makes texts fit for a URL.
class UrlService {
 public:
  virtual ~UrlService() = default;
  [[nodiscard]] virtual std::string EncodeUrl(std::string_view text) const = 0;
};

/// The current moment: local time in whole seconds.
class Clock {
 public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual DateTime Now() = 0;
};

}  // namespace talm_flow::host
