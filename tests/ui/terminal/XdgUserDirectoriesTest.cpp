// The documents folder as the XDG user-dirs file names it.
#include "ui/terminal/XdgUserDirectories.h"

#include <gtest/gtest.h>

using Tarni::Platform::XdgUserDirectories;

TEST(XdgUserDirectories, FindsTheNamedFolderInTheFormsTheConventionWrites)
{
    const std::string file = "# written by xdg-user-dirs-update\n"
                             "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
                             "XDG_DOCUMENTS_DIR=\"$HOME/My \\\"Papers\\\"\"\n";
    EXPECT_EQ(XdgUserDirectories::Find(file, "XDG_DOCUMENTS_DIR", "/home/al"), "/home/al/My \"Papers\"");
    EXPECT_EQ(XdgUserDirectories::Find(file, "XDG_DESKTOP_DIR", "/home/al"), "/home/al/Desktop");
    EXPECT_EQ(XdgUserDirectories::Find("XDG_DOCUMENTS_DIR=\"/srv/docs\"\r\n", "XDG_DOCUMENTS_DIR", "/h"), "/srv/docs");
    EXPECT_EQ(XdgUserDirectories::Find("XDG_DOCUMENTS_DIR=\"$HOME/\"", "XDG_DOCUMENTS_DIR", "/h"), "/h/");
    EXPECT_EQ(XdgUserDirectories::Find("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"", "XDG_DOCUMENTS_DIR", "/h"),
              "/b");
    // What the convention does not write is not guessed at.
    for (const char* line : {"XDG_DOCUMENTS_DIR=relative/path", "XDG_DOCUMENTS_DIR=\"relative\"",
                             "XDG_DOCUMENTS_DIR=\"$HOMEWORK/x\"", "#XDG_DOCUMENTS_DIR=\"/x\"",
                             "XDG_DOCUMENTS_DIRX=\"/x\"", "XDG_DOCUMENTS_DIR=\"/x\" \"/y\""})
    {
        EXPECT_EQ(XdgUserDirectories::Find(line, "XDG_DOCUMENTS_DIR", "/h"), std::nullopt) << line;
    }
}
