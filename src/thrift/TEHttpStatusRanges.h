#pragma once
#include <cstdint>
#include <utility>
#include <vector>

namespace Tarni::ThriftExtension
{
/// HTTP status codes as a list of inclusive (first, last) ranges, in the
/// order in which the configuration gives them.
using TEHttpStatusRanges = std::vector<std::pair<std::uint16_t, std::uint16_t>>;
}  // namespace Tarni::ThriftExtension
