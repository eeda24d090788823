#include "thrift/connectiontest/TEZooKeeperDiscovery.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

#include <zookeeper/zookeeper.h>

#include "driversupport/DSCancellation.h"
#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEZooKeeperDiscovery";

[[noreturn]] void Fail(const char16_t* in_key, const std::vector<std::string>& in_texts)
{
    throw TEException::WithTexts(in_key, in_texts);
}

std::string Trim(const std::string& in_text)
{
    const std::size_t first = in_text.find_first_not_of(" \t");
    if (first == std::string::npos)
    {
        return {};
    }
    return in_text.substr(first, in_text.find_last_not_of(" \t") - first + 1);
}

/// "a=1;b=2" as a map; parts without "=" are left out.
std::map<std::string, std::string> Fields(const std::string& in_text)
{
    std::map<std::string, std::string> fields;
    std::size_t start = 0;
    while (start <= in_text.size())
    {
        std::size_t end = in_text.find(';', start);
        if (end == std::string::npos)
        {
            end = in_text.size();
        }
        const std::string part = in_text.substr(start, end - start);
        const std::size_t equals = part.find('=');
        if (equals != std::string::npos)
        {
            fields[Trim(part.substr(0, equals))] = Trim(part.substr(equals + 1));
        }
        start = end + 1;
    }
    return fields;
}

/// A port number 1-65535, or 0.
std::uint16_t Port(const std::string& in_text)
{
    if (in_text.empty() || in_text.size() > 5 || in_text.find_first_not_of("0123456789") != std::string::npos)
    {
        return 0;
    }
    const unsigned long port = std::stoul(in_text);
    return port <= 65535 ? static_cast<std::uint16_t>(port) : 0;
}

/// Splits "host:port" or "[v6]:port"; the port is 0 when absent, and false
/// comes back for a malformed entry.
bool SplitAuthority(const std::string& in_text, std::string& out_host, std::string& out_port)
{
    out_port.clear();
    if (!in_text.empty() && in_text.front() == '[')
    {
        const std::size_t close = in_text.find(']');
        if (close == std::string::npos)
        {
            return false;
        }
        out_host = in_text.substr(1, close - 1);
        const std::string rest = in_text.substr(close + 1);
        if (!rest.empty())
        {
            if (rest.front() != ':')
            {
                return false;
            }
            out_port = rest.substr(1);
        }
        return !out_host.empty();
    }
    const std::size_t colon = in_text.rfind(':');
    if (colon != std::string::npos && in_text.find(':') != colon)
    {
        // An IPv6 address without brackets and without a port.
        out_host = in_text;
        return true;
    }
    out_host = in_text.substr(0, colon);
    if (colon != std::string::npos)
    {
        out_port = in_text.substr(colon + 1);
    }
    return !out_host.empty();
}

// What the ZooKeeper client's threads hand over to the waiting test.
struct Exchange
{
    std::mutex lock;
    std::condition_variable changed;
    bool connected = false;
    bool woken = false;
    // The answer of the request in flight.
    bool answered = false;
    int rc = 0;
    std::vector<std::string> children;
    std::string data;
};

void Watcher(zhandle_t*, int in_type, int in_state, const char*, void* in_context)
{
    auto* exchange = static_cast<Exchange*>(in_context);
    if (in_type != ZOO_SESSION_EVENT || exchange == nullptr)
    {
        return;
    }
    const std::lock_guard<std::mutex> hold(exchange->lock);
    exchange->connected = in_state == ZOO_CONNECTED_STATE;
    exchange->changed.notify_all();
}

void ChildrenAnswered(int in_rc, const String_vector* in_strings, const void* in_context)
{
    auto* exchange = static_cast<Exchange*>(const_cast<void*>(in_context));
    const std::lock_guard<std::mutex> hold(exchange->lock);
    exchange->rc = in_rc;
    exchange->children.clear();
    if (in_rc == ZOK && in_strings != nullptr)
    {
        for (std::int32_t i = 0; i < in_strings->count; ++i)
        {
            exchange->children.emplace_back(in_strings->data[i]);
        }
    }
    exchange->answered = true;
    exchange->changed.notify_all();
}

void DataAnswered(int in_rc, const char* in_value, int in_length, const Stat*, const void* in_context)
{
    auto* exchange = static_cast<Exchange*>(const_cast<void*>(in_context));
    const std::lock_guard<std::mutex> hold(exchange->lock);
    exchange->rc = in_rc;
    exchange->data = in_rc == ZOK && in_value != nullptr && in_length > 0
                         ? std::string(in_value, static_cast<std::size_t>(in_length))
                         : std::string();
    exchange->answered = true;
    exchange->changed.notify_all();
}

