#pragma once

/// Rows as hosts expect a row set object: `EOF`, `BOF`, `MoveNext`, `Close`, `Fields("Name").Value`, `AddNew`, `Update`.

#include <memory>
#include <string>
#include <utility>

#include "component/members.h"
#include "component/variant.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::component {

/// The rows of a query. It keeps the connection open that they come from, and it is its first field collection's and
/// fields' ground: they keep it.
class RowSetObject : public MemberObject<RowSetObject> {
 public:
  RowSetObject(std::unique_ptr<RowSet> rows, std::shared_ptr<adapters::Database> kept)
      : kept_(std::move(kept)), rows_(std::move(rows)) {}

  [[nodiscard]] RowSet& rows() const { return *rows_; }

  static constexpr bool kHasDefault = true;
  static const Member<RowSetObject> kMembers[10];

 private:
  [[nodiscard]] std::string ClassName() const override { return "TALM_Flow.RowSet"; }

  void Fields(const Use& use);
  void Field(const Use& use);
  void EndOfRows(const Use& use);
  void BeginningOfRows(const Use& use);
  void MoveNext(const Use& use);
  void Close(const Use& use);
  void AddNew(const Use& use);
  void Update(const Use& use);
  void State(const Use& use);
  void ColumnCount(const Use& use);

  // The rows go before what they come from.
  std::shared_ptr<adapters::Database> kept_;
  std::unique_ptr<RowSet> rows_;
  bool open_ = true;
};

/// Rows to hand to a host: the host's own object where they come from one.
/// @param kept  the connection that they come from, when it is one of ours.
[[nodiscard]] Reference<TalmDispatch> RowsForHost(std::unique_ptr<RowSet> rows,
                                                  std::shared_ptr<adapters::Database> kept);

}  // namespace talm_flow::component
