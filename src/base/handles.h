// Owners of system handles, GDI objects and heap blocks. An owner frees its resource once: at the end of its scope or
// on Reset. Owners are moved, not copied.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <utility>

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
// For blocks from malloc(), such as those that functions of this program return to be freed with free().
template <typename T>
using HeapBlock = std::unique_ptr<T, FreeDeleter>;

struct LocalDeleter {
    void operator()(void* block) const { LocalFree(block); }
};
template <typename T>
using LocalBlock = std::unique_ptr<T, LocalDeleter>;

// `Traits` has the members Type, IsOpen(Type) and Close(Type).
template <typename Traits>
class UniqueResource {
public:
    using Type = typename Traits::Type;
    UniqueResource() = default;
    explicit UniqueResource(Type value) : value_(value) {}
    UniqueResource(UniqueResource&& other) noexcept : value_(other.Release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;
    ~UniqueResource() { Reset(); }

    Type Get() const { return value_; }
    explicit operator bool() const { return Traits::IsOpen(value_); }
    Type Release() { return std::exchange(value_, Type{}); }
    void Reset(Type value = Type{}) {
        if (Traits::IsOpen(value_)) Traits::Close(value_);
        value_ = value;
    }
    // For calls that return the resource through a pointer. The resource held before is closed.
    Type* Put() {
        Reset();
        return &value_;
    }

private:
    Type value_{};
};

// Kernel objects. Null and INVALID_HANDLE_VALUE both mean that there is none.
struct HandleTraits {
    using Type = HANDLE;
    static bool IsOpen(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CloseHandle(handle); }
};
using UniqueHandle = UniqueResource<HandleTraits>;

struct FindTraits {
    using Type = HANDLE;
    static bool IsOpen(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { FindClose(handle); }
};
using UniqueFind = UniqueResource<FindTraits>;

struct ModuleTraits {
    using Type = HMODULE;
    static bool IsOpen(HMODULE module) { return module != nullptr; }
    static void Close(HMODULE module) { FreeLibrary(module); }
};
using UniqueModule = UniqueResource<ModuleTraits>;

struct RegistryKeyTraits {
    using Type = HKEY;
    static bool IsOpen(HKEY key) { return key != nullptr; }
    static void Close(HKEY key) { RegCloseKey(key); }
};
using UniqueRegistryKey = UniqueResource<RegistryKeyTraits>;

// Brushes, pens, fonts and bitmaps. When one is closed, it must not be selected into a device context.
template <typename Object>
struct GdiTraits {
    using Type = Object;
    static bool IsOpen(Object object) { return object != nullptr; }
    static void Close(Object object) { DeleteObject(object); }
};
template <typename Object>
using UniqueGdi = UniqueResource<GdiTraits<Object>>;
using UniqueFont = UniqueGdi<HFONT>;
using UniqueBrush = UniqueGdi<HBRUSH>;
using UniquePen = UniqueGdi<HPEN>;
using UniqueBitmap = UniqueGdi<HBITMAP>;

struct MemoryDcTraits {
    using Type = HDC;
    static bool IsOpen(HDC dc) { return dc != nullptr; }
    static void Close(HDC dc) { DeleteDC(dc); }
};
using UniqueMemoryDc = UniqueResource<MemoryDcTraits>;
