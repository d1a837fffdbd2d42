#pragma once

/// The classes that the library serves, and what its entry points do on every platform.

#include <span>
#include <string_view>

#include "component/object.h"

namespace talm_flow::component {

struct ServedClass {
  std::string_view name;  ///< as hosts create it: "TALM_Flow.Command"
  std::string_view title;
  TalmGuid id;
  Own<Object> (*create)();
};

[[nodiscard]] std::span<const ServedClass> ServedClasses();

/// The bodies of the entry points.
[[nodiscard]] TalmResult ClassObject(const TalmGuid* class_id, const TalmGuid* interface_id, void** object) noexcept;
[[nodiscard]] TalmResult CanUnload() noexcept;

}  // namespace talm_flow::component
