// The driver-wide INI store measured against the floor of any save: writing
// the same bytes to a temporary file, flushing it to disk and renaming it.
// One iteration of the store is what a run of the tool does: load the
// configuration (defaults, then every stored value), change one setting and
// save (every driver-wide key is written back in one replace of the file).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "driversupport/DSServerSidePropertyGroup.h"
#include "platform/posix/IniFileStore.h"
#include "product/QDCConfiguration.h"
#include "product/SOProductIdentity.h"
#include "core/NumberConverter.h"
#include "platform/TextConversion.h"
#include "support/TarniSettingStoreScope.h"

using namespace Tarni;

namespace
{
class BenchFolder
{
public:
    BenchFolder()
    {
        std::random_device random;
        // Beside the build, on the same disk as real settings files (not a tmpfs).
        m_path = std::filesystem::current_path() / ("ini-bench-" + std::to_string(random()));
        std::filesystem::create_directories(m_path);
    }
    ~BenchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    std::filesystem::path File(const std::string& in_name) const { return m_path / in_name; }

private:
    std::filesystem::path m_path;
};

/// A file as an administrator's would look: a comment, another section, and
/// in_count values in [Driver] (the usual keys plus further driver keys).
std::string MakeFile(int64_t in_count)
{
    std::string text = "; driver-wide settings\n[ODBC]\nTrace=no\n\n[Driver]\n";
    for (int64_t i = 0; i < in_count; ++i)
    {
        text += "DriverKey" + std::to_string(i) + " = value number " + std::to_string(i) + "\n";
    }
    return text;
}

std::string ReadFile(const std::filesystem::path& in_path)
{
    std::ifstream file(in_path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void LoadAndSave(const std::filesystem::path& in_file, int64_t in_round)
{
    Platform::IniFileStore store(Platform::TextConversion::StrictUtf8ToUtf16(in_file.string()), u"Driver");
    const Support::TarniSettingStoreScope scope(store);
    DriverSupport::DSServerSidePropertyGroup serverSideProperties;
    DriverSupport::DSPrefixedPropertyGroup httpHeaders("http.header.");
    SparkODBC::QDCConfiguration config(serverSideProperties, httpHeaders, nullptr, store);
    config.Load();
    config.SetSetting(u"SocketTimeout", Support::NumberConverter::ToText(static_cast<unsigned long long>(in_round % 100)));
    config.Save();
}

void WriteFlushRename(const std::filesystem::path& in_file, const std::string& in_bytes)
{
    const std::string temp = in_file.string() + ".tmp";
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0 || write(fd, in_bytes.data(), in_bytes.size()) != static_cast<ssize_t>(in_bytes.size()) ||
        fsync(fd) != 0 || close(fd) != 0 || rename(temp.c_str(), in_file.c_str()) != 0)
    {
        std::perror("floor");
        std::abort();
    }
}

void BM_IniLoadSave(benchmark::State& io_state)
{
    SparkODBC::SOProductIdentity::Register();
    BenchFolder folder;
    const auto file = folder.File("odbc.ini");
    std::ofstream(file, std::ios::binary) << MakeFile(io_state.range(0));
    int64_t round = 0;
    LoadAndSave(file, round++);  // the first save adds the defaults; measure steady runs
    for (auto _ : io_state)
    {
        LoadAndSave(file, round++);
    }
    io_state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file));
}

void BM_Floor_WriteFlushRename(benchmark::State& io_state)
{
    SparkODBC::SOProductIdentity::Register();
    BenchFolder folder;
    const auto file = folder.File("odbc.ini");
    std::ofstream(file, std::ios::binary) << MakeFile(io_state.range(0));
    LoadAndSave(file, 0);
    const std::string bytes = ReadFile(file);  // the same bytes a save writes
    for (auto _ : io_state)
    {
        WriteFlushRename(file, bytes);
    }
    io_state.counters["bytes"] = static_cast<double>(bytes.size());
}
}  // namespace

BENCHMARK(BM_IniLoadSave)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Floor_WriteFlushRename)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
