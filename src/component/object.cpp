#include "component/object.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

#include "component/error_codes.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

/// Tells the caller how an operation failed, with the class as its source.
TalmResult Tell(TalmException* exception, std::string_view source, std::string_view message, TalmResult code) {
  if (exception != nullptr) {
    *exception = TalmException{};
    OwnedText source_text(NewText(source));
    exception->description = NewText(message);
    exception->source = source_text.release();
    exception->result = code;
  }
  return TALM_EXCEPTION;
}

/// Turns the error that is being handled into the answer to its call.
TalmResult AnswerTo(TalmException* exception, std::string_view source) {
  try {
    throw;
  } catch (const FlowError& error) {
    return Tell(exception, source, error.what(), CodeOf(error.Kind()));
  } catch (const std::bad_alloc&) {
    return TALM_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    return Tell(exception, source, error.what(), TALM_UNEXPECTED);
  } catch (...) {
    return TALM_UNEXPECTED;
  }
}

/// Whether the arguments come in the customary form: by position, and the value that is put named as such.
bool NamedAsCustomary(const TalmArguments& arguments, std::uint16_t how) {
  if ((how & (kTalmPut | kTalmPutReference)) == 0) return arguments.named_count == 0;
  return arguments.named_count == 1 && arguments.names != nullptr && arguments.names[0] == kTalmPutArgument;
}

}  // namespace

std::atomic<std::int64_t>& KeepCount() noexcept {
  static std::atomic<std::int64_t> count = 0;
  return count;
}

/// The functions that objects are called through. Nothing that is thrown leaves them.
struct ObjectTable {
  static Object& Self(TalmDispatch* self) { return *static_cast<Object*>(self); }

  static TalmResult TALM_CALL QueryInterface(TalmDispatch* self, const TalmGuid* interface_id, void** object) noexcept {
    if (object == nullptr) return TALM_POINTER;
    *object = nullptr;
    if (interface_id == nullptr) return TALM_POINTER;
    return Answer(self, Same(*interface_id, kUnknownId) || Same(*interface_id, kDispatchId), object);
  }

  static std::uint32_t TALM_CALL AddRef(TalmDispatch* self) noexcept { return ++Self(self).references_; }

  static std::uint32_t TALM_CALL Release(TalmDispatch* self) noexcept { return Self(self).Release(); }

  static TalmResult TALM_CALL GetTypeInfoCount(TalmDispatch*, std::uint32_t* count) noexcept {
    if (count == nullptr) return TALM_POINTER;
    *count = 0;
    return TALM_OK;
  }

  static TalmResult TALM_CALL GetTypeInfo(TalmDispatch*, std::uint32_t, std::uint32_t, void** information) noexcept {
    if (information == nullptr) return TALM_POINTER;
    *information = nullptr;
    return TALM_BAD_INDEX;
  }

  static TalmResult TALM_CALL GetIDsOfNames(TalmDispatch* self, const TalmGuid* interface_id, char16_t** names,
                                            std::uint32_t count, std::uint32_t, std::int32_t* members) noexcept {
    if (interface_id != nullptr && !Same(*interface_id, kNoId)) return TALM_UNKNOWN_INTERFACE;
    if (names == nullptr || members == nullptr) return TALM_POINTER;
    if (count == 0) return TALM_INVALID_ARGUMENT;
    std::fill_n(members, count, std::int32_t{kTalmUnknownMember});
    try {
      const auto found = Self(self).Find(ToUtf8(ZeroTerminated(names[0])));
      members[0] = found.value_or(kTalmUnknownMember);
      // Names behind the first are those of arguments, which go by position here.
      return found && count == 1 ? TALM_OK : TALM_UNKNOWN_NAME;
    } catch (...) {
      return TALM_OUT_OF_MEMORY;
    }
  }

  static TalmResult TALM_CALL Invoke(TalmDispatch* self, std::int32_t member, const TalmGuid* interface_id,
                                     std::uint32_t, std::uint16_t how, TalmArguments* arguments, TalmVariant* result,
                                     TalmException* exception, std::uint32_t* argument_error) noexcept {
    if (interface_id != nullptr && !Same(*interface_id, kNoId)) return TALM_UNKNOWN_INTERFACE;
    if (arguments == nullptr || (arguments->count > 0 && arguments->values == nullptr)) return TALM_INVALID_ARGUMENT;
    if (!NamedAsCustomary(*arguments, how)) return TALM_NO_NAMED_ARGUMENTS;
    if (result != nullptr) *result = TalmVariant{};
    const Use use{member, how, {arguments->values, arguments->count}, result};
    // The caller's last reference may go during the call.
    const auto kept = Own<Object>::Counting(&Self(self));
    try {
      try {
        kept->Invoke(use);
        return TALM_OK;
      } catch (const Refusal& refusal) {
        if (argument_error != nullptr && refusal.argument) {
          *argument_error = static_cast<std::uint32_t>(use.count() - 1 - *refusal.argument);
        }
        return refusal.code;
      } catch (...) {
        return AnswerTo(exception, kept->ClassName());
      }
    } catch (...) {
      return TALM_OUT_OF_MEMORY;
    }
  }

  static constexpr TalmDispatchTable kFunctions = {.QueryInterface = QueryInterface,
                                                   .AddRef = AddRef,
                                                   .Release = Release,
                                                   .GetTypeInfoCount = GetTypeInfoCount,
                                                   .GetTypeInfo = GetTypeInfo,
                                                   .GetIDsOfNames = GetIDsOfNames,
                                                   .Invoke = Invoke};
};

Object::Object() noexcept : TalmDispatch{&ObjectTable::kFunctions} { ++KeepCount(); }

Object::~Object() { --KeepCount(); }

Object* Object::FromHere(TalmUnknown* object) {
  const bool ours = object != nullptr && static_cast<const void*>(object->table) == &ObjectTable::kFunctions;
  return ours ? static_cast<Object*>(reinterpret_cast<TalmDispatch*>(object)) : nullptr;
}

std::uint32_t Object::Release() noexcept {
  const std::uint32_t left = --references_;
  if (left == 0) delete this;
  return left;
}

}  // namespace talm_flow::component
