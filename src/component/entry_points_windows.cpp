/// The entry points as the platform declares them.

#include <windows.h>
// After the platform's own.
#include <olectl.h>

#include "component/registration.h"
#include "component/server.h"
#include "component/windows_module.h"

namespace talm_flow::component {

std::wstring OwnLibrary() {
  constexpr DWORD kHow = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  constexpr std::size_t kLongestPath = 32768;
  HMODULE module = nullptr;
  std::wstring path(kLongestPath, L'\0');
  if (::GetModuleHandleExW(kHow, reinterpret_cast<LPCWSTR>(&OwnLibrary), &module) != 0) {
    path.resize(::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    if (!path.empty() && path.size() < kLongestPath) return path;
  }
  throw RegistrationError{TALM_CANNOT_WRITE_REGISTRATION, "the library's own file is not known"};
}

}  // namespace talm_flow::component

STDAPI DllRegisterServer() { return TalmRegisterClasses(1, nullptr); }

STDAPI DllUnregisterServer() { return TalmRegisterClasses(0, nullptr); }

STDAPI DllGetClassObject(REFCLSID class_id, REFIID interface_id, LPVOID* object) {
  return talm_flow::component::ClassObject(reinterpret_cast<const TalmGuid*>(&class_id),
                                           reinterpret_cast<const TalmGuid*>(&interface_id), object);
}

STDAPI DllCanUnloadNow() { return talm_flow::component::CanUnload(); }
