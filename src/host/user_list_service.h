#pragma once

#include "talm_flow/host/common_functions.h"
#include "talm_flow/host/user_list_service.h"

namespace talm_flow::host {

/// Person expressions:
///
///   expression = [item] { separator [item] }
///   item       = name | "@" group
///   separator  = "," | ";" | "、" | "，" | "；" | space | tab | U+3000 | CR | LF
///
/// The members of a group are rows of `UserGroup`, each an expression again.
class ReferenceUserListService : public UserListService {
 public:
  explicit ReferenceUserListService(const CommonFunctions& common) : common_(common) {}

  [[nodiscard]] std::string UserNames(Connection& connection, std::string_view expression) override;

 private:
  const CommonFunctions& common_;
};

}  // namespace talm_flow::host
