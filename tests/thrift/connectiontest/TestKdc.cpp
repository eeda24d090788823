#include "thrift/connectiontest/TestKdc.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tarni::Testing
{
namespace
{
const char* const FAKETIME_LIBRARY = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1";
const char* const PROGRAMS[] = {"/usr/sbin/kdb5_util", "/usr/sbin/kadmin.local", "/usr/sbin/krb5kdc",
                                "/usr/bin/kinit", "/usr/bin/kdestroy"};

std::uint16_t FreePort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    ::close(fd);
    return ntohs(address.sin_port);
}

bool Accepts(std::uint16_t in_port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(in_port);
    const bool connected = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(fd);
    return connected;
}

void Write(const std::filesystem::path& in_file, const std::string& in_text)
{
    std::ofstream(in_file) << in_text;
}

// The KDC's own configuration: the realm's database in in_dir, listening on
// in_port of 127.0.0.1 (UDP and TCP).
std::string KdcProfile(const std::string& in_dir, const std::string& in_port, const std::string& in_log)
{
    return std::string("[kdcdefaults]\n kdc_listen = 127.0.0.1:") + in_port + "\n kdc_tcp_listen = 127.0.0.1:" +
           in_port + "\n\n[realms]\n " + TestKdc::REALM + " = {\n  database_name = " + in_dir +
           "/principal\n  key_stash_file = " + in_dir + "/stash\n  acl_file = " + in_dir +
           "/kadm5.acl\n  max_life = 1h\n }\n\n[logging]\n kdc = FILE:" + in_dir + "/" + in_log + "\n";
}
}  // namespace

std::string TestKdc::MissingPrograms()
{
    std::string missing;
    for (const char* program : PROGRAMS)
    {
        if (::access(program, X_OK) != 0)
        {
            missing += std::string(missing.empty() ? "" : ", ") + program;
        }
    }
    return missing.empty() ? missing
                           : "the MIT Kerberos KDC and tools are not installed (" + missing +
                                 "; scripts/install-deps.sh installs krb5-kdc and krb5-user)";
}

TestKdc::TestKdc(const std::string& in_service)
{
    char pattern[] = "/tmp/tarni-kdc-XXXXXX";
    if (::mkdtemp(pattern) == nullptr)
    {
        throw std::runtime_error("no temporary folder for the KDC");
    }
    m_folder = pattern;
    const std::string dir = m_folder.string();
    m_port = FreePort();
    const std::string port = std::to_string(m_port);
    WriteClientConfig(m_folder / "krb5.conf", "127.0.0.1:" + port, Transport::TcpFirst);
    Write(m_folder / "kdc.conf", KdcProfile(dir, port, "kdc.log"));
    Write(m_folder / "kadm5.acl", "");
    Write(m_folder / "password", "alice-Pw-1\n");
    ::setenv("KRB5_CONFIG", (dir + "/krb5.conf").c_str(), 1);
    ::setenv("KRB5_KDC_PROFILE", (dir + "/kdc.conf").c_str(), 1);
    ::setenv("KRB5CCNAME", ("FILE:" + dir + "/ccache").c_str(), 1);
    // The test server accepts in the same process: no replay cache on disk.
    ::setenv("KRB5RCACHETYPE", "none", 1);
    m_keytab = dir + "/service.keytab";
    try
    {
        Run(std::string("kdb5_util create -s -r ") + REALM + " -P master-Pw-1");
        Run(std::string("kadmin.local -r ") + REALM + " -q \"addprinc -pw alice-Pw-1 " + USER + "\"");
        Run(std::string("kadmin.local -r ") + REALM + " -q \"addprinc -randkey " + in_service + "\"");
        Run(std::string("kadmin.local -r ") + REALM + " -q \"ktadd -k " + m_keytab + " " + in_service + "\"");

        m_kdc = StartKdc(m_folder / "kdc.conf", m_port, "");
    }
    catch (...)
    {
        Stop();
        throw;
    }
}

TestKdc::~TestKdc()
{
    Stop();
}

