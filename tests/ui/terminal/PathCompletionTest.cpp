// File name completion of the path prompt, in a folder made for the test.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "common/TempDirectory.h"
#include "ui/terminal/PathCompletion.h"

namespace Tarni::Platform
{
namespace
{
class PathCompletionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_folder / "backups");
        std::filesystem::create_directories(m_folder / "bin");
        for (const char* name : {"backup.sdc", "backup-old.sdc", "notes.txt", ".hidden.sdc"})
        {
            std::ofstream(m_folder / name) << "x";
        }
    }

    std::string In(const std::string& in_name) const { return (m_folder / in_name).string(); }

    Testing::TempDirectory m_dir;
    const std::filesystem::path m_folder = m_dir.Path();
};
}  // namespace

TEST_F(PathCompletionTest, CompletesAsFarAsTheNamesAgree)
{
    const auto result = PathCompletion::Complete(In("ba"), {}, false);
    EXPECT_EQ(result.text, In("backup"));
    EXPECT_EQ(result.candidates, (std::vector<std::string>{"backup-old.sdc", "backup.sdc", "backups/"}));

    const auto unique = PathCompletion::Complete(In("no"), {}, false);
    EXPECT_EQ(unique.text, In("notes.txt"));
    const auto folder = PathCompletion::Complete(In("backups"), {}, false);
    EXPECT_EQ(folder.text, In("backups/"));
}

TEST_F(PathCompletionTest, FiltersFilesButNeverFolders)
{
    const auto sdc = PathCompletion::Complete(In(""), {"*.sdc"}, false);
    EXPECT_EQ(sdc.candidates, (std::vector<std::string>{"backup-old.sdc", "backup.sdc", "backups/", "bin/"}));
    const auto folders = PathCompletion::Complete(In("b"), {}, true);
    EXPECT_EQ(folders.candidates, (std::vector<std::string>{"backups/", "bin/"}));
    EXPECT_EQ(folders.text, In("b"));
    // Hidden entries only when asked for with a leading dot.
    EXPECT_EQ(PathCompletion::Complete(In("."), {}, false).candidates, (std::vector<std::string>{".hidden.sdc"}));
}

TEST_F(PathCompletionTest, NothingMatchesAndUnknownFoldersLeaveTheTextAlone)
{
    EXPECT_TRUE(PathCompletion::Complete(In("zzz"), {}, false).candidates.empty());
    const auto missing = PathCompletion::Complete(In("missing/a"), {}, false);
    EXPECT_EQ(missing.text, In("missing/a"));
    EXPECT_TRUE(missing.candidates.empty());
}

TEST(PathCompletionPatternsTest, PatternsHomeAndRelativePaths)
{
    EXPECT_EQ(PathCompletion::SplitPatterns("*.sdc; *.txt;"), (std::vector<std::string>{"*.sdc", "*.txt"}));
    EXPECT_TRUE(PathCompletion::Matches("a.sdc", {"*.txt", "*.sdc"}));
    EXPECT_FALSE(PathCompletion::Matches("a.sdcx", {"*.sdc"}));
    EXPECT_TRUE(PathCompletion::Matches("anything", {}));
    ::setenv("HOME", "/home/tester", 1);
    EXPECT_EQ(PathCompletion::ExpandHome("~/x.sdc"), "/home/tester/x.sdc");
    EXPECT_EQ(PathCompletion::ExpandHome("a~/x"), "a~/x");
    EXPECT_EQ(PathCompletion::MakeAbsolute("/etc/x").front(), '/');
    EXPECT_EQ(PathCompletion::MakeAbsolute("rel/x").back(), 'x');
    EXPECT_EQ(PathCompletion::MakeAbsolute("rel/x").front(), '/');
}
}  // namespace Tarni::Platform
