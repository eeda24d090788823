#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

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
    EXPECT_EQ("[Driver]\nA=x\nC=\" spaced = \"\n", TempDirectory::ReadFile(dir / "a.ini"));
    EXPECT_EQ(u" spaced = ", store.ReadAll()[1].value);
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

TEST(IniFileStore, SymbolicLinksAreFollowedEvenWhenTheirFileIsMissing)
{
    TempDirectory dir;
    TempDirectory::WriteFile(dir / "real.ini", "[Driver]\n");
    std::filesystem::create_symlink(dir / "real.ini", dir / "link.ini");
    StoreAt(dir / "link.ini").WriteValue(u"A", u"1");
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "link.ini"));
    EXPECT_EQ("[Driver]\nA=1\n", TempDirectory::ReadFile(dir / "real.ini"));

    // A dangling relative link, through a second link: the file it names is
    // created, and writers through either name keep each other's keys.
    std::filesystem::create_directory(dir / "sub");
    std::filesystem::create_symlink("sub/target.ini", dir / "dangling.ini");
    std::filesystem::create_symlink("dangling.ini", dir / "outer.ini");
    StoreAt(dir / "outer.ini").WriteValue(u"A", u"1");
    StoreAt(dir / "sub" / "target.ini").WriteValue(u"B", u"2");
    StoreAt(dir / "dangling.ini").WriteValue(u"C", u"3");
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "dangling.ini"));
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "outer.ini"));
    EXPECT_EQ("[Driver]\nA=1\nB=2\nC=3\n", TempDirectory::ReadFile(dir / "sub" / "target.ini"));
    EXPECT_EQ(3u, StoreAt(dir / "outer.ini").ReadAll().size());

    std::filesystem::create_symlink("loop.ini", dir / "loop.ini");
    EXPECT_THROW(StoreAt(dir / "loop.ini").ReadAll(), ErrorException);
}

TEST(IniFileStore, AnythingButARegularFileIsRefusedWithoutBlocking)
{
    TempDirectory dir;
    ASSERT_EQ(0, mkfifo((dir / "fifo.ini").c_str(), 0600));
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = (dir / "socket.ini").string();
    ASSERT_LT(socketPath.size(), sizeof(address.sun_path));
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(0, bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    std::filesystem::create_symlink("/dev/zero", dir / "device.ini");
    std::filesystem::create_directory(dir / "folder.ini");

    const std::pair<const char*, const char16_t*> cases[] = {{"fifo.ini", u"DSIniIsFifoErr"},
                                                             {"socket.ini", u"DSIniIsSocketErr"},
                                                             {"device.ini", u"DSIniIsDeviceErr"},
                                                             {"folder.ini", u"DSIniIsDirectoryErr"}};
    for (const auto& [name, key] : cases)
    {
        for (const bool write : {false, true})
        {
            try
            {
                auto store = StoreAt(dir / name);
                write ? store.WriteValue(u"A", u"1") : static_cast<void>(store.ReadAll());
                ADD_FAILURE() << name << " was used";
            }
            catch (const ErrorException& e)
            {
                EXPECT_EQ(key, e.GetMessageKey()) << name;
                // The message names what is actually there, at the end of any link.
                const std::u16string expected = key == std::u16string_view(u"DSIniIsDeviceErr") ? u"/dev/zero" : u".ini";
                EXPECT_NE(std::u16string::npos, e.GetParameters()[0].find(expected)) << name;
            }
        }
    }
    close(listener);
    EXPECT_EQ(std::filesystem::file_type::fifo, std::filesystem::status(dir / "fifo.ini").type());
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "device.ini"));
}

TEST(IniFileStore, TemporaryFilesOfKilledSavesAreRemovedByTheNextSave)
{
    TempDirectory dir;
    TempDirectory::WriteFile(dir / "a.ini", "[Driver]\nA=1\n");
    for (const char* name : {".a.ini.tmp4242.17", ".a.ini.tmp1.2", ".b.ini.tmp4242.17", ".a.ini.tmpx.1", "a.ini.tmp1.2"})
    {
        TempDirectory::WriteFile(dir / name, "[Driver]\nA=half\n");
    }
    StoreAt(dir / "a.ini").WriteValue(u"A", u"2");
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    {
        left.push_back(entry.path().filename().string());
    }
    std::sort(left.begin(), left.end());
    EXPECT_EQ((std::vector<std::string>{".a.ini.tmpx.1", ".b.ini.tmp4242.17", "a.ini", "a.ini.tmp1.2"}), left);
    EXPECT_EQ("[Driver]\nA=2\n", TempDirectory::ReadFile(dir / "a.ini"));
}

TEST(IniFileStore, AFileWithoutWritePermissionIsRefusedAsEditorsDo)
{
    // Run as an unprivileged user (root may write anything).
    TempDirectory dir;
    const uid_t nobody = 65534;
    chmod(dir.Path().c_str(), 0777);
    const std::string original = "[Driver]\nA=1\n";
    TempDirectory::WriteFile(dir / "a.ini", original);
    chmod((dir / "a.ini").c_str(), 0444);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        if (geteuid() == 0 && (chown((dir / "a.ini").c_str(), nobody, nobody) != 0 || setgid(nobody) != 0 ||
                               setuid(nobody) != 0))
        {
            _exit(3);
        }
        try
        {
            StoreAt(dir / "a.ini").WriteValue(u"A", u"2");
            _exit(1);
        }
        catch (const ErrorException& e)
        {
            _exit(e.GetMessageKey() == u"DSIniReadOnlyErr" ? 0 : 2);
        }
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status)) << "1: written, 2: another error, 3: could not become unprivileged";
    EXPECT_EQ(original, TempDirectory::ReadFile(dir / "a.ini"));
    EXPECT_EQ(0444u, ModeOf(dir / "a.ini"));
}

TEST(IniFileStore, TwentyThousandValuesLoadAndSave)
{
    TempDirectory dir;
    std::string text = "; many\n[Driver]\n";
    for (int i = 0; i < 20000; ++i)
    {
        text += "Key" + std::to_string(i) + " = " + std::to_string(i) + "\n";
    }
    TempDirectory::WriteFile(dir / "a.ini", text);
    auto store = StoreAt(dir / "a.ini");
    const auto values = store.ReadAll();
    ASSERT_EQ(20000u, values.size());
    EXPECT_EQ(u"Key19999", values.back().name);
    EXPECT_EQ(u"19999", values.back().value);
    store.BeginUpdate();
    for (const auto& value : values)
    {
        store.WriteValue(value.name, value.name == u"Key7" ? u"seven" : value.value);
    }
    store.DeleteValue(u"Key19998");
    store.WriteValue(u"Added", u"x");
    store.CommitUpdate();
    std::string expected = text;
    expected.replace(expected.find("Key7 = 7\n"), 9, "Key7 = seven\n");
    expected.replace(expected.find("Key19998 = 19998\n"), 17, "");
    expected += "Added=x\n";
    EXPECT_EQ(expected, TempDirectory::ReadFile(dir / "a.ini"));
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

