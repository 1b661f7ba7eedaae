// Names that the user gives to places of a program's memory: what is typed, what they are worth, where they are kept.
#include "debugger/named_places.h"
#include "debugger/program_places.h"
#include "debugui/pane_locals.h"
#include "debugui/place_names.h"
#include "language/basic_words.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t c : text) narrow += static_cast<char>(c);
    return narrow;
}

// The frame pointer is 0x1040, in the middle of the memory that can be read.
struct Frame {
    static constexpr std::uint64_t kStart = 0x1000, kFramePointer = 0x1040;
    std::string bytes = std::string(0x80, '\0');
    RegisterSet registers;
    ProgramMemory memory;
    NamedPlaces names;

    explicit Frame(bool x64 = true) {
        registers.x64 = x64;
        registers.general[kBp] = kFramePointer;
        registers.general[0] = 7;  // RAX
        memory.readSome = [this](std::uint64_t address, void* out, std::size_t count) -> std::size_t {
            if (address < kStart || address >= kStart + bytes.size()) return 0;
            count = std::min<std::size_t>(count, kStart + bytes.size() - address);
            std::memcpy(out, bytes.data() + (address - kStart), count);
            return count;
        };
        memory.read = [this](std::uint64_t address, void* out, std::size_t count) {
            return memory.readSome(address, out, count) == count;
        };
        memory.wordBytes = x64 ? 8 : 4;
    }
    template <typename Value>
    void Put(int offset, Value value) {
        std::memcpy(bytes.data() + (kFramePointer - kStart) + offset, &value, sizeof(value));
    }
    void Name(const char* definition) {
        const NamedInput input = NamedPlaceOf(definition, WatchKind::Long, registers.x64);
        EXPECT_EQ(Narrow(input.problem), "") << definition;
        EXPECT_EQ(Narrow(PutName(&names, input.named, {})), "");
    }
    NameScope Scope() const { return {.names = names, .registers = registers, .memory = memory}; }
};

Frame Filled(bool x64) {
    Frame frame(x64);
    const std::string bp = x64 ? "RBP" : "EBP";
    frame.Put(-4, std::int32_t{-5});
    frame.Put(-8, std::uint32_t{0xFFFFFFFE});
    frame.Put(-16, 2.5);
    frame.Put(-32, std::array<char, 4>{'a', 'b', 'c', 0});
    if (x64)
        frame.Put(8, Frame::kFramePointer - 32);
    else
        frame.Put(8, static_cast<std::uint32_t>(Frame::kFramePointer - 32));
    frame.Name(("i = " + bp + "-4, LONG").c_str());
    frame.Name(("big=" + bp + "-8,dword").c_str());
    frame.Name(("half# = " + bp + "-16, DOUBLE").c_str());
    frame.Name(("t = " + bp + "-32, ASCIIZ").c_str());
    frame.Name(("s$ = " + bp + "+8, STRING").c_str());
    frame.Name(("dx = [" + bp + "+8], ASCIIZ").c_str());
    frame.Name("gone = 16");
    return frame;
}

