#pragma once
// Who answers the Test button and the command line's test: the Thrift
// connection tester, which every build carries.
#include "driversupport/IConnectionTester.h"

namespace Tarni::ThriftExtension
{
class TEConnectionTesterFactory
{
public:
    static DriverSupport::IConnectionTester& GetDefault();
};
}  // namespace Tarni::ThriftExtension
