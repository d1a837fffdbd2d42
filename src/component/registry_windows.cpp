/// Registration in the classes registry.

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "component/registration.h"
#include "component/server.h"
#include "component/windows_module.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

std::wstring Wide(std::string_view utf8) {
  const std::u16string text = ToUtf16(utf8);
  return {text.begin(), text.end()};
}

std::string Narrow(std::wstring_view text) { return ToUtf8(std::u16string(text.begin(), text.end())); }

[[noreturn]] void Fail(LSTATUS status, std::string_view what) {
  throw RegistrationError{TALM_CANNOT_WRITE_REGISTRATION, "the classes registry: " + std::string(what) +
                                                              " failed with the code " + std::to_string(status)};
}

/// Machine-wide, or of this user alone.
class Classes {
 public:
  explicit Classes(HKEY root) : root_(root) {}

  void Set(const std::wstring& key, const wchar_t* name, std::wstring_view value) const {
    const std::wstring path = kClasses + key;
    const std::wstring text(value);
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const LSTATUS status = ::RegSetKeyValueW(root_, path.c_str(), name, REG_SZ, text.c_str(), bytes);
    if (status != ERROR_SUCCESS) Fail(status, "writing " + Narrow(path));
  }

  /// The default value of a key; the empty text when there is none.
  [[nodiscard]] std::wstring Get(const std::wstring& key) const {
    const std::wstring path = kClasses + key;
    DWORD bytes = 0;
    if (::RegGetValueW(root_, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
      return {};
    std::wstring value(bytes / sizeof(wchar_t), L'\0');
    if (::RegGetValueW(root_, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value.data(), &bytes) != ERROR_SUCCESS) {
      return {};
    }
    return value.substr(0, value.find(L'\0'));
  }

  void Remove(const std::wstring& key) const {
    const std::wstring path = kClasses + key;
    const LSTATUS status = ::RegDeleteTreeW(root_, path.c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) Fail(status, "removing " + Narrow(path));
  }

  [[nodiscard]] bool MayWrite() const {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root_, L"Software\\Classes", 0, KEY_WRITE, &key) != ERROR_SUCCESS) return false;
    (void)::RegCloseKey(key);
    return true;
  }

 private:
  static inline const std::wstring kClasses = L"Software\\Classes\\";

  HKEY root_;
};

std::wstring ServerKey(const std::wstring& id) { return L"CLSID\\" + id + L"\\InprocServer32"; }

void Write(const Classes& classes, const ServedClass& served, const std::wstring& library) {
  const auto id = Wide(GuidText(served.id));
  const auto name = Wide(served.name);
  const auto title = Wide(served.title);
  classes.Set(L"CLSID\\" + id, nullptr, title);
  classes.Set(ServerKey(id), nullptr, library);
  // Objects belong to the thread that made them.
  classes.Set(ServerKey(id), L"ThreadingModel", L"Apartment");
  classes.Set(L"CLSID\\" + id + L"\\ProgID", nullptr, name);
  classes.Set(name, nullptr, title);
  classes.Set(name + L"\\CLSID", nullptr, id);
}

/// Takes back what this library wrote; what another library wrote stays.
void Remove(const Classes& classes, const ServedClass& served, const std::wstring& library) {
  const auto id = Wide(GuidText(served.id));
  if (::CompareStringOrdinal(classes.Get(ServerKey(id)).c_str(), -1, library.c_str(), -1, TRUE) != CSTR_EQUAL) return;
  classes.Remove(Wide(served.name));
  classes.Remove(L"CLSID\\" + id);
}

}  // namespace

void Register() {
  const std::wstring library = OwnLibrary();
  // Whoever may write for the whole machine does: services run as users of their own.
  const Classes machine(HKEY_LOCAL_MACHINE);
  const Classes classes = machine.MayWrite() ? machine : Classes(HKEY_CURRENT_USER);
  try {
    for (const ServedClass& served : ServedClasses()) Write(classes, served, library);
  } catch (const RegistrationError&) {
    for (const ServedClass& served : ServedClasses()) {
      try {
        Remove(classes, served, library);
      } catch (const RegistrationError&) {
        // The first failure is the one to be told.
        break;
      }
    }
    throw;
  }
}

void Unregister() {
  const std::wstring library = OwnLibrary();
  for (HKEY const root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    for (const ServedClass& served : ServedClasses()) Remove(Classes(root), served, library);
  }
}

}  // namespace talm_flow::component
