#pragma once

#include <memory>
#include <string>

#include "component/members.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::component {

/// "TALM_Flow.Connection": one of the shipped adapters, for hosts that have no connection of their own.
class ConnectionObject : public MemberObject<ConnectionObject> {
 public:
  /// The open database. @throws DatabaseError  the connection is not open.
  [[nodiscard]] const std::shared_ptr<adapters::Database>& database() const;

  static constexpr bool kHasDefault = false;
  static const Member<ConnectionObject> kMembers[10];

 private:
  [[nodiscard]] std::string ClassName() const override { return "TALM_Flow.Connection"; }

  void Open(const Use& use);
  void Execute(const Use& use);
  void Close(const Use& use);
  void State(const Use& use);
  void CreateTables(const Use& use);
  void MissingTables(const Use& use);
  void CreateFormTable(const Use& use);
  void BeginTrans(const Use& use);
  void CommitTrans(const Use& use);
  void RollbackTrans(const Use& use);

  std::shared_ptr<adapters::Database> database_;
};

}  // namespace talm_flow::component