// The client library's own log goes to the test's log while a listing runs;
// it logs from its own threads, hence one logger for the process.
std::mutex g_logLock;
Support::ILogger* g_log = nullptr;

void ClientLog(const char* in_message)
{
    const std::lock_guard<std::mutex> hold(g_logLock);
    if (g_log != nullptr)
    {
        g_log->LogDebug(NS, CLS, "ClientLog", "%s", in_message);
    }
}

class ClientLogScope
{
public:
    explicit ClientLogScope(Support::ILogger* in_log)
    {
        const std::lock_guard<std::mutex> hold(g_logLock);
        g_log = in_log;
    }
    ~ClientLogScope()
    {
        const std::lock_guard<std::mutex> hold(g_logLock);
        g_log = nullptr;
    }
    ClientLogScope(const ClientLogScope&) = delete;
    ClientLogScope& operator=(const ClientLogScope&) = delete;
};

// Closes the session on every way out; pending requests are completed (with
// ZCLOSING) before zookeeper_close returns, so the exchange outlives them.
class Handle
{
public:
    explicit Handle(zhandle_t* in_handle) : m_handle(in_handle) {}
    ~Handle()
    {
        if (m_handle != nullptr)
        {
            zookeeper_close(m_handle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    zhandle_t* Get() const { return m_handle; }

private:
    zhandle_t* m_handle;
};

// Removes the cancellation handler before the exchange goes away.
class CancelHook
{
public:
    CancelHook(DriverSupport::DSCancellation& io_cancellation, Exchange& io_exchange)
        : m_cancellation(io_cancellation)
    {
        m_id = m_cancellation.AddHandler([&io_exchange] {
            const std::lock_guard<std::mutex> hold(io_exchange.lock);
            io_exchange.woken = true;
            io_exchange.changed.notify_all();
        });
    }
    ~CancelHook() { m_cancellation.RemoveHandler(m_id); }
    CancelHook(const CancelHook&) = delete;
    CancelHook& operator=(const CancelHook&) = delete;

private:
    DriverSupport::DSCancellation& m_cancellation;
    std::size_t m_id = 0;
};
}  // namespace

std::string TEZooKeeperDiscovery::BuildEnsemble(const std::string& in_hosts, std::uint16_t in_defaultPort)
{
    std::string ensemble;
    std::size_t start = 0;
    while (start <= in_hosts.size())
    {
        std::size_t end = in_hosts.find(',', start);
        if (end == std::string::npos)
        {
            end = in_hosts.size();
        }
        const std::string entry = Trim(in_hosts.substr(start, end - start));
        start = end + 1;
        if (entry.empty())
        {
            continue;
        }
        std::string host;
        std::string port;
        if (!SplitAuthority(entry, host, port) || host.find_first_of(" \t/") != std::string::npos ||
            (!port.empty() && Port(port) == 0))
        {
            Fail(u"TEZooKeeperBadEnsemble", {entry});
        }
        const bool ipv6 = host.find(':') != std::string::npos;
        ensemble += (ensemble.empty() ? "" : ",") + (ipv6 ? "[" + host + "]" : host) + ":" +
                    (port.empty() ? std::to_string(in_defaultPort) : port);
    }
    if (ensemble.empty())
    {
        throw TEException::WithText(u"TEConnectionTestMissingSetting", "Host");
    }
    return ensemble;
}

std::optional<TEZooKeeperDiscovery::Server> TEZooKeeperDiscovery::ParseRegistration(const std::string& in_node,
                                                                                    const std::string& in_data)
{
    Server server;
    server.node = in_node;
    std::string portText;
    const std::map<std::string, std::string> name = Fields(in_node);
    const auto uri = name.find("serverUri");
    if (uri != name.end() && !SplitAuthority(uri->second, server.host, portText))
    {
        server.host.clear();
    }
    const std::map<std::string, std::string> data = Fields(in_data);
    const auto field = [&data](const char* in_name) {
        const auto found = data.find(in_name);
        return found == data.end() ? std::string() : found->second;
    };
    if (!field("hive.server2.thrift.bind.host").empty())
    {
        server.host = field("hive.server2.thrift.bind.host");
    }
    const std::string mode = field("hive.server2.transport.mode");
    if (mode == "http")
    {
        server.transport = TETransportMode::HTTP;
        server.httpPath = field("hive.server2.thrift.http.path");
        if (!field("hive.server2.thrift.http.port").empty())
        {
            portText = field("hive.server2.thrift.http.port");
        }
    }
    else if (mode == "binary")
    {
        server.transport = TETransportMode::Binary;
    }
    if (mode != "http" && !field("hive.server2.thrift.port").empty())
    {
        portText = field("hive.server2.thrift.port");
    }
    server.port = Port(portText);
    if (server.host.empty() || server.port == 0)
    {
        return std::nullopt;
    }
    return server;
}

std::vector<TEZooKeeperDiscovery::Server> TEZooKeeperDiscovery::ListServers(
    const std::string& in_ensemble, const std::string& in_namespace, int in_timeoutMs,
    DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ListServers");
    const std::string seconds = std::to_string(in_timeoutMs / 1000);
    const ClientLogScope clientLog(in_log);
    Exchange exchange;
    const CancelHook hook(io_cancellation, exchange);
    // The session may live as long as the test may wait; ZooKeeper's
    // servers raise a shorter one to their minimum.
    Handle handle(zookeeper_init2(in_ensemble.c_str(), &Watcher, in_timeoutMs, nullptr, &exchange, 0, &ClientLog));
    if (handle.Get() == nullptr)
    {
        // The client resolves every host first and gives up when none is found.
        Fail(u"TEZooKeeperError", {in_ensemble, in_namespace, "no host of the ensemble was found"});
    }

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(in_timeoutMs);
    std::unique_lock<std::mutex> hold(exchange.lock);
    // Waits until in_done() holds; false when the limit passed first.
    const auto wait = [&](auto in_done) {
        const bool done = exchange.changed.wait_until(hold, deadline, [&] { return exchange.woken || in_done(); });
        if (exchange.woken)
        {
            throw TEException(u"TETestCancelled", {});
        }
        return done;
    };
    if (!wait([&] { return exchange.connected; }))
    {
        Fail(u"TEZooKeeperNotReachable", {in_ensemble, seconds});
    }
    if (in_log != nullptr)
    {
        in_log->LogInfo(NS, CLS, "ListServers", "Connected to the ZooKeeper ensemble %s; listing %s.",
                        in_ensemble.c_str(), in_namespace.c_str());
    }

    // One request at a time, each answered within the limit.
    const auto ask = [&](auto in_send) {
        exchange.answered = false;
        hold.unlock();
        const int sent = in_send();
        hold.lock();
        if (sent != ZOK)
        {
            Fail(u"TEZooKeeperError", {in_ensemble, in_namespace, zerror(sent)});
        }
        if (!wait([&] { return exchange.answered; }))
        {
            Fail(u"TEZooKeeperNotReachable", {in_ensemble, seconds});
        }
        return exchange.rc;
    };

    const int listed = ask([&] {
        return zoo_aget_children(handle.Get(), in_namespace.c_str(), 0, &ChildrenAnswered, &exchange);
    });
    if (listed == ZNONODE)
    {
        Fail(u"TEZooKeeperNoServers", {in_ensemble, in_namespace});
    }
    if (listed != ZOK)
    {
        Fail(u"TEZooKeeperError", {in_ensemble, in_namespace, zerror(listed)});
    }
    const std::vector<std::string> children = exchange.children;

    std::vector<Server> servers;
    for (const std::string& child : children)
    {
        const std::string path = in_namespace + "/" + child;
        const int read = ask([&] { return zoo_aget(handle.Get(), path.c_str(), 0, &DataAnswered, &exchange); });
        if (read == ZNONODE)
        {
            continue;  // The server went away since the listing.
        }
        if (read != ZOK)
        {
            Fail(u"TEZooKeeperError", {in_ensemble, path, zerror(read)});
        }
        std::optional<Server> server = ParseRegistration(child, exchange.data);
        if (server)
        {
            servers.push_back(std::move(*server));
        }
        else if (in_log != nullptr)
        {
            in_log->LogWarning(NS, CLS, "ListServers", "The node %s names no host and port; it is left out.",
                               path.c_str());
        }
    }
    if (servers.empty())
    {
        Fail(u"TEZooKeeperNoServers", {in_ensemble, in_namespace});
    }
    return servers;
}
}  // namespace Tarni::ThriftExtension
