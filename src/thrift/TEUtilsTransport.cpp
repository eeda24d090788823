// The part of TEUtils that needs Apache Thrift's transport types.
#include <exception>

#include <thrift/transport/TTransportException.h>

#include "thrift/TEUtils.h"

namespace Tarni::ThriftExtension
{
void TEUtils::TranslateTransportException(const apache::thrift::transport::TTransportException& in_error,
                                          bool in_isSasl)
{
    // An error thrown with std::throw_with_nested carries the real cause.
    if (const auto* nested = dynamic_cast<const std::nested_exception*>(&in_error);
        nested != nullptr && nested->nested_ptr() != nullptr)
    {
        nested->rethrow_nested();
    }
    TranslateTransportErrorText(in_error.what(), in_isSasl);
}
}  // namespace Tarni::ThriftExtension
