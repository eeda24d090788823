#pragma once
// The OAuth 2.0 client-credentials grant of the connection test: POSTs
// grant_type=client_credentials (and the scope) to the token end point over
// HTTPS, the client ID and secret in HTTP basic authentication, and reads the
// access token from the JSON answer. The connection's SSL options decide
// which end point certificates are trusted.
#include <cstdint>
#include <string>

#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;

class TEOAuthTokenRequest
{
public:
    struct EndPoint
    {
        std::string host;
        std::uint16_t port = 443;
        /// The request target, always beginning with "/".
        std::string path = "/";
    };

    /// Splits an https:// URL. Throws TEException "TEOAuthTokenEndPointInvalid"
    /// for any other scheme, a missing host or a bad port.
    static EndPoint ParseEndPoint(const std::string& in_url);

    /// The value of a string member of a JSON object text; empty when the
    /// member is missing or not a string.
    static std::string JsonString(const std::string& in_json, const std::string& in_name);

    /// A token from the target's end point with its client ID and secret.
    /// Throws TEException: the connection's failures, "TEOAuthTokenRefused"
    /// with the end point's error and error_description, "TEOAuthNoToken",
    /// "TETestCancelled".
    static std::string Fetch(const TEConnectionTarget& in_target, DriverSupport::DSCancellation& io_cancellation,
                             Support::ILogger* in_log);
};
}  // namespace Tarni::ThriftExtension
