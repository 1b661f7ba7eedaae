// Measures KVX-Editor and the floor program, or shows what was measured. See kUsage.
#include "bench.h"
#include "groups.h"

#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr double kAllLimitMs = 25 * 60'000.0;
constexpr double kGroupLimitMs = 6 * 60'000.0;
constexpr int kFailed = 1, kWrongUse = 2, kSlower = 3;
constexpr char kUsage[] =
    "bench [--quick] [--json FILE] [--compare FILE] [GROUP...]   measures all groups, or these\n"
    "bench --results FILE [--compare FILE]                       shows what was measured before\n"
    "bench --results FILE --markdown | --headlines               the same for a page\n"
    "Ends with 0, with 1 when a group could not be measured, with 3 when a row is slower than in the file of "
    "--compare.\n"
    "The groups are:";

struct Options {
    bool quick = false, markdown = false, headlines = false;
    std::wstring json, compare, results;
    std::vector<const Group*> groups;
};

int WrongUse(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n%s", what.c_str(), kUsage);
    for (const Group& group : Groups()) std::fprintf(stderr, " %s", group.name);
    std::fprintf(stderr, "\n");
    return kWrongUse;
}

// Returns what is wrong, or nothing.
std::string ReadOptions(const std::vector<std::wstring>& words, Options* options) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::wstring& word = words[i];
        std::wstring* file = word == L"--json"      ? &options->json
                             : word == L"--compare" ? &options->compare
                             : word == L"--results" ? &options->results
                                                    : nullptr;
        if (file != nullptr) {
            if (++i == words.size()) return Narrow(word) + " needs a file";
            *file = words[i];
        } else if (word == L"--quick") {
            options->quick = true;
        } else if (word == L"--markdown") {
            options->markdown = true;
        } else if (word == L"--headlines") {
            options->headlines = true;
        } else if (const Group* group = GroupOf(Narrow(word)); group != nullptr) {
            options->groups.push_back(group);
        } else {
            return "there is no option or group \"" + Narrow(word) + "\"";
        }
    }
    if (options->groups.empty())
        for (const Group& group : Groups()) options->groups.push_back(&group);
    return {};
}

std::string Variable(const wchar_t* name) {
    wchar_t text[512] = {};
    const DWORD length = GetEnvironmentVariableW(name, text, 512);
    return length > 0 && length < 512 ? Narrow(text) : "?";
}

std::string Today() {
    char text[32] = {};
    const std::time_t now = std::time(nullptr);
    std::strftime(text, sizeof(text), "%Y-%m-%d", std::gmtime(&now));
    return text;
}

Results Load(const std::wstring& path) {
    Results results;
    if (!ResultsFromJson(ReadText(path), &results)) Die(Narrow(path) + " holds no results");
    return results;
}

// The groups that could not be measured are named in `*missing`.
Results Measure(const Options& options, std::string* missing) {
    std::filesystem::create_directories(RunFolder());
    if (options.quick) SetEnvironmentVariableW(L"KVX_BENCH_QUICK", L"1");
    Results results = {.machine = Variable(L"KVX_BENCH_MACHINE"),
                       .commit = Variable(L"KVX_BENCH_COMMIT"),
                       .date = Today(),
                       .quick = options.quick};
    const double begun = NowMs();
    for (const Group* group : options.groups) {
        const double start = NowMs();
        std::printf("%s:\n", group->name);
        std::fflush(stdout);
        const double left = begun + kAllLimitMs - start;
        if (left <= 0 || !RunGroup(*group, std::min(left, kGroupLimitMs), &results))
            *missing += std::string(" ") + group->name;
        std::printf("  (%.0f s)\n", (NowMs() - start) / 1000);
    }
    return results;
}

int Show(const Results& results, const Options& options) {
    if (options.markdown || options.headlines) {
        std::printf("%s", MarkdownTable(results, options.headlines).c_str());
        return 0;
    }
    std::printf("\n%s", TextTable(results).c_str());
    if (results.quick) std::printf("A quick run: its values only show that the measurements work.\n");
    if (options.compare.empty()) return 0;
    const Comparison comparison = CompareResults(Load(options.compare), results);
    std::printf("\n%s", comparison.text.c_str());
    return comparison.slower > 0 ? kSlower : 0;
}

}  // namespace

int main() {
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr) Die("no command line");
    const std::vector<std::wstring> words(arguments + 1, arguments + count);
    if (words.size() == 3 && words[0] == L"--group") {
        const Group* group = GroupOf(Narrow(words[1]));
        return group != nullptr ? RunGroupHere(*group, words[2]) : kWrongUse;
    }
    Options options;
    if (const std::string fault = ReadOptions(words, &options); !fault.empty()) return WrongUse(fault);
    if (!options.results.empty()) return Show(Load(options.results), options);
    std::string missing;
    const Results results = Measure(options, &missing);
    if (!options.json.empty()) WriteText(options.json, ResultsToJson(results));
    const int code = Show(results, options);
    if (missing.empty()) return code;
    std::printf("NOT MEASURED:%s\n", missing.c_str());
    return kFailed;
}
