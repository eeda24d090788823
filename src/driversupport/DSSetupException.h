#pragma once
#include <exception>

namespace Tarni::DriverSupport
{
/// A setup error of the configuration dialogs. The code indexes a fixed
/// table of string resources (DSSetupErrorCode); the dialog framework turns it
/// into the text of an error box.
enum DSSetupErrorCode : unsigned
{
    SETUP_INVALID_HWND = 0,
    SETUP_INVALID_KEYWORD_VALUE = 1,
    SETUP_INVALID_NAME = 2,
    SETUP_INVALID_REQUEST_TYPE = 3,
    SETUP_REQUEST_FAILED = 4,
    SETUP_DRIVER_SPECIFIC = 5,
    SETUP_REGISTRY_WRITE = 6,
    SETUP_INVALID_DSN_CHARACTERS = 7,
    SETUP_INVALID_LOG_FILE_COUNT = 8,
    SETUP_INVALID_LOG_FILE_SIZE = 9,
};

class DSSetupException : public std::exception
{
public:
    explicit DSSetupException(unsigned in_code) : m_code(in_code) {}
    unsigned GetErrorCode() const { return m_code; }
    const char* what() const noexcept override { return "DSSetupException"; }

private:
    unsigned m_code;
};
}  // namespace Tarni::DriverSupport
