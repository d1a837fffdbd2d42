#pragma once

/// Running a built program as its users do.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_folder.h"

namespace talm_flow::test {

struct ProgramResult {
  int status = -1;  ///< exit status; 128 + the signal's number when a signal ended it
  std::string out;
  std::string err;
};

/// Runs a program in a folder and waits for its end.
/// @param environment  "NAME=VALUE", in place of what this process has under those names.
[[nodiscard]] ProgramResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                                       const TemporaryFolder& folder, std::string_view input = {},
                                       const std::vector<std::string>& environment = {});

/// The bytes of a file; the empty text when there is none.
[[nodiscard]] std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace talm_flow::test