pid_t TestKdc::StartKdc(const std::filesystem::path& in_profile, std::uint16_t in_port, const std::string& in_faketime)
{
    const pid_t kdc = ::fork();
    if (kdc == 0)
    {
        // The KDC ends with the test program, whatever ends it.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::setenv("KRB5_KDC_PROFILE", in_profile.c_str(), 1);
        if (!in_faketime.empty())
        {
            ::setenv("LD_PRELOAD", FAKETIME_LIBRARY, 1);
            ::setenv("FAKETIME", in_faketime.c_str(), 1);
            ::setenv("FAKETIME_DONT_FAKE_MONOTONIC", "1", 1);
        }
        ::execl("/usr/sbin/krb5kdc", "krb5kdc", "-n", "-r", REALM, static_cast<char*>(nullptr));
        ::_exit(127);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!Accepts(in_port))
    {
        if (std::chrono::steady_clock::now() > deadline || ::waitpid(kdc, nullptr, WNOHANG) == kdc)
        {
            ::kill(kdc, SIGTERM);
            ::waitpid(kdc, nullptr, 0);
            throw std::runtime_error("krb5kdc did not start (see " + m_folder.string() + "/kdc.log)");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return kdc;
}

void TestKdc::WriteClientConfig(const std::filesystem::path& in_file, const std::string& in_address,
                                Transport in_first)
{
    // Messages longer than udp_preference_limit go over TCP first.
    Write(in_file, std::string("[libdefaults]\n default_realm = ") + REALM +
                       "\n dns_lookup_kdc = false\n dns_lookup_realm = false\n rdns = false\n"
                       " dns_canonicalize_hostname = false\n udp_preference_limit = " +
                       (in_first == Transport::TcpFirst ? "1" : "65535") + "\n forwardable = true\n\n[realms]\n " +
                       REALM + " = {\n  kdc = " + in_address + "\n }\n");
}

void TestKdc::PointAt(const std::string& in_address, Transport in_first)
{
    // A file of its own each time: the Kerberos library keeps a file it has
    // read and looks at its time stamp at most once a second.
    const std::filesystem::path file = m_folder / ("krb5-" + std::to_string(++m_configs) + ".conf");
    WriteClientConfig(file, in_address, in_first);
    ::setenv("KRB5_CONFIG", file.c_str(), 1);
}

void TestKdc::PointAtOwnKdc()
{
    ::setenv("KRB5_CONFIG", (m_folder / "krb5.conf").c_str(), 1);
}

std::string TestKdc::MissingFaketime()
{
    return ::access(FAKETIME_LIBRARY, R_OK) == 0
               ? std::string()
               : std::string("libfaketime is not installed (") + FAKETIME_LIBRARY +
                     "; scripts/install-deps.sh installs faketime)";
}

std::uint16_t TestKdc::StartShiftedKdc(const std::string& in_offset)
{
    if (m_shiftedKdc > 0)
    {
        throw std::runtime_error("a shifted KDC runs already");
    }
    const std::uint16_t port = FreePort();
    Write(m_folder / "kdc-shifted.conf", KdcProfile(m_folder.string(), std::to_string(port), "kdc-shifted.log"));
    m_shiftedKdc = StartKdc(m_folder / "kdc-shifted.conf", port, in_offset);
    return port;
}

std::string TestKdc::StaleKeytab(const std::string& in_service)
{
    const std::string keytab = (m_folder / "stale.keytab").string();
    Run(std::string("kadmin.local -r ") + REALM + " -q \"addprinc -randkey " + in_service + "\"");
    Run(std::string("kadmin.local -r ") + REALM + " -q \"ktadd -k " + keytab + " " + in_service + "\"");
    // A new random key (and key version) that the keytab does not hold.
    Run(std::string("kadmin.local -r ") + REALM + " -q \"cpw -randkey " + in_service + "\"");
    return keytab;
}

void TestKdc::Stop()
{
    for (pid_t* kdc : {&m_kdc, &m_shiftedKdc})
    {
        if (*kdc > 0)
        {
            ::kill(*kdc, SIGTERM);
            ::waitpid(*kdc, nullptr, 0);
            *kdc = -1;
        }
    }
    if (!m_folder.empty())
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
        m_folder.clear();
    }
    for (const char* name : {"KRB5_CONFIG", "KRB5_KDC_PROFILE", "KRB5CCNAME", "KRB5RCACHETYPE"})
    {
        ::unsetenv(name);
    }
}

void TestKdc::Run(const std::string& in_command)
{
    const std::string command = in_command + " >>" + (m_folder / "commands.log").string() + " 2>&1";
    if (std::system(command.c_str()) != 0)
    {
        throw std::runtime_error("failed: " + in_command);
    }
}

void TestKdc::Kinit(const std::string& in_lifetime)
{
    Run("kinit -f -l " + in_lifetime + " " + USER + " <" + (m_folder / "password").string());
}

void TestKdc::AddServiceWithoutKeytab(const std::string& in_service)
{
    Run(std::string("kadmin.local -r ") + REALM + " -q \"addprinc -randkey " + in_service + "\"");
}

void TestKdc::Kdestroy()
{
    Run("kdestroy -q");
}
}  // namespace Tarni::Testing
