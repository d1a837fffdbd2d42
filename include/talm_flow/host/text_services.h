#pragma once

#include <string>
#include <string_view>

#include "talm_flow/conversion.h"
#include "talm_flow/export.h"

namespace talm_flow::host {

/// Formats moments for the host's date columns.
class TALM_FLOW_API DateService {
 public:
  virtual ~DateService() = default;
  /// The moment as the host's date columns hold it; goes into statements through `SqlText`.
  [[nodiscard]] virtual std::string FormatDateTime(DateTime moment) const = 0;
};

/// Makes texts fit for a URL.
class TALM_FLOW_API UrlService {
 public:
  virtual ~UrlService() = default;
  /// The text as it may stand in the query of a URL that stands in a double-quoted HTML attribute.
  [[nodiscard]] virtual std::string EncodeUrl(std::string_view text) const = 0;
};

/// The current moment: local time in whole seconds.
class TALM_FLOW_API Clock {
 public:
  virtual ~Clock() = default;
  /// The moment of the call.
  [[nodiscard]] virtual DateTime Now() = 0;
};

}  // namespace talm_flow::host
