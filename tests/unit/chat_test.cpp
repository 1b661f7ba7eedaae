// The chat: what comes from a service in pieces, what of it is code, and what is sent along with the next message.
#include "ai/ai_rules.h"
#include "ai/ai_texts.h"
#include "ai/chat_log.h"
#include "ai/chat_protocol.h"
#include "ai/chat_rtf.h"
#include "ai/chat_stream.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

std::string Letter(ChatLook look) { return std::string(1, "tgmbsfc"[static_cast<int>(look)]); }

// "t(a)c(b)": each run with a letter for its look.
std::string Runs(std::string_view reply) {
    std::string all;
    for (const ChatRun& run : ChatRunsFrom(reply, {}, true, nullptr))
        all += Letter(run.look) + "(" + std::string(run.text) + ")";
    return all;
}

// The look of each byte.
std::string Looks(std::string_view reply, ChatPlace from = {}) {
    std::string all;
    for (const ChatRun& run : ChatRunsFrom(reply, from, true, nullptr))
        for (std::size_t i = 0; i < run.text.size(); ++i) all += Letter(run.look);
    return all;
}

TEST(Chat, RepliesInRunsOfOneLook) {
    const struct {
        const char *reply, *runs;
    } cases[] = {
        {"", ""},
        {"a\nb", "t(a\n)t(b)"},
        {"a:\n```basic\nX\n\n```\nb", "t(a:\n)f(```)f(basic\n)c(X\n\n)f(```)t(\n)t(b)"},
        {"see ```X```", "t(see )f(```)c(X)f(```)"},
        {"```c\nno end", "f(```)f(c\n)c(no end)"},
        {"# Head\n**b** c", "b(# Head\n)m(**)b(b)m(**)t( c)"},
        {"use `x*` and `y", "t(use )s(`x*`)t( and `y)"},
        {"2 ** 3 ** 4 `` *a*", "t(2 ** 3 ** 4 `` *a*)"},
        {"**a\nb**", "t(**a\n)t(b**)"},
    };
    for (const auto& c : cases) EXPECT_EQ(Runs(c.reply), c.runs);
    EXPECT_EQ(ChatRunsOfLine("[You]: [a]: b").size(), 2U);
    EXPECT_EQ(ChatRunsOfLine("[a long text]: b").size(), 1U);
    EXPECT_EQ(ChatShownText("a\r\nb\rc\nd\te\x01\x7F"), L"a\nb\nc\nd\te");
}

TEST(Chat, WhatIsSettledIsNotShownAgain) {
    const std::string reply = "say ``\nthis:\n```basic\nPRINT \"\xC3\xA4\"\nEND\n```\nand **so** on";
    for (std::size_t step = 1; step < 12; ++step) {
        ChatPlace place;
        std::string shown;
        std::size_t again = 0;
        for (std::size_t size = step; size < reply.size() + step; size += step) {
            const std::string_view soFar = std::string_view(reply).substr(0, size);
            ChatPlace settled;
            ChatRunsFrom(soFar, place, size >= reply.size(), &settled);
            ASSERT_GE(settled.at, place.at);
            again = std::max(again, soFar.size() - settled.at);
            shown += Looks(soFar.substr(0, settled.at), place);
            place = settled;
        }
        EXPECT_LE(again, 15U) << "a line at most";
        EXPECT_EQ(shown, Looks(reply)) << "in steps of " << step;
    }
    ChatPlace settled;
    ChatRunsFrom(std::string(5000, 'x') + "\xC3", {}, false, &settled);
    EXPECT_EQ(settled.at, 5000U) << "a line without end is not shown from its start with each piece";
}

// Shows what an entry needs, as the control would.
void Show(ChatLog& log, std::size_t index) {
    const ChatUpdate update = ChatUpdateOf(log.entries[index]);
    std::size_t length = update.lineBreak ? 1 : 0;
    for (const ChatRun& run : update.runs) length += ChatShownLength(run.text);
    ChatUpdateShown(log, index, update, static_cast<long>(length));
}

