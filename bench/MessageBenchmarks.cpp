// The cost of the message catalogue: the first lookup of a component (which
// reads and parses its file) and repeated lookups from the cache.
#include <benchmark/benchmark.h>

#include <memory>

#include "support/messages/DSIMessageManager.h"

using namespace Tarni::Support;

namespace
{
const std::vector<Tarni::tarni_wstring> PARAMETERS = {u"/home/user/.sparkodbc.ini", u"Permission denied"};
}

// A new catalogue each time: find the file, parse it, fill in the parameters.
static void BM_FirstLookup(benchmark::State& state)
{
    for (auto _ : state)
    {
        DSIMessageManager catalogue(std::make_shared<DSIMessageSource>());
        benchmark::DoNotOptimize(catalogue.GetErrorMessage(u"en-US", u"DSIniReadErr", PARAMETERS, DS_ERROR));
    }
}
BENCHMARK(BM_FirstLookup);

// The file is in the cache: look up and fill in only.
static void BM_RepeatedLookup(benchmark::State& state)
{
    DSIMessageManager catalogue(std::make_shared<DSIMessageSource>());
    catalogue.GetErrorMessage(u"en-US", u"DSIniReadErr", PARAMETERS, DS_ERROR);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(catalogue.GetErrorMessage(u"en-US", u"DSIniReadErr", PARAMETERS, DS_ERROR));
    }
}
BENCHMARK(BM_RepeatedLookup);

BENCHMARK_MAIN();
