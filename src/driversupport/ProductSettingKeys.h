#pragma once
// Names of the read-only product settings (product data file). "supress-..."
// with one "p" and "suppress-aoss" with two are part of the format.
#include "core/TarniString.h"

namespace Tarni::DriverSupport::ProductSettingKeys
{
inline constexpr tarni_wstring_view DsnPort = u"dsn-port";
inline constexpr tarni_wstring_view DefaultStringColumnLength = u"default-string-column-length";
inline constexpr tarni_wstring_view DsnHsType = u"dsn-hs-type";
inline constexpr tarni_wstring_view DsnAuthMech = u"dsn-auth-mech";
inline constexpr tarni_wstring_view GetTblsWithQuery = u"get-tbls-with-query";
inline constexpr tarni_wstring_view SupportedServiceDiscoveryModes = u"supported-service-discovery-modes";
inline constexpr tarni_wstring_view SuppressAoss = u"suppress-aoss";
inline constexpr tarni_wstring_view SupressServiceDiscovery = u"supress-service-discovery";
inline constexpr tarni_wstring_view SupressHdinsight = u"supress-hdinsight";
inline constexpr tarni_wstring_view SupportMaprsasl = u"support-maprsasl";
inline constexpr tarni_wstring_view UseSystemTrustStore = u"use-system-trust-store";
inline constexpr tarni_wstring_view CheckCertRevocation = u"check-cert-revocation";
inline constexpr tarni_wstring_view AllowInvalidCACert = u"AllowInvalidCACert";
inline constexpr tarni_wstring_view MinTls = u"min-tls";
/// "1" or "true": the SSL options offer the minimum TLS version "unrestricted".
inline constexpr tarni_wstring_view AllowUnrestrictedTls = u"allow-unrestricted-tls";
inline constexpr tarni_wstring_view DriverName = u"driver-name";
inline constexpr tarni_wstring_view ProductName = u"product-name";
inline constexpr tarni_wstring_view VendorName = u"vendor-name";
inline constexpr tarni_wstring_view VersionNumber = u"version-number";
/// The environment variable that may name the driver's INI file.
inline constexpr tarni_wstring_view IniEnvironmentVariable = u"ini-environment-variable";
/// The file name of the per-user INI file in the home folder.
inline constexpr tarni_wstring_view UserIniFileName = u"user-ini-file-name";
}  // namespace Tarni::DriverSupport::ProductSettingKeys
