#include "thrift/TEApiCallNames.h"

namespace Tarni::ThriftExtension
{
namespace
{
char LowerAscii(char in_c)
{
    return (in_c >= 'A' && in_c <= 'Z') ? static_cast<char>(in_c - 'A' + 'a') : in_c;
}

bool EqualsIgnoreAsciiCase(std::string_view in_left, std::string_view in_right)
{
    if (in_left.size() != in_right.size())
    {
        return false;
    }
    for (size_t i = 0; i < in_left.size(); ++i)
    {
        if (LowerAscii(in_left[i]) != LowerAscii(in_right[i]))
        {
            return false;
        }
    }
    return true;
}
}  // namespace

const std::vector<std::string>& TEApiCallNames::GetAll()
{
    static const std::vector<std::string> names = {
        "OpenSession",      "CloseSession",          "GetInfo",              "ExecuteStatement",
        "GetTypeInfo",      "GetCatalogs",           "GetSchemas",           "GetTables",
        "GetTableTypes",    "GetColumns",            "GetFunctions",         "GetPrimaryKeys",
        "GetCrossReference", "GetOperationStatus",   "CancelOperation",      "CloseOperation",
        "GetResultSetMetadata", "FetchResults",      "GetDelegationToken",   "CancelDelegationToken",
        "RenewDelegationToken",
    };
    return names;
}

std::optional<std::string> TEApiCallNames::Canonicalize(std::string_view in_name)
{
    for (const std::string& name : GetAll())
    {
        if (EqualsIgnoreAsciiCase(name, in_name))
        {
            return name;
        }
    }
    return std::nullopt;
}

std::string TEApiCallNames::Join(const std::vector<std::string>& in_names)
{
    std::string result;
    for (const std::string& name : in_names)
    {
        if (!result.empty())
        {
            result += ", ";
        }
        result += name;
    }
    return result;
}
}  // namespace Tarni::ThriftExtension
