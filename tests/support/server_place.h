#pragma once

/// Databases of this process on the servers that tools/test_servers runs. They go when the object goes.

#include <memory>
#include <string>

#include "support/databases.h"

namespace talm_flow::test {

/// On PostgreSQL, through any adapter that reaches it.
/// @param server_url  of a database whose user may create others.
[[nodiscard]] std::unique_ptr<Place> PostgresqlPlace(const std::string& server_url);

/// On MariaDB.
[[nodiscard]] std::unique_ptr<Place> MariadbPlace(const std::string& server_url);

/// The URL of another database on the same server.
[[nodiscard]] std::string WithDatabase(const std::string& url, const std::string& database);

}  // namespace talm_flow::test
