// Runs a command inside a throw-away Kerberos realm:
//   tarni-test-kdc SERVICE COMMAND [ARGUMENT...]
// creates the realm with the service principal SERVICE ("spark/localhost")
// and its keytab, starts the KDC, gets the user's ticket, and runs COMMAND
// with KRB5_CONFIG and KRB5CCNAME pointing at the realm,
// TARNI_TEST_KERBEROS_SERVICE set to the full service principal and
// TARNI_TEST_KERBEROS_KEYTAB to the keytab. Wine programs see the same realm
// (Wine's Kerberos provider honours these variables). Exits with the
// command's status; the KDC and the realm's folder go away afterwards.
#include <cstdlib>
#include <iostream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "thrift/connectiontest/TestKdc.h"

int main(int argc, char** argv)
{
    using Tarni::Testing::TestKdc;
    if (argc < 3)
    {
        std::cerr << "usage: tarni-test-kdc SERVICE COMMAND [ARGUMENT...]\n";
        return 2;
    }
    const std::string missing = TestKdc::MissingPrograms();
    if (!missing.empty())
    {
        std::cout << "tarni-test-kdc: skipped: " << missing << std::endl;
        return 0;
    }
    try
    {
        TestKdc kdc(argv[1]);
        kdc.Kinit();
        ::setenv("TARNI_TEST_KERBEROS_SERVICE", (std::string(argv[1]) + "@" + TestKdc::REALM).c_str(), 1);
        ::setenv("TARNI_TEST_KERBEROS_KEYTAB", kdc.Keytab().c_str(), 1);
        const pid_t child = ::fork();
        if (child == 0)
        {
            ::execvp(argv[2], argv + 2);
            std::cerr << "tarni-test-kdc: cannot run " << argv[2] << "\n";
            ::_exit(127);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    }
    catch (const std::exception& e)
    {
        std::cerr << "tarni-test-kdc: " << e.what() << "\n";
        return 1;
    }
}
