#pragma once

/// Files by names in UTF-8, as each platform takes them.

#include <cstdio>
#include <filesystem>
#include <string_view>

namespace talm_flow::host {

/// @param file_name  UTF-8 where the platform's names are characters; any bytes where they are bytes.
[[nodiscard]] std::filesystem::path MachinePath(std::string_view file_name);

/// Empties the file or makes it. @returns null when that fails; errno tells why.
[[nodiscard]] std::FILE* OpenForWriting(const std::filesystem::path& path);

/// Deletes a file, no folder. @returns whether that was done; if not, errno tells why.
[[nodiscard]] bool Delete(const std::filesystem::path& path);

}  // namespace talm_flow::host