TEST(NamedPlaces, SayWhatIsWrongWithWhatIsTyped) {
    const struct {
        const char* text;
        NamedField field;
        const char* part;
    } cases[] = {
        {"i = RBP-4, LONG", NamedField::None, ""},
        {" count% = EBP - 2 , Integer ", NamedField::None, ""},
        {"s = [RBP+16], asciiz", NamedField::None, ""},
        {"i = RBP-4", NamedField::None, ""},
        {"i = [rbp-10h]", NamedField::None, ""},
        {"i = dword ptr [ Rbp - 0x10 ]", NamedField::None, ""},
        {"i = Ebp - &h10", NamedField::None, ""},
        {"i = [RBP-10q]", NamedField::Place, "from here: q]"},
        {"i = RBP-10hi", NamedField::Place, "RBP-10h or [RBP+16]"},
        {" = RBP-4", NamedField::Name, "missing"},
        {"1i = RBP-4", NamedField::Name, "letter first"},
        {"i j = RBP-4", NamedField::Name, "letters"},
        {"rax = RBP-4", NamedField::Name, "register"},
        {"EBX = RBP-4", NamedField::Name, "register"},
        {"word = RBP-4", NamedField::Name, "meaning of its own"},
        {"i = ", NamedField::Place, "missing"},
        {"i = RBQ-4, LONG", NamedField::Place, "no register: RBQ"},
        {"i = [RBP+4, LONG", NamedField::Place, "bracket"},
        {"i = j+4", NamedField::Place, "no register: j"},
        {"i = RBP-4, LNG", NamedField::Kind, "LNG is no type"},
        {"i", NamedField::Place, "missing"},
    };
    for (const auto& each : cases) {
        const NamedInput input = NamedPlaceOf(each.text, WatchKind::Quad, {});
        EXPECT_EQ(static_cast<int>(input.field), static_cast<int>(each.field)) << each.text;
        EXPECT_EQ(input.problem.empty(), each.part[0] == '\0') << each.text;
        EXPECT_NE(Narrow(input.problem).find(each.part), std::string::npos) << each.text << Narrow(input.problem);
    }
    EXPECT_EQ(NamedPlaceText(NamedPlaceOf("count% = EBP - 2, Integer", WatchKind::Long, {}).named),
              "count% = EBP - 2, INTEGER");
    EXPECT_EQ(NamedPlaceOf("i = RBP-4", WatchKind::Quad, {}).named.kind, WatchKind::Quad);
    EXPECT_FALSE(NamedPlaceOf("i = RBP-4", WatchKind::Long, false).problem.empty()) << "a 32-bit program";
    EXPECT_TRUE(IsNamedDefinition("i=1") && !IsNamedDefinition("i == 1") && !IsNamedDefinition("RBP-4"));
    EXPECT_EQ(WatchKindOfType("STRING * 20"), WatchKind::Text);
    EXPECT_EQ(WatchKindOfType("???"), WatchKind::Dword);
    EXPECT_EQ(WatchKindOfType("MyType"), std::nullopt);
}

TEST(NamedPlaces, AreValuesInExpressions) {
    for (const bool x64 : {true, false}) {
        const Frame frame = Filled(x64);
        const std::uint64_t mask = x64 ? ~std::uint64_t{0} : 0xFFFFFFFF;
        const struct {
            const char* text;
            std::int64_t value;
        } values[] = {{"i", -5},     {"I+6", 1},   {"big", 0xFFFFFFFE},      {"VARPTR(i)", Frame::kFramePointer - 4},
                      {"i*2-i", -5}, {"i&+1", -4}, {"BYTE [VARPTR(t)]", 'a'}};
        for (const auto& each : values)
            EXPECT_EQ(EvaluateWithNames(each.text, frame.Scope()).value.value_or(99999),
                      static_cast<std::uint64_t>(each.value) & mask)
                << each.text;
        const struct {
            const char *text, *problem;
        } refused[] = {{"j", "j is not known. The compilers write no names of variables"},
                       {"half#+1", "no whole number"},
                       {"t", "no whole number"},
                       {"gone", "gone cannot be read: the program has no memory at"},
                       {"VARPTR(j)", "not known"}};
        for (const auto& each : refused) {
            const Evaluation got = EvaluateWithNames(each.text, frame.Scope());
            EXPECT_FALSE(got.value) << each.text;
            EXPECT_NE(Narrow(got.problem).find(each.problem), std::string::npos) << Narrow(got.problem);
        }
        EXPECT_EQ(AddressOfName(*FindNamedPlace(frame.names, "DX"), frame.Scope()).value, Frame::kFramePointer - 32)
            << "the name, not the register";
    }
}

