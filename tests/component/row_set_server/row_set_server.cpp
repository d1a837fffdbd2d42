/// A component server with one class: a row set as data objects have it, with one row and one column whose value tells
/// how it was opened.

#include <memory>

#include "component/component_host.h"

namespace talm_flow::test {
namespace {

using Request = ScriptObject::Request;

TalmResult Open(const Request& request) {
  if (request.arguments.size() != 3 || request.arguments[2].type != kTalmInt32 || request.arguments[2].as.int32 != 1) {
    return ScriptObject::Raise(request, "opened in another way", TALM_FAIL);
  }
  const auto connection = Object::Counting(request.arguments[1].as.object);
  return Call(connection, u"Execute", {request.arguments[0]}).code;
}

OwnedVariant False() { return Of(kTalmBoolean); }

Reference<TalmUnknown> NewRowSet() {
  const auto answer = [](OwnedVariant (*make)()) {
    return [make](const Request& request) { return ScriptObject::Give(request, make()); };
  };
  return ScriptObject::Make({{u"Open", Open},
                             {u"EOF", answer(False)},
                             {u"BOF", answer(False)},
                             {u"Fields", answer([] { return Text("opened as a keyset"); })},
                             {u"Close", [](const Request&) { return TALM_OK; }}});
}

TalmResult TALM_CALL QueryInterface(TalmClassFactory* self, const TalmGuid*, void** object) {
  *object = self;
  return TALM_OK;
}
std::uint32_t TALM_CALL Count(TalmClassFactory*) { return 1; }
TalmResult TALM_CALL CreateInstance(TalmClassFactory*, TalmUnknown*, const TalmGuid* interface_id, void** object) {
  const auto made = NewRowSet();
  return made->table->QueryInterface(made.get(), interface_id, object);
}
TalmResult TALM_CALL LockServer(TalmClassFactory*, std::int32_t) { return TALM_OK; }

constexpr TalmClassFactoryTable kFunctions = {QueryInterface, Count, Count, CreateInstance, LockServer};

}  // namespace
}  // namespace talm_flow::test

TalmResult DllGetClassObject(const TalmGuid*, const TalmGuid*, void** object) {
  static TalmClassFactory factory = {&talm_flow::test::kFunctions};
  *object = &factory;
  return TALM_OK;
}
