#include "selftest/check_modules.h"

#include <algorithm>
#include <iterator>

namespace selftest {

void RunCheckModule(std::string_view name) {
    static constexpr struct {
        std::string_view name;
        void (*run)();
    } kRows[] = {{"mouse", CheckMouse},
                 {"tabs", CheckTabs},
                 {"editor-all", CheckEditing},
                 {"toolbar", CheckToolbar},
                 {"panes", CheckPanes},
                 {"files", CheckFiles},
                 {"compilers", CheckCompilers},
                 {"kb-debug", CheckKeldorSteps},
                 {"kvxb64-debug", CheckKvxb64Steps},
                 {"exit", CheckExit}};
    const auto* row = std::ranges::find(kRows, name, [](const auto& each) { return each.name; });
    if (row != std::end(kRows)) row->run();
}

}  // namespace selftest
