/// The entry points where the platform knows no component servers.

#include <dlfcn.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "component/class_file.h"
#include "component/server.h"

namespace talm_flow::component {
namespace {

/// The file that this code was loaded from.
std::string OwnLibrary() {
  Dl_info information{};
  if (::dladdr(reinterpret_cast<const void*>(&::DllGetClassObject), &information) == 0 ||
      information.dli_fname == nullptr) {
    throw RegistrationError{TALM_CANNOT_WRITE_REGISTRATION, "the library's own file is not known"};
  }
  std::error_code error;
  auto path = std::filesystem::canonical(information.dli_fname, error);
  if (error) {
    throw RegistrationError{TALM_CANNOT_WRITE_REGISTRATION, "the library's own file: " + error.message()};
  }
  return path.string();
}

/// The file of a class as it is; nothing when there is none that can be followed.
std::optional<ClassFile> Standing(const std::filesystem::path& folder, std::string_view name) {
  try {
    return ReadClassFile(folder, name);
  } catch (const RegistrationError&) {
    return std::nullopt;
  }
}

/// Puts back what stood there before a registration that failed.
void PutBack(const std::filesystem::path& folder, std::string_view name, const std::optional<ClassFile>& before) {
  try {
    before ? WriteClassFile(folder, *before) : RemoveClassFile(folder, name);
  } catch (const RegistrationError&) {
    // The first failure is the one to be told.
    return;
  }
}

}  // namespace

void Register() {
  const auto folder = ClassFolder(TALM_CANNOT_WRITE_REGISTRATION);
  const std::string library = OwnLibrary();
  std::vector<std::pair<std::string_view, std::optional<ClassFile>>> written;
  for (const ServedClass& served : ServedClasses()) {
    auto before = Standing(folder, served.name);
    try {
      WriteClassFile(folder, {.name = std::string(served.name), .id = served.id, .library = library});
    } catch (const RegistrationError&) {
      for (const auto& [name, standing] : written) PutBack(folder, name, standing);
      throw;
    }
    written.emplace_back(served.name, std::move(before));
  }
}

void Unregister() {
  const auto folder = ClassFolder(TALM_CANNOT_WRITE_REGISTRATION);
  const std::string library = OwnLibrary();
  for (const ServedClass& served : ServedClasses()) {
    const auto standing = Standing(folder, served.name);
    if (standing && standing->library == library) RemoveClassFile(folder, served.name);
  }
}

}  // namespace talm_flow::component

TalmResult DllRegisterServer() { return TalmRegisterClasses(1, nullptr); }

TalmResult DllUnregisterServer() { return TalmRegisterClasses(0, nullptr); }

TalmResult DllGetClassObject(const TalmGuid* class_id, const TalmGuid* interface_id, void** object) {
  return talm_flow::component::ClassObject(class_id, interface_id, object);
}

TalmResult DllCanUnloadNow() { return talm_flow::component::CanUnload(); }
