#pragma once
namespace Tarni::ThriftExtension
{
/// The Thrift transport, numbered as the configuration stores it.
enum class TETransportMode : unsigned
{
    Binary = 0,
    SASL = 1,
    HTTP = 2,
};
}  // namespace Tarni::ThriftExtension
