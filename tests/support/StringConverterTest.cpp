#include <gtest/gtest.h>

#include "support/CaseInsensitiveLess.h"
#include "support/StringConverter.h"
#include "core/SupportException.h"

using Tarni::tarni_wstring;
using Tarni::Support::StringConverter;

TEST(StringConverter, RoundTripsNonAsciiTextThroughUtf8)
{
    const tarni_wstring text = u"Zürich \u65e5\u672c \U0001F600 =x";
    const std::string utf8 = StringConverter::ToUtf8(text);
    EXPECT_EQ("Z\xC3\xBCrich \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80 =x", utf8);
    EXPECT_EQ(text, StringConverter::FromUtf8(utf8));
    EXPECT_EQ(u"", StringConverter::FromUtf8(""));
}

TEST(StringConverter, RefusesBytesThatAreNotUtf8)
{
    for (const char* bad : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80", "a\xFF"})
    {
        EXPECT_FALSE(StringConverter::IsValidUtf8(bad)) << bad;
        EXPECT_THROW(StringConverter::FromUtf8(bad), Tarni::Support::SupportException);
    }
}

TEST(StringConverter, ComparesIgnoringCaseWithTheSameOrderOnEveryPlatform)
{
    EXPECT_TRUE(StringConverter::EqualsIgnoreCase(u"ProxyPWD", u"proxypwd"));
    EXPECT_TRUE(StringConverter::EqualsIgnoreCase(u"\u00C4rger", u"\u00E4RGER"));
    EXPECT_FALSE(StringConverter::EqualsIgnoreCase(u"Port", u"Ports"));
    // Underscore sorts before letters because keys are folded to lower case.
    Tarni::Support::CaseInsensitiveLess less;
    EXPECT_TRUE(less(u"Auth_Flow", u"AuthMech"));
    EXPECT_TRUE(less(u"port", u"Ports"));
    EXPECT_FALSE(less(u"PORT", u"port"));
}
