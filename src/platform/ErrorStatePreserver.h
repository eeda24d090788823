#pragma once
// Saves errno and the system's last error on construction and restores both
// on destruction, so diagnostics code never changes what its caller sees.

namespace Tarni::Platform
{
class ErrorStatePreserver
{
public:
    ErrorStatePreserver();
    ~ErrorStatePreserver();
    ErrorStatePreserver(const ErrorStatePreserver&) = delete;
    ErrorStatePreserver& operator=(const ErrorStatePreserver&) = delete;

    /// The errno of the caller at construction.
    int SavedErrno() const { return m_errno; }

private:
    int m_errno;
    [[maybe_unused]] unsigned long m_lastError;  // the system's last error, where there is one
};
}  // namespace Tarni::Platform
