#pragma once

#include <string>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::host {

/// Turns a person expression (names, groups) into names.
class TALM_FLOW_API UserListService {
 public:
  virtual ~UserListService() = default;

  /// The names that the expression stands for, joined by ","; the empty text when there are none.
  [[nodiscard]] virtual std::string UserNames(Connection& connection, std::string_view expression) = 0;
};

}  // namespace talm_flow::host
