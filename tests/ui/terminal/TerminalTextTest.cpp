// Text of the terminal host: mnemonics, widths, shortening and wrapping.
#include <gtest/gtest.h>

#include <clocale>

#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
TEST(TerminalTextTest, MnemonicsAreTakenFromTheAmpersand)
{
    const MnemonicText level = TerminalText::ParseMnemonic(L"Log &Level:");
    EXPECT_EQ(level.text, L"Log Level:");
    EXPECT_EQ(level.mnemonicIndex, 4);
    EXPECT_EQ(level.mnemonic, L'l');

    const MnemonicText doubled = TerminalText::ParseMnemonic(L"Fish && &Chips");
    EXPECT_EQ(doubled.text, L"Fish & Chips");
    EXPECT_EQ(doubled.mnemonicIndex, 7);
    EXPECT_EQ(doubled.mnemonic, L'c');

    EXPECT_FALSE(TerminalText::ParseMnemonic(L"OK").HasMnemonic());
    EXPECT_FALSE(TerminalText::ParseMnemonic(L"Trailing&").HasMnemonic());
}

TEST(TerminalTextTest, LabelsAreShortenedToTheirColumns)
{
    EXPECT_EQ(TerminalText::Fit(L"Cancel", 6), L"Cancel");
    EXPECT_EQ(TerminalText::Fit(L"Cancel", 4), L"Can\u2026");
    EXPECT_EQ(TerminalText::Fit(L"Cancel", 0), L"");
    // A label's "..." gives way first.
    EXPECT_EQ(TerminalText::FitLabel(L"Logging Options...", 16), L"Logging Options\u2026");
    EXPECT_EQ(TerminalText::FitLabel(L"Service Discovery Options...", 12), L"Service Dis\u2026");
    // Wide characters take two columns (in the UTF-8 character type the host runs in).
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(TerminalText::Width(L"\u6570\u636e"), 4);
    EXPECT_LE(TerminalText::Width(TerminalText::Fit(L"\u6570\u636e\u6e90", 4)), 4);
}

TEST(TerminalTextTest, TextIsWrappedAtBlanksAndLineBreaks)
{
    const auto lines = TerminalText::Wrap(L"FAILED!\r\n\r\nThe server could not be reached", 12);
    const std::vector<std::wstring> expected{L"FAILED!", L"", L"The server", L"could not be", L"reached"};
    EXPECT_EQ(lines, expected);
    const auto split = TerminalText::Wrap(L"abcdefghij", 4);
    EXPECT_EQ(split, (std::vector<std::wstring>{L"abcd", L"efgh", L"ij"}));
}

TEST(TerminalTextTest, ProgramTextSurvivesTheWayToTheTerminalAndBack)
{
    const tarni_wstring text = u"Gr\u00fc\u00dfe \U0001F600 \u6570";
    const std::wstring wide = TerminalText::ToWide(text);
    EXPECT_EQ(wide.size(), 9u);  // the surrogate pair is one character
    EXPECT_EQ(TerminalText::FromWide(wide), text);
    EXPECT_EQ(TerminalText::FromUtf8(TerminalText::ToUtf8(wide)), wide);
}
}  // namespace Tarni::Platform
