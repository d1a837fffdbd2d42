#include <io.h>
#include <stdio.h>

#include "host/machine_file.h"
#include "talm_flow/text.h"

namespace talm_flow::host {

std::filesystem::path MachinePath(std::string_view file_name) { return ToUtf16(file_name); }

std::FILE* OpenForWriting(const std::filesystem::path& path) { return ::_wfopen(path.c_str(), L"wb"); }

bool Delete(const std::filesystem::path& path) { return ::_wunlink(path.c_str()) == 0; }

}  // namespace talm_flow::host
