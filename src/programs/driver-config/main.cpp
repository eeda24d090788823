// The dialog program: the configuration run over the platform's dialog host.
// Without arguments it edits the driver-wide settings and the exit code is
// the main dialog's result; "--dsn NAME [--system]" opens the DSN setup
// dialog over that data source instead.
#include <iostream>

#include "core/ErrorException.h"
#include "platform/ProcessEnvironment.h"
#include "programs/driver-config/SODataSourceDialogRun.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "support/messages/DSIMessageManager.h"
#include "ui/DialogHostFactory.h"

int main(int argc, char** argv)
{
    auto host = Tarni::Platform::DialogHostFactory::CreateProgramHost();
    if (argc <= 1)
    {
        return Tarni::SparkODBC::SODriverConfigRun::Run(*host);
    }
    const auto arguments = Tarni::Platform::ProcessEnvironment::GetArguments(argc, argv);
    Tarni::SparkODBC::SODataSourceDialogRun::Options options;
    bool named = false;
    for (size_t i = 0; i < arguments.size(); ++i)
    {
        if (arguments[i] == u"--dsn" && i + 1 < arguments.size() && !named)
        {
            options.dsnName = arguments[++i];
            named = true;
        }
        else if (arguments[i] == u"--system")
        {
            options.systemMode = true;
        }
        else
        {
            std::cerr << "Usage: tarni-spark-driver-config [--dsn NAME [--system]]\n";
            return Tarni::SparkODBC::SODriverConfigRun::RESULT_STORE_ERROR;
        }
    }
    if (!named)
    {
        std::cerr << "Usage: tarni-spark-driver-config [--dsn NAME [--system]]\n";
        return Tarni::SparkODBC::SODriverConfigRun::RESULT_STORE_ERROR;
    }
    if (!options.systemMode)
    {
        options.systemMode = false;
    }
    try
    {
        return Tarni::SparkODBC::SODataSourceDialogRun::Run(*host, options);
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        std::cerr << "tarni-spark-driver-config: " << Tarni::Support::DSIMessageManager::GetDisplayTextUtf8(e) << "\n";
        return Tarni::SparkODBC::SODriverConfigRun::RESULT_STORE_ERROR;
    }
}
