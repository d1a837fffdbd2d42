/// Objects by their class names where the platform does not make them.

#include <dlfcn.h>

#include <new>
#include <string>

#include "component/class_file.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

using GetClassObject = TalmResult (*)(const TalmGuid*, const TalmGuid*, void**);

std::string LoadingError() {
  const char* const message = ::dlerror();
  return message == nullptr ? "unknown error" : message;
}

/// A loaded library, which goes again unless it is kept.
class Library {
 public:
  explicit Library(const std::string& path) : handle_(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw RegistrationError{TALM_LIBRARY_NOT_FOUND, LoadingError()};
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (handle_ != nullptr) (void)::dlclose(handle_);
  }

  [[nodiscard]] GetClassObject EntryPoint() const {
    void* const found = ::dlsym(handle_, "DllGetClassObject");
    if (found == nullptr) throw RegistrationError{TALM_ERROR_IN_LIBRARY, LoadingError()};
    return reinterpret_cast<GetClassObject>(found);
  }
  void Keep() { handle_ = nullptr; }

 private:
  void* handle_;
};

void Require(TalmResult result, const void* given, const ClassFile& file, std::string_view what) {
  if (!TALM_FAILED(result) && given != nullptr) return;
  throw RegistrationError{
      TALM_FAILED(result) ? result : TALM_ERROR_IN_LIBRARY,
      "the library \"" + file.library + "\" gave no " + std::string(what) + " of the class " + file.name};
}

Reference<TalmDispatch> Create(std::u16string_view class_name) {
  const std::string name = ToUtf8(class_name);
  if (!IsClassName(name)) throw RegistrationError{TALM_BAD_CLASS_NAME, "\"" + name + "\" is no class name"};
  const ClassFile file = ReadClassFile(ClassFolder(TALM_CANNOT_READ_REGISTRATION), name);
  Library library(file.library);
  void* factory = nullptr;
  const TalmResult found = library.EntryPoint()(&file.id, &kClassFactoryId, &factory);
  Require(found, factory, file, "factory");
  const Reference<TalmClassFactory> kept(static_cast<TalmClassFactory*>(factory));
  void* object = nullptr;
  const TalmResult created = kept->table->CreateInstance(kept.get(), nullptr, &kDispatchId, &object);
  Require(created, object, file, "object");
  library.Keep();
  return Reference<TalmDispatch>(static_cast<TalmDispatch*>(object));
}

}  // namespace
}  // namespace talm_flow::component

TalmResult TalmCreateObject(const char16_t* class_name, TalmDispatch** object, TalmText* message) {
  using namespace talm_flow::component;
  if (message != nullptr) *message = nullptr;
  if (class_name == nullptr || object == nullptr) return TALM_POINTER;
  *object = nullptr;
  try {
    *object = Create(class_name).release();
    return TALM_OK;
  } catch (const RegistrationError& error) {
    GiveMessage(message, error.message);
    return error.code;
  } catch (const std::exception& error) {
    GiveMessage(message, error.what());
    return TALM_OUT_OF_MEMORY;
  }
}
