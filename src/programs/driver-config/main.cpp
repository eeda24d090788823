// The dialog program: the configuration run over the platform's dialog host.
// It takes no arguments; the exit code is the main dialog's result.
#include "ui/DialogHostFactory.h"
#include "programs/driver-config/SODriverConfigRun.h"

int main()
{
    auto host = Tarni::Platform::DialogHostFactory::CreateProgramHost();
    return Tarni::SparkODBC::SODriverConfigRun::Run(*host);
}