TEST(Chat, FindsTheCodeAtACharacter) {
    ChatLog log;
    ChatLogAdd(log, "[You]: a\r\n", false);
    Show(log, 0);
    ChatLogAdd(log, "\xF0\x9F\x98\x80:\r\n```basic\r\nX\r\n```\r\nb ```Y```", true, 7);
    Show(log, 1);
    ChatLogAdd(log, "[You]: next\r\n", false);
    Show(log, 2);
    EXPECT_EQ(log.entries[1].start, 9);
    EXPECT_EQ(log.entries[2].start, 9 + 28) << "two units, and one for each line break";
    EXPECT_TRUE(log.entries[2].ownLine) << "the reply has no line break at its end";
    const struct {
        long at;
        const char* code;
    } cases[] = {{0, "(none)"}, {11, "(none)"}, {13, "X"}, {22, "X"},
                 {26, "X"},     {28, "(none)"}, {30, "Y"}, {40, "(none)"}};
    for (const auto& c : cases) EXPECT_EQ(ChatCodeAt(log, c.at).value_or("(none)"), c.code) << c.at;
    EXPECT_EQ(ChatLastCode(log), "Y");
    const int entry = ChatEntryOfRequest(log, 7);
    ASSERT_EQ(entry, 1);
    ChatEntryGrow(log.entries[1], "\nmore");
    Show(log, 1);
    EXPECT_EQ(log.entries[2].start, 9 + 33) << "what is below moves";
    EXPECT_EQ(ChatEntryOfRequest(log, 0), -1);

    const std::string reply = "```\nfirst \n\n```\n```\n```";
    const std::unique_ptr<char, decltype(&std::free)> applied(AiApiExtractCode(reply.c_str()), &std::free);
    EXPECT_EQ(ChatLastCode({.entries = {{.text = reply, .hasCode = true}}}), applied.get()) << "one rule for both";
}

TEST(Chat, IsBounded) {
    const std::string line = std::string(999, 'x') + "\n";
    std::string lines;
    for (int i = 0; i < 100; ++i) lines += line;
    EXPECT_EQ(ChatShownPart(lines + "rest").size(), lines.size());
    EXPECT_EQ(ChatShownPart(lines.substr(0, 99999) + "\xC3\xA4").size(), 99999U);
    EXPECT_EQ(ChatShownPart(std::string(5000, '\n')).size(), 3000U);
    EXPECT_EQ(ChatShownPart(line + std::string(9000, 'x')).size(), line.size() + 8000);
    EXPECT_EQ(ChatShownPart("x\xC3").size(), 2U);
    EXPECT_EQ(ChatShownPart("x\xC3", true).size(), 1U) << "the rest of the character comes";
    constexpr std::size_t kSurplus[] = {0, 0, 0, 0, 0, 0, 3, 5, 6};
    ChatLog log;
    for (int i = 0; i < 9; ++i) {
        ChatLogAdd(log, lines.substr(0, 30000), true, i == 6 ? 1 : 0);
        Show(log, log.entries.size() - 1);
        EXPECT_EQ(ChatLogSurplus(log), kSurplus[i]) << i;
    }
    log.entries[0].request = 2;
    EXPECT_EQ(ChatLogSurplus(log), 0U) << "a reply that is coming stays, and what is below it";
}

