#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturingLogger.h"
#include "TestFiles.h"
#include "core/DSIException.h"
#include "platform/ProcessEnvironment.h"
#include "core/SupportException.h"
#include "support/TarniSettingReader.h"
#include "support/messages/DSIMessageManager.h"

using namespace Tarni::Support;
using Tarni::tarni_wstring;
using TarniTest::CapturingLogger;
using TarniTest::ScratchFolder;
using TarniTest::Wide;
using TarniTest::WriteAll;

namespace
{
const std::string DS_FILE =
    "<Messages><Package ID='63' DefaultComponent='DriverSupport'>"
    "<Error Key='DSOpenErr' NativeErrorCode='1001'>Cannot open %1%: %2%</Error>"
    "</Package></Messages>";

class MessageCatalogue : public testing::Test
{
protected:
    MessageCatalogue()
    {
        m_source->NotifySettingChanged(u"ERRORMESSAGESPATH", Wide(m_folder.Path()));
    }

    tarni_wstring Candidate(const std::string& in_relative) const
    {
        tarni_wstring path = Wide(m_folder.Path()) + Tarni::Platform::ProcessEnvironment::PathSeparator();
        for (const char c : in_relative)
        {
            path += c == '/' ? Tarni::Platform::ProcessEnvironment::PathSeparator() : static_cast<char16_t>(c);
        }
        return path;
    }

    DSIMessage Get(const tarni_wstring& in_key, const std::vector<tarni_wstring>& in_parameters,
                   int in_component = DS_ERROR)
    {
        return m_manager.GetErrorMessage(u"en-US", in_key, in_parameters, in_component);
    }

    ScratchFolder m_folder;
    CapturingLogger m_log;
    std::shared_ptr<DSIMessageSource> m_source = std::make_shared<DSIMessageSource>();
    DSIMessageManager m_manager{m_source, &m_log};
};
}  // namespace

TEST_F(MessageCatalogue, FindsTheTextInTheLocaleFolderBeforeTheFlatFolder)
{
    WriteAll(m_folder / "en-US" / "DSMessages.xml", DS_FILE);
    WriteAll(m_folder / "DSMessages.xml", "not even XML");
    const DSIMessage message = Get(u"DSOpenErr", {u"a.ini", u"denied"});
    EXPECT_TRUE(message.found);
    EXPECT_EQ(u"Cannot open a.ini: denied", message.text);
    EXPECT_EQ(1001, message.nativeErrorCode);

    const std::vector<tarni_wstring> candidates = m_source->GetCandidatePaths(DS_ERROR, u"en-US");
    EXPECT_EQ((std::vector<tarni_wstring>{Candidate("en-US/DSMessages.xml"), Candidate("DSMessages.xml")}),
              candidates);
}

TEST_F(MessageCatalogue, AKeyMissingFromAGoodFileNamesEveryCandidate)
{
    WriteAll(m_folder / "DSMessages.xml", DS_FILE);
    const DSIMessage message = Get(u"DSAbsentErr", {});
    EXPECT_FALSE(message.found);
    EXPECT_EQ(u"[Tarni][DriverSupport] The error message DSAbsentErr could not be found in the en-US locale. "
              u"Check that " + Candidate("en-US/DSMessages.xml") + u" or " + Candidate("DSMessages.xml") +
              u" exist.",
              message.text);
}

TEST_F(MessageCatalogue, WithoutAnyFileTheTextSaysNotFound)
{
    EXPECT_EQ(u"[Tarni][Support]: Error message not found: NoFileErr", Get(u"NoFileErr", {}, SUPPORT_ERROR).text);
    EXPECT_EQ(u"[Tarni][Component 7]: Error message not found: X", Get(u"X", {}, 7).text);
}

