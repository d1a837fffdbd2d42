#pragma once

/// Writing one value into one input unit of a form record, by the unit's type.

#include <string_view>

#include "db/reference.h"
#include "engine/step.h"
#include "talm_flow/host/form_service.h"

namespace talm_flow::commands {

/// How values of a type are written.
enum class UnitGroup {
  kNone,      ///< not at all
  kText,      ///< cut to the length of a text field
  kNumber,    ///< when the value is numeric
  kTime,      ///< when the value is a date
  kLongText,  ///< whole
  kFile,      ///< the files that the value lists are copied
  kPicture    ///< the picture row that the value names is copied; the picture itself is shared
};

[[nodiscard]] UnitGroup GroupOfType(std::string_view type);

/// Writes the value into the unit of the record. A value that does not fit the unit's type writes nothing; an unknown
/// type writes nothing. The old files of a file unit are removed in every case.
void WriteUnit(const engine::Step& step, const db::RecordReference& target, const host::InputUnit& unit,
               std::string_view value);

}  // namespace talm_flow::commands
