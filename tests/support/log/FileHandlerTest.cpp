#include <gtest/gtest.h>

#include <filesystem>

#include "core/InvalidArgumentException.h"
#include "core/SupportException.h"
#include "support/log/FileHandler.h"
#include "platform/FileAccess.h"
#include "TestFiles.h"

using Tarni::Support::FileHandler;
using Tarni::Support::FileOpenMode;
using TarniTest::ReadAll;
using TarniTest::ScratchFolder;
using TarniTest::Wide;
namespace fs = std::filesystem;

namespace
{
const std::string EOL = Tarni::Platform::FileAccess::LineEnd();

// Every line plus its line end is exactly this long, so a limit of one line
// rotates after every write.
std::string Line(char in_tag)
{
    return std::string(12 - EOL.size(), in_tag);
}
}  // namespace

TEST(FileHandler, RefusesAZeroFileCountNamingTheSourceLine)
{
    try
    {
        FileHandler handler(u"x.log", 0, 0);
        FAIL() << "no exception";
    }
    catch (const Tarni::Support::InvalidArgumentException& error)
    {
        EXPECT_EQ(u"InvalidArgumentErr", error.GetMessageKey());
        ASSERT_EQ(2U, error.GetParameters().size());
        EXPECT_EQ(u"FileHandler.cpp", error.GetParameters()[0]);
        EXPECT_NE(u"0", error.GetParameters()[1]);
    }
}

TEST(FileHandler, AppendsLinesWithTheLineEndAndNamesNumberedFiles)
{
    ScratchFolder folder;
    const fs::path path = folder / "X_DriverConfig.log";
    TarniTest::WriteAll(path, "old" + EOL);
    FileHandler handler(Wide(path), 0, 5);
    EXPECT_TRUE(handler.WriteFormattedLine(false, "%s %d", "line", 1));
    EXPECT_TRUE(handler.WriteLine("line 2", false));
    EXPECT_EQ("old" + EOL + "line 1" + EOL + "line 2" + EOL, ReadAll(path));

    EXPECT_EQ(Wide(folder / "X_DriverConfig.2.log"), handler.GetFileName(2));
    FileHandler noExtension(Wide(folder / "trace"), 0, 2);
    EXPECT_EQ(Wide(folder / "trace.1"), noExtension.GetFileName(1));
}

TEST(FileHandler, WithOneFileTruncatesAtTheLimit)
{
    ScratchFolder folder;
    const fs::path path = folder / "one.log";
    FileHandler handler(Wide(path), 24, 1);
    handler.WriteLine(Line('a'), false);
    EXPECT_EQ(Line('a') + EOL, ReadAll(path));
    handler.WriteLine(Line('b'), false);  // reaches 24 bytes: truncated
    EXPECT_EQ("", ReadAll(path));
    handler.WriteLine(Line('c'), false);
    EXPECT_EQ(Line('c') + EOL, ReadAll(path));
    EXPECT_FALSE(fs::exists(folder / "one.1.log"));
}

TEST(FileHandler, WithThreeFilesKeepsTheNewestAndDeletesTheOldest)
{
    ScratchFolder folder;
    const fs::path path = folder / "X_DriverConfig.log";
    FileHandler handler(Wide(path), 12, 3);
    for (const char tag : {'1', '2', '3', '4'})
    {
        handler.WriteLine(Line(tag), false);  // each line reaches the limit
    }
    handler.WriteLine("current", false);
    EXPECT_EQ("current" + EOL, ReadAll(path));
    EXPECT_EQ(Line('4') + EOL, ReadAll(folder / "X_DriverConfig.1.log"));
    EXPECT_EQ(Line('3') + EOL, ReadAll(folder / "X_DriverConfig.2.log"));
    EXPECT_FALSE(fs::exists(folder / "X_DriverConfig.3.log"));
    EXPECT_EQ(3, std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()));
}

TEST(FileHandler, FindsTheHighestNumberedFileOfItsOwnStem)
{
    ScratchFolder folder;
    for (const char* name : {"app.log", "app.7.log", "app.2.log", "app.x.log", "app.9.txt", "apple.12.log",
                             "app.12345678901.log"})
    {
        TarniTest::WriteAll(folder / name, "x");
    }
    FileHandler handler(Wide(folder / "app.log"), 0, 3);
    EXPECT_EQ(7, handler.FindOldestExistingFile());

    // Rotation starts from the highest file it may keep and leaves older strays alone.
    handler.RotateLogFiles();
    EXPECT_EQ("", ReadAll(folder / "app.log"));
    EXPECT_EQ("x", ReadAll(folder / "app.1.log"));
    EXPECT_FALSE(fs::exists(folder / "app.2.log"));
    EXPECT_TRUE(fs::exists(folder / "app.7.log"));

    FileHandler missingFolder(Wide(folder / "absent" / "app.log"), 0, 3);
    EXPECT_THROW(missingFolder.FindOldestExistingFile(), Tarni::Support::SupportException);
}

TEST(FileHandler, ReportsAFileThatCannotBeOpened)
{
    ScratchFolder folder;
    FileHandler handler(Wide(folder / "absent" / "x.log"), 0, 2);
    EXPECT_FALSE(handler.WriteLine("lost", false));
    EXPECT_FALSE(handler.GetLastErrorText().empty());
    try
    {
        handler.WriteLine("lost", true);
        FAIL() << "no exception";
    }
    catch (const Tarni::Support::SupportException& error)
    {
        EXPECT_EQ(u"LogFileWriteErr", error.GetMessageKey());
        EXPECT_EQ(Wide(folder / "absent" / "x.log"), error.GetParameters().at(0));
    }
}
