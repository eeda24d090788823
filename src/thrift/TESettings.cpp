#include "thrift/TESettings.h"

#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "platform/SecureRandom.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TESettings";

/// A random (version 4) UUID, its bits from the system's cryptographic source.
std::string NewSessionTag()
{
    boost::uuids::uuid tag{};
    Platform::SecureRandom::Fill(tag.data, sizeof(tag.data));
    tag.data[6] = static_cast<std::uint8_t>((tag.data[6] & 0x0F) | 0x40);  // version 4
    tag.data[8] = static_cast<std::uint8_t>((tag.data[8] & 0x3F) | 0x80);  // RFC 4122 variant
    return boost::uuids::to_string(tag);
}
}  // namespace

void TESettings::AddSessionTagHeader(Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "AddSessionTagHeader");
    if (!m_httpSettings.m_enableSessionTag)
    {
        return;
    }
    const std::string tag = NewSessionTag();
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "AddSessionTagHeader", "Setting thrift session tag as: %s", tag.c_str());
    }
    m_customHttpHeaders[SESSION_TAG_HEADER] = tag;
}

void TESettings::RemoveSessionTagHeader(Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "RemoveSessionTagHeader");
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "RemoveSessionTagHeader", "Removing thrift session tag");
    }
    m_customHttpHeaders.erase(SESSION_TAG_HEADER);
}
}  // namespace Tarni::ThriftExtension
