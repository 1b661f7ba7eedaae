#include "project/new_project.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "project/project_file.h"
#include "settings/compiler_table.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kMostSamples = 200;
constexpr wchar_t kMainName[] = L"main.bas";
constexpr std::string_view kEmptyProgram = "FUNCTION PBMAIN() AS LONG\r\n  PRINT \"hello\"\r\nEND FUNCTION\r\n";

std::wstring SamplesFolder() {
    wchar_t program[kPathCapacity] = {};
    AppExeDirectory(program, kPathCapacity);
    for (const wchar_t* place : {L"samples", L"..\\..\\samples"}) {
        std::wstring folder = ProjectPath(program, place);
        if (DirectoryExists(folder.c_str())) return folder;
    }
    return {};
}

void ForEachEntry(const std::wstring& folder, const std::function<void(const WIN32_FIND_DATAW&)>& take) {
    WIN32_FIND_DATAW entry = {};
    const UniqueFind find{FindFirstFileW(PathForSystem((folder + L"\\*").c_str()).c_str(), &entry)};
    if (!find) return;
    do {
        if (entry.cFileName[0] != L'.') take(entry);
    } while (FindNextFileW(find.Get(), &entry) != FALSE);
}

bool IsFolderEntry(const WIN32_FIND_DATAW& entry) { return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

void AddSamplesOf(const std::wstring& folder, std::vector<ProjectSample>& samples) {
    ForEachEntry(
        folder,
        [&](const WIN32_FIND_DATAW& entry) {
            const std::wstring path = folder + L"\\" + entry.cFileName;
            const bool many = IsFolderEntry(entry) && FileExists((path + L"\\" + kMainName).c_str());
            if (!many && (IsFolderEntry(entry) || !PathEqualsIgnoreCase(FileExtension(path), L".bas"))) return;
            if (samples.size() < kMostSamples)
                samples.push_back(
                    {many ? TextWith(L"{1} (several files)", {entry.cFileName}) : entry.cFileName, path, many});
        });
}

// What was made so far; without Keep() it is removed again.
class MadeFiles {
public:
    ~MadeFiles() {
        if (kept_) return;
        for (const std::wstring& file : files_) DeleteFileW(PathForSystem(file.c_str()).c_str());
        if (!folder_.empty()) RemoveDirectoryW(PathForSystem(folder_.c_str()).c_str());
    }
    MadeFiles() = default;
    MadeFiles(const MadeFiles&) = delete;
    MadeFiles& operator=(const MadeFiles&) = delete;

    bool Folder(const std::wstring& path) {
        if (CreateDirectoryW(PathForSystem(path.c_str()).c_str(), nullptr) != FALSE) {
            folder_ = path;
            return true;
        }
        return GetLastError() == ERROR_ALREADY_EXISTS && DirectoryExists(path.c_str());
    }
    bool Copy(const std::wstring& from, const std::wstring& to) {
        if (CopyFileW(PathForSystem(from.c_str()).c_str(), PathForSystem(to.c_str()).c_str(), TRUE) == FALSE)
            return false;
        files_.push_back(to);
        SetFileAttributesW(PathForSystem(to.c_str()).c_str(), FILE_ATTRIBUTE_NORMAL);  // a sample may be read-only
        return true;
    }
    bool Write(const std::wstring& to, std::string_view bytes) {
        const UniqueHandle file{CreateFileW(PathForSystem(to.c_str()).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                            FILE_ATTRIBUTE_NORMAL, nullptr)};
        if (!file) return false;
        files_.push_back(to);
        DWORD written = 0;
        return WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
               written == bytes.size();
    }
    void Keep() { kept_ = true; }

private:
    std::wstring folder_;
    std::vector<std::wstring> files_;
    bool kept_ = false;
};

// The names of some files in the folder, at most `most`.
std::vector<std::wstring> SomeFiles(const std::wstring& folder, const wchar_t* pattern, std::size_t most) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW entry = {};
    const UniqueFind find{FindFirstFileW(PathForSystem((folder + pattern).c_str()).c_str(), &entry)};
    if (!find) return names;
    do {
        if (!IsFolderEntry(entry)) names.emplace_back(entry.cFileName);
    } while (names.size() < most && FindNextFileW(find.Get(), &entry) != FALSE);
    return names;
}

std::wstring ProjectFolderOf(const NewProject& project) { return ProjectPath(project.parent, project.name); }

