#pragma once
// Texts of the connection test's step details that depend on the target
// alone (never a secret).
#include <string>

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;

class TEStepDetails
{
public:
    /// How the test authenticates and as whom ("SASL PLAIN as alice", "HTTP
    /// Basic as alice", "HTTP Bearer token"); empty when a binary or HTTP
    /// connection sends no credentials at all.
    static std::string Mechanism(const TEConnectionTarget& in_target);
};
}  // namespace Tarni::ThriftExtension
