#pragma once

/// A database in the file from.db whose rows have everything that may get lost on the way to another engine.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "program/talmflow.h"

namespace talm_flow::test {

class CopiedDatabaseTest : public TalmflowTest {
 protected:
  CopiedDatabaseTest() {
    (void)Succeed({"--db", "sqlite:from.db", "init"});
    (void)Succeed(
        {"--db", "sqlite:from.db", "form", "add", "12", "--unit", "Days:InputNum", "--unit", "Why:InputText"});
    for (const std::string text :
         {"insert into TableData12 (name,inputtime,Days,Why) values ('kim','2026-01-31 09:00:00',1.25,'it''s ''')",
          "insert into TableData12 (name,Days,Why) values ('',-0.5,'')",
          "insert into TableData12 (Why) values ('系统')",
          "insert into TableFile (TableID,FileContent,FileName) values (12,x'00ff2700','a.bin')",
          "insert into TableFile (TableID,FileContent) values (12,x'')",
          "insert into DataApp (ExecuteID,Status,AppDataID) values (-2147483648,null,9223372036854775807)",
          "insert into DataApp (ExecuteID) values (2)", "insert into DataApp (ExecuteID) values (3)",
          "delete from DataApp where DataAppID=3"}) {
      (void)In("from.db", text);
    }
  }

  /// What a statement gives in a database.
  nlohmann::json In(const std::string& file, const std::string& text) const {
    const nlohmann::json request = {
        {"jsonrpc", "2.0"}, {"id", 1}, {"method", "Connection.Execute"}, {"params", {text}}};
    auto answer = nlohmann::json::parse(Succeed({"--db", "sqlite:" + file, "rpc"}, request.dump() + "\n"));
    EXPECT_FALSE(answer.contains("error")) << answer;
    return answer["result"]["value"];
  }

  void ExpectSameIn(const std::string& query) const { EXPECT_EQ(In("to.db", query), In("from.db", query)) << query; }
};

}  // namespace talm_flow::test
