#include "thrift/connectiontest/TEConnectionTesterFactory.h"

#include "thrift/connectiontest/TEConnectionTester.h"

namespace Tarni::ThriftExtension
{
DriverSupport::IConnectionTester& TEConnectionTesterFactory::GetDefault()
{
    return TEConnectionTester::Instance();
}
}  // namespace Tarni::ThriftExtension
