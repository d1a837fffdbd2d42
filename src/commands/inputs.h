#pragma once

/// How task and data commands take their parameters: each is read once, in the order of the calls here, and one that
/// does not fit gives nothing, whereupon the command ends quietly.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "db/reference.h"
#include "engine/step.h"
#include "talm_flow/host/form_service.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {

/// What a text is cut to before it is stored, in characters.
inline constexpr std::size_t kMaxNotice = 100;  ///< titles and information of notices
inline constexpr std::size_t kMaxButton = 50;
inline constexpr std::size_t kMaxLogEntry = 499;
inline constexpr std::size_t kMaxTextField = 4000;

/// The user in whose name a flow acts when it acts for nobody.
inline constexpr std::string_view kSystemUser = "系统";

/// Parameter k as a record reference, whether or not the host knows the record.
[[nodiscard]] std::optional<db::RecordReference> Record(const engine::Step& step, int k);

/// Parameter k as a reference of a record that the host accepts.
[[nodiscard]] std::optional<db::RecordReference> AcceptedRecord(const engine::Step& step, int k);

/// Parameter k as a reference of a form table, whether or not the host knows the table.
[[nodiscard]] std::optional<std::int32_t> Table(const engine::Step& step, int k);

/// Parameter k as a reference of a form table that the host accepts.
[[nodiscard]] std::optional<std::int32_t> AcceptedTable(const engine::Step& step, int k);

/// The input unit of a form that a text names by its code or its reference.
[[nodiscard]] std::optional<host::InputUnit> FindUnit(const engine::Step& step, std::int32_t table_id,
                                                      std::string_view name);

/// Parameter k as a flag: "1" or "0" as stored, else by its value; everything but "1" is no.
[[nodiscard]] bool Flag(const engine::Step& step, int k);

/// Parameter k as a whole number without its sign: as stored when it is numeric, else by its value; 0 when that is not
/// numeric either. @throws OverflowError  it does not fit in 32 bits.
[[nodiscard]] std::int32_t Count(const engine::Step& step, int k);

/// The value of parameter k; the stored text itself when the value is empty.
[[nodiscard]] std::string EvaluatedOrStored(const engine::Step& step, int k);

/// The first `count` characters of the value of parameter k.
[[nodiscard]] std::string EvaluatedAndCut(const engine::Step& step, int k, std::size_t count);

/// A unit's code as a piece of a statement: bare when it is numeric text, else a literal.
[[nodiscard]] std::string UnitPiece(const engine::Step& step, std::string_view code);

/// Calls `use` with each ","-separated item of the list in order, without the blanks around it; empty items are left
/// out.
template <typename Use>
void ForEachItem(std::string_view list, Use use) {
  for (const std::string_view piece : Split(list, ",")) {
    const std::string_view item = TrimBlanks(piece);
    if (!item.empty()) use(item);
  }
}

}  // namespace talm_flow::commands
