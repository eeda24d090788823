#include <gtest/gtest.h>

#include "core/DSIException.h"
#include "support/messages/GetParameterizedMessage.h"

using Tarni::tarni_wstring;
using Tarni::DSI::DSIException;
using Tarni::Support::GetParameterizedMessage;

namespace
{
// The finished text of the violation that filling in raises.
tarni_wstring Violation(const tarni_wstring& in_text, const std::vector<tarni_wstring>& in_parameters)
{
    try
    {
        GetParameterizedMessage(in_text, in_parameters, u"OpenErr");
    }
    catch (const DSIException& error)
    {
        EXPECT_TRUE(error.HasFinishedText());
        return error.GetParameters().at(0);
    }
    return u"(no violation)";
}
}  // namespace

TEST(GetParameterizedMessage, FillsEachPlaceholderWithItsParameter)
{
    EXPECT_EQ(u"Cannot open a.ini: denied", GetParameterizedMessage(u"Cannot open %1%: %2%", {u"a.ini", u"denied"}));
    EXPECT_EQ(u"denied before a.ini", GetParameterizedMessage(u"%2% before %1%", {u"a.ini", u"denied"}));
    // A parameter is inserted as it is, its own "%1%" included.
    EXPECT_EQ(u"[%1%]", GetParameterizedMessage(u"[%1%]", {u"%1%"}));
    EXPECT_EQ(u"ten,1,2,3,4,5,6,7,8,9",
              GetParameterizedMessage(u"%10%,%1%,%2%,%3%,%4%,%5%,%6%,%7%,%8%,%9%",
                                      {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"ten"}));
}

TEST(GetParameterizedMessage, KeepsPercentSignsThatAreNoPlaceholders)
{
    EXPECT_EQ(u"100% of 50%", GetParameterizedMessage(u"100% of 50%", {}));
    EXPECT_EQ(u"%% x %a% y %", GetParameterizedMessage(u"%% %1% %a% %2% %", {u"x", u"y"}));
}

TEST(GetParameterizedMessage, ReportsEachKindOfMisfitWithIndexAndKey)
{
    EXPECT_EQ(u"The parameter with index = 2 is out of range in error message OpenErr\n.",
              Violation(u"Cannot open %1%: %2%", {u"a.ini"}));
    EXPECT_EQ(u"The parameter with index = 3 has not been used in error message OpenErr\n.",
              Violation(u"Cannot open %1%: %2%", {u"a.ini", u"denied", u"extra"}));
    EXPECT_EQ(u"The parameter with index = 1 has been used multiple times in error                             "
              u"message OpenErr\n.",
              Violation(u"%1% and %1%", {u"a"}));
    EXPECT_EQ(u"The parameter with index = 0 is out of range in error message OpenErr\n.", Violation(u"%0%", {u"a"}));
    EXPECT_EQ(u"The parameter with index = 999999999 is out of range in error message OpenErr\n.",
              Violation(u"%999999999%", {}));
}
