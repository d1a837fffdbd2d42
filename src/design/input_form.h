#pragma once

/// The form in which a flow's input parameters are filled in.
///
/// Table, or plain list when another format than 1 is asked for; a flow without input parameters gives the empty text:
///
///   <table class="InputParameters">            <ul class="InputParameters">
///   <tr><th scope="row">LABEL</th>             <li>LABEL WIDGET</li>
///   <td>WIDGET</td></tr>                       ...
///   </table>                                   </ul>
///
/// with CR LF behind the opening tag, every row and the closing tag. N below is "InputParameter_" + the position in the
/// list, from 1; ID is ` id="N" name="N" data-kind="KIND"`. KIND lets a page attach pickers and checks.
///
///   Sort  KIND      WIDGET
///   1     text      <input type="text" ID value="...">            any other Sort too
///   2     number    <input type="text" ID inputmode="decimal" value="...">
///   3     date      <input type="text" ID autocomplete="off" value="...">
///   4     longtext  <textarea ID rows="4" cols="40">...</textarea>
///   5     choice    <select ID><option value=""></option> and <option value="A">A</option> for every option</select>
///   6     choices   <span id="N" role="group" aria-labelledby="N_Title" data-kind="choices"> and for every option
///                   <input type="checkbox" id="N_1" name="N" value="A"><label for="N_1">A</label></span>
///   7     yesno     <select ID><option value="0">否</option><option value="1">是</option></select>
///   8     person    <input type="text" ID value="...">
///   9     record    <input type="text" ID value="...">
///
/// LABEL is <label for="N">title</label>; for a group of boxes, which have labels of their own, <span
/// id="N_Title">title</span>. What is chosen carries " selected" or " checked". Numbers and dates are plain text inputs
/// so that a browser does not drop what it takes for no number or date.
///
/// Titles, options and values are escaped as HTML and nothing else: what comes back from the page is what was put in.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] std::string DisplayInputParameter(db::Session& session, const Value& flow_id, const Value& display_format,
                                                const Value& values);

}  // namespace talm_flow::design
