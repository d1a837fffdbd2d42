#include "component/component_host.h"

#include <dlfcn.h>

#include <cstdlib>
#include <stdexcept>

namespace talm_flow::test {

std::string LibraryPath() { return TALM_FLOW_LIBRARY; }

Setting::Setting(std::string name, std::optional<std::string> value) : name_(std::move(name)) {
  if (const char* const before = std::getenv(name_.c_str())) before_ = before;
  value ? setenv(name_.c_str(), value->c_str(), 1) : unsetenv(name_.c_str());
}

Setting::~Setting() { before_ ? setenv(name_.c_str(), before_->c_str(), 1) : unsetenv(name_.c_str()); }

Library::Library(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
}

Library::~Library() { dlclose(handle_); }

void* Library::Symbol(const char* name) const {
  void* const found = dlsym(handle_, name);
  if (found == nullptr) throw std::runtime_error(dlerror());
  return found;
}

TalmResult Library::Tell(std::int32_t install, std::string& message) const {
  TalmText text = nullptr;
  const auto code = Entry<decltype(::TalmRegisterClasses)>("TalmRegisterClasses")(install, &text);
  message = Utf8(text);
  TalmFreeText(text);
  return code;
}

TalmResult Library::Register(std::string& message) const { return Tell(1, message); }

TalmResult Library::Unregister(std::string& message) const { return Tell(0, message); }

std::string Utf8(const char16_t* text) {
  std::string result(TalmTextToUtf8(text, nullptr, 0), '\0');
  (void)TalmTextToUtf8(text, result.data(), result.size() + 1);
  return result;
}

OwnedVariant Of(std::uint16_t type, const std::function<void(TalmVariant&)>& fill) {
  OwnedVariant variant;
  if (fill) fill(variant.get());
  variant.get().type = type;
  return variant;
}

OwnedVariant Whole(std::int32_t number) {
  return Of(kTalmInt32, [&](TalmVariant& variant) { variant.as.int32 = number; });
}

OwnedVariant Text(std::string_view utf8) {
  const std::string text(utf8);
  return Of(kTalmTextType, [&](TalmVariant& variant) { variant.as.text = TalmTextFromUtf8(text.c_str()); });
}

OwnedVariant Missing() {
  return Of(kTalmError, [](TalmVariant& variant) { variant.as.error = TALM_PARAMETER_NOT_FOUND; });
}

OwnedVariant ObjectOf(const Object& object) {
  return Of(kTalmObject, [&](TalmVariant& variant) { variant.as.object = Object(object).release(); });
}

OwnedVariant UnknownOf(const Reference<TalmUnknown>& object) {
  return Of(kTalmUnknown, [&](TalmVariant& v) { v.as.unknown = Reference<TalmUnknown>(object).release(); });
}

OwnedVariant ByReference(std::uint16_t type, void* variable) {
  return Of(static_cast<std::uint16_t>(type | kTalmByReference), [&](TalmVariant& v) { v.as.reference = variable; });
}

namespace {

std::string ShownArray(const TalmVariant& variant) {
  const TalmArray& array = *variant.as.array;
  if (variant.type == (kTalmArray | kTalmUint8)) {
    return "bytes " + std::string(static_cast<const char*>(array.data), array.count);
  }
  std::string text = "[";
  for (std::uint32_t i = 0; i < array.count; ++i) {
    if (i > 0) text += ',';
    text += variant.type == (kTalmArray | kTalmVariant) ? Shown(static_cast<const TalmVariant*>(array.data)[i])
                                                        : "'" + Utf8(static_cast<const TalmText*>(array.data)[i]) + "'";
  }
  return text + "]";
}

}  // namespace

std::string Shown(const TalmVariant& variant) {
  const auto& as = variant.as;
  if ((variant.type & kTalmArray) != 0) return ShownArray(variant);
  switch (variant.type) {
    case kTalmEmpty:
      return "Empty";
    case kTalmNull:
      return "Null";
    case kTalmInt32:
      return std::to_string(as.int32);
    case kTalmInt64:
      return std::to_string(as.int64) + "L";
    case kTalmDouble:
      return std::to_string(as.float64);
    case kTalmBoolean:
      return as.boolean == -1 ? "True" : as.boolean == 0 ? "False" : "neither";
    case kTalmTextType:
      return '"' + Utf8(as.text) + '"';
    case kTalmObject:
      return as.object == nullptr ? "Nothing" : "object";
    default:
      return "type " + std::to_string(variant.type);
  }
}

std::string Outcome::Line() const {
  if (code == TALM_EXCEPTION) return kind + ": " + message;
  if (TALM_FAILED(code)) return "code " + std::to_string(static_cast<std::uint32_t>(code));
  return Shown(result.get());
}

Outcome Use(const Object& object, std::u16string_view member, std::uint16_t how,
            const std::vector<TalmVariant>& arguments) {
  Outcome outcome;
  TalmException exception{};
  outcome.code = TalmCall(object.get(), std::u16string(member).c_str(), how, arguments.data(),
                          static_cast<std::uint32_t>(arguments.size()), &outcome.result.get(), &exception);
  if (outcome.code == TALM_EXCEPTION) {
    const char* const kind = TalmErrorKind(exception.result);
    outcome.kind = kind == nullptr ? "no kind" : kind;
  }
  outcome.message = Utf8(exception.description);
  outcome.source = Utf8(exception.source);
  TalmClearException(&exception);
  return outcome;
}

Object ObjectFrom(const OwnedVariant& variant) {
  if (variant.get().type != kTalmObject) throw std::runtime_error("no object but " + Shown(variant.get()));
  return Object::Counting(variant.get().as.object);
}

Outcome RunText(const Object& connection, std::string_view statement) {
  const auto text = Text(statement);
  auto outcome = Call(connection, u"Execute", List(text));
  if (TALM_FAILED(outcome.code)) throw std::runtime_error(outcome.Line());
  return outcome;
}

std::string RowsOf(const Object& connection, std::string_view query) {
  const auto rows = ObjectFrom(RunText(connection, query).result);
  const auto columns = Get(rows, u"ColumnCount").result.get().as.int32;
  std::string all;
  while (Get(rows, u"EOF").result.get().as.boolean == 0) {
    if (!all.empty()) all += "; ";
    for (std::int32_t i = 0; i < columns; ++i) {
      const auto index = Whole(i);
      if (i > 0) all += '|';
      all += Get(rows, u"Field", List(index)).Line();
    }
    if (TALM_FAILED(Call(rows, u"MoveNext").code)) throw std::runtime_error("the rows end early");
  }
  return all;
}

ComponentTest::ComponentTest() : setting_("XDG_DATA_HOME", data_.File("")), library_(LibraryPath()) {
  EXPECT_EQ(library_.Register(), TALM_OK);
}

ComponentTest::~ComponentTest() {
  EXPECT_EQ(library_.CanUnload(), TALM_OK) << "an object of the library has been left alive";
  EXPECT_EQ(ScriptObject::Living(), 0) << "an object of the host has been left alive";
}

Object ComponentTest::Create(std::u16string_view class_name) const {
  TalmDispatch* object = nullptr;
  TalmText message = nullptr;
  const auto code = TalmCreateObject(std::u16string(class_name).c_str(), &object, &message);
  EXPECT_EQ(code, TALM_OK) << Utf8(message);
  TalmFreeText(message);
  return Object(object);
}

Object ComponentTest::NewConnection() const {
  auto connection = Create(u"TALM_Flow.Connection");
  const auto url = Text("sqlite::memory:");
  EXPECT_EQ(Call(connection, u"Open", List(url)).code, TALM_OK);
  EXPECT_EQ(Call(connection, u"CreateTables").code, TALM_OK);
  return connection;
}

}  // namespace talm_flow::test
