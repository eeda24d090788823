#pragma once
// The throw-away CA and certificates of the connection tests, which CTest's
// fixture "thrift_connection_certificates" makes on the host before the tests
// (also for the Windows build, whose tests run under Wine) in the folder
// TARNI_TEST_CERTIFICATES names.
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Tarni::Testing
{
class TestCertificates
{
public:
    static const std::filesystem::path& Folder()
    {
        static const std::filesystem::path folder = [] {
            const std::filesystem::path path = TARNI_TEST_CERTIFICATES;
            if (!std::filesystem::exists(path / "done"))
            {
                throw std::runtime_error("No test certificates in " + path.string() +
                                         ": run the tests through ctest, or make-test-certs.sh with that folder");
            }
            return path;
        }();
        return folder;
    }

    /// The file in_name ("ca.pem", "server.key"...) of the folder.
    static std::string File(const std::string& in_name) { return (Folder() / in_name).string(); }
};
}  // namespace Tarni::Testing
