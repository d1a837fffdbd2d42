#pragma once

#include <string>
#include <string_view>

#include "component/object.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::component {

/// One of the four public classes, by the table of late-bound operations. Each object brings its own reference host.
class OperationsObject : public Object {
 public:
  /// @param class_name  "Command" and so on; constant data.
  explicit OperationsObject(std::string_view class_name) : class_name_(class_name) {}

 private:
  [[nodiscard]] std::string ClassName() const override { return "TALM_Flow." + std::string(class_name_); }
  [[nodiscard]] std::optional<std::int32_t> Find(std::string_view name) const override;
  void Invoke(const Use& use) override;

  std::string_view class_name_;
  host::ReferenceHost host_;
};

}  // namespace talm_flow::component
