#pragma once
// A throw-away MIT Kerberos realm for the connection tests: a KDC on a free
// port of 127.0.0.1 with its database, configuration and credential caches
// in a temporary folder, a service principal with a keytab and a user
// principal. The process environment points the Kerberos libraries there
// (KRB5_CONFIG, KRB5_KDC_PROFILE, KRB5CCNAME) while the realm exists. The KDC
// is stopped and the folder removed when the realm is destroyed, and the KDC
// also ends when the test program dies.
#include <filesystem>
#include <string>
#include <sys/types.h>

namespace Tarni::Testing
{
class TestKdc
{
public:
    static constexpr const char* REALM = "TARNI.TEST";
    static constexpr const char* USER = "alice";

    /// Empty when the KDC's programs are installed; otherwise why not.
    static std::string MissingPrograms();

    /// Creates the realm with the service principal in_service ("spark/localhost")
    /// and starts the KDC. Throws std::runtime_error with the failing command.
    explicit TestKdc(const std::string& in_service);
    ~TestKdc();
    TestKdc(const TestKdc&) = delete;
    TestKdc& operator=(const TestKdc&) = delete;

    const std::string& Keytab() const { return m_keytab; }

    /// Gets the user's ticket with kinit (forwardable) into the default cache,
    /// valid for in_lifetime (kinit's form, "1h", "2s").
    void Kinit(const std::string& in_lifetime = "1h");
    /// Adds a service principal whose keys no keytab holds.
    void AddServiceWithoutKeytab(const std::string& in_service);
    /// Removes the user's tickets (kdestroy).
    void Kdestroy();

private:
    void Run(const std::string& in_command);
    void Stop();

    std::filesystem::path m_folder;
    std::string m_keytab;
    pid_t m_kdc = -1;
};
}  // namespace Tarni::Testing
