#include "product/SOConfigurationTables.h"

#include "driversupport/DSOAuthConfiguration.h"

#include <map>

namespace Tarni::SparkODBC
{
namespace
{
using ReverseMap = std::map<tarni_wstring, unsigned, std::less<>>;

ReverseMap BuildReverse(const std::vector<tarni_wstring>& in_names, unsigned in_offset)
{
    ReverseMap reverse;
    for (size_t i = 0; i < in_names.size(); ++i)
    {
        reverse.emplace(in_names[i], static_cast<unsigned>(i) + in_offset);
    }
    return reverse;
}

std::optional<unsigned> Find(const ReverseMap& in_map, tarni_wstring_view in_name)
{
    const auto it = in_map.find(in_name);
    return it == in_map.end() ? std::nullopt : std::optional<unsigned>(it->second);
}
}  // namespace

const std::vector<tarni_wstring>& SOConfigurationTables::AuthMechNames()
{
    static const std::vector<tarni_wstring> names = {
        u"No Authentication", u"Kerberos", u"User Name", u"User Name and Password",
        u"User Name and Password (SSL)", u"Windows Azure HDInsight Emulator", u"Windows Azure HDInsight Service",
        u"HTTP", u"HTTPS", u"Kerberos over HTTP", u"Kerberos over HTTPS", u"OAuth 2.0", u"SAML_2.0",
        u"MapR SASL"};
    return names;
}

const std::vector<tarni_wstring>& SOConfigurationTables::ServerTypeNames()
{
    static const std::vector<tarni_wstring> names = {u"SharkServer (Shark 0.8.1 and earlier)",
                                                     u"SharkServer2 (Shark 0.9.*)",
                                                     u"SparkThriftServer (Spark 1.1 and later)", u"DFI"};
    return names;
}

const std::vector<tarni_wstring>& SOConfigurationTables::TransportNames()
{
    static const std::vector<tarni_wstring> names = {u"Binary", u"SASL", u"HTTP"};
    return names;
}

const std::vector<tarni_wstring>& SOConfigurationTables::ServiceDiscoveryModeNames()
{
    static const std::vector<tarni_wstring> names = {u"No Service Discovery", u"ZooKeeper", u"AOSS", u"Unknown"};
    return names;
}

const std::vector<tarni_wstring>& SOConfigurationTables::OAuthFlowNames()
{
    // One list for the product's tables and the OAuth Options dialog.
    return DriverSupport::DSOAuthConfiguration::FlowNames();
}

std::optional<unsigned> SOConfigurationTables::AuthMechFromName(tarni_wstring_view in_name)
{
    static const ReverseMap reverse = BuildReverse(AuthMechNames(), 0);
    return Find(reverse, in_name);
}

std::optional<unsigned> SOConfigurationTables::ServerTypeFromName(tarni_wstring_view in_name)
{
    static const ReverseMap reverse = BuildReverse(ServerTypeNames(), 1);
    return Find(reverse, in_name);
}

std::optional<unsigned> SOConfigurationTables::TransportFromName(tarni_wstring_view in_name)
{
    static const ReverseMap reverse = BuildReverse(TransportNames(), 0);
    return Find(reverse, in_name);
}

std::optional<unsigned> SOConfigurationTables::OAuthFlowFromName(tarni_wstring_view in_name)
{
    static const ReverseMap reverse = BuildReverse(OAuthFlowNames(), 0);
    return Find(reverse, in_name);
}
}  // namespace Tarni::SparkODBC
