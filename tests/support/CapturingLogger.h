#pragma once
// A logger for tests that keeps every formatted line in memory.
#include <mutex>
#include <string>
#include <vector>

#include "support/log/DSILogger.h"

namespace TarniTest
{
class CapturingLogger : public Tarni::Support::DSILogger
{
public:
    explicit CapturingLogger(Tarni::Support::LogLevel in_level = Tarni::Support::LOG_TRACE)
        : DSILogger(in_level, "capture")
    {
    }

    std::vector<std::string> Lines() const
    {
        std::lock_guard<std::mutex> guard(m_lock);
        return m_lines;
    }

    /// True when some line contains the text.
    bool Contains(const std::string& in_text) const
    {
        for (const std::string& line : Lines())
        {
            if (line.find(in_text) != std::string::npos)
            {
                return true;
            }
        }
        return false;
    }

protected:
    void WriteLine(Tarni::Support::LogLevel, const std::string& in_line) override
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_lines.push_back(in_line);
    }

private:
    mutable std::mutex m_lock;
    std::vector<std::string> m_lines;
};
}  // namespace TarniTest
