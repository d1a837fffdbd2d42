#pragma once

/// @file
/// Class `Command`: starting, walking, resuming and ending flow instances; the commands; variables and expressions.
///
/// An object keeps nothing between calls but the references to the host's services; it may be created per call or kept.
/// One thread at a time; objects of different threads are independent when their connections and services are.
/// Every operation may raise any `FlowError`; none catches one, and rows written before an error stay. Wrap calls in a
/// unit of work (talm_flow/host/unit_of_work.h) for all or nothing.
///
/// Loosely typed arguments: whole-number arguments go into statements as they were given, bare; a text that is no
/// number therefore makes the statement fail with the database's error. Texts go in quoted.

#include <cstdint>
#include <string>
#include <vector>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/invocation_context.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// Starts, resumes and ends flow instances, runs commands, and evaluates expressions.
class TALM_FLOW_API Command {
 public:
  /// @param services  the host's services; what they refer to outlives this object.
  explicit Command(const host::Services& services) : services_(services) {}

  // ---- Flow start, walk and end -----------------------------------------------------------------------------------

  /// Starts one instance of flow `FlowID` on document `TableID`/`DataID`, runs it as far as it goes and removes it
  /// again when nothing of it waits. A flow without a step 1 (an unknown flow too) does nothing.
  /// @throws NestingError  the definition nests without end; DatabaseError and the commands' own errors.
  void FlowExecute(Connection& ConnDB, const Value& FlowID, const Value& TableID, const Value& DataID,
                   const Value& Operator, const Value& IpAddress, const Value& OtherTableID, const Value& OtherDataID);

  /// Resumes an instance below step `FlowNo`, whose wait is over: runs the step's children and, when the instance then
  /// has nothing open, climbs to the parent instance and goes on below the step that started it. An instance that does
  /// not exist: nothing happens. Never removes an instance; `EndFlow` does.
  void FlowExecuteAfter(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo);

  /// Runs one step: its command, then, unless the command waits or refuses, its children with all below them. A step
  /// without a row, or with an unknown command name, runs no command and goes on to its children.
  void FlowExecuteByExecuteID(InvocationContext& context);

  /// Runs the children of the step `FlowNo`, one after another, each with its whole subtree, in ascending `ID` order;
  /// at most 10000 children.
  void NextCommand(InvocationContext& context);

  /// Removes the whole tree of the instance (instance rows, run counters, variables) when nothing in it waits: no child
  /// link, no open approval or fill-in, no live timer. Otherwise, and for an unknown instance, changes nothing.
  void EndFlow(Connection& ConnDB, const Value& ExecuteID);

  /// Reads an instance. @returns whether it exists; when not, the out-arguments are left as they are.
  [[nodiscard]] bool ExecuteIDExists(Connection& ConnDB, const Value& ExecuteID, Value& RootExecuteID, Value& TableID,
                                     Value& DataID, Value& FlowID, Value& Operator, Value& IpAddress,
                                     Value& OtherTableID, Value& OtherDataID);

  /// A step's parameter as stored. @returns the empty text when there is none. @throws ConversionError  it is Null.
  [[nodiscard]] std::string GetParameterData(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                             const Value& ParameterName);

  // ---- Run counters -----------------------------------------------------------------------------------------------

  /// @returns whether the step of the instance has run 200 times or more.
  [[nodiscard]] bool IsExecuteOverTimes(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo);

  /// Counts one more run of the step.
  void AddExecuteTimes(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo);

  // ---- Tasks ------------------------------------------------------------------------------------------------------

  /// Marks an approval task finished with the record that the approver filled in (0 for none).
  void ChangeAppStatusToFinish(Connection& ConnDB, const Value& DataAppID, const Value& AppDataID);

  /// Marks a fill-in task finished.
  void ChangeInUnitSubStatusToFinish(Connection& ConnDB, const Value& InUnitSubID);

  /// @returns whether any task of the task's approval group is still open, itself included; False for a task without a
  /// group and for an unknown one.
  [[nodiscard]] bool NotAppExists(Connection& ConnDB, const Value& DataAppID);

