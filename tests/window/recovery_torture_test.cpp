// Kills the editor at random moments of editing and saving fifty documents, and looks for what is lost. KVX_TORTURE_ROUNDS
// and KVX_TORTURE_SEED make a long run of it (scripts/torture).
#include "window/recovery_driver.h"

#include "resources/ids.h"

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr int kFiles = 44, kUntitled = 6;
constexpr int kActions = 24;  // of a round

int Given(const wchar_t* name, int usual) {
    const std::wstring value = Variable(name);
    return value.empty() ? usual : std::stoi(value);
}

// A document is known by its first line.
std::string NameOf(const std::string& text) { return text.substr(0, text.find('\n')); }

// What the document has been, oldest first.
struct History {
    std::wstring path;                // empty: none
    std::vector<std::string> states;  // all differ
    std::ptrdiff_t safe = 0;          // the newest one that is known to be on the disk; -1: none
};

struct Torture {
    ProgramFolder folder;
    std::mt19937 random;
    std::map<std::string, History> documents;
    int edits = 0;

    explicit Torture(unsigned seed) : random(seed) {
        folder.KeepNoSession();
        for (int i = 0; i < kFiles; ++i) {
            const std::string name = "' file " + std::to_string(i);
            // From a few bytes to half a megabyte.
            std::string text = name + "\n";
            for (int line = Below(i % 8 == 0 ? 20000 : 50); line > 0; --line) text += "PRINT \"line\"; 1 + 2\n";
            const std::wstring path = folder.Write(L"files\\file" + std::to_wstring(i) + L".bas", text);
            documents[name] = {.path = path, .states = {text}};
        }
    }

    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    std::wstring Arguments() const {
        std::wstring arguments;
        for (const auto& [name, history] : documents)
            if (!history.path.empty()) arguments += OpenArgument(history.path);
        return arguments;
    }

    void NewDocument(const Editor& editor) {
        editor.Do(IDM_FILE_NEW);
        const std::string name = "' untitled " + std::to_string(documents.size());
        editor.Type(name + "\n");
        documents[name] = {.path = {}, .states = {editor.Text()}, .safe = -1};
    }

    void Edit(const Editor& editor) {
        const std::string name = NameOf(editor.Text());
        const LRESULT first = editor.Sci(SCI_POSITIONFROMLINE, 1), length = editor.Sci(SCI_GETLENGTH);
        ASSERT_TRUE(documents.contains(name)) << name;
        const LRESULT at = first + Below(static_cast<int>(length - first) + 1);
        editor.Sci(SCI_SETSEL, static_cast<WPARAM>(at), at);
        editor.Type("edit " + std::to_string(++edits) + "\n");
        documents[name].states.push_back(editor.Text());
    }

    void Act(const Editor& editor) {
        for (int tabs = Below(6); tabs > 0; --tabs) editor.Do(IDM_NEXT_TAB);
        const int action = Below(10);
        if (action < 7) return Edit(editor);
        const std::string text = editor.Text();
        if (documents[NameOf(text)].path.empty()) return;  // its save asks for a name
        editor.Do(IDM_FILE_SAVE);
        if (action == 7) return;  // killed while it saves, perhaps
        EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); })) << NameOf(text);
        KnowSafe(text);
    }

    void KnowSafe(const std::string& text) {
        History& history = documents[NameOf(text)];
        const auto state = std::find(history.states.begin(), history.states.end(), text);
        if (state != history.states.end()) history.safe = std::max(history.safe, state - history.states.begin());
    }

    // What stands on the disk now must never be lost.
    void KnowWhatIsKept() {
        for (const std::string& text : KeptTexts(folder))
            if (documents.contains(NameOf(text))) KnowSafe(text);
    }

    void RestoreAll(const Editor& editor) const {
        if (KeptTexts(folder).empty()) return;
        editor.Press(editor.AwaitDialog(kRecovered), IDC_RECOVERY_RESTORE);
        // The list is gone before the last text is back.
        EXPECT_TRUE(WaitFor([&] { return editor.Status().find(L"brought back") != std::wstring::npos; }));
    }

    void CheckNothingIsLost(const Editor& editor) {
        std::map<std::string, std::string> open;
        for (int tab = editor.Tabs(); tab > 0; --tab) {
            EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETLENGTH) > 0; }));
            const std::string text = editor.Text();
            EXPECT_TRUE(open.emplace(NameOf(text), text).second) << NameOf(text) << " is open twice";
            editor.Do(IDM_NEXT_TAB);
        }
        // A document without a file that was killed before its first text was kept.
        std::erase_if(documents, [&](const auto& item) { return item.second.safe < 0 && !open.contains(item.first); });
        for (auto& [name, history] : documents) {
            ASSERT_TRUE(open.contains(name)) << name;
            const auto state = std::find(history.states.begin(), history.states.end(), open[name]);
            ASSERT_NE(state, history.states.end())
                << name << " is what it never was, " << open[name].size() << " bytes";
            EXPECT_GE(state - history.states.begin(), history.safe) << name << " has lost edits";
            history = {.path = history.path, .states = {open[name]}};
        }
    }
};

}  // namespace

TEST(RecoveryTorture, KillsAtRandomMomentsLoseNothing) {
    const int rounds = Given(L"KVX_TORTURE_ROUNDS", 2), seed = Given(L"KVX_TORTURE_SEED", 1);
    Torture torture(static_cast<unsigned>(seed));
    for (int round = 0; round <= rounds; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
        Editor editor(torture.folder, torture.Arguments());
        torture.RestoreAll(editor);
        torture.CheckNothingIsLost(editor);
        if (round == rounds || testing::Test::HasFailure()) return Kill(editor);
        if (round == 0)
            for (int i = 0; i < kUntitled; ++i) torture.NewDocument(editor);
        for (int i = 0; i < kActions; ++i) torture.Act(editor);
        torture.Edit(editor);
        const std::string last = editor.Text();
        if (round % 2 == 0) ASSERT_TRUE(WaitFor([&] { return KeptTexts(torture.folder).contains(last); }));
        for (int i = torture.Below(4); i > 0; --i) torture.Act(editor);
        torture.KnowWhatIsKept();
        Sleep(static_cast<DWORD>(torture.Below(60)));
        Kill(editor);
    }
}
