#include <memory>

#include "component/component_host.h"

namespace talm_flow::test {
namespace {

int& LivingCount() {
  static int count = 0;
  return count;
}

std::u16string Lower(std::u16string_view name) {
  std::u16string lower(name);
  for (char16_t& c : lower) {
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + (u'a' - u'A'));
  }
  return lower;
}

/// By its table it has both kinds of late binding, by its answers one of them.
class Script : public TalmExtendedDispatch {
 public:
  Script(ScriptObject::Members members, ScriptObject::Binding binding, std::optional<TalmGuid> also)
      : TalmExtendedDispatch{&kFunctions}, members_(std::move(members)), binding_(binding), also_(also) {
    ++LivingCount();
  }
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
  ~Script() { --LivingCount(); }

 private:
  static Script& Self(TalmExtendedDispatch* self) { return *static_cast<Script*>(self); }

  static TalmResult TALM_CALL QueryInterface(TalmExtendedDispatch* self, const TalmGuid* id, void** object) {
    Script& script = Self(self);
    const bool plain = script.binding_ != ScriptObject::Binding::kExtended;
    const bool extended = script.binding_ != ScriptObject::Binding::kPlain;
    const bool has = component::Same(*id, component::kUnknownId) ||
                     (plain && component::Same(*id, component::kDispatchId)) ||
                     (extended && component::Same(*id, component::kExtendedDispatchId)) ||
                     (script.also_ && component::Same(*id, *script.also_));
    *object = has ? self : nullptr;
    if (has) ++script.references_;
    return has ? TALM_OK : TALM_NO_INTERFACE;
  }
  static std::uint32_t TALM_CALL AddRef(TalmExtendedDispatch* self) { return ++Self(self).references_; }
  static std::uint32_t TALM_CALL Release(TalmExtendedDispatch* self) {
    const auto left = --Self(self).references_;
    if (left == 0) std::unique_ptr<Script>(&Self(self)).reset();
    return left;
  }
  static TalmResult TALM_CALL GetIDsOfNames(TalmExtendedDispatch* self, const TalmGuid*, char16_t** names,
                                            std::uint32_t, std::uint32_t, std::int32_t* members) {
    if (Self(self).binding_ != ScriptObject::Binding::kPlain) return TALM_NOT_IMPLEMENTED;
    return Self(self).Find(names[0], members);
  }
  static TalmResult TALM_CALL Invoke(TalmExtendedDispatch* self, std::int32_t member, const TalmGuid*, std::uint32_t,
                                     std::uint16_t how, TalmArguments* arguments, TalmVariant* result,
                                     TalmException* exception, std::uint32_t*) {
    if (Self(self).binding_ != ScriptObject::Binding::kPlain) return TALM_NOT_IMPLEMENTED;
    return Self(self).Run(member, how, *arguments, result, exception);
  }
  static TalmResult TALM_CALL GetDispID(TalmExtendedDispatch* self, TalmText name, std::uint32_t,
                                        std::int32_t* member) {
    return Self(self).Find(name, member);
  }
  static TalmResult TALM_CALL InvokeEx(TalmExtendedDispatch* self, std::int32_t member, std::uint32_t,
                                       std::uint16_t how, TalmArguments* arguments, TalmVariant* result,
                                       TalmException* exception, void*) {
    return Self(self).Run(member, how, *arguments, result, exception);
  }

  TalmResult Find(const char16_t* name, std::int32_t* member) const {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (Lower(members_[i].first) != Lower(name)) continue;
      *member = static_cast<std::int32_t>(i);
      return TALM_OK;
    }
    return TALM_UNKNOWN_NAME;
  }
  TalmResult Run(std::int32_t member, std::uint16_t how, const TalmArguments& arguments, TalmVariant* result,
                 TalmException* exception) const {
    if (member < 0 || static_cast<std::size_t>(member) >= members_.size()) return TALM_MEMBER_NOT_FOUND;
    std::vector<TalmVariant> natural;
    for (std::uint32_t i = arguments.count; i > 0; --i) natural.push_back(arguments.values[i - 1]);
    return members_[static_cast<std::size_t>(member)].second({how, std::move(natural), result, exception});
  }

  static const TalmExtendedDispatchTable kFunctions;

  ScriptObject::Members members_;
  ScriptObject::Binding binding_;
  std::optional<TalmGuid> also_;
  std::uint32_t references_ = 1;
};

// What nobody asks of a script's object is null.
const TalmExtendedDispatchTable Script::kFunctions = {QueryInterface, AddRef,  Release,   nullptr,  nullptr,
                                                      GetIDsOfNames,  Invoke,  GetDispID, InvokeEx, nullptr,
                                                      nullptr,        nullptr, nullptr,   nullptr,  nullptr};

}  // namespace

Reference<TalmUnknown> ScriptObject::Make(Members members, Binding binding, std::optional<TalmGuid> also) {
  auto made = std::make_unique<Script>(std::move(members), binding, also);
  return Reference<TalmUnknown>(reinterpret_cast<TalmUnknown*>(static_cast<TalmExtendedDispatch*>(made.release())));
}

int ScriptObject::Living() { return LivingCount(); }

TalmResult ScriptObject::Give(const Request& request, OwnedVariant variant) {
  if (request.result != nullptr) std::swap(*request.result, variant.get());
  return TALM_OK;
}

TalmResult ScriptObject::Raise(const Request& request, std::string_view description, TalmResult code) {
  *request.exception = TalmException{};
  request.exception->description = TalmTextFromUtf8(std::string(description).c_str());
  request.exception->result = code;
  return TALM_EXCEPTION;
}

}  // namespace talm_flow::test