TEST(NamedPlaces, DecideConditions) {
    for (const bool x64 : {true, false}) {
        const Frame frame = Filled(x64);
        const struct {
            const char* condition;
            bool holds;
        } cases[] = {
            {"i == -5", true},
            {"i = -5", true},
            {"i < 0", true},
            {"i > 3", false},
            {"i <> -5", false},
            {"i >= -5 AND half# > 2.4", true},
            {"i > 0 OR t = \"abc\"", true},
            {"s$ == \"ab\"", false},
            {"s$ > \"ab\"", true},
            {"i > 0 and i < 9 or i", true},
            {"t = \"a OR b\"", false},
            {"half# <= 2.5", true},
            {"i + 6 = 1", true},
            {"0x1 > i", true},
            {"big > 0", true},
        };
        for (const auto& each : cases) {
            ASSERT_TRUE(MentionsName(each.condition, frame.names)) << each.condition;
            const NamedVerdict verdict = NamedConditionHolds(each.condition, frame.Scope());
            EXPECT_EQ(Narrow(verdict.problem), "") << each.condition;
            EXPECT_EQ(verdict.holds, each.holds) << each.condition;
        }
        for (const char* condition : {"i > ", "i == \"a\"", "i > j", "gone > 1", "i > 0 OR gone"}) {
            const NamedVerdict verdict = NamedConditionHolds(condition, frame.Scope());
            EXPECT_FALSE(verdict.problem.empty()) << condition;
            EXPECT_TRUE(verdict.holds) << condition << ": it stops, so that the problem is seen";
        }
        EXPECT_FALSE(MentionsName("RAX == 3", frame.names) || MentionsName("\"i\" == 1", frame.names));
    }
}

TEST(NamedPlaces, OfACallerAndOfAFrameThatDoesNotStandYet) {
    Frame frame = Filled(true);
    const std::vector<DebugFrame> frames = {{.address = 1, .framePointer = 0x1010},
                                            {.address = 2, .framePointer = Frame::kFramePointer}};
    RegisterSet innermost = frame.registers;
    innermost.general[kBp] = 0x1010;
    frame.registers = RegistersOfFrame(innermost, frames, 1, frame.memory.read);
    EXPECT_EQ(EvaluateWithNames("i", frame.Scope()).value, static_cast<std::uint64_t>(-5));
    EXPECT_EQ(EvaluateWithNames("RSP", frame.Scope()).value, 0x1020U);
    EXPECT_EQ(Narrow(EvaluateWithNames("RAX", frame.Scope()).problem), "RAX of a caller is not known");
    frame.registers = innermost;
    frame.registers.frame = FrameState::Coming;
    EXPECT_NE(Narrow(EvaluateWithNames("i", frame.Scope()).problem).find("step once"), std::string::npos);
    EXPECT_EQ(EvaluateWithNames("RAX", frame.Scope()).value, 7U);
}

TEST(PlaceNames, AreKeptByFileAndProcedure) {
    PlaceNames all;
    const auto named = [](const char* name) { return NamedPlaces{{.name = name, .place = "RBP-4"}}; };
    SetPlaceNames(&all, {L"C:\\a\\one.bas", "Twice", named("n")});
    SetPlaceNames(&all, {L"C:\\a\\two.bas", "Twice", {{"s", "[RBP+16]", WatchKind::TextPointer}}});
    SetPlaceNames(&all, {L"C:\\a\\one.bas", "", named("file")});
    SetPlaceNames(&all, {L"c:\\A\\ONE.bas", "twice", named("procedure")});
    ASSERT_EQ(all.size(), 3U);
    const PlaceNames again =
        ReadPlaceNames("\xEF\xBB\xBF" + PlaceNamesText(all) + "nonsense\r\n  x = RBQ\r\nfile D:\\e");
    ASSERT_EQ(again.size(), 3U);
    for (std::size_t i = 0; i < again.size(); ++i) {
        EXPECT_EQ(again[i].file, all[i].file);
        EXPECT_EQ(again[i].procedure, all[i].procedure);
        EXPECT_EQ(again[i].names, all[i].names);
    }
    EXPECT_EQ(FindNamedProcedure(all, L"C:\\a\\one.bas", "TWICE")->names[0].name, "procedure");
    EXPECT_EQ(FindNamedProcedure(all, L"C:\\a\\two.bas", "Twice")->names[0].kind, WatchKind::TextPointer);

    EXPECT_TRUE(MovePlaceNames(&all, L"C:\\a", L"D:\\b"));
    EXPECT_NE(FindNamedProcedure(all, L"D:\\b\\two.bas", "Twice"), nullptr);
    EXPECT_FALSE(MovePlaceNames(&all, L"C:\\a", L"D:\\b"));
    SetPlaceNames(&all, {L"D:\\b\\two.bas", "Twice", {}});
    EXPECT_EQ(FindNamedProcedure(all, L"D:\\b\\two.bas", "Twice"), nullptr);
    NamedPlaces two = {{"a", "1"}, {"b", "2"}};
    EXPECT_FALSE(PutName(&two, {"B", "3"}, "a").empty()) << "two of one name";
    EXPECT_TRUE(PutName(&two, {"A", "3"}, "a").empty());
    EXPECT_EQ(two[0].place, "3");
}

