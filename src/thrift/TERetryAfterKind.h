#pragma once
namespace Tarni::ThriftExtension
{
/// The kinds of reply that carry a Retry-After value the driver honours.
enum class TERetryAfterKind : unsigned
{
    TemporarilyUnavailable = 0,   ///< HTTP 503
    RateLimit = 1,                ///< HTTP 429
};

inline const char* TERetryAfterKindName(TERetryAfterKind in_kind)
{
    return in_kind == TERetryAfterKind::RateLimit ? "RateLimit" : "TemporarilyUnavailable";
}
}  // namespace Tarni::ThriftExtension
