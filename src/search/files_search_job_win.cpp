// The threads of a search over files. Each takes the next file that is known, and when there is none a step of the walk.
// So files are searched from the first folder on, and no more files wait than one folder has.
#include "search/files_search_job.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "files/file_io.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <new>
#include <unordered_set>
#include <utility>

struct FilesSearchCourse {
    explicit FilesSearchCourse(FilesJob from) : job(std::move(from)) {
        if (job.walk) walk.emplace(std::move(*job.walk));
    }

    // Not changed after the start.
    FilesJob job;
    HWND window = nullptr;
    UINT message = 0;
    WPARAM number = 0;
    std::unordered_set<std::wstring> openPaths;  // of job.texts, by PathKey

    std::optional<FileWalk> walk;  // has a lock of its own
    std::atomic<bool> stop{false};
    std::atomic<std::size_t> hits{0};
    std::atomic<int> running{0};  // threads
    WorkerQueue<FoundFile> found;

    std::mutex mutex;  // guards what follows
    std::deque<WalkedFile> waiting;
    std::size_t nextText = 0;  // of job.texts
    FilesTally tally;
};

namespace {

constexpr DWORD kPiece = 8 << 20;              // bytes read at once
constexpr std::size_t kKeptBuffer = 32 << 20;  // a larger buffer is freed after its file
constexpr std::size_t kLeastBuffer = 256 << 10;
constexpr std::size_t kTaken = 8;  // files that a thread takes at once

std::wstring WhyUnreadable(DWORD error) {
    switch (error) {
        case ERROR_ACCESS_DENIED: return Text(L"access denied");
        case ERROR_SHARING_VIOLATION: return Text(L"in use by another program");
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND: return Text(L"not found");
        default: return FormatW(Text(L"error %lu"), error);
    }
}

// What one thread owns.
struct SearchThread {
    FilesSearchCourse& course;
    TextMatcher matcher;
    SearchStopped stopped;
    ReadBuffer buffer;
    FilesTally tally;  // of this thread, since the last Report
    std::deque<WalkedFile> mine;
};

void AddTally(FilesTally& sum, const FilesTally& part) {
    sum.files += part.files;
    sum.binary += part.binary;
    sum.unreadable += part.unreadable;
    for (const std::wstring& name : part.unreadableNames)
        if (sum.unreadableNames.size() < kMostNamed) sum.unreadableNames.push_back(name);
}

void NoteUnreadable(SearchThread& thread, const std::wstring& path, const std::wstring& why) {
    ++thread.tally.unreadable;
    if (thread.tally.unreadableNames.size() < kMostNamed) thread.tally.unreadableNames.push_back(path + L" - " + why);
}

// Hands over what was found; a search ends when that is enough.
void TakeHits(SearchThread& thread, const std::wstring& path, DocumentId document, FileHits found) {
    FilesSearchCourse& course = thread.course;
    if (found.kind == FileKind::Binary) ++thread.tally.binary;
    if (found.kind == FileKind::NotDecoded) NoteUnreadable(thread, path, Text(L"its text cannot be decoded"));
    if (found.kind == FileKind::TooComplex) NoteUnreadable(thread, path, Text(L"the expression takes too long in it"));
    if (found.kind == FileKind::Text) ++thread.tally.files;
    if (found.hits.empty() && !found.more) return;
    const std::size_t before = course.hits.fetch_add(found.hits.size());
    const std::size_t room = before < kMaxHits ? kMaxHits - before : 0;
    if (found.more || found.hits.size() > room) {
        found.hits.resize(std::min(found.hits.size(), room));
        const std::lock_guard lock(course.mutex);
        course.tally.limited = true;
        course.stop = true;
    }
    if (!found.hits.empty()) course.found.Put({path, document, std::move(found.hits)});
}

std::size_t HitsWanted(const FilesSearchCourse& course) { return kMaxHits - std::min(course.hits.load(), kMaxHits); }

void SearchOneFile(SearchThread& thread, const WalkedFile& file) {
    if (thread.course.openPaths.contains(PathKey(file.path))) return;
    if (file.sizeKnown && file.size == 0) {
        ++thread.tally.files;
        return;
    }
    const std::wstring fault = ReadSearchedFile(file.path, file.size, file.sizeKnown, thread.stopped, &thread.buffer);
    if (thread.course.stop) return;
    if (!fault.empty()) return NoteUnreadable(thread, file.path, fault);
    static const AnsiDecoder kAnsi = SystemAnsiDecoder();
    TakeHits(thread, file.path, 0,
             HitsInBytes(thread.buffer.Text(), thread.matcher, kAnsi, HitsWanted(thread.course), thread.stopped));
    if (thread.buffer.capacity > kKeptBuffer) thread.buffer = {};
}

// A file may be too large for the memory that is left.
void SearchGuarded(SearchThread& thread, const WalkedFile& file) {
    try {
        SearchOneFile(thread, file);
    } catch (const std::bad_alloc&) {
        thread.buffer = {};
        NoteUnreadable(thread, file.path, Text(L"not enough memory"));
    }
}

// The next text of a document; null when there is none left.
const OpenText* NextText(FilesSearchCourse& course) {
    const std::lock_guard lock(course.mutex);
    return course.nextText < course.job.texts.size() ? &course.job.texts[course.nextText++] : nullptr;
}

void TakeFiles(SearchThread& thread) {
    FilesSearchCourse& course = thread.course;
    const std::lock_guard lock(course.mutex);
    AddTally(course.tally, std::exchange(thread.tally, {}));
    for (std::size_t i = 0; i < kTaken && !course.waiting.empty(); ++i) {
        thread.mine.push_back(std::move(course.waiting.front()));
        course.waiting.pop_front();
    }
}

bool FilesWait(FilesSearchCourse& course) {
    const std::lock_guard lock(course.mutex);
    return !course.waiting.empty();
}

// Lists a folder. False when the walk is over.
bool WalkOn(SearchThread& thread) {
    FilesSearchCourse& course = thread.course;
    if (!course.walk) return false;
    std::vector<WalkedFile> files;
    std::wstring unreadable;
    switch (course.walk->Next(&files, &unreadable, &course.stop)) {
        case WalkStep::Done: return false;
        case WalkStep::Waiting: Sleep(1); return true;
        case WalkStep::Listed: break;
    }
    if (!unreadable.empty()) NoteUnreadable(thread, unreadable, Text(L"the folder cannot be listed"));
    const std::lock_guard lock(course.mutex);
    std::ranges::move(files, std::back_inserter(course.waiting));
    return true;
}

void SearchAll(SearchThread& thread) {
    while (!thread.course.stop) {
        if (const OpenText* text = NextText(thread.course); text != nullptr) {
            TakeHits(thread, text->path, text->document,
                     HitsInText(text->utf8, thread.matcher, HitsWanted(thread.course), thread.stopped));
            continue;
        }
        TakeFiles(thread);
        for (; !thread.mine.empty() && !thread.course.stop; thread.mine.pop_front())
            SearchGuarded(thread, thread.mine.front());
        if (thread.course.stop || FilesWait(thread.course)) continue;
        if (!WalkOn(thread)) break;
    }
}

void EndCourse(FilesSearchCourse& course) {
    course.found.Finish();
    PostMessageW(course.window, course.message, course.number, 0);
}

struct ThreadRequest {
    FilesSearchHandle course;
};

void SearchOnThread(ThreadRequest& request, const WorkerCancel&) {
    FilesSearchCourse& course = *request.course;
    if (std::optional<TextMatcher> matcher = TextMatcher::Of(course.job.query, nullptr)) {
        SearchThread thread{course, std::move(*matcher), [&course] { return course.stop.load(); }, {}, {}, {}};
        SearchAll(thread);
        const std::lock_guard lock(course.mutex);
        AddTally(course.tally, thread.tally);
    }
    if (--course.running == 0) EndCourse(course);
}

int ThreadCount() {
    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    return std::clamp(static_cast<int>(system.dwNumberOfProcessors), 1, 8);
}

}  // namespace

