#include "component/host_connection.h"

#include <algorithm>
#include <array>

#include "component/object.h"
#include "component/variant.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

/// The class that the platform's data objects are read with, and the interface by which their connections are known in
/// its three versions.
constexpr char16_t kRowSetClass[] = u"ADODB.Recordset";
constexpr std::array kDataConnectionIds = {
    TalmGuid{0x00000515, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
    TalmGuid{0x00000550, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
    TalmGuid{0x00001550, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
};
constexpr std::int32_t kKeysetCursor = 1;

constexpr auto kGetOrCall = static_cast<std::uint16_t>(kTalmMethod | kTalmGet);

/// What a host's object answered: a value that the component has no form for is the database's error.
Value Understood(const OwnedVariant& answer, std::string_view member) {
  try {
    return ToValue(answer.get());
  } catch (const Refusal&) {
    throw DatabaseError("the row set's " + std::string(member) + " is of a type that cannot be read");
  }
}

OwnedVariant TextVariant(std::string_view text) {
  OwnedVariant variant;
  Hold(variant.get(), Value(text));
  return variant;
}

}  // namespace

HostConnection::HostConnection(TalmUnknown* object) : object_(object, "the connection") {
  is_data_object_ = object_.plain() && std::ranges::any_of(kDataConnectionIds, [&](const TalmGuid& id) {
                      return object_.HasInterface(id);
                    });
}

std::unique_ptr<RowSet> HostConnection::Execute(std::string_view statement) {
  const auto text = TextVariant(statement);
  const auto result = object_.Use(u"Execute", kTalmMethod, {&text.get(), 1});
  TalmUnknown* const rows = ObjectIn(result.get());
  if (rows == nullptr) return nullptr;
  return std::make_unique<HostRowSet>(HostObject(rows, "the row set"));
}

std::unique_ptr<RowSet> HostConnection::Open(std::string_view query) {
  auto rows = is_data_object_ ? OpenDataObject(query) : nullptr;
  if (!rows) rows = Execute(query);
  if (!rows) throw DatabaseError("the connection's Execute gave no row set", std::string(query));
  return rows;
}

std::unique_ptr<RowSet> HostConnection::OpenDataObject(std::string_view query) {
  TalmDispatch* created = nullptr;
  if (TALM_FAILED(TalmCreateObject(kRowSetClass, &created, nullptr))) return nullptr;
  const Reference<TalmDispatch> kept(created);
  HostObject rows(reinterpret_cast<TalmUnknown*>(created), "the row set");
  const auto text = TextVariant(query);
  TalmVariant connection{};
  connection.type = kTalmObject;
  connection.as.object = object_.plain().get();
  TalmVariant cursor{};
  cursor.type = kTalmInt32;
  cursor.as.int32 = kKeysetCursor;
  const std::array arguments = {text.get(), connection, cursor};
  (void)rows.Use(u"Open", kTalmMethod, arguments);
  return std::make_unique<HostRowSet>(std::move(rows));
}

HostRowSet::~HostRowSet() {
  try {
    Close();
  } catch (const FlowError&) {
    // Nobody is left to be told; the host's object goes with its last reference.
    open_ = false;
  }
}

bool HostRowSet::Test(std::u16string_view member) const {
  const Value value = Understood(object_.Use(member, kTalmGet), ToUtf8(member));
  return value.IsBoolean() ? value.Boolean() : !value.IsNull() && ToDouble(value) != 0;
}

bool HostRowSet::AtEnd() const { return !open_ || Test(u"EOF"); }

bool HostRowSet::BeforeBegin() const { return open_ && Test(u"BOF"); }

void HostRowSet::MoveNext() { (void)object_.Use(u"MoveNext", kTalmMethod); }

OwnedVariant HostRowSet::FieldObject(const TalmVariant& key) const {
  OwnedVariant field;
  if (object_.TryUse(u"Fields", kGetOrCall, {&key, 1}, field)) return field;
  const auto fields = object_.Use(u"Fields", kTalmGet);
  TalmUnknown* const object = ObjectIn(fields.get());
  if (object == nullptr) throw DatabaseError("the row set's Fields is no object");
  return HostObject(object, "the row set's Fields").Use(u"Item", kGetOrCall, {&key, 1});
}

Value HostRowSet::FieldValue(const TalmVariant& key) const {
  const auto field = FieldObject(key);
  TalmUnknown* const object = ObjectIn(field.get());
  if (object == nullptr) return Understood(field, "field");
  return Understood(HostObject(object, "the field").Use(u"Value", kTalmGet), "field");
}

Value HostRowSet::Field(std::string_view name) const { return FieldValue(TextVariant(name).get()); }

std::size_t HostRowSet::ColumnCount() const {
  const auto fields = object_.Use(u"Fields", kTalmGet);
  TalmUnknown* const object = ObjectIn(fields.get());
  if (object == nullptr) throw DatabaseError("the row set's Fields is no object");
  const Value count = Understood(HostObject(object, "the row set's Fields").Use(u"Count", kTalmGet), "Count");
  return static_cast<std::size_t>(std::max(ToInt32(count), 0));
}

std::string_view HostRowSet::ColumnName(std::size_t index) const {
  OwnedVariant key;
  Hold(key.get(), Value(index));
  const auto field = FieldObject(key.get());
  TalmUnknown* const object = ObjectIn(field.get());
  if (object == nullptr) throw DatabaseError("the row set's field is no object and has no name");
  column_name_ = ToText(Understood(HostObject(object, "the field").Use(u"Name", kTalmGet), "Name"));
  return column_name_;
}

Value HostRowSet::FieldAt(std::size_t index) const {
  OwnedVariant key;
  Hold(key.get(), Value(index));
  return FieldValue(key.get());
}

void HostRowSet::AddNew() { (void)object_.Use(u"AddNew", kTalmMethod); }

void HostRowSet::PutField(std::string_view name, const TalmVariant& value) {
  const auto field = FieldObject(TextVariant(name).get());
  TalmUnknown* const object = ObjectIn(field.get());
  if (object == nullptr) throw DatabaseError("the row set's field " + std::string(name) + " is no object to be set");
  (void)HostObject(object, "the field").Use(u"Value", kTalmPut, {&value, 1});
}

void HostRowSet::SetField(std::string_view name, const Value& value) {
  OwnedVariant variant;
  Hold(variant.get(), value);
  PutField(name, variant.get());
}

void HostRowSet::SetBinary(std::string_view name, std::string_view bytes) {
  OwnedVariant variant;
  HoldBytes(variant.get(), bytes);
  PutField(name, variant.get());
}

void HostRowSet::Update() { (void)object_.Use(u"Update", kTalmMethod); }

void HostRowSet::Close() {
  if (!open_) return;
  open_ = false;
  (void)object_.Use(u"Close", kTalmMethod);
}

Reference<TalmDispatch> HostRowSet::Return() {
  if (object_.plain()) open_ = false;
  return object_.plain();
}

}  // namespace talm_flow::component
