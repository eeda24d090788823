#include "product/SOUtils.h"

#include <exception>

#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "SOUtils";
const char* const FN = "ConvertStrToServiceDiscoveryMode";
}  // namespace

unsigned SOUtils::ConvertStrToServiceDiscoveryMode(tarni_wstring_view in_text, Support::ILogger* in_logger,
                                                   bool in_caseSensitive)
{
    TARNI_LOG_ENTRY(in_logger, NS, CLS, FN);
    const auto& names = SOConfigurationTables::ServiceDiscoveryModeNames();
    const std::string text = StringConverter::ToUtf8(in_text);
    const std::string noneName = StringConverter::ToUtf8(names[SOConfigurationTables::SD_NONE]);

    unsigned mode = SOConfigurationTables::SD_UNKNOWN;
    if (in_text == u"0")
    {
        mode = SOConfigurationTables::SD_NONE;
    }
    else
    {
        try
        {
            for (unsigned i = SOConfigurationTables::SD_NONE; i <= SOConfigurationTables::SD_AOSS; ++i)
            {
                const bool equal = in_caseSensitive ? in_text == names[i]
                                                    : StringConverter::EqualsIgnoreCase(in_text, names[i]);
                if (equal)
                {
                    mode = i;
                    break;
                }
            }
        }
        catch (const std::exception& e)
        {
            if (in_logger != nullptr)
            {
                in_logger->LogError(NS, CLS, FN,
                                    "Error occurred while converting %s to a Service Discovery Mode. Error detail: %s",
                                    text.c_str(), e.what());
            }
        }
        catch (...)
        {
            if (in_logger != nullptr)
            {
                in_logger->LogError(NS, CLS, FN,
                                    "Unknown error occurred while converting %s to a Service Discovery Mode.",
                                    text.c_str());
            }
        }
    }

    if (mode == SOConfigurationTables::SD_UNKNOWN)
    {
        if (in_logger != nullptr)
        {
            in_logger->LogError(NS, CLS, FN,
                                "Unable to derive Service Discovery Mode from value \"%s\". Using default Service "
                                "Discovery Mode \"%s\".",
                                text.c_str(), noneName.c_str());
        }
        return SOConfigurationTables::SD_NONE;
    }
    if (!SOProductSettings::IsServiceDiscoveryModeSupported(mode))
    {
        if (in_logger != nullptr)
        {
            in_logger->LogError(NS, CLS, FN, "Service discovery mode \"%s\" not supported. Using \"%s\" instead.",
                                StringConverter::ToUtf8(names[mode]).c_str(), noneName.c_str());
        }
        return SOConfigurationTables::SD_NONE;
    }
    return mode;
}
}  // namespace Tarni::SparkODBC
