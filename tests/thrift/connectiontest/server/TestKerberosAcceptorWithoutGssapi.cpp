// The test server's Kerberos acceptor where the system has no GSSAPI (the
// Windows build): the Kerberos tests run on Linux against a throw-away MIT
// realm, so a server asked for Kerberos here refuses every token.
#include "thrift/connectiontest/server/TestKerberosAcceptor.h"

namespace Tarni::Testing
{
TestKerberosAcceptor::TestKerberosAcceptor(const std::string&) {}

TestKerberosAcceptor::~TestKerberosAcceptor() = default;

bool TestKerberosAcceptor::Accept(const std::string&, std::string& out_token, std::string& out_error)
{
    out_token.clear();
    out_error = "this test server has no GSSAPI to accept Kerberos with";
    return false;
}

bool TestKerberosAcceptor::Wrap(const std::string&, std::string&)
{
    return false;
}

bool TestKerberosAcceptor::Unwrap(const std::string&, std::string&)
{
    return false;
}
}  // namespace Tarni::Testing
