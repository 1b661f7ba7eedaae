// Parses the command lines of the five compilers and runs the steps: read, parse, check, generate, link, write, report.
#include "driver.h"

#include "checker.h"
#include "debug_map.h"
#include "lexer.h"
#include "listing.h"
#include "parser.h"
#include "pe_writer.h"

#include <cstdio>

namespace standin {
namespace {

constexpr std::string_view kVersion = "1.0.0";

struct Options {
    std::string source, output, listing;
    std::vector<std::string> includeDirs;
    bool syntaxOnly = false, debug = false, version = false, help = false, quiet = false;
    bool link = false;  // Keldor style: /L
};

// Compares switches; those that begin with '/' without regard to case.
bool SameSwitch(std::string_view arg, std::string_view name) {
    return !name.empty() && (name[0] == '/' ? UpperCase(arg) == UpperCase(name) : arg == name);
}

bool SwitchPrefix(std::string_view arg, std::string_view name) {
    return !name.empty() && arg.size() >= name.size() && SameSwitch(arg.substr(0, name.size()), name);
}

// Takes the value of a switch: the rest of the argument, or the next argument.
bool TakeValue(const std::vector<std::string>& args, size_t& i, size_t prefix, std::string& value) {
    value = args[i].substr(prefix);
    if (value.empty() && i + 1 < args.size()) value = args[++i];
    return !value.empty();
}

// Returns false with the reason in `why` when the command line is not understood.
bool ParseCommandLine(const Profile& profile, const std::vector<std::string>& args, Options& o, std::string& why) {
    const bool keldor = profile.style == CommandStyle::Keldor;
    std::string dir;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        bool complete = true;
        if (arg == "--version")
            o.version = true;
        else if (arg == "--help")
            o.help = true;
        else if (SameSwitch(arg, profile.syntaxSwitch))
            o.syntaxOnly = true;
        else if (SameSwitch(arg, profile.debugSwitch))
            o.debug = true;
        else if (arg == "-O0" || arg == "-O2")
            continue;  // accepted without effect, because there is no optimiser
        else if (keldor && SameSwitch(arg, "/L"))
            o.link = true;
        else if (keldor && SameSwitch(arg, "/Q"))
            o.quiet = true;
        else if (SwitchPrefix(arg, profile.listingSwitch))
            complete = TakeValue(args, i, profile.listingSwitch.size(), o.listing);
        else if (SwitchPrefix(arg, profile.includeSwitch)) {
            complete = TakeValue(args, i, profile.includeSwitch.size(), dir);
            o.includeDirs.push_back(dir);
        } else if (!keldor && arg == "-o")
            complete = TakeValue(args, i, 2, o.output);
        // An absolute Unix path begins like a switch. It is recognised by a second slash.
        else if (arg.starts_with("-") || (arg.starts_with("/") && arg.find('/', 1) == std::string::npos))
            why = "unknown switch '" + arg + "'";
        else if (!o.source.empty())
            why = "more than one source: '" + o.source + "' and '" + arg + "'";
        else
            o.source = arg;
        if (!complete) why = "a value is missing after '" + arg + "'";
        if (!why.empty()) return false;
    }
    if (o.version || o.help) return true;
    if (o.source.empty())
        why = "no source file given";
    else if (!keldor && !o.syntaxOnly && o.output.empty())
        why = "no output file given (-o FILE)";
    if (keldor) {
        o.syntaxOnly = !o.link;
        const size_t dot = o.source.find_last_of("./\\");
        const bool extension = dot != std::string::npos && o.source[dot] == '.';
        o.output = o.source.substr(0, extension ? dot : o.source.size()) + ".exe";
        if (o.output == o.source) why = "the source is named like the program to write: '" + o.source + "'";
    }
    return why.empty();
}

std::string Usage(const Profile& p) {
    const std::string name(p.name), include(p.includeSwitch), listing(p.listingSwitch);
    std::string text = "Usage: " + name;
    if (p.style == CommandStyle::Keldor)
        text += " SOURCE [/L] [/Q] [" + include + "DIR] [/D]";
    else
        text += " -o PROGRAM [" + include + "DIR] [" + std::string(p.debugSwitch) + "] [" +
                std::string(p.syntaxSwitch) + "] [-O0|-O2]";
    if (!listing.empty()) text += " [" + listing + "FILE]";
    if (p.style == CommandStyle::Kvx) text += " SOURCE";
    return text + "\n       " + name + " --version | --help\n";
}

std::string Plural(int count, std::string_view word) {
    return std::to_string(count) + " " + std::string(word) + (count == 1 ? "" : "s");
}

struct Run {
    const Profile& profile;
    const Options& options;
    Sources sources;
    Program program;
    std::vector<std::string> written;  // lines about the written files, printed at the end
};

void WriteOutput(Run& run, const std::string& path, std::string_view bytes, std::string_view what) {
    if (WriteWholeFile(path, bytes))
        run.written.push_back(std::string(what) + ": " + path);
    else
        Report(run.sources, Code::File, {0, 1, 1}, "cannot write " + path + " (is it in use?)");
}

void BuildProgram(Run& run) {
    const DebugMap kind = run.profile.debugMap;
    Generator g{run.profile, run.sources, run.program};
    g.debug = run.options.debug;
    g.e.listing = !run.options.listing.empty();
    GenerateProgram(g);
    if (g.debug && kind != DebugMap::PbdTraps) g.image.sdbg = BuildSdbg(g, kTextRva);
    WriteOutput(run, run.options.output, LinkImage(g.image), "Program");
    const std::string pbd = run.options.output + ".pbd";
    if (run.sources.errors == 0 && g.debug && kind == DebugMap::PbdTraps)
        WriteOutput(run, pbd, BuildPbd(kImageBase32 + kTextRva + g.mainOffset), "Debug database");
    else if (kind == DebugMap::PbdTraps)
        RemoveFile(pbd);  // an old .pbd does not fit the new program
    const uint64_t base = run.profile.x64 ? 0x140000000 : kImageBase32;
    if (g.e.listing)
        WriteOutput(run, run.options.listing, BuildListing(g, run.options.source, base + kTextRva), "Listing");
}

void CompileSource(Run& run) {
    std::string why;
    auto text = ReadWholeFile(run.options.source, why);
    run.sources.files.push_back({run.options.source, {}});
    if (!text) return Report(run.sources, Code::File, {0, 1, 1}, "cannot read the source: " + why);
    if (text->starts_with("\xEF\xBB\xBF")) text->erase(0, 3);
    run.sources.files[0].text = std::move(*text);
    Parser parser{run.sources, run.options.includeDirs, run.program, {}};
    ParseProgram(parser);
    if (!TooManyErrors(run.sources)) CheckProgram(run.sources, run.program);
    if (run.sources.errors == 0 && !run.options.syntaxOnly) BuildProgram(run);
}

}  // namespace

int RunCompiler(const Profile& profile, const std::vector<std::string>& args, std::string& messages) {
    const std::string name(profile.name);
    const std::string banner = name + " " + std::string(kVersion) + " - stand-in compiler for KVX-Editor, " +
                               (profile.x64 ? "PE32+ (x64)" : "PE32 (x86)") + "\n";
    Options options;
    std::string why;
    if (!ParseCommandLine(profile, args, options, why)) {
        messages += name + ": error: " + why + "\n" + Usage(profile);
        return 2;
    }
    if (options.version || options.help) {
        messages += banner + (options.help ? Usage(profile) : "");
        return 0;
    }
    if (!options.quiet) messages += banner;
    Run run{profile, options, {}, {}, {}};
    CompileSource(run);
    messages += FormatDiagnostics(run.sources, profile);
    for (const std::string& line : run.written) messages += line + "\n";
    messages += Plural(run.sources.errors, "error") + ", " + Plural(run.sources.warnings, "warning") + "\n";
    return run.sources.errors == 0 ? 0 : 1;
}

}  // namespace standin
