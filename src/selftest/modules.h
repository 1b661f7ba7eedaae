// The modules of the self-test as a table: what each is called and tests. Pure.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct SelfTestModule {
    std::string_view name;       // for --test and --test-list
    std::wstring_view option;    // its own option; empty: it has none
    std::string_view about;      // one line
    std::string_view documents;  // sample files that are open when it begins, names with a blank between
};

std::span<const SelfTestModule> SelfTestModules();

// The module of a name or of an option; null: there is none.
const SelfTestModule* SelfTestModuleOf(std::string_view name);
const SelfTestModule* SelfTestModuleOfOption(std::wstring_view option);

// The modules of names that are parted by commas; "all" is each of them. `*unknown` becomes the first name that is none.
std::vector<const SelfTestModule*> SelfTestModulesOf(std::string_view names, std::optional<std::string>* unknown);

// What "--test-list" prints: a line for each module.
std::string SelfTestList();
