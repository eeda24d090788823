#include "support/messages/DSIMessageCache.h"

namespace Tarni::Support
{
DSIMessageCache::FileState DSIMessageCache::GetFileState(int in_componentId, const tarni_wstring& in_locale) const
{
    std::lock_guard<std::mutex> guard(m_lock);
    const auto file = m_files.find({in_componentId, in_locale});
    return file == m_files.end() ? FileState::NotRead : file->second.state;
}

void DSIMessageCache::StoreFile(int in_componentId, const tarni_wstring& in_locale, DSIMessageMap in_messages)
{
    std::lock_guard<std::mutex> guard(m_lock);
    FileRecord& record = m_files[{in_componentId, in_locale}];
    record.state = FileState::Loaded;
    record.messages = std::move(in_messages);
}

void DSIMessageCache::MarkFile(int in_componentId, const tarni_wstring& in_locale, FileState in_state)
{
    std::lock_guard<std::mutex> guard(m_lock);
    FileRecord& record = m_files[{in_componentId, in_locale}];
    record.state = in_state;
    record.messages.clear();
}

std::optional<DSIMessageEntry> DSIMessageCache::GetErrorMessage(int in_componentId, tarni_wstring_view in_key,
                                                               const tarni_wstring& in_locale) const
{
    std::lock_guard<std::mutex> guard(m_lock);
    const auto file = m_files.find({in_componentId, in_locale});
    if (file == m_files.end())
    {
        return std::nullopt;
    }
    const auto message = file->second.messages.find(in_key);
    if (message == file->second.messages.end())
    {
        return std::nullopt;
    }
    return message->second;
}

void DSIMessageCache::Clear()
{
    std::lock_guard<std::mutex> guard(m_lock);
    m_files.clear();
}
}  // namespace Tarni::Support
