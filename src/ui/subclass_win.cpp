#include "ui/subclass.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

struct Link {
    SubclassProc proc;
    DWORD_PTR data;
};

struct Chain {
    WNDPROC control = nullptr;
    std::vector<Link> links;    // in the order in which they were added
    std::size_t remaining = 0;  // links that have not seen the current message yet
};

std::unordered_map<HWND, Chain> g_chains;  // until WM_NCDESTROY

Chain* ChainOf(HWND window) {
    const auto found = g_chains.find(window);
    return found == g_chains.end() ? nullptr : &found->second;
}

// Passes the message to the last of the first `count` links, or to the control when there is none.
LRESULT Pass(HWND window, std::size_t count, UINT message, WPARAM wParam, LPARAM lParam) {
    Chain* chain = ChainOf(window);
    if (chain == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    count = std::min(count, chain->links.size());  // one may have removed itself
    const std::size_t outer = std::exchange(chain->remaining, count == 0 ? 0 : count - 1);
    LRESULT result = 0;
    if (count == 0) {
        result = CallWindowProcW(chain->control, window, message, wParam, lParam);
    } else {
        const Link link = chain->links[count - 1];
        result = link.proc(window, message, wParam, lParam, link.data);
    }
    chain = ChainOf(window);  // the message may have destroyed the window
    if (chain != nullptr) chain->remaining = outer;
    return result;
}

LRESULT CALLBACK ChainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const Chain* chain = ChainOf(window);
    const LRESULT result = Pass(window, chain != nullptr ? chain->links.size() : 0, message, wParam, lParam);
    if (message == WM_NCDESTROY) g_chains.erase(window);
    return result;
}

std::vector<Link>::iterator FindLink(Chain& chain, SubclassProc proc) {
    return std::ranges::find(chain.links, proc, &Link::proc);
}

}  // namespace

bool SubclassAdd(HWND window, SubclassProc proc, DWORD_PTR data) {
    Chain* chain = ChainOf(window);
    if (chain == nullptr) {
        const LONG_PTR control = SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ChainProc));
        if (control == 0) return false;
        chain = &g_chains[window];
        chain->control = reinterpret_cast<WNDPROC>(control);
    }
    const auto link = FindLink(*chain, proc);
    if (link == chain->links.end())
        chain->links.push_back({proc, data});
    else
        link->data = data;
    return true;
}

void SubclassRemove(HWND window, SubclassProc proc) {
    Chain* chain = ChainOf(window);
    if (chain == nullptr) return;
    const auto link = FindLink(*chain, proc);
    if (link == chain->links.end()) return;
    if (static_cast<std::size_t>(link - chain->links.begin()) < chain->remaining) --chain->remaining;
    chain->links.erase(link);
}

LRESULT CALLBACK SubclassNext(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const Chain* chain = ChainOf(window);
    return Pass(window, chain != nullptr ? chain->remaining : 0, message, wParam, lParam);
}
