// Makes Scintilla documents outside a pane, so that a worker can make room for a text of many megabytes and fill it.
#pragma once

#include <ILoader.h>

#include <cstddef>
#include <memory>

struct LoaderRelease {
    void operator()(Scintilla::ILoader* loader) const { loader->Release(); }
};
using LoaderOwner = std::unique_ptr<Scintilla::ILoader, LoaderRelease>;

// UI thread, before the first DocumentLoaderNew. False when there is no Scintilla.
bool DocumentLoaderPrepare();
// A new document with room for `size` bytes; without style bytes when `styles` is false. Null when memory runs out. Any
// thread.
LoaderOwner DocumentLoaderNew(std::size_t size, bool styles);