TEST(Chat, StreamsHoweverTheBytesCome) {
    const std::string delta = R"(data: {"choices":[{"delta":{"content":)";
    const std::string stop = R"(data: {"choices":[{"delta":{},"finish_reason":"stop"}]})";
    const struct {
        const char* name;
        std::string body, text;
        ChatStream::Kind kind;
        ReplyEnd end;
    } cases[] = {
        {"plain", delta + "\"a\xC3\xA4\"}}]}\n\n" + delta + "\"b\"}}]}\n\ndata: [DONE]\n\n",
         "a\xC3\xA4"
         "b",
         ChatStream::Kind::Events, ReplyEnd::Whole},
        {"CR LF, comments, other fields",
         "\xEF\xBB\xBF: hi\r\nevent: x\r\nid\r\n" + delta + "\"a\"}}]}\r\n\r\n" + stop + "\r\n\r\n", "a",
         ChatStream::Kind::Events, ReplyEnd::Whole},
        {"CR, two data lines, no end", "data:{\"choices\":[\rdata: {\"delta\":{\"content\":\"a\"}}]}\r\r", "a",
         ChatStream::Kind::Events, ReplyEnd::Cut},
        {"cut within an event", delta + "\"a\"}}]}\n\n" + delta + "\"b", "a", ChatStream::Kind::Events, ReplyEnd::Cut},
        {"last event without its empty line", delta + "\"a\"}}]}\n\n" + stop, "a", ChatStream::Kind::Events,
         ReplyEnd::Whole},
        {"error half-way", delta + "\"a\"}}]}\n\ndata: {\"error\":{\"message\":\"gone\"}}\n\n", "a",
         ChatStream::Kind::Events, ReplyEnd::Refused},
        {"at the limit", delta + "\"a\"},\"finish_reason\":\"length\"}]}\n\ndata: [DONE]\n\n", "a",
         ChatStream::Kind::Events, ReplyEnd::AtLimit},
        {"no JSON, wrong types", "data: x\n\n" + delta + "7}}]}\n\ndata: {\"choices\":7}\n\ndata: [DONE]\n\n", "",
         ChatStream::Kind::Events, ReplyEnd::Whole},
        {"a reply of the other form", R"({"choices":[{"message":{"content":"a"}}]})", "", ChatStream::Kind::Other,
         ReplyEnd::Cut},
        {"not yet known", "dat", "", ChatStream::Kind::Unknown, ReplyEnd::Cut},
    };
    for (const auto& c : cases) {
        for (std::size_t step : {std::size_t{1}, std::size_t{3}, std::string::npos}) {
            SCOPED_TRACE(std::string(c.name) + ", step " + std::to_string(step));
            ChatStream stream;
            std::string told;
            for (std::size_t at = 0; at < c.body.size(); at += std::min(step, c.body.size()))
                told += ChatStreamAdd(stream, std::string_view(c.body).substr(at, step));
            told += ChatStreamFinish(stream);
            EXPECT_EQ(stream.text, c.text);
            EXPECT_EQ(told, c.text) << "each piece is told once";
            EXPECT_EQ(stream.kind, c.kind);
            EXPECT_EQ(ChatStreamEnd(stream), c.end);
        }
    }
    EXPECT_EQ(AiReplyEndLine({.outcome = AiOutcome::Answered, .replyEnd = ReplyEnd::Refused, .serviceText = "gone\n"}),
              L"[AI]: The service has ended the reply: gone \r\n");
    EXPECT_EQ(AiReplyEndLine({.outcome = AiOutcome::Failed, .error = 10054}),
              L"[AI]: The request failed: the connection was closed\r\n");
}

TEST(Chat, WhatWasSaidGoesWithTheNextMessage) {
    const ChatTurn turns[] = {{"q1", "a1"}, {"q2", "a2 long"}, {"q3", "a3"}};
    EXPECT_EQ(NewestTurns(turns, 3).size(), 0U);
    EXPECT_EQ(NewestTurns(turns, 12).size(), 1U) << "whole turns only";
    EXPECT_EQ(NewestTurns(turns, 13).front().question, "q2");
    EXPECT_EQ(NewestTurns(turns, 1000).size(), 3U);
    EXPECT_EQ(ChatRequestJson("m", "s", NewestTurns(turns, 4), "q", true),
              R"({"model":"m","messages":[{"role":"system","content":"s"},{"role":"user","content":"q3"},)"
              R"({"role":"assistant","content":"a3"},{"role":"user","content":"q"}],)"
              R"("max_tokens":2048,"temperature":0.7,"stream":true})");
    EXPECT_EQ(ChatRequestJson("m", "s", {}, "q", false), ChatRequestJson("m", "s", "q"));
}

TEST(Chat, CodeComesInAsLinesWhereLinesAre) {
    EXPECT_EQ(CodeAtPlace("X", {.atLineStart = true, .endsAtLineStart = true}), "X\n");
    EXPECT_EQ(CodeAtPlace("X", {.atLineStart = true, .endsAtLineStart = true, .restIsEmpty = true}), "X");
    EXPECT_EQ(CodeAtPlace("X", {.endsAtLineStart = true}), "X");
    EXPECT_EQ(CodeAtPlace("X", {.atLineStart = true}), "X");
}

TEST(Chat, NothingOfAReplyIsTakenForFormatting) {
    const ChatRun runs[] = {{"{\\field x}\n", ChatLook::Text}, {"\xC3\xA4", ChatLook::Code}};
    const std::string rtf = ChatRtf(runs, {.face = L"A;}", .codeFace = L"B", .points = 9}, {.codeBack = 0x010203});
    EXPECT_NE(rtf.find("{\\cf1 \\{\\\\field x\\}\\par\n}"), std::string::npos) << rtf;
    EXPECT_NE(rtf.find("\\f1\\cb4\\highlight4 \\u228?}"), std::string::npos) << rtf;
    EXPECT_NE(rtf.find("\\red3\\green2\\blue1;"), std::string::npos) << rtf;
    EXPECT_NE(rtf.find("\\fs18"), std::string::npos) << rtf;
}

}  // namespace
