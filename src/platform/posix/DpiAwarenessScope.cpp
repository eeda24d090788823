#include "platform/DpiAwarenessScope.h"

namespace Tarni::Platform
{
// The terminal has no DPI to be aware of.
DpiAwarenessScope::DpiAwarenessScope() = default;
DpiAwarenessScope::~DpiAwarenessScope() = default;
}  // namespace Tarni::Platform
