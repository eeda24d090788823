#pragma once
// The Linux driver-wide store: one section of an INI file. The file is
// replaced atomically (temporary file in the same folder, flushed, renamed),
// keeps its permission bits and owner, and concurrent writers are serialised
// with an advisory lock on the file's folder. A symbolic link is followed to
// the file it names (created when only that file is missing); anything but a
// regular file is refused without being opened for long, and a file without
// write permission for the user is refused as editors do. Replacing the file
// breaks a hard link to it: the other name keeps the old contents. A commit re-reads the file under
// the lock and applies only this process's changes, so writers of different
// keys never lose each other's values.
#include <optional>
#include <string>
#include <vector>

#include "platform/ISettingsStore.h"
#include "platform/IniDocument.h"

namespace Tarni::Platform
{
class IniFileStore final : public ISettingsStore
{
public:
    IniFileStore(tarni_wstring in_path, tarni_wstring in_section);
    ~IniFileStore() override;

    tarni_wstring GetLocation() const override { return m_path; }
    std::vector<StoredValue> ReadAll() override;
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override;
    void DeleteValue(tarni_wstring_view in_name) override;
    void BeginUpdate() override;
    void CommitUpdate() override;
    void AbortUpdate() override;
    void LockForUpdate() override;
    void UnlockAfterUpdate() override;

private:
    struct Change
    {
        tarni_wstring name;
        std::optional<tarni_wstring> value;  // nothing: delete
    };

    void CheckName(tarni_wstring_view in_name) const;
    void Apply(const std::vector<Change>& in_changes);
    std::optional<std::string> ReadFileBytes() const;
    void ReplaceFile(const std::string& in_bytes) const;
    void CheckWritable() const;
    void RemoveStaleTemporaryFiles(const std::string& in_folder, const std::string& in_base) const;
    std::string TargetPath() const;
    std::string FolderPath() const;

    tarni_wstring m_path;
    tarni_wstring m_section;
    bool m_inUpdate = false;
    std::vector<Change> m_pending;
    /// The file as last read and parsed, reused while its bytes stay the same.
    struct Parsed
    {
        std::string bytes;
        IniDocument doc;
        std::vector<StoredValue> values;
    };
    std::optional<Parsed> m_parsed;
    int m_lockFd = -1;
    int m_lockDepth = 0;
};
}  // namespace Tarni::Platform
