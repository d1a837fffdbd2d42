/// The entry point of every fuzzer. The build names the property in TALM_FLOW_PROPERTY.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "properties.h"

namespace {

const talm_flow::fuzz::Property& ChosenProperty() {
  for (const auto& property : talm_flow::fuzz::Properties()) {
    if (property.name == TALM_FLOW_PROPERTY) return property;
  }
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const talm_flow::fuzz::Property& property = ChosenProperty();
  property.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
