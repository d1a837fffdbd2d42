#include "component/server.h"

#include <algorithm>
#include <array>
#include <new>

#include "component/connection_object.h"
#include "component/operations_object.h"
#include "component/registration.h"

namespace talm_flow::component {
namespace {

constexpr std::array<std::string_view, 4> kOperationClasses = {"Command", "Construction", "InOut", "Name"};

template <std::size_t kIndex>
Own<Object> CreateOperations() {
  return Own<OperationsObject>::Make(kOperationClasses[kIndex]);
}

Own<Object> CreateConnection() { return Own<ConnectionObject>::Make(); }

constexpr std::array kClasses = {
    ServedClass{"TALM_Flow.Command", "Flow runs and commands", TALM_COMMAND_CLASS_ID, CreateOperations<0>},
    ServedClass{"TALM_Flow.Construction", "A flow's tree of steps", TALM_CONSTRUCTION_CLASS_ID, CreateOperations<1>},
    ServedClass{"TALM_Flow.InOut", "Flow definitions as texts", TALM_IN_OUT_CLASS_ID, CreateOperations<2>},
    ServedClass{"TALM_Flow.Name", "The catalogue of flows", TALM_NAME_CLASS_ID, CreateOperations<3>},
    ServedClass{"TALM_Flow.Connection", "A database connection", TALM_CONNECTION_CLASS_ID, CreateConnection},
};

/// Makes objects of one class. It counts as an object itself, so that nobody unloads the library under it.
class Factory : public TalmClassFactory {
 public:
  explicit Factory(const ServedClass& served) noexcept : TalmClassFactory{&kFunctions}, served_(served) {
    ++KeepCount();
  }
  Factory(const Factory&) = delete;
  Factory& operator=(const Factory&) = delete;
  ~Factory() { --KeepCount(); }

 private:
  static Factory& Self(TalmClassFactory* self) { return *static_cast<Factory*>(self); }

  static TalmResult TALM_CALL QueryInterface(TalmClassFactory* self, const TalmGuid* interface_id,
                                             void** object) noexcept {
    if (object == nullptr) return TALM_POINTER;
    *object = nullptr;
    if (interface_id == nullptr) return TALM_POINTER;
    return Answer(self, Same(*interface_id, kUnknownId) || Same(*interface_id, kClassFactoryId), object);
  }

  static std::uint32_t TALM_CALL AddRef(TalmClassFactory* self) noexcept { return ++Self(self).references_; }

  static std::uint32_t TALM_CALL Release(TalmClassFactory* self) noexcept {
    const std::uint32_t left = --Self(self).references_;
    if (left == 0) delete &Self(self);
    return left;
  }

  static TalmResult TALM_CALL CreateInstance(TalmClassFactory* self, TalmUnknown* outer, const TalmGuid* interface_id,
                                             void** object) noexcept {
    if (object == nullptr) return TALM_POINTER;
    *object = nullptr;
    if (interface_id == nullptr) return TALM_POINTER;
    if (outer != nullptr) return TALM_NO_AGGREGATION;
    try {
      const auto created = Self(self).served_.create();
      return created->table->QueryInterface(created.get(), interface_id, object);
    } catch (...) {
      return TALM_OUT_OF_MEMORY;
    }
  }

  static TalmResult TALM_CALL LockServer(TalmClassFactory*, std::int32_t lock) noexcept {
    lock != 0 ? ++KeepCount() : --KeepCount();
    return TALM_OK;
  }

  static constexpr TalmClassFactoryTable kFunctions = {.QueryInterface = QueryInterface,
                                                       .AddRef = AddRef,
                                                       .Release = Release,
                                                       .CreateInstance = CreateInstance,
                                                       .LockServer = LockServer};

  const ServedClass& served_;
  std::atomic<std::uint32_t> references_ = 1;
};

}  // namespace

std::span<const ServedClass> ServedClasses() { return kClasses; }

TalmResult ClassObject(const TalmGuid* class_id, const TalmGuid* interface_id, void** object) noexcept {
  if (object == nullptr) return TALM_POINTER;
  *object = nullptr;
  if (class_id == nullptr || interface_id == nullptr) return TALM_POINTER;
  const auto* const served =
      std::ranges::find_if(kClasses, [&](const ServedClass& entry) { return Same(entry.id, *class_id); });
  if (served == kClasses.end()) return TALM_CLASS_NOT_AVAILABLE;
  auto* const made = new (std::nothrow) Factory(*served);
  if (made == nullptr) return TALM_OUT_OF_MEMORY;
  const Reference<TalmClassFactory> factory(made);
  return factory->table->QueryInterface(made, interface_id, object);
}

TalmResult CanUnload() noexcept { return KeepCount() == 0 ? TALM_OK : TALM_FALSE; }

}  // namespace talm_flow::component

TalmResult TalmRegisterClasses(std::int32_t install, TalmText* message) {
  using talm_flow::component::GiveMessage;
  if (message != nullptr) *message = nullptr;
  try {
    install != 0 ? talm_flow::component::Register() : talm_flow::component::Unregister();
    return TALM_OK;
  } catch (const talm_flow::component::RegistrationError& error) {
    GiveMessage(message, error.message);
    return error.code;
  } catch (const std::exception& error) {
    GiveMessage(message, error.what());
    return TALM_OUT_OF_MEMORY;
  }
}
