#include <gtest/gtest.h>

#include "platform/IniDocument.h"
#include "core/ErrorException.h"

using Tarni::Platform::IniDocument;
using Tarni::Support::ErrorException;

namespace
{
const std::string SAMPLE =
    "\xEF\xBB\xBF; top comment\r\n"
    "[ODBC Data Sources]\r\n"
    "Spark=Tarni Spark ODBC Driver\r\n"
    "\r\n"
    "[Driver]\r\n"
    "  # indented comment\r\n"
    "Port = 10000\r\n"
    "KrbRealm=  A=B  \r\n"
    "\r\n"
    "[Other]\r\n"
    "Port=1";
}

TEST(IniDocument, ReadsOnlyTheSectionWithKeysAndValuesTrimmed)
{
    const auto doc = IniDocument::Parse(SAMPLE, u"x.ini");
    const auto values = doc.ReadSection(u"driver");
    ASSERT_EQ(2u, values.size());
    EXPECT_EQ(u"Port", values[0].name);
    EXPECT_EQ(u"10000", values[0].value);
    EXPECT_EQ(u"KrbRealm", values[1].name);
    EXPECT_EQ(u"A=B", values[1].value);
    EXPECT_EQ(SAMPLE, doc.Serialize());
}

TEST(IniDocument, EditsTouchOnlyTheirLines)
{
    auto doc = IniDocument::Parse(SAMPLE, u"x.ini");
    doc.SetValue(u"Driver", u"port", u"443");
    doc.SetValue(u"Driver", u"New", u"");
    doc.DeleteValue(u"Driver", u"KRBREALM");
    const std::string expected =
        "\xEF\xBB\xBF; top comment\r\n"
        "[ODBC Data Sources]\r\n"
        "Spark=Tarni Spark ODBC Driver\r\n"
        "\r\n"
        "[Driver]\r\n"
        "  # indented comment\r\n"
        "Port = 443\r\n"
        "New=\r\n"
        "\r\n"
        "[Other]\r\n"
        "Port=1";
    EXPECT_EQ(expected, doc.Serialize());
}

TEST(IniDocument, AddsTheSectionAtTheEndWhenMissing)
{
    auto doc = IniDocument::Parse("[A]\nx=1", u"x.ini");
    doc.SetValue(u"Driver", u"Port", u"1");
    EXPECT_EQ("[A]\nx=1\n\n[Driver]\nPort=1\n", doc.Serialize());

    auto empty = IniDocument::Parse("", u"x.ini");
    empty.SetValue(u"Driver", u"K", u"\u00e9");
    EXPECT_EQ("[Driver]\nK=\xC3\xA9\n", empty.Serialize());
}

TEST(IniDocument, MalformedLinesNameFileAndLine)
{
    const struct
    {
        const char* text;
        const char16_t* key;
        const char16_t* line;
    } cases[] = {
        {"[Driver]\nPort=1\njunk\n", u"DSIniSyntaxErr", u"3"},
        {"[Driver\n", u"DSIniSectionErr", u"1"},
        {"[Driver]\n=value\n", u"DSIniSyntaxErr", u"2"},
        {"[Driver]\nA=\xFF\xFE\n", u"DSIniEncodingErr", u"2"},
    };
    for (const auto& c : cases)
    {
        try
        {
            IniDocument::Parse(c.text, u"/etc/odbc/x.ini");
            ADD_FAILURE() << "accepted: " << c.text;
        }
        catch (const ErrorException& e)
        {
            EXPECT_EQ(c.key, e.GetMessageKey()) << c.text;
            ASSERT_EQ(2u, e.GetParameters().size());
            EXPECT_EQ(u"/etc/odbc/x.ini", e.GetParameters()[0]);
            EXPECT_EQ(c.line, e.GetParameters()[1]) << c.text;
        }
    }
}

TEST(IniDocument, HandWrittenBlanksAreNotPartOfValuesAndSignificantOnesAreQuoted)
{
    const std::string text = "[Driver]\n AuthMech = 3 \nKrbRealm=\t\" R \" \nQuoted=\"\"x\"\"\nHalf=\"x\nEmpty =\n";
    auto doc = IniDocument::Parse(text, u"x.ini");
    const auto values = doc.ReadSection(u"Driver");
    ASSERT_EQ(5u, values.size());
    EXPECT_EQ(u"AuthMech", values[0].name);
    EXPECT_EQ(u"3", values[0].value);
    EXPECT_EQ(u" R ", values[1].value);
    EXPECT_EQ(u"\"x\"", values[2].value);
    EXPECT_EQ(u"\"x", values[3].value);
    EXPECT_EQ(u"", values[4].value);

    // Writing back what was read changes no byte; a changed value keeps the
    // blanks before it and is quoted only when its own blanks or quotes matter.
    for (const auto& value : values)
    {
        doc.SetValue(u"Driver", value.name, value.value);
    }
    EXPECT_EQ(text, doc.Serialize());
    doc.SetValue(u"Driver", u"AuthMech", u"4");
    doc.SetValue(u"Driver", u"KrbRealm", u"plain");
    doc.SetValue(u"Driver", u"Empty", u"  ");
    doc.SetValue(u"Driver", u"New", u"\"q\"");
    const std::string expected =
        "[Driver]\n AuthMech = 4\nKrbRealm=\tplain\nQuoted=\"\"x\"\"\nHalf=\"x\nEmpty =\"  \"\nNew=\"\"q\"\"\n";
    EXPECT_EQ(expected, doc.Serialize());
    const auto again = IniDocument::Parse(expected, u"x.ini").ReadSection(u"Driver");
    EXPECT_EQ(u"  ", again[4].value);
    EXPECT_EQ(u"\"q\"", again[5].value);
}

TEST(IniDocument, DuplicatedKeysKeepTheirLinesAndTheLastStillWins)
{
    const std::string text = "[Driver]\nA=1\nB=2\n[Other]\nA=x\n[driver]\na=3\n";
    auto doc = IniDocument::Parse(text, u"x.ini");
    const auto values = doc.ReadSection(u"Driver");
    ASSERT_EQ(2u, values.size());
    EXPECT_EQ(u"A", values[0].name);
    EXPECT_EQ(u"3", values[0].value);

    doc.SetValue(u"Driver", u"A", u"3");
    doc.SetValue(u"Driver", u"B", u"5");
    EXPECT_EQ("[Driver]\nA=1\nB=5\n[Other]\nA=x\n[driver]\na=3\n", doc.Serialize());
    doc.SetValue(u"Driver", u"A", u"4");
    EXPECT_EQ("[Driver]\nA=1\nB=5\n[Other]\nA=x\n[driver]\na=4\n", doc.Serialize());
    doc.DeleteValue(u"Driver", u"a");
    doc.SetValue(u"Driver", u"C", u"6");
    EXPECT_EQ("[Driver]\nB=5\n[Other]\nA=x\n[driver]\nC=6\n", doc.Serialize());
}

TEST(IniDocument, CarriageReturnOnlyLinesAreLines)
{
    auto doc = IniDocument::Parse("[Driver]\rA=1\r\rB=2", u"x.ini");
    const auto values = doc.ReadSection(u"Driver");
    ASSERT_EQ(2u, values.size());
    EXPECT_EQ(u"1", values[0].value);
    EXPECT_EQ(u"2", values[1].value);
    doc.SetValue(u"Driver", u"C", u"3");
    doc.DeleteValue(u"Driver", u"A");
    EXPECT_EQ("[Driver]\r\rB=2\rC=3", doc.Serialize());
}
