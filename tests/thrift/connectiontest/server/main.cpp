// The test server as a program, for trying the connection test by hand and
// for the terminal and Win32 flow tests:
//   tarni-test-tcli-server MODE [--user U --password P] [--path /p]
//                          [--cert FILE --key FILE] [--max-tls 1.1] [--keytab FILE] [--refuse-getinfo]
// MODE is binary, sasl or http; with --keytab, sasl and http want Kerberos
// (SASL GSSAPI, HTTP Negotiate) with that service keytab. Prints the port on the first line, then
// serves until killed.
#include <cstring>
#include <iostream>

#include "thrift/connectiontest/server/TestTCLIServer.h"

int main(int argc, char** argv)
{
    using Tarni::Testing::TestTCLIServer;
    if (argc < 2)
    {
        std::cerr << "usage: tarni-test-tcli-server binary|sasl|http [--user U] [--password P] [--token T] "
                     "[--path /p] [--cert FILE --key FILE] [--max-tls V] [--keytab FILE] [--refuse-getinfo]\n";
        return 2;
    }
    TestTCLIServer::Options options;
    const std::string mode = argv[1];
    options.mode = mode == "sasl" ? TestTCLIServer::Mode::Sasl
                   : mode == "http" ? TestTCLIServer::Mode::Http
                                    : TestTCLIServer::Mode::Binary;
    for (int i = 2; i < argc; i += 2)
    {
        const std::string name = argv[i];
        if (name == "--refuse-getinfo")
        {
            options.refuseGetInfo = true;
            --i;
            continue;
        }
        if (i + 1 >= argc)
        {
            std::cerr << "tarni-test-tcli-server: " << name << " needs a value\n";
            return 2;
        }
        const std::string value = argv[i + 1];
        if (name == "--user") options.user = value;
        else if (name == "--password") options.password = value;
        else if (name == "--token") options.bearerToken = value;
        else if (name == "--path") options.httpPath = value;
        else if (name == "--cert") options.certificateFile = value;
        else if (name == "--key") options.keyFile = value;
        else if (name == "--max-tls") options.maxTls = value;
        else if (name == "--keytab") options.keytab = value;
        else
        {
            std::cerr << "tarni-test-tcli-server: unknown option " << name << "\n";
            return 2;
        }
    }
    TestTCLIServer server(options);
    std::cout << server.Port() << std::endl;
    server.Wait();
    return 0;
}
