#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "component/component_host.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

constexpr const char16_t* kClasses[] = {u"TALM_Flow.Command", u"TALM_Flow.Construction", u"TALM_Flow.InOut",
                                        u"TALM_Flow.Name", u"TALM_Flow.Connection"};
constexpr const char* kNameClassText = "{5B1E3A70-6C4D-4F0E-9A21-3D87C25FE004}";

std::string Content(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Write(const std::string& path, std::string_view bytes) {
  std::filesystem::remove_all(path);
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string FileText(std::string_view library, std::string_view class_id = kNameClassText) {
  return "talm_flow class 1\nname=TALM_Flow.Name\nclass=" + std::string(class_id) +
         "\nlibrary=" + std::string(library) + "\n";
}

std::size_t FileCount(const std::string& folder) {
  using Entries = std::filesystem::directory_iterator;
  return static_cast<std::size_t>(std::distance(Entries(folder), Entries()));
}

class RegistrationTest : public ComponentTest {
 protected:
  /// What creating an object of a class gives: the code, and the message in `message_`.
  TalmResult Creating(const char16_t* class_name) {
    TalmDispatch* object = nullptr;
    TalmText message = nullptr;
    const auto code = TalmCreateObject(class_name, &object, &message);
    message_ = Utf8(message);
    TalmFreeText(message);
    EXPECT_EQ(object == nullptr, TALM_FAILED(code));
    const Object owned(object);
    return code;
  }
  TalmResult CreatingName() { return Creating(u"TALM_Flow.Name"); }

  std::string folder_ = data().File("talm_flow/classes");
  std::string message_;
};

TEST_F(RegistrationTest, EachClassHasAFileOfItsOwn) {
  EXPECT_EQ(FileCount(folder_), 5U);
  const auto library = std::filesystem::canonical(LibraryPath()).string();
  EXPECT_EQ(Content(ClassFile("TALM_Flow.Name")), FileText(library));
}

TEST_F(RegistrationTest, EveryClassIsCreatedByItsName) {
  for (const auto* const name : kClasses) EXPECT_EQ(Creating(name), TALM_OK) << Utf8(name) << message_;
}

TEST_F(RegistrationTest, RegisteringAgainIsAllowed) {
  EXPECT_EQ(library().Register(), TALM_OK);
  EXPECT_EQ(FileCount(folder_), 5U);
}

TEST_F(RegistrationTest, UnregisteringRemovesTheFiles) {
  EXPECT_EQ(library().Unregister(), TALM_OK);
  EXPECT_EQ(FileCount(folder_), 0U);
  EXPECT_EQ(CreatingName(), TALM_CLASS_NOT_REGISTERED);
  EXPECT_THAT(message_, HasSubstr("TALM_Flow.Name is not registered"));
  EXPECT_EQ(library().Unregister(), TALM_OK);
}

TEST_F(RegistrationTest, UnregisteringLeavesTheFilesOfAnotherLibrary) {
  Write(ClassFile("TALM_Flow.Name"), FileText("/opt/other/libtalm_flow.so"));
  EXPECT_EQ(library().Unregister(), TALM_OK);
  EXPECT_EQ(FileCount(folder_), 1U);
  EXPECT_EQ(Content(ClassFile("TALM_Flow.Name")), FileText("/opt/other/libtalm_flow.so"));
}

TEST_F(RegistrationTest, WithoutADataFolderTheHomeFolderHasIt) {
  const TemporaryFolder home;
  for (const std::optional<std::string>& value : {std::optional<std::string>(), {""}, {"relative/data"}}) {
    const Setting data("XDG_DATA_HOME", value);
    const Setting set_home("HOME", home.File(""));
    EXPECT_EQ(library().Register(), TALM_OK);
    EXPECT_EQ(CreatingName(), TALM_OK) << message_;
    EXPECT_EQ(FileCount(home.File(".local/share/talm_flow/classes")), 5U);
    EXPECT_EQ(library().Unregister(), TALM_OK);
  }
}

TEST_F(RegistrationTest, WithoutAnyFolderItFails) {
  const Setting data("XDG_DATA_HOME", "relative");
  const Setting home("HOME", std::nullopt);
  std::string message;
  EXPECT_EQ(library().Register(message), TALM_CANNOT_WRITE_REGISTRATION);
  EXPECT_THAT(message, HasSubstr("neither XDG_DATA_HOME nor HOME is an absolute path"));
  EXPECT_EQ(CreatingName(), TALM_CANNOT_READ_REGISTRATION);
  EXPECT_FALSE(std::filesystem::exists("relative"));
}

TEST_F(RegistrationTest, AFolderThatCannotBeMadeIsTold) {
  Write(data().File("file"), "");
  const Setting setting("XDG_DATA_HOME", data().File("file"));
  std::string message;
  EXPECT_EQ(library().Register(message), TALM_CANNOT_WRITE_REGISTRATION);
  EXPECT_THAT(message, HasSubstr("Not a directory"));
}

TEST_F(RegistrationTest, WhenOneClassCannotBeWrittenNoneIs) {
  EXPECT_EQ(library().Unregister(), TALM_OK);
  std::filesystem::create_directories(ClassFile("TALM_Flow.InOut") + "/in_the_way");
  Write(ClassFile("TALM_Flow.Command"), "not a registration");
  std::string message;
  EXPECT_EQ(library().Register(message), TALM_CANNOT_WRITE_REGISTRATION);
  EXPECT_THAT(message, HasSubstr("TALM_Flow.InOut.class"));
  // The folder in the way is all that is left.
  EXPECT_EQ(FileCount(folder_), 1U);
}

TEST_F(RegistrationTest, WhenOneClassCannotBeWrittenTheOthersStayAsTheyWere) {
  std::filesystem::remove(ClassFile("TALM_Flow.InOut"));
  std::filesystem::create_directories(ClassFile("TALM_Flow.InOut") + "/in_the_way");
  auto other = FileText("/opt/other/libtalm_flow.so");
  other.replace(other.find("TALM_Flow.Name"), 14, "TALM_Flow.Command");
  Write(ClassFile("TALM_Flow.Command"), other);
  EXPECT_EQ(library().Register(), TALM_CANNOT_WRITE_REGISTRATION);
  EXPECT_EQ(Content(ClassFile("TALM_Flow.Command")), other);
  EXPECT_EQ(FileCount(folder_), 5U);
}

TEST_F(RegistrationTest, FilesThatSayNothingUsefulAreRefused) {
  const auto good = FileText(LibraryPath());
  const std::vector<std::pair<std::string, std::string>> hostile = {
      {"", "no registration file"},
      {good.substr(0, good.size() - 1), "no registration file"},
      {good + "more=1\n", "no registration file"},
      {"talm_flow class 2" + good.substr(17), "no registration file"},
      {FileText("libtalm_flow.so"), "no registration file"},
      {FileText("../libtalm_flow.so"), "no registration file"},
      {FileText(LibraryPath() + std::string("\0x", 2)), "no registration file"},
      {FileText(LibraryPath(), "{5B1E3A70}"), "no registration file"},
      {FileText(LibraryPath(), "{5b1e3a70-6c4d-4f0e-9a21-3d87c25fe004}"), "no registration file"},
      {FileText(LibraryPath(), "(5B1E3A70-6C4D-4F0E-9A21-3D87C25FE004)"), "no registration file"},
      {"\x7F"
       "ELF\x02\x01",
       "no registration file"},
      {std::string(1 << 20, 'x'), "it is too large"},
      {"talm_flow class 1\nname=TALM_Flow.InOut" + good.substr(good.find("\nclass=")), "it is that of another class"},
  };
  for (const auto& [bytes, reason] : hostile) {
    Write(ClassFile("TALM_Flow.Name"), bytes);
    EXPECT_EQ(CreatingName(), TALM_BAD_REGISTRATION) << bytes.substr(0, 200);
    EXPECT_THAT(message_, HasSubstr(reason));
  }
}

TEST_F(RegistrationTest, AFileThatOthersMayWriteIsRefused) {
  for (const auto mode : {0666, 0664}) {
    ASSERT_EQ(chmod(ClassFile("TALM_Flow.Name").c_str(), static_cast<mode_t>(mode)), 0);
    EXPECT_EQ(CreatingName(), TALM_BAD_REGISTRATION);
    EXPECT_THAT(message_, HasSubstr("others may write it"));
  }
}

TEST_F(RegistrationTest, WhatIsNoFileIsRefusedWithoutWaiting) {
  const auto path = ClassFile("TALM_Flow.Name");
  std::filesystem::remove(path);
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(CreatingName(), TALM_BAD_REGISTRATION);
  EXPECT_THAT(message_, HasSubstr("no regular file"));
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(CreatingName(), TALM_BAD_REGISTRATION);
}

TEST_F(RegistrationTest, ALibraryThatIsGoneIsNamed) {
  Write(ClassFile("TALM_Flow.Name"), FileText(data().File("gone.so")));
  EXPECT_EQ(CreatingName(), TALM_LIBRARY_NOT_FOUND);
  EXPECT_THAT(message_, HasSubstr("gone.so"));
}

TEST_F(RegistrationTest, AFileThatIsNoLibraryIsNamed) {
  Write(data().File("text.so"), "no library");
  Write(ClassFile("TALM_Flow.Name"), FileText(data().File("text.so")));
  EXPECT_EQ(CreatingName(), TALM_LIBRARY_NOT_FOUND);
  EXPECT_THAT(message_, HasSubstr("text.so"));
}

TEST_F(RegistrationTest, ALibraryThatIsNoComponentServerIsTold) {
  Write(ClassFile("TALM_Flow.Name"), FileText(TALM_FLOW_LOADER));
  EXPECT_EQ(CreatingName(), TALM_ERROR_IN_LIBRARY);
  EXPECT_THAT(message_, HasSubstr("DllGetClassObject"));
}

TEST_F(RegistrationTest, AClassThatTheLibraryLacksIsTold) {
  Write(ClassFile("TALM_Flow.Name"), FileText(LibraryPath(), "{5B1E3A70-6C4D-4F0E-9A21-3D87C25FE0FF}"));
  EXPECT_EQ(CreatingName(), TALM_CLASS_NOT_AVAILABLE);
  EXPECT_THAT(message_, HasSubstr("gave no factory of the class TALM_Flow.Name"));
}

TEST_F(RegistrationTest, OnlyClassNamesLeadToFiles) {
  const std::u16string long_name(201, u'a');
  for (const auto* const name :
       {u"", u".", u"..", u"../TALM_Flow.Name", u"a/b", u"a b", u"1a", u"名", long_name.c_str()}) {
    EXPECT_EQ(Creating(name), TALM_BAD_CLASS_NAME) << Utf8(name);
  }
  EXPECT_EQ(TalmCreateObject(nullptr, nullptr, nullptr), TALM_POINTER);
}

TEST_F(RegistrationTest, AClassNameHasAtMost200Characters) {
  EXPECT_EQ(Creating(std::u16string(200, u'a').c_str()), TALM_CLASS_NOT_REGISTERED);
  EXPECT_EQ(Creating(std::u16string(201, u'a').c_str()), TALM_BAD_CLASS_NAME);
}

TEST_F(RegistrationTest, AFileOfMoreThan16384BytesIsNotRead) {
  constexpr std::size_t kMost = 16384;
  std::string text = FileText("/");
  text.insert(text.size() - 1, kMost - text.size(), 'x');
  Write(ClassFile("TALM_Flow.Name"), text);
  EXPECT_EQ(CreatingName(), TALM_LIBRARY_NOT_FOUND);
  text.insert(text.size() - 1, 1, 'x');
  Write(ClassFile("TALM_Flow.Name"), text);
  EXPECT_EQ(CreatingName(), TALM_BAD_REGISTRATION);
  EXPECT_THAT(message_, HasSubstr("it is too large"));
}

}  // namespace
}  // namespace talm_flow::test
