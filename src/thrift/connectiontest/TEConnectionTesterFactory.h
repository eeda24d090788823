#pragma once
// Who answers the Test button and the command line's test: the Thrift
// connection tester where this build has Apache Thrift and OpenSSL, otherwise
// the tester that says connection testing is not available.
#include "driversupport/IConnectionTester.h"

namespace Tarni::ThriftExtension
{
class TEConnectionTesterFactory
{
public:
    static DriverSupport::IConnectionTester& GetDefault();
};
}  // namespace Tarni::ThriftExtension
