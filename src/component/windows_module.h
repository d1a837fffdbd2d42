#pragma once

#include <string>

namespace talm_flow::component {

/// The file that this code was loaded from. @throws RegistrationError
[[nodiscard]] std::wstring OwnLibrary();

}  // namespace talm_flow::component
