#pragma once

/// Registration where the platform has none: one file a class, "$XDG_DATA_HOME/talm_flow/classes/NAME.class".
///
///   file    = "talm_flow class 1" LF "name=" NAME LF "class=" NUMBER LF "library=" PATH LF
///   NAME    = 1 to 200 of letters, digits, "_", "-", "."; begins with a letter
///   NUMBER  = "{" 32 hexadecimal digits in capitals, grouped 8-4-4-4-12 by "-" "}"
///   PATH    = absolute, without line breaks
///
/// Without XDG_DATA_HOME, or where it is no absolute path, the folder is "$HOME/.local/share".

#include <filesystem>
#include <string>
#include <string_view>

#include "component/automation.h"
#include "component/registration.h"

namespace talm_flow::component {

struct ClassFile {
  std::string name;
  TalmGuid id{};
  std::string library;
};

[[nodiscard]] bool IsClassName(std::string_view name);

/// Where the files are. @throws RegistrationError `failure`  the environment names no folder.
[[nodiscard]] std::filesystem::path ClassFolder(TalmResult failure);

/// The file of a class. Only a regular file counts that belongs to this user or to the administrator and that nobody
/// else may write: what it names is loaded.
/// @throws RegistrationError  not registered, not to be read, or not as it must be.
[[nodiscard]] ClassFile ReadClassFile(const std::filesystem::path& folder, std::string_view name);

/// Writes it whole or not at all. @throws RegistrationError
void WriteClassFile(const std::filesystem::path& folder, const ClassFile& file);

/// @throws RegistrationError
void RemoveClassFile(const std::filesystem::path& folder, std::string_view name);

}  // namespace talm_flow::component
