#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/TempDirectory.h"
#include "platform/posix/IniFileStore.h"
#include "core/ErrorException.h"
#include "platform/TextConversion.h"

using Tarni::Platform::IniFileStore;
using Tarni::Support::ErrorException;
using Tarni::Platform::TextConversion;
using Tarni::Testing::TempDirectory;

namespace
{
IniFileStore StoreAt(const std::filesystem::path& in_path)
{
    return IniFileStore(TextConversion::StrictUtf8ToUtf16(in_path.string()), u"Driver");
}

mode_t ModeOf(const std::filesystem::path& in_path)
{
    struct stat info {};
    stat(in_path.c_str(), &info);
    return info.st_mode & 07777;
}
}  // namespace

TEST(IniFileStore, MissingFileReadsEmptyAndIsCreatedPrivateOnFirstWrite)
{
    TempDirectory dir;
    auto store = StoreAt(dir / "new.ini");
    EXPECT_TRUE(store.ReadAll().empty());
    EXPECT_FALSE(std::filesystem::exists(dir / "new.ini"));
    store.WriteValue(u"Port", u"1");
    EXPECT_EQ("[Driver]\nPort=1\n", TempDirectory::ReadFile(dir / "new.ini"));
    EXPECT_EQ(0600u, ModeOf(dir / "new.ini"));
}

TEST(IniFileStore, UpdateIsAppliedAtOnceKeepingModeAndLeavingNoTemporaryFile)
{
    TempDirectory dir;
    TempDirectory::WriteFile(dir / "a.ini", "[Driver]\nA=1\nB=2\n");
    chmod((dir / "a.ini").c_str(), 0640);
    auto store = StoreAt(dir / "a.ini");
    store.BeginUpdate();
    store.WriteValue(u"A", u"x");
    store.DeleteValue(u"B");
    store.WriteValue(u"C", u" spaced = ");
    EXPECT_EQ("[Driver]\nA=1\nB=2\n", TempDirectory::ReadFile(dir / "a.ini"));
    store.CommitUpdate();
    EXPECT_EQ("[Driver]\nA=x\nC= spaced = \n", TempDirectory::ReadFile(dir / "a.ini"));
    EXPECT_EQ(0640u, ModeOf(dir / "a.ini"));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.Path()), {}));
}

TEST(IniFileStore, RefusedValuesAndAbortedUpdatesLeaveTheFileUntouched)
{
    TempDirectory dir;
    const std::string original = "; keep\n[Driver]\nA=1\n";
    TempDirectory::WriteFile(dir / "a.ini", original);
    auto store = StoreAt(dir / "a.ini");
    store.BeginUpdate();
    store.WriteValue(u"A", u"2");
    EXPECT_THROW(store.WriteValue(u"B", u"line\nbreak"), ErrorException);
    EXPECT_THROW(store.WriteValue(u"[B", u"x"), ErrorException);
    store.AbortUpdate();
    EXPECT_EQ(original, TempDirectory::ReadFile(dir / "a.ini"));
}

TEST(IniFileStore, WritesThroughASymbolicLink)
{
    TempDirectory dir;
    TempDirectory::WriteFile(dir / "real.ini", "[Driver]\n");
    std::filesystem::create_symlink(dir / "real.ini", dir / "link.ini");
    StoreAt(dir / "link.ini").WriteValue(u"A", u"1");
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "link.ini"));
    EXPECT_EQ("[Driver]\nA=1\n", TempDirectory::ReadFile(dir / "real.ini"));
}

TEST(IniFileStore, UnreadableFilesAndUnwritableFoldersAreClearErrors)
{
    if (geteuid() == 0)
    {
        GTEST_SKIP() << "permission checks do not apply to root";
    }
    TempDirectory dir;
    TempDirectory::WriteFile(dir / "a.ini", "[Driver]\nA=1\n");
    chmod((dir / "a.ini").c_str(), 0);
    try
    {
        StoreAt(dir / "a.ini").ReadAll();
        ADD_FAILURE() << "unreadable file was read";
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(u"DSIniReadErr", e.GetMessageKey());
        EXPECT_NE(std::u16string::npos, e.GetParameters()[0].find(u"a.ini"));
    }
    chmod((dir / "a.ini").c_str(), 0600);
    chmod(dir.Path().c_str(), 0500);
    try
    {
        StoreAt(dir / "a.ini").WriteValue(u"A", u"2");
        ADD_FAILURE() << "wrote into a read-only folder";
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(u"DSIniFolderWriteErr", e.GetMessageKey());
    }
    chmod(dir.Path().c_str(), 0700);
    EXPECT_EQ("[Driver]\nA=1\n", TempDirectory::ReadFile(dir / "a.ini"));
}

TEST(IniFileStore, MissingFolderIsAWriteErrorNamingTheFolder)
{
    TempDirectory dir;
    try
    {
        StoreAt(dir / "no-such-folder" / "a.ini").WriteValue(u"A", u"1");
        FAIL() << "wrote into a missing folder";
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(u"DSIniLockErr", e.GetMessageKey());
        EXPECT_NE(std::u16string::npos, e.GetParameters()[0].find(u"no-such-folder"));
    }
}

TEST(IniFileStore, DirectoryInPlaceOfTheFileIsAReadError)
{
    TempDirectory dir;
    std::filesystem::create_directory(dir / "a.ini");
    EXPECT_THROW(StoreAt(dir / "a.ini").ReadAll(), ErrorException);
}
