#include "selftest/modules.h"

#include <algorithm>

namespace {

constexpr SelfTestModule kModules[] = {
    {"mouse", L"--selftest", "clicks, double clicks, drags and the wheel in the editor", "long.bas"},
    {"tabs", L"--selftest-tabs", "switching, closing and selecting with three tabs", "one.bas two.bas three.bas"},
    {"editor-all", L"--selftest-editor-all",
     "typing, undo, saving, colours, close, a KVXB64 build, debug commands without a program", "hello.bas long.bas"},
    {"toolbar", L"--selftest-toolbar", "buttons, their order and pictures, the compiler's name", "hello.bas"},
    {"panes", L"", "each pane shown and hidden, the states of menu items", "hello.bas"},
    {"files", L"", "files with and without a mark, with CR LF and LF, saved in the form they had",
     "utf8.bas marked.bas lines.bas ansi.bas"},
    {"compilers", L"--selftest-compilers", "a build with each compiler that is installed", ""},
    {"kb-debug", L"--selftest-kb-debug", "KeldorBasic: step by step through a program", ""},
    {"kvxb64-debug", L"--selftest-kvxb64-debug", "KVXB64: step by step through IF and ELSE with DOUBLE", ""},
    {"exit", L"--selftest-exit", "File > Exit closes the window", "hello.bas"},
};

}  // namespace

std::span<const SelfTestModule> SelfTestModules() { return kModules; }

const SelfTestModule* SelfTestModuleOf(std::string_view name) {
    const auto* row = std::ranges::find(kModules, name, &SelfTestModule::name);
    return row != std::end(kModules) ? row : nullptr;
}

std::vector<const SelfTestModule*> SelfTestModulesOf(std::string_view names, std::optional<std::string>* unknown) {
    std::vector<const SelfTestModule*> modules;
    for (bool more = true; more;) {
        const std::size_t comma = std::min(names.find(','), names.size());
        const std::string_view name = names.substr(0, comma);
        more = comma < names.size();
        if (more) names.remove_prefix(comma + 1);
        const std::size_t before = modules.size();
        for (const SelfTestModule& row : kModules)
            if (name == "all" || name == row.name) modules.push_back(&row);
        if (modules.size() == before && !*unknown) unknown->emplace(name);
    }
    return modules;
}

const SelfTestModule* SelfTestModuleOfOption(std::wstring_view option) {
    if (option.empty()) return nullptr;
    const auto* row = std::ranges::find(kModules, option, &SelfTestModule::option);
    return row != std::end(kModules) ? row : nullptr;
}

std::string SelfTestList() {
    std::string text;
    for (const SelfTestModule& module : kModules) {
        std::string line{module.name};
        line.resize(std::max<std::size_t>(line.size() + 1, 14), ' ');
        text += line + std::string(module.about) + "\n";
    }
    return text;
}
