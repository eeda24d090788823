#pragma once
// The names of the TCLIService calls that settings may name (retriable calls,
// calls allowing a default retry-after value, emulated calls). A name is
// matched without regard to ASCII case and stored in its canonical spelling.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarni::ThriftExtension
{
class TEApiCallNames
{
public:
    /// The name that stands for every call in emulation settings.
    static constexpr const char* ALL = "ALL";

    /// Every call name, in the order of the service definition.
    static const std::vector<std::string>& GetAll();

    /// The canonical spelling of a call name, or nothing for an unknown name.
    static std::optional<std::string> Canonicalize(std::string_view in_name);

    /// The names joined with ", " (for messages).
    static std::string Join(const std::vector<std::string>& in_names);
};
}  // namespace Tarni::ThriftExtension
