#pragma once
// Shared by the tests of stored secrets.
#include <gtest/gtest.h>

#include "common/SecretKeySources.h"
#include "core/ErrorException.h"

namespace SecretTest
{
using KeySources = Tarni::Testing::SecretKeySources;

inline Tarni::tarni_wstring Wide(const std::filesystem::path& in_path)
{
    return KeySources::Wide(in_path);
}

inline void WriteFile(const std::filesystem::path& in_path, const std::string& in_bytes)
{
    Tarni::Testing::TempDirectory::WriteFile(in_path, in_bytes);
}

/// Runs the call and returns the ErrorException it throws.
template <typename Call>
Tarni::Support::ErrorException Caught(Call&& in_call)
{
    try
    {
        in_call();
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        return e;
    }
    ADD_FAILURE() << "no ErrorException was thrown";
    return Tarni::Support::ErrorException(Tarni::Support::DiagState::GeneralError, 0, u"(none)");
}
}  // namespace SecretTest
