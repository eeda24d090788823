#pragma once
// The messages read from the message files, per component and locale. Each
// file is read once; the cache also remembers a file that was missing or
// could not be read, so it is not tried again until the cache is cleared.
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "core/TarniString.h"

namespace Tarni::Support
{
/// One Error element of a message file.
struct DSIMessageEntry
{
    tarni_wstring text;
    long long nativeErrorCode = -1;
    /// The Error's Component attribute, or the package's DefaultComponent.
    tarni_wstring component;
    /// The Params attribute; -1 when absent.
    int parameterCount = -1;
};

using DSIMessageMap = std::map<tarni_wstring, DSIMessageEntry, std::less<>>;

class DSIMessageCache
{
public:
    enum class FileState
    {
        NotRead,   ///< not looked for yet
        Loaded,    ///< read; its messages are in the cache
        Missing,   ///< no candidate file exists
        Failed,    ///< a file exists but could not be parsed
    };

    FileState GetFileState(int in_componentId, const tarni_wstring& in_locale) const;

    /// Stores the messages of a file that was read.
    void StoreFile(int in_componentId, const tarni_wstring& in_locale, DSIMessageMap in_messages);
    void MarkFile(int in_componentId, const tarni_wstring& in_locale, FileState in_state);

    std::optional<DSIMessageEntry> GetErrorMessage(int in_componentId, tarni_wstring_view in_key,
                                                   const tarni_wstring& in_locale) const;

    void Clear();

private:
    struct FileRecord
    {
        FileState state = FileState::NotRead;
        DSIMessageMap messages;
    };

    mutable std::mutex m_lock;
    std::map<std::pair<int, tarni_wstring>, FileRecord> m_files;
};
}  // namespace Tarni::Support
