// Asks shares on threads of their own and remembers the answers. Any thread.
#include "files/share_probe.h"

#include "base/clock.h"
#include "base/handles.h"
#include "base/worker.h"

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>

namespace {

constexpr DWORD kWaitMs = 250;
constexpr ULONGLONG kFreshMs = 5000;   // that an answer is trusted
constexpr ULONGLONG kDriveMs = 2000;   // that the kind of a drive is trusted
constexpr ULONGLONG kAgainMs = 30000;  // after which a share that did not answer is asked again

void AskSystem(const wchar_t* root) { GetFileAttributesW(root); }

// Shared by the thread that asks and those that wait.
struct Question {
    UniqueHandle answered{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    ULONGLONG asked = GetTickCount64();
};

struct Shares {
    std::mutex lock;
    std::map<std::wstring, std::shared_ptr<Question>> questions;  // by root
    ShareProbe probe = AskSystem;
};
// Never destroyed, because a thread that asks may outlive the end of the program.
Shares& TheShares() {
    static Shares* const shares = new Shares;
    return *shares;
}

bool HasAnswered(const Question& question, DWORD milliseconds) {
    return WaitForSingleObject(question.answered.Get(), milliseconds) == WAIT_OBJECT_0;
}

// Asks the system once for many paths, because GetDriveTypeW takes up to 2 ms.
bool DriveIsRemote(const wchar_t* root) {
    struct Drive {
        ULONGLONG asked = 0;
        bool remote = false;
    };
    static std::mutex lock;
    static std::map<wchar_t, Drive> drives;
    const ULONGLONG now = GetTickCount64();
    const std::scoped_lock hold(lock);
    Drive& drive = drives[root[0]];
    if (drive.asked == 0 || now - drive.asked > kDriveMs)
        drive = {.asked = now, .remote = GetDriveTypeW(root) == DRIVE_REMOTE};
    return drive.remote;
}

std::wstring RemoteRootOf(const wchar_t* path) {
    std::wstring root = ShareRootOf(path);
    if (!root.empty() || path[0] == L'\0' || path[1] != L':') return root;
    const wchar_t drive[] = {path[0], L':', L'\\', L'\0'};
    return DriveIsRemote(drive) ? drive : L"";
}

struct Asking {
    std::shared_ptr<Question> question;
    std::wstring root;
    ShareProbe probe;
};

void AskShare(Asking& asking, const WorkerCancel&) {
    asking.probe(asking.root.c_str());
    SetEvent(asking.question->answered.Get());
}

std::shared_ptr<Question> Ask(const std::wstring& root, ShareProbe probe) {
    auto question = std::make_shared<Question>();
    WorkerStart<AskShare>(Asking{.question = question, .root = root, .probe = probe});
    return question;
}

}  // namespace

bool PathIsRemote(const wchar_t* path) { return !RemoteRootOf(path).empty(); }

bool PathAnswers(const wchar_t* path) {
    const std::wstring root = RemoteRootOf(path);
    if (root.empty()) return true;
    Shares& shares = TheShares();
    std::shared_ptr<Question> question;
    DWORD wait = 0;
    {
        const std::scoped_lock lock(shares.lock);
        std::shared_ptr<Question>& last = shares.questions[root];
        const ULONGLONG age = last != nullptr ? GetTickCount64() - last->asked : 0;
        const bool answered = last != nullptr && HasAnswered(*last, 0);
        if (last == nullptr || (answered ? age > kFreshMs : age > kAgainMs)) {
            // After a silence nobody waits again before the share has answered.
            wait = last == nullptr || answered ? kWaitMs : 0;
            last = Ask(root, shares.probe);
        }
        question = last;
    }
    return HasAnswered(*question, wait);
}

void SetShareProbe(ShareProbe probe) {
    Shares& shares = TheShares();
    const std::scoped_lock lock(shares.lock);
    shares.probe = probe != nullptr ? probe : AskSystem;
    shares.questions.clear();
}
