// An allocator that finds faults: a block ends at an inaccessible page, so that a read or write behind it is an exception
// at that very instruction; a freed block becomes inaccessible and is not used again for long. Linked into a program with
// --wrap for malloc, calloc, realloc and free, on which operator new stands, too. Each block costs at least two entries in
// the system's map of memory, of which Linux gives a process 65,530: so a part of the blocks is taken, by chance.
//   KVX_GUARD_PERCENT  how many of the blocks (default 100)      KVX_GUARD_SEED  which ones (default 1)
//   KVX_GUARD_LIVE     how many at a time (default 12000); what comes beyond that is allocated as usual
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace {

constexpr std::size_t kPage = 4096, kArenaPages = std::size_t{1} << 22;  // 16 GB of addresses
constexpr std::size_t kClasses = 64;         // blocks of up to that many pages; larger ones are allocated as usual
constexpr std::uint32_t kQuarantine = 3000;  // freed blocks of each class that are not used again yet
constexpr unsigned char kFill = 0xD7, kSlack = 0xB5;
constexpr std::size_t kAlign = 16;

// Of a block, by the number of its first page. It stands outside the arena, which faults must not reach.
struct Block {
    std::uint32_t size = 0;   // bytes; 0: not in use
    std::uint32_t pages = 0;  // without the inaccessible one
    std::uint32_t next = 0;   // in the queue of freed blocks; 0: none
};
struct Queue {
    std::uint32_t first = 0, last = 0, count = 0;
};

SRWLOCK g_lock = SRWLOCK_INIT;
char* g_arena = nullptr;  // null: not made yet
Block* g_blocks = nullptr;
Queue g_freed[kClasses + 1];
std::size_t g_nextPage = 1;
std::uint32_t g_live = 0, g_mostLive = 0, g_percent = 0, g_random = 0;
bool g_off = false;

std::uint32_t Given(const wchar_t* name, std::uint32_t usual) {
    wchar_t text[16] = {};
    if (GetEnvironmentVariableW(name, text, 16) == 0) return usual;
    std::uint32_t value = 0;
    for (const wchar_t* digit = text; *digit >= L'0' && *digit <= L'9'; ++digit)
        value = value * 10 + static_cast<std::uint32_t>(*digit - L'0');
    return value;
}

bool Ready() {
    if (g_arena != nullptr) return true;
    if (g_off) return false;
    g_off = true;
    g_percent = Given(L"KVX_GUARD_PERCENT", 100);
    g_mostLive = Given(L"KVX_GUARD_LIVE", 12000);
    g_random = Given(L"KVX_GUARD_SEED", 1) * 2654435761U + 1;
    void* const blocks = VirtualAlloc(nullptr, kArenaPages * sizeof(Block), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    void* const arena = VirtualAlloc(nullptr, kArenaPages * kPage, MEM_RESERVE, PAGE_NOACCESS);
    if (blocks == nullptr || arena == nullptr) return false;
    g_blocks = static_cast<Block*>(blocks);
    g_arena = static_cast<char*>(arena);
    return true;
}

bool IsOurs(const void* block) {
    const auto* const at = static_cast<const char*>(block);
    return g_arena != nullptr && at >= g_arena && at < g_arena + kArenaPages * kPage;
}
std::size_t PageOf(const void* block) {
    return static_cast<std::size_t>(static_cast<const char*>(block) - g_arena) / kPage;
}

std::size_t SlackOf(std::size_t size) { return (kAlign - size % kAlign) % kAlign; }

bool IsChosen() {
    g_random = g_random * 1664525U + 1013904223U;
    return (g_random >> 8) % 100 < g_percent;
}

// The first page of a block of that many, which is not accessible yet; 0: none is left.
std::size_t TakePages(std::size_t pages) {
    Queue& queue = g_freed[pages];
    if (queue.count > kQuarantine) {
        const std::uint32_t page = queue.first;
        queue.first = g_blocks[page].next;
        --queue.count;
        return page;
    }
    if (g_nextPage + pages + 1 >= kArenaPages) return 0;
    const std::size_t page = g_nextPage;
    g_nextPage += pages + 1;
    return page;
}

void* Allocate(std::size_t size) {
    const std::size_t whole = size == 0 ? 1 : size, pages = (whole + SlackOf(whole) + kPage - 1) / kPage;
    if (pages > kClasses || !Ready() || g_live >= g_mostLive || !IsChosen()) return nullptr;
    const std::size_t page = TakePages(pages);
    if (page == 0) return nullptr;
    char* const start = g_arena + page * kPage;
    if (VirtualAlloc(start, pages * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) return nullptr;
    g_blocks[page] = {.size = static_cast<std::uint32_t>(whole), .pages = static_cast<std::uint32_t>(pages)};
    ++g_live;
    const std::size_t slack = SlackOf(whole);
    char* const block = start + pages * kPage - slack - whole;
    std::memset(block, kFill, whole);  // who reads before it writes gets the same each time, and no zeros
    std::memset(block + whole, kSlack, slack);
    return block;
}

[[noreturn]] void Broken() {
    constexpr DWORD kBrokenHeap = 0xE0004B59;
    RaiseException(kBrokenHeap, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    std::abort();
}

// A block begins in its first page.
std::size_t FirstPageOf(const void* block) {
    std::size_t page = PageOf(block);
    if (g_blocks[page].size == 0) Broken();  // freed twice, or never allocated
    return page;
}

void Release(void* block) {
    const std::size_t page = FirstPageOf(block);
    Block& known = g_blocks[page];
    const char* const end = static_cast<char*>(block) + known.size;
    for (std::size_t i = 0; i < SlackOf(known.size); ++i)
        if (static_cast<unsigned char>(end[i]) != kSlack) Broken();  // somebody wrote behind the block
    if (end + SlackOf(known.size) != g_arena + (page + known.pages) * kPage) Broken();  // not what was allocated
    VirtualFree(g_arena + page * kPage, known.pages * kPage, MEM_DECOMMIT);
    Queue& queue = g_freed[known.pages];
    known.size = 0;
    known.next = 0;
    (queue.count == 0 ? queue.first : g_blocks[queue.last].next) = static_cast<std::uint32_t>(page);
    queue.last = static_cast<std::uint32_t>(page);
    ++queue.count;
    --g_live;
}

struct Locked {
    Locked() { AcquireSRWLockExclusive(&g_lock); }
    ~Locked() { ReleaseSRWLockExclusive(&g_lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

}  // namespace

void* __wrap_malloc(std::size_t size) {
    {
        const Locked lock;
        if (void* const block = Allocate(size)) return block;
    }
    return __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (size == 0 || count <= SIZE_MAX / size) {
        const Locked lock;
        if (void* const block = Allocate(count * size)) return std::memset(block, 0, count * size);
    }
    return __real_calloc(count, size);
}

void __wrap_free(void* block) {
    if (!IsOurs(block)) return __real_free(block);
    const Locked lock;
    Release(block);
}

void* __wrap_realloc(void* block, std::size_t size) {
    if (block == nullptr) return __wrap_malloc(size);
    if (!IsOurs(block)) return __real_realloc(block, size);
    if (size == 0) return __wrap_free(block), nullptr;
    void* const larger = __wrap_malloc(size);
    if (larger == nullptr) return nullptr;
    std::size_t known = 0;
    {
        const Locked lock;
        known = g_blocks[FirstPageOf(block)].size;
    }
    std::memcpy(larger, block, known < size ? known : size);
    __wrap_free(block);
    return larger;
}
