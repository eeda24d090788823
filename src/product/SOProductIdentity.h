#pragma once
namespace Tarni::SparkODBC
{
/// Registers who the product is with DSProductHelper: brand "Tarni", the
/// driver names, the version, the product data file, the INI environment
/// variable and the per-user INI file name.
class SOProductIdentity
{
public:
    static void Register();
};
}  // namespace Tarni::SparkODBC
