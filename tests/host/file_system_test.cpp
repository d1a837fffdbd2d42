/// Text files of the reference host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/error.h"
#include "talm_flow/host/reference_host.h"

namespace talm_flow::host {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class FileSystemTest : public testing::Test {
 protected:
  FileSystemTest() {
    std::string pattern = testing::TempDir() + "talm_flow_files_XXXXXX";
    folder_ = ::mkdtemp(pattern.data());
  }
  ~FileSystemTest() override { std::filesystem::remove_all(folder_); }

  [[nodiscard]] FileSystem& files() { return host_.services().files; }
  [[nodiscard]] FileSystem& old_files() { return old_host_.services().files; }
  [[nodiscard]] std::string Path(std::string_view name) const { return folder_ + "/" + std::string(name); }

  static std::string Bytes(const std::string& file_name) {
    std::ifstream file(file_name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void Put(const std::string& file_name, std::string_view bytes) {
    std::ofstream(file_name, std::ios::binary) << bytes;
  }
  static void Write(FileSystem& to, const std::string& file_name, std::string_view text) {
    const auto stream = to.CreateTextFile(file_name);
    stream->WriteLine(text);
    stream->Close();
  }

  template <typename Call>
  static std::string MessageOf(Call call) {
    try {
      call();
    } catch (const FileError& error) {
      return error.what();
    }
    return "no error";
  }

 private:
  ReferenceHost host_;
  ReferenceHost old_host_{{.fixed_clock = {}, .text_encoding = TextEncoding::kGb18030}};
  std::string folder_;
};

TEST_F(FileSystemTest, WritesLinesInUtf8WithoutAByteOrderMark) {
  const auto stream = files().CreateTextFile(Path("a.txt"));
  stream->WriteLine("Ver:Flow_V600");
  stream->WriteLine("中𝄞é");
  stream->WriteLine("");
  stream->Close();
  EXPECT_EQ(Bytes(Path("a.txt")), "Ver:Flow_V600\r\n中𝄞é\r\n\r\n");
}

TEST_F(FileSystemTest, WritesGb18030ForOlderInstallations) {
  Write(old_files(), Path("a.txt"), "a中文€𝄞");
  EXPECT_EQ(Bytes(Path("a.txt")), "a\xD6\xD0\xCE\xC4\xA2\xE3\x94\x32\xBE\x34\r\n");
}

TEST_F(FileSystemTest, WritesLongTextsWhole) {
  std::string text;
  std::string encoded;
  for (int i = 0; i < 20'000; ++i) {
    text += i % 3 == 0 ? "x" : "中";
    encoded += i % 3 == 0 ? "x" : "\xD6\xD0";
  }
  Write(files(), Path("a.txt"), text);
  EXPECT_EQ(Bytes(Path("a.txt")), text + "\r\n");
  Write(old_files(), Path("b.txt"), text);
  EXPECT_EQ(Bytes(Path("b.txt")), encoded + "\r\n");
}

TEST_F(FileSystemTest, WritesTheTextAsItIsNulCharactersIncluded) {
  const std::string text("a\0b\n\r", 5);
  Write(files(), Path("a.txt"), text);
  EXPECT_EQ(Bytes(Path("a.txt")), text + "\r\n");
  Write(old_files(), Path("a.txt"), text);
  EXPECT_EQ(Bytes(Path("a.txt")), text + "\r\n");
}

TEST_F(FileSystemTest, ReplacesAnExistingFile) {
  Put(Path("a.txt"), "something longer than the new text");
  Write(files(), Path("a.txt"), "new");
  EXPECT_EQ(Bytes(Path("a.txt")), "new\r\n");
}

TEST_F(FileSystemTest, TakesNamesBeyondAscii) {
  Write(files(), Path("流程 é.txt"), "x");
  EXPECT_TRUE(files().FileExists(Path("流程 é.txt")));
  EXPECT_EQ(Bytes(Path("流程 é.txt")), "x\r\n");
}

TEST_F(FileSystemTest, KnowsWhichFilesThereAre) {
  EXPECT_FALSE(files().FileExists(Path("a.txt")));
  EXPECT_FALSE(files().FileExists(Path("no/folder/a.txt")));
  EXPECT_FALSE(files().FileExists(""));
  Put(Path("a.txt"), "x");
  EXPECT_TRUE(files().FileExists(Path("a.txt")));
  EXPECT_FALSE(files().FileExists(Path("a.txt") + "/b.txt"));
  EXPECT_FALSE(files().FileExists(testing::TempDir())) << "a folder is no file";
}

TEST_F(FileSystemTest, TakesNoDeviceForAFile) {
  EXPECT_FALSE(files().FileExists("/dev/null"));
  std::filesystem::create_symlink("/dev/null", Path("link.txt"));
  EXPECT_FALSE(files().FileExists(Path("link.txt")));
}

TEST_F(FileSystemTest, DeletesAFile) {
  Put(Path("a.txt"), "x");
  files().DeleteFile(Path("a.txt"));
  EXPECT_FALSE(std::filesystem::exists(Path("a.txt")));
}

TEST_F(FileSystemTest, DeletesNeitherAFolderNorWhatIsNotThere) {
  std::filesystem::create_directory(Path("folder"));
  EXPECT_THAT(MessageOf([&] { files().DeleteFile(Path("folder")); }), HasSubstr(Path("folder")));
  EXPECT_TRUE(std::filesystem::exists(Path("folder")));
  EXPECT_THAT(MessageOf([&] { files().DeleteFile(Path("a.txt")); }),
              AllOf(HasSubstr(Path("a.txt")), HasSubstr("No such file")));
}

TEST_F(FileSystemTest, KeepsAFileThatNobodyMayWrite) {
  Put(Path("a.txt"), "x");
  std::filesystem::permissions(Path("a.txt"), std::filesystem::perms::owner_read);
  EXPECT_THAT(MessageOf([&] { files().DeleteFile(Path("a.txt")); }),
              AllOf(HasSubstr(Path("a.txt")), HasSubstr("protected against writing")));
  EXPECT_EQ(Bytes(Path("a.txt")), "x");
}

TEST_F(FileSystemTest, DeletesALinkAndKeepsTheProtectedFileThatItNames) {
  Put(Path("a.txt"), "x");
  std::filesystem::permissions(Path("a.txt"), std::filesystem::perms::owner_read);
  std::filesystem::create_symlink(Path("a.txt"), Path("link.txt"));
  files().DeleteFile(Path("link.txt"));
  EXPECT_FALSE(std::filesystem::exists(Path("link.txt")));
  EXPECT_EQ(Bytes(Path("a.txt")), "x");
}

TEST_F(FileSystemTest, NamesTheFileThatCannotBeCreatedAndWhy) {
  EXPECT_THAT(MessageOf([&] { (void)files().CreateTextFile(Path("no/a.txt")); }),
              AllOf(HasSubstr(Path("no/a.txt")), HasSubstr("No such file")));
  EXPECT_THAT(MessageOf([&] { (void)files().CreateTextFile(testing::TempDir()); }), HasSubstr("Is a directory"));
  EXPECT_THROW((void)files().CreateTextFile(""), FileError);
}

TEST_F(FileSystemTest, RefusesANameWithANulInside) {
  const std::string name = Path("a.txt") + std::string("\0.txt", 5);
  Put(Path("a.txt"), "x");
  EXPECT_THROW((void)files().FileExists(name), FileError);
  EXPECT_THROW(files().DeleteFile(name), FileError);
  EXPECT_THROW((void)files().CreateTextFile(name), FileError);
  EXPECT_EQ(Bytes(Path("a.txt")), "x");
}

TEST_F(FileSystemTest, RefusesANameTooLongForTheMachine) {
  EXPECT_THAT(MessageOf([&] { (void)files().FileExists(Path(std::string(5000, 'a'))); }), HasSubstr("too long"));
  EXPECT_THROW((void)files().CreateTextFile(Path(std::string(5000, 'a'))), FileError);
}

TEST_F(FileSystemTest, TellsAFullDiskAtTheLatestWhenTheFileIsClosed) {
  const auto stream = files().CreateTextFile("/dev/full");
  stream->WriteLine("a short text that waits in the buffer");
  EXPECT_THAT(MessageOf([&] { stream->Close(); }), AllOf(HasSubstr("/dev/full"), HasSubstr("No space left")));
}

TEST_F(FileSystemTest, TellsAFullDiskWhenALongTextIsWritten) {
  const auto stream = files().CreateTextFile("/dev/full");
  EXPECT_THAT(MessageOf([&] { stream->WriteLine(std::string(1'000'000, 'x')); }), HasSubstr("No space left"));
}

TEST_F(FileSystemTest, WritesNothingIntoAClosedFile) {
  const auto stream = files().CreateTextFile(Path("a.txt"));
  stream->WriteLine("x");
  stream->Close();
  stream->Close();
  EXPECT_THROW(stream->WriteLine("y"), FileError);
  EXPECT_EQ(Bytes(Path("a.txt")), "x\r\n");
}

TEST_F(FileSystemTest, ClosesAFileThatIsLetGo) {
  files().CreateTextFile(Path("a.txt"))->WriteLine("x");
  EXPECT_EQ(Bytes(Path("a.txt")), "x\r\n");
}

TEST_F(FileSystemTest, AcceptsEveryWellFormedTextForUtf8) {
  EXPECT_NO_THROW(files().RequireEncodable("f", ""));
  EXPECT_NO_THROW(files().RequireEncodable("f", "a中𝄞\uFFFE\U0010FFFF"));
  EXPECT_NO_THROW(old_files().RequireEncodable("f", "a中文𝄞é"));
}

TEST_F(FileSystemTest, TellsWhichByteNoEncodingCanHoldAndWhereItStands) {
  const std::string text = "中文\xFFx";
  EXPECT_EQ(MessageOf([&] { files().RequireEncodable("out.txt", text); }),
            "the file \"out.txt\": UTF-8 cannot hold the byte 0xFF at character 3 of the text");
  EXPECT_EQ(MessageOf([&] { old_files().RequireEncodable("out.txt", text); }),
            "the file \"out.txt\": GB18030 cannot hold the byte 0xFF at character 3 of the text");
  EXPECT_THROW(files().RequireEncodable("f", "\xED\xA0\x80"), FileError) << "half a surrogate pair";
  EXPECT_THROW(files().RequireEncodable("f", "x\xC0\xAF"), FileError) << "an overlong form";
  EXPECT_THROW(files().RequireEncodable("f", "x\xE4\xB8"), FileError) << "a torn character";
}

TEST_F(FileSystemTest, TouchesNoFileWhenItIsAskedWhatTheEncodingHolds) {
  Put(Path("a.txt"), "old");
  EXPECT_THROW(files().RequireEncodable(Path("a.txt"), "\xFF"), FileError);
  EXPECT_EQ(Bytes(Path("a.txt")), "old");
  files().RequireEncodable(Path("b.txt"), "x");
  EXPECT_FALSE(std::filesystem::exists(Path("b.txt")));
}

TEST_F(FileSystemTest, WritesOrNamesEveryPrivateCharacterInGb18030) {
  // Which of these characters the encoding has differs from one edition of it to the next.
  for (unsigned code_point = 0xE000; code_point < 0xF900; ++code_point) {
    const std::string character = {static_cast<char>(0xE0 | (code_point >> 12U)),
                                   static_cast<char>(0x80 | ((code_point >> 6U) & 0x3FU)),
                                   static_cast<char>(0x80 | (code_point & 0x3FU))};
    const std::string message = MessageOf([&] { old_files().RequireEncodable("f", "中" + character); });
    if (message == "no error") continue;
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string number = "U+";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) number += kHexDigits[(code_point >> shift) & 0xFU];
    ASSERT_EQ(message, "the file \"f\": GB18030 cannot hold the character " + number + " (" + character +
                           ") at character 2 of the text");
  }
  EXPECT_NO_THROW(old_files().RequireEncodable("f", "\uE000\uF8FF"));
}

TEST_F(FileSystemTest, WritesNoLineThatTheEncodingCannotHold) {
  const auto stream = files().CreateTextFile(Path("a.txt"));
  stream->WriteLine("x");
  EXPECT_THROW(stream->WriteLine("y\xFF"), FileError);
  stream->Close();
  EXPECT_EQ(Bytes(Path("a.txt")), "x\r\n");
}

}  // namespace
}  // namespace talm_flow::host
