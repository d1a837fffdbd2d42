#include <unistd.h>

#include "host/machine_file.h"

namespace talm_flow::host {

std::filesystem::path MachinePath(std::string_view file_name) { return file_name; }

std::FILE* OpenForWriting(const std::filesystem::path& path) { return std::fopen(path.c_str(), "wb"); }

bool Delete(const std::filesystem::path& path) { return ::unlink(path.c_str()) == 0; }

}  // namespace talm_flow::host
