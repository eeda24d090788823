#pragma once
// Reads the connection settings of the Thrift layer from the connection's
// configuration (connection string or DSN, falling back to the driver-wide
// configuration) into a TESettings record, and checks the values that have a
// syntax of their own.
//
// List-valued settings: API call names are separated by ","
// (RetriableHttpApiNames, ApiCallsAllowingDefaultRetryAfterVal); status code
// ranges by "+" with "-" inside a range; the settings of
// HttpApiRetryEmulationTestSettings by ";", the components of one setting by
// ":" (API call, emulation count, status ranges, and optionally the
// send-to-server flag 0 or 1, which defaults to 0), for example
// "ExecuteStatement:2:503+429;FetchResults:1:500-502:1".
#include <string>
#include <string_view>

#include "driversupport/ConfigurationMap.h"
#include "driversupport/DSWarningList.h"
#include "core/ILogger.h"
#include "thrift/TESettings.h"

namespace Tarni::ThriftExtension
{
class TEConnectionUtils
{
public:
    /// Every setting of the record, in the record's order, then the other
    /// reading steps (HTTP path, API retry, retry-after, retry emulation,
    /// SAML, server-side properties, transport, user agent, data retrieval,
    /// and OCI for an OCI connection). Throws TEException for a value whose
    /// syntax is wrong; a value that only does not convert is a warning.
    static void ReadConnectionSetting(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                      Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);

    /// Re-reads, for a connection already set up, the settings that may change
    /// on it: KrbSpnRdns, ApplySSPWithQueries, LCaseSspKeyName,
    /// UCaseSspKeyName and EnableSamlCookieCaching.
    static void UpdateConnectionSettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                         Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);

    static void ReadHTTPSettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                 Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadHTTPPath(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                             Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadHttpApiRetrySettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                         Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadHTTPRetrySettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                      Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    /// The switch and timeout of one retry-after kind. A kind other than the
    /// two known ones is logged and ignored.
    static void ReadHTTPRetrySetting(TERetryAfterKind in_kind, const DriverSupport::ConfigurationMap& in_settings,
                                     TESettings& io_settings, Support::ILogger* in_log,
                                     DriverSupport::DSWarningList& io_warnings);
    static void ReadHttpApiRetryEmulationTestSettings(const DriverSupport::ConfigurationMap& in_settings,
                                                      TESettings& io_settings, Support::ILogger* in_log,
                                                      DriverSupport::DSWarningList& io_warnings);
    static void ReadSAMLSettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                 Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadSspSettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadTransportMode(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                  Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    /// The proxy of an HTTP connection (DriverSupport::Proxy); none for the
    /// other transports. Throws ErrorException for unusable proxy settings.
    static void ReadProxySettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                  Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadUserAgentSettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                      Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);
    static void ReadBinaryAndCharacterDataRetrievalBehaviorSettings(const DriverSupport::ConfigurationMap& in_settings,
                                                                     TESettings& io_settings, Support::ILogger* in_log,
                                                                     DriverSupport::DSWarningList& io_warnings);
    /// Region, endpoints, and the credentials of the OCI configuration file.
    static void ReadOCISettings(const DriverSupport::ConfigurationMap& in_settings, TESettings& io_settings,
                                Support::ILogger* in_log, DriverSupport::DSWarningList& io_warnings);

    /// True when the connection goes to an OCI data flow cluster: the host
    /// begins with "dataflowclusters." or OCIRegion is given.
    static bool IsOCIConnection(const DriverSupport::ConfigurationMap& in_settings);

    /// The region of a host "dataflowclusters.<region>.<domain>", lower-case;
    /// empty when the host is not of that form.
    static std::string ExtractOCIRegionFromHost(std::string_view in_host);
    /// The cloud's domain of a cluster host "dataflowclusters.<region>.<domain>"
    /// (for another host, the part after its first label).
    static std::string OCIDomainFromHost(std::string_view in_host);

    /// Parses "400+402+404-406" into (first, last) pairs, appending them to
    /// out_ranges. Throws TEException "TEStatusRangesParsingError".
    static void ParseHttpStatusRanges(std::string_view in_text, TEHttpStatusRanges& out_ranges,
                                      Support::ILogger* in_log);

    /// Parses one emulation setting ("call:count:ranges[:sendToServer]") and
    /// adds it. Throws TEException ("TETestError", "TEEmptyApiCallNameError",
    /// "TEStatusRangesParsingError").
    static void ParseHttpApiRetryEmulationTestSetting(std::string_view in_text,
                                                      TEHttpApiRetryEmulationTestSettings& io_settings,
                                                      Support::ILogger* in_log);

    /// Parses the whole HttpApiRetryEmulationTestSettings value (settings
    /// separated by ";"). Throws as above, and "TETestError" when the value
    /// holds no setting at all.
    static void ParseHttpStatusEmulationSettings(std::string_view in_text,
                                                 TEHttpApiRetryEmulationTestSettings& io_settings,
                                                 Support::ILogger* in_log);

    /// Splits a "," list of API call names into their canonical spellings.
    /// Throws TEException "TEEmptyApiCallNameError" for an empty name and
    /// "TEInvalidApiCallNameError" for an unknown one; in_settingName names
    /// the setting in the error.
    static std::vector<std::string> ParseApiCallNames(std::string_view in_text, std::string_view in_settingName,
                                                      Support::ILogger* in_log);

    /// The value of an environment variable; empty when it is not set or
    /// cannot be read (the failure is logged).
    static std::string ReadEnvVar(const std::string& in_name, Support::ILogger* in_log);

    /// The HTTP user agent: the driver's product token, "Thrift/0.9.0",
    /// " (C++/THttpClient)" and the application's entry.
    ///   current: "<product>/<version> Thrift/0.9.0 (C++/THttpClient) <entry>"
    ///   legacy:  "Thrift/0.9.0 (C++/THttpClient) <product>/<version>;<entry>"
    /// Without an entry, the last separator and the entry are left out.
    static std::string BuildUserAgent(const std::string& in_productToken, const std::string& in_userAgentEntry,
                                      bool in_useLegacy);

    /// The driver's product token: its name without blanks, "/", its version.
    static std::string GetProductToken();
};
}  // namespace Tarni::ThriftExtension
