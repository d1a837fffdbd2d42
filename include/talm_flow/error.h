#pragma once

/// @file
/// The errors that reach a caller. The component raises and never catches them; an adapter turns its driver's error
/// into a `DatabaseError` with the driver's own message.

#include <stdexcept>
#include <string>
#include <utility>

#include "talm_flow/export.h"

namespace talm_flow {

/// Base of every error that this library raises on purpose.
class TALM_FLOW_API FlowError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  /// The class name, as it appears in `"data": {"kind": ...}` of a remote call.
  [[nodiscard]] virtual const char* Kind() const noexcept = 0;
};

/// A statement, a connection or the reading of a row failed. `what()` is the database's own message, unchanged.
class TALM_FLOW_API DatabaseError : public FlowError {
 public:
  /// @param message    the database's own message, unchanged.
  /// @param statement  the text that failed, when one did.
  /// @param state      the engine's error code in its own form, when it gave one.
  explicit DatabaseError(const std::string& message, std::string statement = {}, std::string state = {})
      : FlowError(message), statement_(std::move(statement)), state_(std::move(state)) {}
  [[nodiscard]] const char* Kind() const noexcept override { return "DatabaseError"; }
  /// The text of the failing statement as the component handed it over; empty when no statement was involved.
  [[nodiscard]] const std::string& Statement() const noexcept { return statement_; }
  /// The engine's error code in its own form (an SQLSTATE, a result code); empty when it gave none.
  [[nodiscard]] const std::string& State() const noexcept { return state_; }

 private:
  std::string statement_;
  std::string state_;
};

/// A value has no form in the type that was asked for: a text that is no number, Null where a text is needed.
class TALM_FLOW_API ConversionError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "ConversionError"; }
};

/// A number or a date lies outside the range of its type, or arithmetic gave no finite number.
class TALM_FLOW_API OverflowError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "OverflowError"; }
};

/// An expression has more than 101 tokens.
class TALM_FLOW_API SubscriptError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "SubscriptError"; }
};

/// A definition nests without end: a descent of more than 32,767 levels below the flow's start or the last jump, child
/// flows started more than 1,000 deep inside each other, an expression rewritten more than 1,000 times, or a structure
/// query that met a cyclic tree.
class TALM_FLOW_API NestingError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "NestingError"; }
};

/// A file could not be written, or cannot hold a text in the encoding chosen for it.
class TALM_FLOW_API FileError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "FileError"; }
};

/// An argument is malformed in itself: a definition text's parameter line without ":", an unusable URL.
class TALM_FLOW_API ArgumentError : public FlowError {
 public:
  using FlowError::FlowError;
  [[nodiscard]] const char* Kind() const noexcept override { return "ArgumentError"; }
};

}  // namespace talm_flow
