#include "thrift/TEHttpApiRetryEmulationTestSettings.h"

#include "thrift/TEApiCallNames.h"
#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEHttpApiRetryEmulationTestSettings";

bool IsAll(std::string_view in_name)
{
    return in_name.size() == 3 && (in_name[0] | 0x20) == 'a' && (in_name[1] | 0x20) == 'l' &&
           (in_name[2] | 0x20) == 'l';
}
}  // namespace

void TEHttpApiRetryEmulationTestSettings::AddEmulationSetting(std::string_view in_apiName,
                                                              const TEHttpApiRetryEmulationTestSetting& in_setting,
                                                              Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "AddEmulationSetting");
    std::string name;
    if (IsAll(in_apiName))
    {
        name = TEApiCallNames::ALL;
    }
    else if (const auto canonical = TEApiCallNames::Canonicalize(in_apiName))
    {
        name = *canonical;
    }
    else
    {
        std::vector<std::string> valid = TEApiCallNames::GetAll();
        valid.insert(valid.begin(), TEApiCallNames::ALL);
        throw TEException::WithText(u"TETestError", "The API call name \"" + std::string(in_apiName) +
                                                        "\" passed in is not valid. The valid API call names are (" +
                                                        TEApiCallNames::Join(valid) +
                                                        ").  Please check your configuration.");
    }
    if (m_settings.count(name) != 0)
    {
        throw TEException::WithText(
            u"TETestError",
            "There are more than one emulation configurations defined for the API call \"" + name +
                "\" in the value of HttpApiRetryEmulationTestSettings. There can be at most one emulation "
                "configuration specified for an API call in the value of HttpApiRetryEmulationTestSettings. Please "
                "check your configuration.");
    }
    if (!m_settings.empty() && (name == TEApiCallNames::ALL || m_settings.count(TEApiCallNames::ALL) != 0))
    {
        throw TEException::WithText(
            u"TETestError",
            "If emulation test settings is specified for all API calls then that has to be the only configuration "
            "specified in the value of HttpApiRetryEmulationTestSettings. There are currently more than one "
            "emulation configurations specified in the  value of HttpApiRetryEmulationTestSettings, which is not "
            "valid. Please check your test configurations.");
    }
    m_settings.emplace(std::move(name), in_setting);
}

TEHttpApiRetryEmulationTestSetting* TEHttpApiRetryEmulationTestSettings::GetEmulationSetting(
    std::string_view in_apiName)
{
    if (const auto canonical = TEApiCallNames::Canonicalize(in_apiName))
    {
        if (const auto it = m_settings.find(*canonical); it != m_settings.end())
        {
            return &it->second;
        }
    }
    const auto all = m_settings.find(TEApiCallNames::ALL);
    return all == m_settings.end() ? nullptr : &all->second;
}
}  // namespace Tarni::ThriftExtension
