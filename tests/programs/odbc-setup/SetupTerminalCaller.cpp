// Not a test itself: a program that asks unixODBC's installer to configure a
// data source with a window handle, as an administration tool would, for
// SetupTerminalTest to drive the dialog that the setup library shows.
// Usage: SetupTerminalCaller add|config DSN [KEY=VALUE...]; prints the result.
#include <odbcinst.h>

#include <cstdio>
#include <cstring>
#include <string>

int main(int argc, char** argv)
{
    if (argc < 3)
    {
        std::fprintf(stderr, "usage: SetupTerminalCaller add|config DSN [KEY=VALUE...]\n");
        return 2;
    }
    std::string list = std::string("DSN=") + argv[2];
    list.push_back('\0');
    for (int i = 3; i < argc; ++i)
    {
        list += argv[i];
        list.push_back('\0');
    }
    list.push_back('\0');
    // Any non-null handle asks for the dialog; unixODBC passes its own structure on.
    int window = 0;
    const WORD request = std::strcmp(argv[1], "add") == 0 ? ODBC_ADD_DSN : ODBC_CONFIG_DSN;
    const BOOL result = SQLConfigDataSource(reinterpret_cast<HWND>(&window), request, "Tarni Spark ODBC Driver",
                                            list.c_str());
    DWORD code = 0;
    char message[512] = {};
    WORD length = 0;
    if (!result && SQLInstallerError(1, &code, message, sizeof(message), &length) == SQL_SUCCESS)
    {
        std::printf("ERROR=%u\n", static_cast<unsigned>(code));
    }
    std::printf("RESULT=%d\n", result ? 1 : 0);
    return result ? 0 : 1;
}
