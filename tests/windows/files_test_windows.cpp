#include "tests/builders/samples.h"
#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/file_replacement.h"
#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"

#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace ZelmResult {
namespace {

using ::testing::HasSubstr;

// A folder of its own for each test, gone after it.
class WindowsFiles : public ::testing::Test {
protected:
    WindowsFiles()
    {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~WindowsFiles() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] wstring In(const wstring& name) const { return folder.u16string() + u'\\' + name; }
    static void Put(const wstring& path, const std::string& content)
    {
        auto file = MakePlatformFileHandle();
        ASSERT_TRUE(file->Open(path, FileHandle::Access::Create)) << LastSystemError().message();
        ASSERT_TRUE(file->WriteAt(0, content.data(), content.size()));
    }
    static std::string ContentOf(FileHandle& file)
    {
        std::string content(static_cast<std::size_t>(file.Size()), '\0');
        content.resize(static_cast<std::size_t>(file.ReadAt(0, content.data(), content.size() + 1)));
        return content;
    }
    static std::string ContentOf(const wstring& path)
    {
        auto file = MakePlatformFileHandle();
        return file->Open(path, FileHandle::Access::Read) ? ContentOf(*file) : LastSystemError().message();
    }
    [[nodiscard]] std::ptrdiff_t Files() const
    {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
    }

    // As another program holds it that shares nothing.
    static HANDLE Hold(const wstring& path)
    {
        const std::wstring name(path.begin(), path.end());
        return CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("zelmresult-files-" + std::to_string(ProcessNumber()));
};

TEST_F(WindowsFiles, ATargetThatIsHeldOpenStaysAndTheReasonIsSaid)
{
    const wstring path = In(u"held.zmxf");
    Put(path, "former");
    const HANDLE held = Hold(path);
    const FileReplacement atStart(path);
    EXPECT_FALSE(atStart.IsMade());
    EXPECT_THAT(atStart.reason(), HasSubstr("haring")); // as the system words it
    CloseHandle(held);

    FileReplacement later(path);
    ASSERT_TRUE(later.IsMade()) << later.reason();
    Put(later.temporary(), "new");
    const HANDLE heldLater = Hold(path);
    EXPECT_FALSE(later.Commit());
    EXPECT_THAT(later.reason(), HasSubstr("haring"));
    CloseHandle(heldLater);
    EXPECT_EQ(ContentOf(path), "former");
    EXPECT_TRUE(later.Commit()) << later.reason();
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Files(), 1);
}

TEST_F(WindowsFiles, AReaderKeepsTheContentThatItOpened)
{
    const wstring path = In(u"read.zmxf");
    Put(path, "former");
    auto reader = MakePlatformFileHandle();
    ASSERT_TRUE(reader->Open(path, FileHandle::Access::Read));
    FileReplacement replacement(path);
    Put(replacement.temporary(), "new content");
    EXPECT_TRUE(replacement.Commit()) << replacement.reason();
    EXPECT_EQ(ContentOf(*reader), "former");
    EXPECT_EQ(ContentOf(path), "new content");
    reader->Close();
    EXPECT_EQ(Files(), 1);
}

// Replacing is two renames there, and each saver may come between the two of the other.
TEST_F(WindowsFiles, TwoSaversLeaveTheWholeFileOfOne)
{
    const wstring path = In(u"shared.zmxf");
    Put(path, "content");
    std::atomic<int> torn = 0;
    const auto save = [&] {
        for (int i = 0; i < 300; ++i) {
            FileReplacement replacement(path);
            if (!replacement.IsMade()) continue; // the other has it
            Put(replacement.temporary(), "content");
            (void)replacement.Commit();
            auto file = MakePlatformFileHandle();
            if (file->Open(path, FileHandle::Access::Read) && ContentOf(*file) != "content") ++torn;
        }
    };
    std::thread other(save);
    save();
    other.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(ContentOf(path), "content");
    EXPECT_EQ(Files(), 1);
}

TEST_F(WindowsFiles, WhatIsNoFileIsRefusedWithItsReason)
{
    EXPECT_EQ(FileReplacement(folder.u16string()).reason(), "Is a directory");
    EXPECT_EQ(FileReplacement(In(u"missing\\a.zmxf")).reason(), "No such file or directory");
    EXPECT_FALSE(FileReplacement(u"NUL").IsMade());
    EXPECT_EQ(FileReplacement(In(u"a.zmxf:part")).reason(), "Invalid argument");
    EXPECT_EQ(FileReplacement(u"a.zmxf:part").reason(), "Invalid argument");
    const wstring path = In(u"protected.zmxf");
    Put(path, "former");
    const std::wstring name(path.begin(), path.end());
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(FileReplacement(path).reason(), "Permission denied");
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);