  /// The notice information of an approval task; the empty text for an unknown task and where it is Null.
  [[nodiscard]] std::string GetNoticInfFromDataApp(Connection& ConnDB, const Value& DataAppID);
  /// As `GetNoticInfFromDataApp`, of a fill-in task.
  [[nodiscard]] std::string GetNoticInfFromInUnitSub(Connection& ConnDB, const Value& InUnitSubID);
  /// As `GetNoticInfFromDataApp`, of an attention task.
  [[nodiscard]] std::string GetNoticInfFromDataAtt(Connection& ConnDB, const Value& DataAttID);

  /// The nearest approval step ("C_2") above a step, the step itself not considered; 0 when there is none.
  /// @throws NestingError  the parents form a cycle.
  [[nodiscard]] std::int32_t GetFlowNoApprov(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// As `GetFlowNoApprov`, looking for the command "C_98" (sic): below a fill-in step it therefore finds nothing.
  [[nodiscard]] std::int32_t GetFlowNoInUnitSub(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  // ---- Child flows ------------------------------------------------------------------------------------------------

  /// @returns whether the one instance has no open approval, no open fill-in and no child that still hangs on it.
  /// Timers are not looked at.
  [[nodiscard]] bool ChildFlowFinish(Connection& ConnDB, const Value& ExecuteID);

  /// Reads the link of a child instance to its parent. @returns whether there is one; when not, the three
  /// out-arguments become the empty text.
  [[nodiscard]] bool GetParentFlowParam(Connection& ConnDB, const Value& ChildExecuteID, Value& ParentExecuteID,
                                        Value& ParentFlowNo, Value& ExecuteParent);

  // ---- Notices and transfer ---------------------------------------------------------------------------------------

  /// Writes one flow notice (kind 2) for one receiver.
  void FlowNotice(Connection& ConnDB, const Value& TableID, const Value& DataID, const Value& Recver,
                  const Value& NoticeTitle);

  /// Forwards a document to the ","-separated receivers (empty ones included): a notice, a receipt and a log row each.
  /// Nothing happens when the host does not allow the transfer.
  void DataTran(Connection& ConnDB, const Value& TableID, const Value& DataID, const Value& TranName,
                const Value& RecStr, const Value& Remark);

  // ---- Variables, expressions, conditions -------------------------------------------------------------------------

  /// The scope of a variable's name: 2 for the prefix "Private_" (one instance), 3 for "Global_" (the whole system), 1
  /// for any other (one tree of instances). Case-sensitive.
  [[nodiscard]] std::int32_t GetVarTypeByName(const Value& VarName);

  /// Writes a variable in the scope that its name selects.
  void UpdateVariableValue(Connection& ConnDB, const Value& ExecuteID, const Value& RootExecuteID,
                           const Value& VariableName, const Value& VarStr);

  /// The value of an expression. Errors of the expression come back as texts ("括号不完整", "除数为0",
  /// "变量不是数字", "缺少运算数"). A variable without a row reads as the empty text.
  /// @throws SubscriptError  more than 101 tokens; OverflowError  arithmetic out of range; NestingError  rewritten more
  /// than 1,000 times; ConversionError  a variable's stored value is Null.
  [[nodiscard]] std::string GetVariableValue(Connection& ConnDB, const Value& ExecuteID, const Value& RootExecuteID,
                                             const Value& VariableName, const Value& TableID, const Value& DataID);

  /// Splits a condition text into its lower-cased tokens. Pure, never fails.
  void ExpressToArr(const Value& ExpressStr, std::vector<std::string>& ExpressArr);

  // ---- Reference strings (pure) -----------------------------------------------------------------------------------

  /// "TableID:" n ",DataID:" m in either order. @returns whether it is one; the out-arguments are set only then.
  /// @throws OverflowError  the table number is outside 16 bits.
  [[nodiscard]] bool SeparateTableIDAndDataID(const Value& DataStr, Value& TableID, Value& DataID);

  /// "TableID:" n, or n alone.
  [[nodiscard]] bool SeparateTableID(const Value& TableIDStr, Value& TableID);

  /// "inunitid:" code, or the code alone; `InUnitID` becomes the code in upper case, or the empty text on failure.
  [[nodiscard]] bool SeparateInUnitID(const Value& InUnitStr, Value& InUnitID);

  /// "fileid:" n; a bare number is refused.
  [[nodiscard]] bool SeparateFileID(const Value& FileIDStr, Value& FileID);

  /// "tablepicdataid:" n; a bare number is refused.
  [[nodiscard]] bool SeparateTablePicDataID(const Value& TablePicDataIDStr, Value& TablePicDataID);

  // ---- The commands -----------------------------------------------------------------------------------------------
  // Each reads its parameters of step `FlowNo` and acts; what each takes and writes is told in docs/commands.md.
  // A command whose inputs do not fit does nothing and reports nothing.

  /// Sends a form record to receivers: a notice and a receipt row each.
  void C_1(InvocationContext& context);
  /// Approval task: one `DataApp` row per approver; the branch waits.
  void C_2(InvocationContext& context);
  /// Attention task: one `DataAtt` row per person; the flow goes on.
  void C_3(InvocationContext& context);
  /// Writes a value into one input unit of a form record, files and pictures included.
  void C_4(InvocationContext& context);
  /// As `C_4` without the picture types.
  void C_5(InvocationContext& context);
  /// Grants or revokes the right of people to edit a record.
  void C_6(InvocationContext& context);
  /// Allows or forbids adding records to a form table.
  void C_7(InvocationContext& context);
  /// Sets whether a record may be transferred.
  void C_8(InvocationContext& context);
  /// Sets whether a record may be answered, and with which form.
  void C_9(InvocationContext& context);
  /// Has the host operate on a form table in the name of the system.
  void C_10(InvocationContext& context);
  /// Condition: compares two values. @returns whether the step's children run.
  bool C_11(InvocationContext& context);
  /// Deletes the approval-form records of a record.
  void C_12(InvocationContext& context);
  /// Deletes the answers to a record and their form records.
  void C_13(InvocationContext& context);
  /// Deletes the attention-form records of a record.
  void C_14(InvocationContext& context);
  /// Repeating timer for a step.
  void C_15(InvocationContext& context);
  /// Jump: runs another step in place of this step's children.
  void C_16(InvocationContext& context);
  /// Removes the waiting rows of a step.
  void C_17(InvocationContext& context);
  /// Starts a child flow. @returns whether the parent goes on at once.
  bool C_18(InvocationContext& context);
  /// Arithmetic on two values into a variable.
  void C_19(InvocationContext& context);
  /// Queues a short message per receiver.
  void C_20(InvocationContext& context);
  /// Queues an e-mail per address.
  void C_21(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_22(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_23(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_24(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_25(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_26(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_27(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_28(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_29(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_30(InvocationContext& context);
  /// The document's record reference into a variable.
  void C_31(InvocationContext& context);
  /// The document's table reference into a variable.
  void C_32(InvocationContext& context);
  /// The latest approval-form record of the tree, as a table reference.
  void C_33(InvocationContext& context);
  /// The latest approval-form record of the tree, as a record reference.
  void C_34(InvocationContext& context);
  /// The second document's table reference, when the host gives the table kind 1.
  void C_35(InvocationContext& context);
  /// The second document's record reference, when the host gives the table kind 1.
  void C_36(InvocationContext& context);
  /// The second document's table reference, when the host gives the table kind 3.
  void C_37(InvocationContext& context);
  /// The second document's record reference, when the host gives the table kind 3.
  void C_38(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_39(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_40(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_41(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_42(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_43(InvocationContext& context);
  /// Assigns an evaluated value to a variable.
  void C_44(InvocationContext& context);
  /// The table of an evaluated record reference.
  void C_45(InvocationContext& context);
  /// An evaluated record reference in its normal spelling.
  void C_46(InvocationContext& context);
  /// The value of an input unit of a record.
  void C_47(InvocationContext& context);
  /// An evaluated date in the general date-and-time form.
  void C_48(InvocationContext& context);
  /// An evaluated record reference that the host accepts.
  void C_49(InvocationContext& context);
  /// An evaluated table reference that the host accepts.
  void C_50(InvocationContext& context);
  /// An evaluated input-unit code in upper case.
  void C_51(InvocationContext& context);
  /// An evaluated file reference in its normal spelling.
  void C_52(InvocationContext& context);
  /// An evaluated picture reference in its normal spelling.
  void C_53(InvocationContext& context);
  /// The names that an evaluated person expression stands for.
  void C_54(InvocationContext& context);
  /// Assigns an evaluated value to a variable when it is numeric.
  void C_55(InvocationContext& context);
  /// Assigns an evaluated value to a variable when it is numeric.
  void C_56(InvocationContext& context);
  /// Assigns an evaluated value to a variable when it is numeric.
  void C_57(InvocationContext& context);
  /// Assigns an evaluated value to a variable when it is numeric.
  void C_58(InvocationContext& context);
  /// An evaluated text without the blanks at its ends.
  void C_59(InvocationContext& context);
  /// The current date and time into a variable.
  void C_60(InvocationContext& context);
  /// The current date into a variable.
  void C_61(InvocationContext& context);
  /// The instance's operator into a variable.
  void C_62(InvocationContext& context);
  /// The instance's client address into a variable.
  void C_63(InvocationContext& context);
  /// An evaluated text in upper case.
  void C_64(InvocationContext& context);
  /// An evaluated text in lower case.
  void C_65(InvocationContext& context);
  /// "1" when the evaluated value is numeric text, else "0".
  void C_66(InvocationContext& context);
  /// "1" when the evaluated value is date text, else "0".
  void C_67(InvocationContext& context);
  /// "1" when the latest approval of the approval step above has `Status` 3, else "0".
  void C_68(InvocationContext& context);
  /// The number of ","-separated items of an evaluated text.
  void C_69(InvocationContext& context);
  /// Hands a value back to the parent flow.
  void C_70(InvocationContext& context);
  /// The absolute value of an evaluated number.
  void C_71(InvocationContext& context);
  /// An evaluated number rounded to the nearest whole number.
  void C_72(InvocationContext& context);
  /// The parent does not go on when this child flow ends.
  void C_73(InvocationContext& context);
  /// The parent goes on when this child flow ends.
  void C_74(InvocationContext& context);
  /// Assigns a text as stored to a variable.
  void C_75(InvocationContext& context);
  /// Copies all input units of one form record into another.
  void C_76(InvocationContext& context);
  /// Finds the newest record of a form table that meets a condition.
  void C_77(InvocationContext& context);
  /// "1" when a list has an item, else "0".
  void C_78(InvocationContext& context);
  /// Reads one field of the records of a form table that meet a condition.
  void C_79(InvocationContext& context);
  /// Writes an entry into the operation log as the system.
  void C_80(InvocationContext& context);
  /// The year of a date into a variable.
  void C_81(InvocationContext& context);
  /// The month of a date into a variable.
  void C_82(InvocationContext& context);
  /// The day of a date into a variable.
  void C_83(InvocationContext& context);
  /// The hour of a date into a variable.
  void C_84(InvocationContext& context);
  /// The minute of a date into a variable.
  void C_85(InvocationContext& context);
  /// Runs a step once at a moment.
  void C_86(InvocationContext& context);
  /// One item of a list split at a separator.
  void C_87(InvocationContext& context);
  /// One item of a ","-separated list.
  void C_88(InvocationContext& context);
  /// Deletes the open approvals of a record and their waiting rows.
  void C_89(InvocationContext& context);
  /// An HTML link to a record's display page into a variable.
  void C_90(InvocationContext& context);
  /// An HTML link to a web page with record parameters into a variable.
  void C_91(InvocationContext& context);
  /// The day of the week of a date, Monday 1 to Sunday 7.
  void C_92(InvocationContext& context);
  /// A text with occurrences of another replaced.
  void C_93(InvocationContext& context);
  /// A piece of a text.
  void C_94(InvocationContext& context);
  /// The length of a text in characters.
  void C_95(InvocationContext& context);
  /// The position of a text within another.
  void C_96(InvocationContext& context);
  /// Fill-in task: one `InUnitSub` row per person; the branch waits.
  void C_97(InvocationContext& context);
  /// "1" when the latest fill-in of the step named "C_98" above has `Status` 3, else "0".
  void C_98(InvocationContext& context);

 private:
  host::Services services_;
};

}  // namespace talm_flow