// The source in the folder that can only be meant as the main one: main.bas, that with the name of the project, or the
// only one there. Empty: none of these.
std::wstring MainSourceThere(const NewProject& project) {
    const std::wstring folder = ProjectFolderOf(project);
    for (const std::wstring& name : {std::wstring(kMainName), project.name + L".bas"})
        if (FileExists(ProjectPath(folder, name).c_str())) return name;
    const std::vector<std::wstring> sources = SomeFiles(folder, L"\\*.bas", 2);
    return sources.size() == 1 ? sources[0] : L"";
}

// The file of the sample whose name the folder has already; empty: there is none.
std::wstring SampleFileThere(const ProjectSample& sample, const std::wstring& folder) {
    std::wstring there;
    const auto look = [&](const std::wstring& name) {
        if (there.empty() && FileExists((folder + L"\\" + name).c_str())) there = name;
    };
    if (!sample.isFolder) look(kMainName);
    if (sample.isFolder)
        ForEachEntry(sample.path, [&](const WIN32_FIND_DATAW& entry) {
            if (!IsFolderEntry(entry)) look(entry.cFileName);
        });
    return there;
}

bool CopySample(const ProjectSample& sample, const std::wstring& folder, MadeFiles& made) {
    if (sample.path.empty()) return made.Write(folder + L"\\" + kMainName, kEmptyProgram);
    if (!sample.isFolder) return made.Copy(sample.path, folder + L"\\" + kMainName);
    bool copied = true;
    ForEachEntry(sample.path, [&](const WIN32_FIND_DATAW& entry) {
        if (!IsFolderEntry(entry))
            copied = copied && made.Copy(sample.path + L"\\" + entry.cFileName, folder + L"\\" + entry.cFileName);
    });
    return copied;
}

}  // namespace

std::vector<ProjectSample> ProjectSamples(std::uint32_t compiler) {
    std::vector<ProjectSample> samples;
    if (const std::wstring folder = SamplesFolder(); !folder.empty()) {
        AddSamplesOf(folder, samples);
        AddSamplesOf(folder + L"\\" + CompilerName(compiler), samples);
    }
    std::ranges::sort(samples, {}, [](const ProjectSample& each) { return PathKey(each.label); });
    samples.insert(samples.begin(), {Text(L"An empty program"), L"", false});
    return samples;
}

std::wstring NewProjectFile(const NewProject& project) {
    return ProjectFolderOf(project) + L"\\" + project.name + L".kvxproj";
}

std::wstring NewProjectProblem(const NewProject& project) {
    if (std::wstring problem = ProjectNameProblem(project.name); !problem.empty()) return problem;
    if (!PathIsAbsolute(project.parent) || !PathAnswers(project.parent.c_str()) ||
        !DirectoryExists(project.parent.c_str()))
        return Text(L"There is no such folder.");
    const std::wstring folder = ProjectFolderOf(project);
    if (folder.size() > 200) return Text(L"The path is too long.");
    if (FileExists(folder.c_str())) return Text(L"There is a file of this name already.");
    if (FileExists(NewProjectFile(project).c_str())) return Text(L"There is a project of this name already.");
    const std::wstring there = project.sample.path.empty() ? L"" : SampleFileThere(project.sample, folder);
    return there.empty()
               ? L""
               : TextWith(L"The folder has a file {1}, which stays. Start with an empty program instead.", {there});
}

std::wstring NewProjectNote(const NewProject& project) {
    const std::wstring folder = ProjectFolderOf(project);
    if (!PathAnswers(folder.c_str()) || SomeFiles(folder, L"\\*", 1).empty()) return {};
    const std::wstring main = project.sample.path.empty() ? MainSourceThere(project) : L"";
    return TextWith(L"The folder has files already, which stay. {1} is the main source.",
                    {(main.empty() ? TextWith(L"A new {1}", {kMainName}) : main)});
}

bool MakeProject(const NewProject& project, std::wstring* file, std::wstring* reason) {
    *reason = NewProjectProblem(project);
    if (!reason->empty()) return false;
    const std::wstring folder = ProjectFolderOf(project);
    *file = NewProjectFile(project);
    MadeFiles made;
    const std::wstring main = project.sample.path.empty() ? MainSourceThere(project) : L"";
    const std::string text = ProjectCompose(
        {.name = project.name, .source = main.empty() ? kMainName : main, .compiler = CompilerName(project.compiler)});
    if (made.Folder(folder) && (!main.empty() || CopySample(project.sample, folder, made)) && made.Write(*file, text)) {
        made.Keep();
        return true;
    }
    *reason = TextWith(L"The project cannot be made there: {1}", {SystemErrorText(GetLastError())});
    return false;
}
