// Every message key that the code raises has a text in the message file of
// its component, and every shipped text fits its declared parameter count.
// Keys are found in the sources by the conventions of docs/messages.md:
//   DiagState::<State>, <COMPONENT>_ERROR, u"Key"   the key of that component
//   SupportException(u"Key" / DSIException(u"Key" / <Any>Exception(u"Key"
//   u"...Err"                        a key handed to a helper that raises it
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include "TestFiles.h"
#include "core/ComponentId.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"
#include "support/messages/DSIXmlMessageReader.h"
#include "support/messages/GetParameterizedMessage.h"

using namespace Tarni::Support;
namespace fs = std::filesystem;

namespace
{
constexpr int ANY_COMPONENT = -1;

const std::map<std::string, int> COMPONENTS = {
    {"DSI", DSI_ERROR}, {"SUPPORT", SUPPORT_ERROR}, {"DS", DS_ERROR}, {"TE", TE_ERROR}, {"PRODUCT", PRODUCT_ERROR}};
const std::map<int, std::string> FILES = {{DSI_ERROR, "ODBCMessages"},
                                          {SUPPORT_ERROR, "CSCommonMessages"},
                                          {DS_ERROR, "DSMessages"},
                                          {TE_ERROR, "TEMessages"},
                                          {PRODUCT_ERROR, "QuillMessages"}};
const std::map<std::string, int> EXCEPTIONS = {{"Support", SUPPORT_ERROR}, {"DSI", DSI_ERROR}};

struct RaisedKey
{
    std::string key;
    int component;
    std::string where;
};

std::vector<RaisedKey> ScanSources(const fs::path& in_folder)
{
    const std::regex withComponent(
        R"(DiagState::\w+\s*,\s*(?:\w+::)*([A-Z]+)_ERROR\s*,\s*u"([A-Za-z][A-Za-z0-9_]*)\")");
    const std::regex withException(R"(\b([A-Za-z]*)Exception\s*\(\s*u"([A-Za-z][A-Za-z0-9_]*)\")");
    const std::regex errSuffix(R"(\bu"([A-Za-z][A-Za-z0-9_]*Err)\")");
    std::vector<RaisedKey> keys;
    for (const auto& entry : fs::recursive_directory_iterator(in_folder))
    {
        const std::string extension = entry.path().extension().string();
        if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".h"))
        {
            continue;
        }
        const std::string text = TarniTest::ReadAll(entry.path());
        const std::string where = fs::relative(entry.path(), in_folder).generic_string();
        for (std::sregex_iterator it(text.begin(), text.end(), withComponent), end; it != end; ++it)
        {
            const auto component = COMPONENTS.find((*it)[1].str());
            keys.push_back({(*it)[2].str(), component != COMPONENTS.end() ? component->second : ANY_COMPONENT, where});
        }
        for (std::sregex_iterator it(text.begin(), text.end(), withException), end; it != end; ++it)
        {
            const auto component = EXCEPTIONS.find((*it)[1].str());
            keys.push_back({(*it)[2].str(), component != EXCEPTIONS.end() ? component->second : ANY_COMPONENT, where});
        }
        for (std::sregex_iterator it(text.begin(), text.end(), errSuffix), end; it != end; ++it)
        {
            keys.push_back({(*it)[1].str(), ANY_COMPONENT, where});
        }
    }
    return keys;
}

std::map<int, DSIMessageMap> ShippedMessages()
{
    DSIXmlMessageReader reader;
    std::map<int, DSIMessageMap> shipped;
    for (const auto& [component, file] : FILES)
    {
        shipped[component] =
            reader.ReadFile(TarniTest::Wide(fs::path(TARNI_SOURCE_DIR) / "resources" / "messages" / "en-US" / (file + ".xml")));
    }
    return shipped;
}
}  // namespace

TEST(MessageKeys, EveryKeyRaisedInTheSourcesHasAText)
{
    const std::vector<RaisedKey> raised = ScanSources(fs::path(TARNI_SOURCE_DIR) / "src");
    // The scan itself must work: these keys are raised today.
    std::set<std::string> names;
    for (const RaisedKey& key : raised)
    {
        names.insert(key.key);
    }
    EXPECT_THAT(names, testing::IsSupersetOf({"DSIniReadErr", "DSRegistryWriteErr", "InvalidUtf8Err", "GetFileErr"}));

    const std::map<int, DSIMessageMap> shipped = ShippedMessages();
    for (const RaisedKey& key : raised)
    {
        const Tarni::tarni_wstring wide = StringConverter::FromUtf8(key.key);
        if (key.component != ANY_COMPONENT)
        {
            ASSERT_TRUE(shipped.count(key.component)) << key.key << " raised in " << key.where;
            EXPECT_TRUE(shipped.at(key.component).count(wide))
                << key.key << " raised in " << key.where << " has no text in " << FILES.at(key.component) << ".xml";
            continue;
        }
        bool found = false;
        for (const auto& [component, messages] : shipped)
        {
            found = found || messages.count(wide) != 0;
        }
        EXPECT_TRUE(found) << key.key << " raised in " << key.where << " has no text in any message file";
    }
}

TEST(MessageKeys, EveryShippedTextTakesItsDeclaredParameters)
{
    for (const auto& [component, messages] : ShippedMessages())
    {
        for (const auto& [key, entry] : messages)
        {
            ASSERT_GE(entry.parameterCount, 0) << StringConverter::ToUtf8(key) << ": Params is missing";
            const std::vector<Tarni::tarni_wstring> parameters(static_cast<size_t>(entry.parameterCount), u"p");
            EXPECT_NO_THROW(GetParameterizedMessage(entry.text, parameters, key)) << StringConverter::ToUtf8(key);
        }
    }
}

TEST(MessageKeys, TheProgramFindsTheStagedFilesBesideItself)
{
    const ErrorException error(DiagState::GeneralError, DS_ERROR, u"DSIniReadErr", {u"/etc/odbc.ini", u"Permission denied"});
    EXPECT_EQ(u"Cannot read the settings file \"/etc/odbc.ini\": Permission denied.",
              DSIMessageManager::GetDisplayText(error));
}
