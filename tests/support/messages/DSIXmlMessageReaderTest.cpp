#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturingLogger.h"
#include "core/DSIException.h"
#include "support/StringConverter.h"
#include "support/messages/DSIXmlMessageReader.h"

using namespace Tarni::Support;
using Tarni::DSI::DSIException;
using TarniTest::CapturingLogger;
using testing::HasSubstr;

namespace
{
const std::string GOOD =
    "<?xml version='1.0' encoding='utf-8'?>\n"
    "<Messages>\n"
    "  <Package ID='63' DefaultComponent='DriverSupport'>\n"
    "    <Error Key='OpenErr' NativeErrorCode='1001' Params='2'>\n"
    "      Cannot open %1%: %2%\n"
    "    </Error>\n"
    "    <Error Key='OtherErr' NativeErrorCode='-7' Component='Elsewhere'>Z\xC3\xBCrich &amp; more</Error>\n"
    "  </Package>\n"
    "</Messages>\n";

class XmlReader : public testing::Test
{
protected:
    // The finished text of the exception that reading raises.
    std::string Failure(const std::string& in_bytes)
    {
        try
        {
            m_reader.ReadBytes(in_bytes, "bad.xml");
        }
        catch (const DSIException& error)
        {
            return Tarni::Support::StringConverter::ToUtf8(error.GetParameters().at(0));
        }
        return "(no failure)";
    }

    CapturingLogger m_log;
    DSIXmlMessageReader m_reader{&m_log};
};
}  // namespace

TEST_F(XmlReader, ReadsEveryErrorOfThePackage)
{
    for (const size_t blockSize : {size_t(1), size_t(7), DSIXmlMessageReader::BLOCK_SIZE})
    {
        const DSIMessageMap messages = m_reader.ReadBytes(GOOD, "good.xml", blockSize);
        ASSERT_EQ(2U, messages.size());
        const DSIMessageEntry& open = messages.at(u"OpenErr");
        EXPECT_EQ(u"Cannot open %1%: %2%", open.text);
        EXPECT_EQ(1001, open.nativeErrorCode);
        EXPECT_EQ(u"DriverSupport", open.component);
        EXPECT_EQ(2, open.parameterCount);
        const DSIMessageEntry& other = messages.at(u"OtherErr");
        EXPECT_EQ(u"Z\u00FCrich & more", other.text);
        EXPECT_EQ(-7, other.nativeErrorCode);
        EXPECT_EQ(u"Elsewhere", other.component);
        EXPECT_EQ(-1, other.parameterCount);
    }
    EXPECT_TRUE(m_log.Lines().empty());
}

TEST_F(XmlReader, SkipsElementsWithoutRequiredAttributesOrTextAndLogsThem)
{
    const DSIMessageMap messages = m_reader.ReadBytes(
        "<Messages><Package ID='1' DefaultComponent='C'>\n"
        "<Error NativeErrorCode='1'>no key</Error>\n"
        "<Error Key='NoCode'>no code</Error>\n"
        "<Error Key='BadCode' NativeErrorCode='x1'>bad code</Error>\n"
        "<Error Key='Empty' NativeErrorCode='1'>  </Error>\n"
        "<Error Key='Nested' NativeErrorCode='2'>before<b>bold</b> after</Error>\n"
        "<Other><Error Key='Inside' NativeErrorCode='3'>t</Error></Other>\n"
        "<Error Key='Kept' NativeErrorCode='4'>kept</Error>\n"
        "</Package></Messages>",
        "skips.xml");
    EXPECT_EQ(2U, messages.size());
    EXPECT_EQ(u"kept", messages.at(u"Kept").text);
    EXPECT_EQ(u"before after", messages.at(u"Nested").text);
    EXPECT_TRUE(m_log.Contains("'Error' element with no 'Key' attribute found in file 'skips.xml' line 2"));
    EXPECT_TRUE(m_log.Contains("'Error' element with no 'NativeErrorCode' attribute found in file 'skips.xml' line 3"));
    EXPECT_TRUE(m_log.Contains("'Error' element with no 'NativeErrorCode' attribute found in file 'skips.xml' line 4"));
    EXPECT_TRUE(m_log.Contains("Message for messagekey 'Empty' in file 'skips.xml' is empty."));
    EXPECT_TRUE(m_log.Contains("Unexpected nested element 'b' found under 'Error' element in file 'skips.xml' line 6"));
    EXPECT_TRUE(m_log.Contains("Unexpected nested element 'Other' found under 'Package' element in file 'skips.xml' line 7"));
}

TEST_F(XmlReader, AFileWithoutAPackageFails)
{
    EXPECT_EQ("Error message file contained no package tag.",
              Failure("<Messages><Error Key='A' NativeErrorCode='1'>a</Error></Messages>"));
    EXPECT_EQ("Error message file contained no package tag.", Failure("<Messages><Package ID='1'/></Messages>"));
    EXPECT_TRUE(m_log.Contains("'Package' element with no 'DefaultComponent' attribute found in file 'bad.xml' line 1"));
    EXPECT_EQ("Error message file contained no package tag.", Failure("<Other/>"));
}

TEST_F(XmlReader, ReportsEmptyMalformedAndTruncatedFiles)
{
    EXPECT_EQ("Error message file was empty.", Failure(""));
    EXPECT_TRUE(m_log.Contains("Error message file 'bad.xml' was empty."));

    EXPECT_EQ("XML_Parse() failed while parsing error message file.",
              Failure("<Messages>\n<Package ID='1' DefaultComponent='C'>\n<Error Key=>\n"));
    EXPECT_TRUE(m_log.Contains("Parsing error occurred at line 3 of file \"bad.xml\": (4) not well-formed (invalid token)"));

    EXPECT_EQ("unexpected EOF while parsing error message file.",
              Failure("<Messages><Package ID='1' DefaultComponent='C'><Error Key='A' NativeErrorCode='1'>tex"));
    EXPECT_EQ("unexpected EOF while parsing error message file.", Failure(GOOD.substr(0, GOOD.size() - 13)));

    EXPECT_EQ("Unexpected end tag.", Failure("<Messages>\n<Package ID='1' DefaultComponent='C'>\n</Messages>"));
    EXPECT_TRUE(m_log.Contains("Unexpected end tag 'Messages' occurred on line 3 of file \"bad.xml\": (7) mismatched tag"));

    EXPECT_EQ("XML_Parse() failed while parsing error message file.", Failure("\xEF\xBB\xBF  \n "));
    EXPECT_EQ("XML_Parse() failed while parsing error message file.", Failure(GOOD + "<Second/>"));
}

TEST_F(XmlReader, ReadsAHugeFile)
{
    std::string huge = "<Messages><Package ID='1' DefaultComponent='C'>";
    for (int i = 0; i < 50000; ++i)
    {
        huge += "<Error Key='K" + std::to_string(i) + "' NativeErrorCode='" + std::to_string(i) + "'>" +
                std::string(40, 't') + "</Error>\n";
    }
    huge += "<Error Key='Long' NativeErrorCode='1'>" + std::string(2000000, 'L') + "</Error></Package></Messages>";
    const DSIMessageMap messages = m_reader.ReadBytes(huge, "huge.xml");
    EXPECT_EQ(50001U, messages.size());
    EXPECT_EQ(49999, messages.at(u"K49999").nativeErrorCode);
    EXPECT_EQ(2000000U, messages.at(u"Long").text.size());
}