    auto file = MakePlatformFileHandle();
    EXPECT_FALSE(file->Open(folder.u16string(), FileHandle::Access::Read));
    EXPECT_FALSE(LastSystemError());
    EXPECT_FALSE(file->Open(u"NUL", FileHandle::Access::Read));
    EXPECT_FALSE(LastSystemError());
    EXPECT_FALSE(file->Open(In(u"missing"), FileHandle::Access::Read));
    EXPECT_EQ(LastSystemError(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(CreateExclusively(PathToBytes(path)), Creation::NameInUse);
    EXPECT_EQ(CreateExclusively(PathToBytes(In(u"missing\\a"))), Creation::Failed);
}

TEST_F(WindowsFiles, NamesMayBeLongAndOfAnyLetters)
{
    wstring path = u"\\\\?\\" + folder.u16string();
    std::vector<std::wstring> made;
    while (path.size() < 400) {
        path += u"\\Messung \u00E4\u00F6\u00FC \u6E2C\u5B9A";
        made.emplace_back(path.begin(), path.end());
        ASSERT_TRUE(CreateDirectoryW(made.back().c_str(), nullptr));
    }
    const wstring plain = path.substr(4) + u"\\\U0001F50A.zmxf"; // without the mark of long paths
    CZMXFFile document(true, false);
    test::FillWhole(document);
    ASSERT_TRUE(document.SaveSafely(plain.c_str()));
    ASSERT_TRUE(document.SaveSafely(plain.c_str()));
    const std::vector<char> expected = test::SavedBytes(document);
    EXPECT_EQ(ContentOf(plain), std::string(expected.begin(), expected.end()));
    CZMXFFile loaded(true, false);
    loaded.NeedToRemoveEverything(true);
    EXPECT_TRUE(loaded.Load(plain.c_str(), ZMXFFileLoadScope()));
    EXPECT_TRUE(RemoveFile(PathToBytes(plain)));
    for (; !made.empty(); made.pop_back()) EXPECT_TRUE(RemoveDirectoryW(made.back().c_str()));
}

// Its name stays until the handle is closed, and then it is gone.
TEST_F(WindowsFiles, AScratchFileEndsWithItsHandle)
{
    const wstring path = In(u"scratch");
    Put(path, "former");
    auto scratch = MakePlatformFileHandle();
    ASSERT_TRUE(scratch->Open(path, FileHandle::Access::Scratch));
    EXPECT_EQ(scratch->Size(), 0);
    EXPECT_TRUE(scratch->WriteAt(5'000'000'000, "end", 3));
    EXPECT_EQ(scratch->Size(), 5'000'000'003);
    std::string end(9, ' ');
    EXPECT_EQ(scratch->ReadAt(5'000'000'000, end.data(), 9), 3);
    EXPECT_EQ(scratch->ReadAt(6'000'000'000, end.data(), 9), 0);
    EXPECT_EQ(CreateExclusively(PathToBytes(path)), Creation::NameInUse);
    scratch->Close();
    EXPECT_EQ(Files(), 0);
}

} // namespace
} // namespace ZelmResult