TEST_F(MessageCatalogue, AMalformedFileIsLoggedAndAnsweredWithTheFallback)
{
    WriteAll(m_folder / "en-US" / "DSMessages.xml", "");
    EXPECT_EQ(u"[Tarni][DriverSupport]: Error message not found: DSOpenErr", Get(u"DSOpenErr", {u"a", u"b"}).text);
    EXPECT_TRUE(m_log.Contains("Error message file '" + (m_folder / "en-US" / "DSMessages.xml").string() +
                               "' was empty."));
    EXPECT_TRUE(m_log.Contains("Exception caught - in_locale='en-US' in_messageID='DSOpenErr' "
                               "in_messageParameters=[a, b] in_sourceComponentID=63 : Error message file was empty."));

    // The file is not read again: the second lookup is answered without a new error.
    const size_t logged = m_log.Lines().size();
    EXPECT_EQ(u"[Tarni][DriverSupport]: Error message not found: DSOpenErr", Get(u"DSOpenErr", {u"a", u"b"}).text);
    EXPECT_EQ(logged, m_log.Lines().size());
}

TEST_F(MessageCatalogue, ParametersThatDoNotFitAreLoggedAndAnsweredWithTheFallback)
{
    WriteAll(m_folder / "en-US" / "DSMessages.xml", DS_FILE);
    EXPECT_EQ(u"[Tarni][DriverSupport]: Error message not found: DSOpenErr", Get(u"DSOpenErr", {u"a"}).text);
    EXPECT_TRUE(m_log.Contains(": The parameter with index = 2 is out of range in error message DSOpenErr\n."));
}

TEST_F(MessageCatalogue, OnlyANewFolderEmptiesTheCache)
{
    WriteAll(m_folder / "en-US" / "DSMessages.xml", DS_FILE);
    EXPECT_TRUE(Get(u"DSOpenErr", {u"a", u"b"}).found);
    std::filesystem::remove(m_folder / "en-US" / "DSMessages.xml");

    m_source->NotifySettingChanged(u"ERRORMESSAGESPATH", Wide(m_folder.Path()));
    m_source->NotifySettingChanged(u"LogLevel", u"elsewhere");
    EXPECT_TRUE(Get(u"DSOpenErr", {u"a", u"b"}).found);

    ScratchFolder other;
    WriteAll(other / "DSMessages.xml",
             "<Messages><Package ID='63' DefaultComponent='DS'><Error Key='DSOpenErr' NativeErrorCode='5'>"
             "Other %2% %1%</Error></Package></Messages>");
    m_source->NotifySettingChanged(u"errormessagespath", Wide(other.Path()) + u"/");
    EXPECT_EQ(u"Other b a", Get(u"DSOpenErr", {u"a", u"b"}).text);
}

TEST_F(MessageCatalogue, TheFolderComesFromTheSettingsOrBesideTheProgram)
{
    TarniSettingReader::Reset();
    DSIMessageSource besideProgram;
    EXPECT_EQ(Tarni::Platform::ProcessEnvironment::GetExecutableDirectory() + u"messages",
              besideProgram.GetMessagesPath());

    TarniSettingReader::SetOverride(u"ERRORMESSAGESPATH", Wide(m_folder.Path()));
    DSIMessageSource fromSettings;
    EXPECT_EQ(Wide(m_folder.Path()), fromSettings.GetMessagesPath());
    TarniSettingReader::Reset();
}

TEST_F(MessageCatalogue, ExceptionsTurnIntoText)
{
    WriteAll(m_folder / "en-US" / "DSMessages.xml", DS_FILE);
    const Tarni::Support::ErrorException error(DiagState::GeneralError, DS_ERROR, u"DSOpenErr", {u"x", u"y"});
    EXPECT_EQ(u"Cannot open x: y", m_manager.GetErrorMessage(error).text);
    EXPECT_EQ(u"Cannot create XML parser.",
              m_manager.GetErrorMessage(Tarni::DSI::DSIException::WithText(u"Cannot create XML parser.")).text);
    EXPECT_EQ(u"Finished.", DSIMessageManager::GetDisplayText(Tarni::DSI::DSIException::WithText(u"Finished.")));
}
