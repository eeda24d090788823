#include <iostream>

#include "platform/ProcessEnvironment.h"
#include "programs/config-cli/ConfigCommandLine.h"
#include "core/ErrorException.h"
#include "support/messages/DSIMessageManager.h"

int main(int argc, char** argv)
{
    Tarni::Platform::ProcessEnvironment::PrepareConsole();
    try
    {
        const auto arguments = Tarni::Platform::ProcessEnvironment::GetArguments(argc, argv);
        Tarni::SparkODBC::ConfigCommandLine commandLine(std::cin, std::cout, std::cerr);
        return commandLine.Run(arguments);
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        std::cerr << "tarni-spark-config: the command line: "
                  << Tarni::Support::DSIMessageManager::GetDisplayTextUtf8(e) << "\n";
        return Tarni::SparkODBC::ConfigCommandLine::RESULT_USAGE;
    }
}
