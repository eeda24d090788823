// The cost of the log: a call below the current level, enabled lines to a
// file with a flush after every line (against spdlog's file sink flushing on
// every line, in the same run), and lines with rotation at 1 MB over 5 files.
#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "support/log/DSIFileLogger.h"
#include "support/log/DriverLog.h"

using namespace Tarni::Support;
namespace fs = std::filesystem;

namespace
{
// A folder of its own for each benchmark, removed afterwards.
class BenchFolder
{
public:
    explicit BenchFolder(const std::string& in_name)
        : m_path(fs::temp_directory_path() / ("tarni-bench-" + in_name + "-" + std::to_string(std::random_device()())))
    {
        fs::create_directories(m_path);
    }
    ~BenchFolder() { fs::remove_all(m_path); }
    fs::path File(const std::string& in_name) const { return m_path / in_name; }

private:
    fs::path m_path;
};

// What a typical entry of the configuration code writes.
constexpr const char* NS = "Tarni::DriverSupport";
constexpr const char* CLS = "QDCConfiguration";
constexpr const char* FN = "Load";
}  // namespace

// A disabled call through the interface: the inline level comparison only.
static void BM_CallBelowLevel(benchmark::State& state)
{
    BenchFolder folder("below");
    DSIFileLogger file(folder.File("below.log").u16string(), LOG_ERROR, 0, 1);
    ILogger* logger = &file;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(logger);
        logger->LogDebug(NS, CLS, FN, "loaded %d values from %s", 42, "store");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_CallBelowLevel);

// The same through the program's log object (DriverLog), entry lines off.
static void BM_EntryLineBelowLevel(benchmark::State& state)
{
    BenchFolder folder("entry");
    DriverLog log(u"entry.log", [&](Tarni::tarni_wstring_view in_name) -> std::optional<Tarni::tarni_wstring> {
        if (in_name == u"LogLevel") return u"ERROR";
        if (in_name == u"LogPath") return folder.File("").u16string();
        return std::nullopt;
    });
    ILogger* logger = &log;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(logger);
        logger->LogFunctionEntrance(NS, CLS, FN);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_EntryLineBelowLevel);

// Enabled lines, each flushed to the file, no size limit.
static void BM_FileLines_Tarni(benchmark::State& state)
{
    BenchFolder folder("tarni");
    DSIFileLogger logger(folder.File("lines.log").u16string(), LOG_INFO, 0, 1);
    int i = 0;
    for (auto _ : state)
    {
        logger.LogInfo(NS, CLS, FN, "loaded %d values from %s", ++i, "store");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FileLines_Tarni)->MinTime(2.0)->UseRealTime();

// spdlog's file sink with a flush on every line and a comparable pattern:
// time with milliseconds, level, thread id, place and message.
static void BM_FileLines_Spdlog(benchmark::State& state)
{
    BenchFolder folder("spdlog");
    auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(folder.File("lines.log").string(), true);
    spdlog::logger logger("bench", sink);
    logger.set_pattern("%b %d %H:%M:%S.%e %-5l %t %v");
    logger.set_level(spdlog::level::info);
    logger.flush_on(spdlog::level::trace);
    int i = 0;
    for (auto _ : state)
    {
        logger.info("{}::{}::{}: loaded {} values from {}", NS, CLS, FN, ++i, "store");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FileLines_Spdlog)->MinTime(2.0)->UseRealTime();

// Enabled lines with rotation at 1 MB, five files.
static void BM_FileLinesRotating_Tarni(benchmark::State& state)
{
    BenchFolder folder("rotate");
    DSIFileLogger logger(folder.File("rotate.log").u16string(), LOG_INFO, 1024 * 1024, 5);
    int i = 0;
    for (auto _ : state)
    {
        logger.LogInfo(NS, CLS, FN, "loaded %d values from %s", ++i, "store");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FileLinesRotating_Tarni)->MinTime(2.0)->UseRealTime();

BENCHMARK_MAIN();
