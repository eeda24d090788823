// Runs a fuzz target without libFuzzer (compilers other than clang): replays
// every file given on the command line (folders are walked; options starting
// with "-" are ignored), then feeds the
// target with random mutations of them for the number of runs in
// TARNI_FUZZ_RUNS (default 0), reproducibly from TARNI_FUZZ_SEED.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, size_t in_size);

namespace
{
std::vector<std::string> LoadInputs(int in_argc, char** in_argv)
{
    std::vector<std::string> inputs;
    for (int i = 1; i < in_argc; ++i)
    {
        if (in_argv[i][0] == '-')
        {
            continue;  // libFuzzer options such as -runs=0 mean nothing here
        }
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(in_argv[i]))
        {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(in_argv[i]))
            {
                if (entry.is_regular_file())
                {
                    files.push_back(entry.path());
                }
            }
        }
        else
        {
            files.emplace_back(in_argv[i]);
        }
        for (const auto& file : files)
        {
            std::ifstream stream(file, std::ios::binary);
            inputs.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        }
    }
    return inputs;
}

void Run(const std::string& in_input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(in_input.data()), in_input.size());
}
}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> inputs = LoadInputs(argc, argv);
    for (const std::string& input : inputs)
    {
        Run(input);
    }
    const char* runsText = std::getenv("TARNI_FUZZ_RUNS");
    const char* seedText = std::getenv("TARNI_FUZZ_SEED");
    const unsigned long runs = runsText != nullptr ? std::strtoul(runsText, nullptr, 10) : 0;
    std::mt19937 random(seedText != nullptr ? static_cast<unsigned>(std::strtoul(seedText, nullptr, 10)) : 1U);
    if (inputs.empty())
    {
        inputs.emplace_back();
    }
    for (unsigned long run = 0; run < runs; ++run)
    {
        std::string input = inputs[random() % inputs.size()];
        const unsigned edits = 1 + random() % 8;
        for (unsigned e = 0; e < edits; ++e)
        {
            const size_t at = input.empty() ? 0 : random() % (input.size() + 1);
            switch (random() % 4)
            {
                case 0: input.insert(input.begin() + static_cast<long>(at), static_cast<char>(random())); break;
                case 1: if (at < input.size()) input.erase(at, 1 + random() % 16); break;
                case 2: if (at < input.size()) input[at] = static_cast<char>(random()); break;
                default: input.resize(at); break;
            }
        }
        Run(input);
    }
    std::printf("%zu inputs replayed, %lu mutated runs\n", inputs.size(), runs);
    return 0;
}
