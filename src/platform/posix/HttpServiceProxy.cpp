#include "platform/HttpServiceProxy.h"

namespace Tarni::Platform
{
std::optional<HttpServiceProxyList> HttpServiceProxy::Query(tarni_wstring_view, tarni_wstring_view,
                                                            Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, "Tarni::Platform", "HttpServiceProxy", "Query");
    // No system-wide HTTP service here: the environment is the system's proxy setting.
    return std::nullopt;
}
}  // namespace Tarni::Platform
