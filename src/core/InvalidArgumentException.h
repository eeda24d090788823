#pragma once
// An argument that breaks a function's contract. The parameters name the
// source file and line where the check failed (key "InvalidArgumentErr").
#include <string_view>

#include "core/ErrorException.h"
#include "core/NumberConverter.h"

namespace Tarni::Support
{
class InvalidArgumentException : public ErrorException
{
public:
    InvalidArgumentException(std::string_view in_sourceFile, int in_line)
        : ErrorException(DiagState::InvalidArgument, SUPPORT_ERROR, u"InvalidArgumentErr",
                         {FileName(in_sourceFile), NumberConverter::ToText(static_cast<long long>(in_line))})
    {
    }

private:
    static tarni_wstring FileName(std::string_view in_path)
    {
        const size_t slash = in_path.find_last_of("/\\");
        const std::string_view name = slash == std::string_view::npos ? in_path : in_path.substr(slash + 1);
        return tarni_wstring(name.begin(), name.end());
    }
};
}  // namespace Tarni::Support

/// Throws InvalidArgumentException naming the current source file and line.
#define TARNI_THROW_INVALID_ARGUMENT() throw ::Tarni::Support::InvalidArgumentException(__FILE__, __LINE__)
