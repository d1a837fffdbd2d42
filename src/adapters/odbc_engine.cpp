#include "adapters/odbc_engine.h"

#include <array>

namespace talm_flow::adapters {
namespace {

/// ODBC has one way to mark parameters, whatever the server's own is.
Dialect WithPlainMarks(Dialect dialect) {
  dialect.numbered_marks = false;
  return dialect;
}
const Dialect kPostgresqlWithPlainMarks = WithPlainMarks(PostgresqlDialect());

constexpr std::array<int, 2> kSqliteDisturbed = {5, 6};  // busy, locked

const OdbcEngine kSqliteByOdbc = {
    .dialect = SqliteDialect(),
    .may_be_narrow = true,
    .settings = {},
    .begin = "begin immediate",
    .savepoint = "savepoint ",
    .release_savepoint = "release ",
    .rollback_to_savepoint = "rollback to ",
    .has_table = "select 1 from sqlite_master where type in ('table','view') and lower(name)=lower(?)",
    .has_column = "select 1 from pragma_table_info(?) where lower(name)=lower(?)",
    .key_columns = "select name from pragma_table_info(?) where pk>0 order by pk",
    .row_number = "rowid",
    .disturbed = kSqliteDisturbed,
    .reading = {.loose_types = true},
};

const OdbcEngine kPostgresqlByOdbc = {
    .dialect = kPostgresqlWithPlainMarks,
    .settings = {},
    .begin = "begin isolation level read committed",
    .take_turn = kPostgresqlTakeTurn,
    .savepoint = "savepoint ",
    .release_savepoint = "release savepoint ",
    .rollback_to_savepoint = "rollback to savepoint ",
    .failure_ends_transaction = true,
    .has_table =
        "select 1 from pg_class where oid=to_regclass(quote_ident(lower(?))) and relkind in ('r','p','v','m','f')",
    .has_column =
        "select 1 from pg_attribute where attrelid=to_regclass(quote_ident(lower(?))) and attname=lower(?) "
        "and attnum>0 and not attisdropped",
    .key_columns =
        "select attname from pg_index join pg_attribute on attrelid=indrelid and attnum=any(indkey) where "
        "indisprimary and indrelid=to_regclass(quote_ident(lower(?))) order by "
        "array_position(indkey::int2[],attnum)",
};

/// Texts are compared and joined as elsewhere, a backslash is a character like any other, several assignments of one
/// update see the row as it was, and a value that does not fit is refused.
constexpr std::array<std::string_view, 4> kMariadbSettings = {
    "set session sql_mode='ANSI_QUOTES,NO_BACKSLASH_ESCAPES,PIPES_AS_CONCAT,STRICT_ALL_TABLES,NO_AUTO_VALUE_ON_ZERO,"
    "SIMULTANEOUS_ASSIGNMENT,NO_ENGINE_SUBSTITUTION'",
    "set session collation_connection=utf8mb4_nopad_bin",
    "set session transaction isolation level repeatable read",
    "set session max_sort_length=65536",
};
/// What another node has committed before is seen here.
constexpr std::array<std::string_view, 1> kGaleraSettings = {"set session wsrep_sync_wait=1"};
constexpr std::array<int, 2> kMariadbDisturbed = {1205, 1213};  // lock wait time-out, deadlock or failed certification
constexpr std::array<int, 1> kMariadbTakenBack = {1213};

const OdbcEngine kMariadbByOdbc = {
    .dialect = MariadbDialect(),
    .connection_option = "CHARSET=utf8mb4",
    .timeout_option = "CONN_TIMEOUT",
    .settings = kMariadbSettings,
    .cluster_question = "show variables where Variable_name='wsrep_on' and Value='ON'",
    .cluster_settings = kGaleraSettings,
    .cluster_hold = "set autocommit=0",
    .cluster_let_go = "set autocommit=1",
    .begin = "start transaction",
    .take_turn = "insert into TalmFlowTurn (ID,Turns) values (1,1) on duplicate key update Turns=Turns+1",
    .create_turn =
        "create table if not exists TalmFlowTurn (ID int not null primary key, Turns bigint not null) "
        "engine=InnoDB",
    .savepoint = "savepoint ",
    .release_savepoint = "release savepoint ",
    .rollback_to_savepoint = "rollback to savepoint ",
    .creates_tables_in_transactions = false,
    .has_table = "select 1 from information_schema.tables where table_schema=database() and table_name=?",
    .has_column =
        "select 1 from information_schema.columns where table_schema=database() and table_name=? and "
        "column_name=?",
    .key_columns =
        "select column_name from information_schema.statistics where table_schema=database() and "
        "table_name=? and index_name='PRIMARY' order by seq_in_index",
    .disturbed = kMariadbDisturbed,
    .taken_back = kMariadbTakenBack,
    .reading = {.texts_in_utf8 = true},
    .compares_numbers_as_texts = true,
};

constexpr std::array<int, 3> kTsqlDisturbed = {1205, 1222, 3960};  // deadlock, lock time-out, snapshot conflict
constexpr std::array<int, 2> kTsqlTakenBack = {1205, 3960};

const OdbcEngine kTsqlByOdbc = {
    .dialect = TsqlDialect(),
    .settings = {},
    .begin = "begin transaction",
    .take_turn =
        "declare @turn int; exec @turn=sp_getapplock @Resource='talm_flow', @LockMode='Exclusive', "
        "@LockOwner='Transaction', @LockTimeout=30000; if @turn<0 throw 51222, 'the lock of units of work was "
        "not given in time', 1",
    .savepoint = "save transaction ",
    .rollback_to_savepoint = "rollback transaction ",
    .has_table = "select 1 where object_id(?) is not null",
    .has_column = "select 1 where col_length(?,?) is not null",
    .disturbed = kTsqlDisturbed,
    .taken_back = kTsqlTakenBack,
};

constexpr std::array kOdbcEngines = {&kSqliteByOdbc, &kPostgresqlByOdbc, &kMariadbByOdbc, &kTsqlByOdbc};

}  // namespace

const OdbcEngine& OdbcEngineOf(const Dialect& dialect) {
  for (const OdbcEngine* const engine : kOdbcEngines) {
    if (engine->dialect.name == dialect.name) return *engine;
  }
  throw ArgumentError("there is no way to \"" + std::string(dialect.name) + "\" through ODBC");
}

}  // namespace talm_flow::adapters