AnsiDecoder SystemAnsiDecoder() {
    return [](std::string_view bytes, std::string* utf8, bool* exact) {
        return DecodeCodePage(CP_ACP, bytes, utf8, exact);
    };
}

// Grows the buffer and keeps what was read into it. False when memory runs out.
static bool Reserve(ReadBuffer* buffer, std::size_t wanted) {
    if (wanted <= buffer->capacity) return true;
    const std::size_t capacity = std::max(wanted, kLeastBuffer);
    char* const grown = static_cast<char*>(std::realloc(buffer->bytes.get(), capacity));
    if (grown == nullptr) return false;
    static_cast<void>(buffer->bytes.release());  // realloc has freed or moved it
    buffer->bytes.reset(grown);
    buffer->capacity = capacity;
    return true;
}

std::wstring ReadSearchedFile(const std::wstring& path, std::uint64_t size, bool sizeKnown,
                              const SearchStopped& stopped, ReadBuffer* buffer) {
    buffer->length = 0;
    const UniqueHandle file{CreateFileW(PathExtended(path).c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
    if (!file) return WhyUnreadable(GetLastError());
    if (!sizeKnown) {
        LARGE_INTEGER real = {};
        if (GetFileType(file.Get()) != FILE_TYPE_DISK) return Text(L"no file on a disk");
        if (GetFileSizeEx(file.Get(), &real) == FALSE) return WhyUnreadable(GetLastError());
        size = static_cast<std::uint64_t>(real.QuadPart);
    }
    for (;;) {
        if (size >= kLargestSearched || buffer->length >= kLargestSearched) return Text(L"larger than 1 GB");
        // One byte more than the size, so that the read tells the file's end, or that it has grown.
        const std::size_t wanted = std::max<std::size_t>(static_cast<std::size_t>(size), buffer->length) + 1;
        if (!Reserve(buffer, wanted)) return Text(L"not enough memory");
        const DWORD piece = static_cast<DWORD>(std::min<std::size_t>(wanted - buffer->length, kPiece));
        DWORD read = 0;
        if (ReadFile(file.Get(), buffer->bytes.get() + buffer->length, piece, &read, nullptr) == FALSE)
            return WhyUnreadable(GetLastError());
        buffer->length += read;
        if (read < piece || (stopped != nullptr && stopped())) return {};
        if (buffer->length > size) size = 2 * static_cast<std::uint64_t>(buffer->length);
    }
}

FilesSearchHandle FilesSearchStart(FilesJob job, HWND window, UINT message, WPARAM number, std::wstring* fault) {
    if (!TextMatcher::Of(job.query, fault)) return nullptr;
    auto course = std::make_shared<FilesSearchCourse>(std::move(job));
    course->window = window;
    course->message = message;
    course->number = number;
    for (const OpenText& text : course->job.texts)
        if (!text.path.empty()) course->openPaths.insert(PathKey(text.path));
    for (std::wstring& file : course->job.files) course->waiting.push_back({.path = std::move(file)});
    const int wanted = ThreadCount();
    course->running = wanted;
    for (int i = 0; i < wanted; ++i) {
        if (WorkerStart<SearchOnThread>(ThreadRequest{course})) continue;
        if (i == 0) {
            if (fault != nullptr) *fault = Text(L"The search could not be started");
            return nullptr;
        }
        // Those that run do the work. When they have ended by now, none of them was the last one.
        if (course->running.fetch_sub(wanted - i) == wanted - i) EndCourse(*course);
        break;
    }
    return course;
}

void FilesSearchStop(const FilesSearchHandle& search) {
    if (search != nullptr) search->stop = true;
}

bool FilesSearchTake(const FilesSearchHandle& search, std::deque<FoundFile>* found, FilesTally* tally) {
    const bool more = search->found.TakeAll(found);
    const std::lock_guard lock(search->mutex);
    *tally = search->tally;
    tally->hits = std::min(search->hits.load(), kMaxHits);
    tally->ended = !more;
    return more;
}