constexpr char kSource[] =
    "DECLARE FUNCTION Later() AS LONG\n"             // 1
    "FUNCTION Twice(BYVAL n AS LONG, s$) AS LONG\n"  // 2
    "  LOCAL half AS DOUBLE\n"                       // 3
    "END FUNCTION\n"                                 // 4
    "GLOBAL g AS LONG\n"                             // 5
    "SUB Later()\n"                                  // 6
    "END SUB\n";                                     // 7

TEST(PlaceNames, FollowCopiesAndRenamedSymbols) {
    const auto named = [](const char* name) { return NamedPlaces{{.name = name, .place = "RBP-4"}}; };
    PlaceNames all;
    SetPlaceNames(&all, {L"C:\\a.bas", "Double", named("n")});
    SetPlaceNames(&all, {L"C:\\a.bas", "", named("g")});
    SetPlaceNames(&all, {L"C:\\b.bas", "Old", named("x")});
    EXPECT_FALSE(CopyPlaceNames(&all, L"C:\\none.bas", L"C:\\b.bas")) << "what has no names leaves those of the other";
    EXPECT_TRUE(CopyPlaceNames(&all, L"c:\\A.BAS", L"C:\\b.bas"));
    EXPECT_EQ(FindNamedProcedure(all, L"C:\\b.bas", "Old"), nullptr) << "the file was overwritten";
    for (const wchar_t* file : {L"C:\\a.bas", L"C:\\b.bas"})
        for (const char* procedure : {"Double", ""})
            EXPECT_NE(FindNamedProcedure(all, file, procedure), nullptr) << procedure;

    const auto rename = [&](const char* source, RenamedSymbol symbol) {
        return RenameInPlaceNames(&all, L"C:\\a.bas", ProceduresOf(SymbolsOfText(source, DialectOf(0))), symbol);
    };
    const char* const twice = "SUB Twice(n AS LONG)\nEND SUB\n";
    EXPECT_TRUE(rename(twice, {"DOUBLE", "Twice", {}}));
    EXPECT_FALSE(rename(twice, {"Double", "Twice", {}}));
    ASSERT_NE(FindNamedProcedure(all, L"C:\\a.bas", "Twice"), nullptr);
    EXPECT_NE(FindNamedProcedure(all, L"C:\\b.bas", "Double"), nullptr) << "of the other file";
    EXPECT_FALSE(rename(twice, {"n", "m", {}})) << "its own variable still has the name";
    EXPECT_TRUE(rename("SUB Twice(m AS LONG)\nEND SUB\n", {"N", "m", "twice"}));
    EXPECT_EQ(FindNamedProcedure(all, L"C:\\a.bas", "Twice")->names[0].name, "m");
    EXPECT_FALSE(rename(twice, {"g", "h", "Twice"})) << "the variable of another procedure";
    EXPECT_TRUE(rename(twice, {"g", "h", {}}));
    EXPECT_EQ(FindNamedProcedure(all, L"C:\\a.bas", "")->names[0].name, "h");
    SetPlaceNames(&all, {L"C:\\a.bas", "Stack.Push", named("v")});
    const char* const heap = "CLASS Heap\nMETHOD Push()\nEND METHOD\nEND CLASS\n";
    EXPECT_TRUE(rename(heap, {"Stack", "Heap", {}}));
    EXPECT_NE(FindNamedProcedure(all, L"C:\\a.bas", "Heap.Push"), nullptr);
}

