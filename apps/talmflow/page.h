#pragma once

/// A flow's drawing as a page that stands alone.
///
/// The drawing and the script arrays are the component's own. Captions stand in the drawing as they are stored, so the
/// page trusts nothing of it:
///   - A content security policy admits the page's own script, the script arrays and the inline handlers that the
///     stored steps call for, each by its hash, and nothing else: no other script, no style, nothing loaded or sent.
///   - The drawing travels as data, which no text can end early, and is put into the page through an inert fragment, out
///     of which everything that might lead away or pose as a part of the page has been taken.
///   - A handler is admitted as it ought to be, made here from the stored step, not as it was found in the drawing.
///   - Names reach the script arrays and the drawing with quotes and the like already made safe, because the component
///     puts them in as they are. Names without such characters are not touched.

#include <cstdint>
#include <string>

#include "workspace.h"

namespace talm_flow::program {

/// @param editable  whether a click on a step shows its parameters in a form.
[[nodiscard]] std::string MakePage(Workspace& workspace, std::int64_t flow, bool editable);

}  // namespace talm_flow::program
