#include "thrift/connectiontest/TEConnectionTesterFactory.h"

#ifdef TARNI_HAVE_CONNECTION_TESTER
#include "thrift/connectiontest/TEConnectionTester.h"
#else
#include "driversupport/DSUnavailableConnectionTester.h"
#endif

namespace Tarni::ThriftExtension
{
DriverSupport::IConnectionTester& TEConnectionTesterFactory::GetDefault()
{
#ifdef TARNI_HAVE_CONNECTION_TESTER
    return TEConnectionTester::Instance();
#else
    return DriverSupport::DSUnavailableConnectionTester::Instance();
#endif
}
}  // namespace Tarni::ThriftExtension
