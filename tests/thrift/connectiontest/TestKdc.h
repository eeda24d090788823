#pragma once
// A throw-away MIT Kerberos realm for the connection tests: a KDC on a free
// port of 127.0.0.1 with its database, configuration and credential caches
// in a temporary folder, a service principal with a keytab and a user
// principal. The process environment points the Kerberos libraries there
// (KRB5_CONFIG, KRB5_KDC_PROFILE, KRB5CCNAME) while the realm exists. The KDC
// is stopped and the folder removed when the realm is destroyed, and the KDC
// also ends when the test program dies.
#include <cstdint>
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

    /// Adds the service principal in_service and returns a keytab that holds
    /// an older version of its key than the realm's (as after a key change
    /// that the server has not seen).
    std::string StaleKeytab(const std::string& in_service);

    /// Which transport the Kerberos library tries first for a KDC (the other
    /// follows when the first does not answer).
    enum class Transport
    {
        TcpFirst,
        UdpFirst,
    };

    /// Points the realm's clients at another KDC address ("127.0.0.1:88")
    /// through a configuration file of its own. PointAtOwnKdc goes back to
    /// the realm's KDC.
    void PointAt(const std::string& in_address, Transport in_first = Transport::TcpFirst);
    void PointAtOwnKdc();

    /// Empty when libfaketime is installed; otherwise why a shifted clock
    /// cannot be had.
    static std::string MissingFaketime();
    /// Starts a second KDC of the realm whose clock runs in_offset (libfaketime's
    /// form, "+20m") from the real one; returns its port. It stops with the realm.
    std::uint16_t StartShiftedKdc(const std::string& in_offset);

private:
    void Run(const std::string& in_command);
    void Stop();
    void WriteClientConfig(const std::filesystem::path& in_file, const std::string& in_address, Transport in_first);
    pid_t StartKdc(const std::filesystem::path& in_profile, std::uint16_t in_port,
                   const std::string& in_faketime);

    std::filesystem::path m_folder;
    std::string m_keytab;
    std::uint16_t m_port = 0;
    int m_configs = 0;
    pid_t m_kdc = -1;
    pid_t m_shiftedKdc = -1;
};
}  // namespace Tarni::Testing
