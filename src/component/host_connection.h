#pragma once

/// A host's own connection object, as the component's connection.

#include <memory>
#include <string_view>

#include "component/host_object.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::component {

/// Statements go to the object's `Execute`. Queries are opened as the object's own kind has it: where it is one of the
/// platform's data objects and their row set class is registered, with a new row set object of that class, a keyset
/// cursor; with any other object, by its `Execute`, which gives a row set object.
class HostConnection : public Connection {
 public:
  /// @throws Refusal  the object has no late binding.
  explicit HostConnection(TalmUnknown* object);

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

 private:
  [[nodiscard]] std::unique_ptr<RowSet> OpenDataObject(std::string_view query);

  HostObject object_;
  bool is_data_object_;
};

/// A host's row set object: `EOF`, `BOF`, `Fields`, `MoveNext`, `Close`, and `AddNew`, `Update` where rows are added.
/// A field is `Fields(name)`, or `Fields.Item(name)` where `Fields` takes no argument, and its `Value` where it is an
/// object.
class HostRowSet : public RowSet {
 public:
  explicit HostRowSet(HostObject object) : object_(std::move(object)) {}
  ~HostRowSet() override;

  [[nodiscard]] bool AtEnd() const override;
  [[nodiscard]] bool BeforeBegin() const override;
  void MoveNext() override;
  [[nodiscard]] Value Field(std::string_view name) const override;
  [[nodiscard]] std::size_t ColumnCount() const override;
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const override;
  [[nodiscard]] Value FieldAt(std::size_t index) const override;
  void AddNew() override;
  void SetField(std::string_view name, const Value& value) override;
  void SetBinary(std::string_view name, std::string_view bytes) override;
  void Update() override;
  void Close() override;

  /// Hands the host its own object back, open as it is; nothing when it has extended late binding only.
  [[nodiscard]] Reference<TalmDispatch> Return();

 private:
  [[nodiscard]] OwnedVariant FieldObject(const TalmVariant& key) const;
  [[nodiscard]] Value FieldValue(const TalmVariant& key) const;
  void PutField(std::string_view name, const TalmVariant& value);
  [[nodiscard]] bool Test(std::u16string_view member) const;

  // Asking a row set anything may change what is known of its members.
  mutable HostObject object_;
  mutable std::string column_name_;
  bool open_ = true;
};

}  // namespace talm_flow::component
