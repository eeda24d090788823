#pragma once
// Diagnostic states (SQLSTATE values) carried by exceptions.
namespace Tarni::Support
{
enum class DiagState
{
    GeneralError,       ///< HY000
    InvalidArgument,    ///< HY009
    MemoryAllocation,   ///< HY001
    OptionalFeature,    ///< HYC00
};

inline const char* DiagStateCode(DiagState in_state)
{
    switch (in_state)
    {
        case DiagState::InvalidArgument: return "HY009";
        case DiagState::MemoryAllocation: return "HY001";
        case DiagState::OptionalFeature: return "HYC00";
        case DiagState::GeneralError: break;
    }
    return "HY000";
}
}  // namespace Tarni::Support
