// The node registration, the same on both platforms (the cross-built client
// on Windows).
#include "thrift/connectiontest/server/TestZooKeeperServer.h"

#include <stdexcept>

// The synchronous calls of the multi-threaded client.
#define THREADED 1
#include <zookeeper/zookeeper.h>

namespace Tarni::Testing
{
namespace
{
void Quiet(const char*) {}
}  // namespace

void TestZooKeeperServer::Create(const std::string& in_path, const std::string& in_data)
{
    const std::string ensemble = "127.0.0.1:" + std::to_string(m_port);
    zhandle_t* handle = zookeeper_init2(ensemble.c_str(), nullptr, 10000, nullptr, nullptr, 0, &Quiet);
    if (handle == nullptr)
    {
        throw std::runtime_error("zookeeper_init failed");
    }
    int rc = ZOK;
    for (std::size_t slash = in_path.find('/', 1); rc == ZOK || rc == ZNODEEXISTS;
         slash = in_path.find('/', slash + 1))
    {
        const std::string path = in_path.substr(0, slash);
        const bool last = slash == std::string::npos;
        // Synchronous calls wait for the session themselves.
        rc = zoo_create(handle, path.c_str(), last ? in_data.data() : nullptr,
                        last ? static_cast<int>(in_data.size()) : -1, &ZOO_OPEN_ACL_UNSAFE, 0, nullptr, 0);
        if (last)
        {
            break;
        }
    }
    zookeeper_close(handle);
    if (rc != ZOK)
    {
        throw std::runtime_error("creating " + in_path + ": " + zerror(rc));
    }
}
}  // namespace Tarni::Testing
