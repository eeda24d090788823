#pragma once
#include <cstdint>

namespace Tarni::ThriftExtension
{
/// Whether replies of one retry-after kind are retried, and for how long in
/// total (seconds) before the error is given to the application.
struct TEHttpRetryAfterSetting
{
    bool m_isRetryEnabled = true;
    std::uint32_t m_retryTimeout = 0;
};
}  // namespace Tarni::ThriftExtension
