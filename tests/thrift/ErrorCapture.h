#pragma once
// Runs a callable that must throw an ErrorException and returns its key and
// its first parameter in UTF-8 (the assembled text of most Thrift-layer errors).
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::Testing
{
struct CapturedError
{
    std::string key;
    std::string text;
};

template <typename Callable>
CapturedError CaptureError(Callable&& in_callable)
{
    try
    {
        std::forward<Callable>(in_callable)();
    }
    catch (const Support::ErrorException& e)
    {
        return {Support::StringConverter::ToUtf8(e.GetMessageKey()),
                e.GetParameters().empty() ? std::string() : Support::StringConverter::ToUtf8(e.GetParameters()[0])};
    }
    ADD_FAILURE() << "no ErrorException was thrown";
    return {};
}
}  // namespace Tarni::Testing
