#include "support/places.h"

namespace talm_flow::test {

std::string SourcePath(std::string_view path) { return TALM_FLOW_SOURCE_DIR "/" + std::string(path); }

std::string ProgramPath() { return TALM_FLOW_PROGRAM; }

}  // namespace talm_flow::test
