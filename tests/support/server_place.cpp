#include "support/server_place.h"

#include <unistd.h>

#include <stdexcept>
#include <utility>
#include <vector>

#include "db/schema.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::test {
namespace {

/// A name that no other process and no earlier place of this one has.
std::string NewName() {
  static int count = 0;
  return "talm_flow_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

/// A database of its own on a server. What engines differ in is in the two functions that clean.
class ServerPlace : public Place {
 public:
  explicit ServerPlace(const std::string& server_url)
      : server_url_(server_url), name_(NewName()), url_(WithDatabase(server_url, name_)) {
    if (server_url.empty()) throw std::runtime_error("TALM_FLOW_TEST_SERVERS gives no URL of this server");
    (void)adapters::Open(server_url_)->Execute("create database " + name_);
    Connect();
  }
  ~ServerPlace() override {
    database_.reset();
    try {
      (void)adapters::Open(server_url_)->Execute("drop database " + name_);
    } catch (const FlowError&) {  // it goes with the server
    }
  }

  [[nodiscard]] const std::string& url() const override { return url_; }
  [[nodiscard]] adapters::Database& database() override { return *database_; }

  bool Clean() override {
    try {
      if (database_->InTransaction()) database_->Rollback();
      Empty();
      return true;
    } catch (const DatabaseError&) {  // a test left it in a state that nobody foresaw
      return false;
    }
  }

 protected:
  /// Removes all rows, and all tables that do not belong to an installation; creates those that are missing.
  virtual void Empty() = 0;

 private:
  void Connect() {
    database_ = adapters::Open(url_);
    database_->CreateTables();
  }

  std::string server_url_;
  std::string name_;
  std::string url_;
  std::unique_ptr<adapters::Database> database_;
};

class PostgresqlServerPlace : public ServerPlace {
 public:
  explicit PostgresqlServerPlace(const std::string& server_url) : ServerPlace(server_url) {
    std::string known;
    for (const db::Table& table : db::Tables()) {
      const std::string name = LowerCase(table.name);
      known.append(known.empty() ? "'" : ",'").append(name).append("'");
      used_tables_
          .append("select '" + name + "' as name, '" + SequenceOf(table) + "' as sequence where exists (select 1 from ")
          .append(name + ") or (select is_called from " + SequenceOf(table) + ") union all ");
    }
    used_tables_ +=
        "select relname::text, relkind::text from pg_class where relnamespace='public'::regnamespace and relkind in "
        "('r','v') and relname not in (" +
        known + ")";
    columns_ = Columns();
  }

 protected:
  void Empty() override {
    if (Columns() != columns_) throw DatabaseError("a table was changed");
    std::string deletes;
    std::string restarts;
    const auto rows = database().Open(used_tables_);
    for (; !rows->AtEnd(); rows->MoveNext()) {
      const std::string name = rows->FieldAt(0).Text();
      const std::string sequence = rows->FieldAt(1).Text();
      if (sequence.size() == 1) {
        (void)database().Execute((sequence == "v" ? "drop view \"" : "drop table \"") + name + "\"");
      } else {
        deletes.append(deletes.empty() ? "with d_" : ", d_").append(name + " as (delete from " + name + ")");
        restarts.append(restarts.empty() ? " select " : ", ").append("setval('" + sequence + "',1,false)");
      }
    }
    if (!deletes.empty()) (void)database().Execute(deletes + restarts);
  }

 private:
  static std::string SequenceOf(const db::Table& table) {
    return LowerCase(table.name) + "_" + LowerCase(table.key) + "_seq";
  }

  /// Tables of an installation that a test drops or alters show here.
  std::string Columns() {
    const auto rows = database().Open(
        "select sum(relnatts) from pg_class where relnamespace='public'::regnamespace and relkind='r' and relname not "
        "like 'tabledata%'");
    return std::to_string(rows->FieldAt(0).Whole());
  }

  std::string used_tables_;
  std::string columns_;
};

class MariadbServerPlace : public ServerPlace {
 public:
  explicit MariadbServerPlace(const std::string& server_url) : ServerPlace(server_url), columns_(Columns()) {
    std::string known = "'TalmFlowTurn'";
    for (const db::Table& table : db::Tables()) known.append(",'").append(table.name).append("'");
    foreign_tables_ =
        "select table_name,table_type from information_schema.tables where table_schema=database() and "
        "table_name not in (" +
        known + ")";
  }

 protected:
  void Empty() override {
    if (Columns() != columns_) throw DatabaseError("a table was changed");
    // A key that was given makes the next one higher, whatever became of the row.
    for (const std::string& name : Names("select table_name from information_schema.tables where "
                                         "table_schema=database() and auto_increment>1")) {
      (void)database().Execute("truncate table `" + name + "`");
    }
    for (const std::string& name : Names(foreign_tables_ + " and table_type='BASE TABLE'")) {
      (void)database().Execute("drop table `" + name + "`");
    }
    for (const std::string& name : Names(foreign_tables_ + " and table_type='VIEW'")) {
      (void)database().Execute("drop view `" + name + "`");
    }
  }

 private:
  std::vector<std::string> Names(const std::string& query) {
    std::vector<std::string> names;
    const auto rows = database().Open(query);
    for (; !rows->AtEnd(); rows->MoveNext()) names.push_back(rows->FieldAt(0).Text());
    return names;
  }

  /// Tables of an installation that a test drops or alters show here.
  std::string Columns() {
    const auto rows = database().Open(
        "select count(*) from information_schema.columns where table_schema=database() and table_name not like "
        "'TableData%'");
    return std::to_string(rows->FieldAt(0).Whole());
  }

  std::string columns_;
  std::string foreign_tables_;
};

}  // namespace

std::unique_ptr<Place> PostgresqlPlace(const std::string& server_url) {
  return std::make_unique<PostgresqlServerPlace>(server_url);
}

std::unique_ptr<Place> MariadbPlace(const std::string& server_url) {
  return std::make_unique<MariadbServerPlace>(server_url);
}

std::string WithDatabase(const std::string& url, const std::string& database) {
  constexpr std::string_view kKeyword = "Database=";
  std::size_t begin = url.find(kKeyword);
  std::size_t end = begin;
  if (begin != url.npos) {
    begin += kKeyword.size();
    end = url.find(';', begin);
  } else {
    const std::size_t authority = url.find("://");
    begin = authority == url.npos ? url.npos : url.find('/', authority + 3);
    if (begin == url.npos) throw std::runtime_error("the URL names no database: " + url);
    ++begin;
    end = url.find('?', begin);
  }
  return url.substr(0, begin) + database + (end == url.npos ? std::string() : url.substr(end));
}

}  // namespace talm_flow::test
