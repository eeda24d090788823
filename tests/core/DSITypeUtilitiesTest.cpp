#include <gtest/gtest.h>

#include "core/DSIException.h"
#include "core/DSITypeUtilities.h"

using Tarni::DSI::DSIException;
using Tarni::DSI::DSITypeUtilities;

TEST(DSITypeUtilities, WritesTwoUpperCaseDigitsPerByteHighHalfFirst)
{
    const std::string bytes("\x00\x01\x7F\x80\xAB\xFF\x10", 7);
    EXPECT_EQ(u"00017F80ABFF10", DSITypeUtilities::BinaryToHexString(bytes));
    EXPECT_EQ(u"", DSITypeUtilities::BinaryToHexString(""));
    std::string all;
    for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
    EXPECT_EQ(all, DSITypeUtilities::HexStringToBinary(DSITypeUtilities::BinaryToHexString(all)));
}

TEST(DSITypeUtilities, RefusesOddLengthAndDigitsOutsideTheUpperCaseSet)
{
    try
    {
        DSITypeUtilities::HexStringToBinary(u"ABC");
        FAIL() << "odd length accepted";
    }
    catch (const DSIException& e)
    {
        EXPECT_EQ(u"DSIHexToBinaryConversionOddLengthError", e.GetMessageKey());
        EXPECT_EQ(std::vector<Tarni::tarni_wstring>{u"3"}, e.GetParameters());
    }
    // Lower-case digits are not what BinaryToHexString writes.
    for (const auto* bad : {u"0g", u"ab", u"A-", u" 0", u"0\u0660"})
    {
        try
        {
            DSITypeUtilities::HexStringToBinary(bad);
            FAIL() << "accepted a bad digit";
        }
        catch (const DSIException& e)
        {
            EXPECT_EQ(u"DSIHexToBinaryConversionInvalidDigitError", e.GetMessageKey());
        }
    }
}
