#pragma once
// A logger for tests that keeps every formatted record in memory.
#include <cstdio>
#include <string>
#include <vector>

#include "core/ErrorException.h"
#include "core/ILogger.h"

namespace Tarni::Testing
{
class RecordingLogger : public Support::ILogger
{
public:
    struct Record
    {
        Support::LogLevel level;
        std::string function;
        std::string text;
        std::string place;  ///< namespace::class::function
    };
    std::vector<Record> records;

    explicit RecordingLogger(Support::LogLevel in_level = Support::LOG_TRACE) { m_level = in_level; }

    void LogMessageV(Support::LogLevel in_level, const char* in_ns, const char* in_cls, const char* in_function,
                     const char* in_format, va_list in_args) override
    {
        char buffer[4096];
        std::vsnprintf(buffer, sizeof(buffer), in_format, in_args);
        records.push_back({in_level, in_function, buffer, Place(in_ns, in_cls, in_function)});
    }
    void LogError(const char* in_ns, const char* in_cls, const char* in_function,
                  const Support::ErrorException& in_error) override
    {
        records.push_back({Support::LOG_ERROR, in_function, in_error.what(), Place(in_ns, in_cls, in_function)});
    }
    using ILogger::LogError;

    /// True when a record at the level has exactly this text.
    bool Has(Support::LogLevel in_level, const std::string& in_text) const
    {
        for (const auto& record : records)
            if (record.level == in_level && record.text == in_text) return true;
        return false;
    }
    /// True when a record at the level, logged in the place, contains the text.
    bool Has(Support::LogLevel in_level, const std::string& in_place, const std::string& in_text) const
    {
        for (const auto& record : records)
            if (record.level == in_level && record.place == in_place && record.text.find(in_text) != std::string::npos)
                return true;
        return false;
    }
    /// True when any record's text contains the fragment.
    bool HasFragment(const std::string& in_fragment) const
    {
        for (const auto& record : records)
            if (record.text.find(in_fragment) != std::string::npos) return true;
        return false;
    }
    /// True when a record at the level contains the text.
    bool Contains(Support::LogLevel in_level, const std::string& in_text) const
    {
        for (const auto& record : records)
            if (record.level == in_level && record.text.find(in_text) != std::string::npos) return true;
        return false;
    }

private:
    static std::string Place(const char* in_ns, const char* in_cls, const char* in_function)
    {
        return std::string(in_ns) + "::" + in_cls + "::" + in_function;
    }
};
}  // namespace Tarni::Testing
