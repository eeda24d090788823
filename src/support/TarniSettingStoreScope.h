#pragma once
#include "support/TarniSettingReader.h"

namespace Tarni::Support
{
/// Makes a store the setting reader's source for as long as the scope lives,
/// and detaches it again on every way out (declare it after the store, so it
/// ends first and the reader never holds a store that is gone).
class TarniSettingStoreScope
{
public:
    explicit TarniSettingStoreScope(Platform::ISettingsStore& io_store) { TarniSettingReader::SetStore(&io_store); }
    ~TarniSettingStoreScope() { TarniSettingReader::SetStore(nullptr); }
    TarniSettingStoreScope(const TarniSettingStoreScope&) = delete;
    TarniSettingStoreScope& operator=(const TarniSettingStoreScope&) = delete;
};
}  // namespace Tarni::Support
