#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/export.h"

namespace talm_flow::host {

/// A text file open for writing; closed by its destruction.
class TALM_FLOW_API TextStream {
 public:
  virtual ~TextStream() = default;
  /// Writes the text and a line end (CR LF). @throws FileError
  virtual void WriteLine(std::string_view text) = 0;
  /// Ends the writing and makes sure that everything was written. @throws FileError
  virtual void Close() = 0;
};

/// The files of the host's machine. Everything that fails raises `FileError` with the file's name and the reason.
class TALM_FLOW_API FileSystem {
 public:
  virtual ~FileSystem() = default;
  /// @throws FileError when the encoding in which files are written cannot hold the text; nothing is touched.
  virtual void RequireEncodable(std::string_view file_name, std::string_view text) = 0;
  /// Whether there is a file of that name.
  [[nodiscard]] virtual bool FileExists(std::string_view file_name) = 0;
  /// Removes a file that exists. @throws FileError
  virtual void DeleteFile(std::string_view file_name) = 0;
  /// Creates the file, replacing what is there. @throws FileError
  [[nodiscard]] virtual std::unique_ptr<TextStream> CreateTextFile(std::string_view file_name) = 0;
};

}  // namespace talm_flow::host