TEST(LocalRows, ShowEveryVariableOfTheProcedure) {
    const std::vector<SourceProcedure> procedures = ProceduresOf(SymbolsOfText(kSource, DialectOf(0)));
    ASSERT_EQ(procedures.size(), 2U);
    EXPECT_EQ(ProcedureOfLine(procedures, 5), nullptr);
    EXPECT_EQ(ProcedureOfLine(procedures, 6)->name, "Later");
    const SourceProcedure& twice = *ProcedureOfLine(procedures, 3);
    EXPECT_EQ(VariableOfLine(twice, "  PRINT \"\"; max, half#, n"), "half#");
    EXPECT_EQ(VariableOfLine(twice, "maxx = 2x1"), "");
    const NamedPlaces names = {{"x", "RBP-24"}, {"HALF", "RBP-8", WatchKind::Double}};
    PlaceNames all;
    SetPlaceNames(&all, {L"a.bas", "Once", {{"q", "1"}}});
    SetPlaceNames(&all, {L"a.bas", "later", {{"q", "1"}}});
    std::map<std::string, std::wstring> values = {{"x", L"1"}, {"HALF", L"2.5"}};
    LocalsNow now = {.serial = 1,
                     .owner = L"a",
                     .heading = L"Twice, a.bas",
                     .names = names,
                     .variables = twice.variables,
                     .lost = LostProcedure(all, L"A.BAS", procedures),
                     .read = [&](const NamedPlace& named, bool*) { return values[named.name]; }};
    ASSERT_NE(now.lost, nullptr);
    EXPECT_EQ(now.lost->procedure, "Once") << "it is gone from the source";
    LocalValues kept;
    const auto shown = [&] {
        std::wstring text;
        for (const ListRow& row : LocalRowsOf(now, &kept).rows) {
            text += row.cells[0] + L"|";
            for (std::size_t i = 1; i < row.cells.size() && row.tone != ListTone::Quiet; ++i)
                text += row.cells[i] + L"|";
            text += row.changed != 0 ? L"* " : L" ";
        }
        return Narrow(text);
    };
    const std::string rest = "Type a name and its place here: i = RBP-4, LONG| ";
    EXPECT_EQ(shown(), "Twice, a.bas| n| s| HALF|DOUBLE|RBP-8|2.5| x|LONG|RBP-24|1| " + rest);
    now.serial = 2;
    values["x"] = L"3";
    EXPECT_EQ(shown(), "Twice, a.bas| n| s| HALF|DOUBLE|RBP-8|2.5| x|LONG|RBP-24|3|* " + rest);
    EXPECT_EQ(shown(), "Twice, a.bas| n| s| HALF|DOUBLE|RBP-8|2.5| x|LONG|RBP-24|3|* " + rest) << "shown again";
    now.names = {};
    now.owner = L"other";
    EXPECT_EQ(shown(),
              "Twice, a.bas| n| s| half| Take over the name of Once, which is no longer in this file| " + rest);
    now.x64 = false;
    EXPECT_EQ(LocalRowsOf(now, &kept).rows[1].cells.back(), L"Type its place, such as EBP-4");
    EXPECT_EQ(static_cast<int>(LocalActionOf(LocalMeaning::Named, -1)), static_cast<int>(LocalAction::EditValue));
    EXPECT_EQ(static_cast<int>(LocalActionOf(LocalMeaning::Declared, 0)), static_cast<int>(LocalAction::EditPlace));
}

}  // namespace
