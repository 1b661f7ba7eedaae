// The threads of a search over many texts. Each takes the next part that nobody has taken; who ends the last part joins
// all of them and posts the result.
#include "search/fuzzy_crew.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/worker.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr unsigned kMostThreads = 4;

struct CrewSearch {
    HWND window = nullptr;
    UINT message = 0;
    unsigned request = 0;
    FuzzyPlan plan;
    std::vector<FuzzyPart> found;  // a place for each part, written by the thread that took it
    std::atomic<std::size_t> taken = 0;
    std::atomic<std::size_t> ended = 0;
    std::atomic<bool> givenUp = false;
};

// What the threads share with the owner.
struct CrewTask {
    std::mutex mutex;
    std::shared_ptr<CrewSearch> search;  // the latest one
    std::shared_ptr<CrewSearch> Take() {
        const std::lock_guard lock(mutex);
        return search;
    }
    void Give(std::shared_ptr<CrewSearch> next) {
        const std::lock_guard lock(mutex);
        if (search != nullptr) search->givenUp = true;
        search.swap(next);
    }
};

struct CrewMember {
    std::shared_ptr<CrewTask> task;
    std::shared_ptr<UniqueHandle> wake;  // an event
};

void SearchParts(CrewSearch& search) {
    const std::size_t parts = search.plan.parts;
    for (std::size_t part = search.taken++; part < parts && !search.givenUp; part = search.taken++) {
        search.found[part] = FuzzySearchPart(search.plan, part);
        if (++search.ended < parts) continue;
        auto result = std::make_shared<const FuzzyResult>(FuzzyJoin(search.plan, search.found));
        auto found = std::make_unique<FuzzyFound>(FuzzyFound{search.request, std::move(result)});
        WorkerPost(search.window, search.message, std::move(found));
    }
}

void SearchWhenWoken(CrewMember& member, const WorkerCancel& cancel) {
    const HANDLE events[] = {cancel.Event(), member.wake->Get()};
    while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
        if (const std::shared_ptr<CrewSearch> search = member.task->Take()) SearchParts(*search);
}

}  // namespace

struct FuzzyCrew {
    std::shared_ptr<CrewTask> task = std::make_shared<CrewTask>();
    std::vector<std::shared_ptr<UniqueHandle>> wakes;
    std::vector<Worker> workers;
};

static void EndCrew(FuzzyCrew* crew) {
    const std::unique_ptr<FuzzyCrew> owned(crew);
    crew->task->Give(nullptr);
    for (const Worker& worker : crew->workers) WorkerAskToEnd(worker);
}

std::unique_ptr<FuzzyCrew, void (*)(FuzzyCrew*)> FuzzyCrewStart() {
    std::unique_ptr<FuzzyCrew, void (*)(FuzzyCrew*)> crew(new FuzzyCrew, EndCrew);
    const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
    for (unsigned i = 0; i < threads; ++i) {
        auto wake = std::make_shared<UniqueHandle>(CreateEventW(nullptr, FALSE, FALSE, nullptr));
        Worker worker = *wake ? WorkerStart<SearchWhenWoken>(CrewMember{crew->task, wake}) : Worker{};
        if (!worker) {
            AppLogMsg(L"FAIL: FuzzyCrewStart error=%lu", GetLastError());
            break;
        }
        crew->wakes.push_back(std::move(wake));
        crew->workers.push_back(std::move(worker));
    }
    if (crew->workers.empty()) crew.reset();
    return crew;
}

void FuzzyCrewSearch(FuzzyCrew& crew, HWND window, UINT message, unsigned request, FuzzyPlan plan) {
    auto search = std::make_shared<CrewSearch>();
    search->window = window;
    search->message = message;
    search->request = request;
    search->plan = std::move(plan);
    search->found.resize(search->plan.parts);
    crew.task->Give(std::move(search));
    for (const auto& wake : crew.wakes) SetEvent(wake->Get());
}

void FuzzyCrewStop(FuzzyCrew& crew) { crew.task->Give(nullptr); }
