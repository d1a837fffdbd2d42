#pragma once

#include <string>

#include "talm_flow/component.h"

namespace talm_flow::component {

/// A registration that could not be read, written or followed.
struct RegistrationError {
  TalmResult code;
  std::string message;
};

/// Makes the served classes known, all or none. @throws RegistrationError
void Register();

/// Takes back what this library made known. @throws RegistrationError
void Unregister();

}  // namespace talm_flow::component
