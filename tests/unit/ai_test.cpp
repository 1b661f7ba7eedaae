// The assistant's texts: what is sent byte for byte, what is understood of any answer, and what its commands decide.
#include "ai/ai_rules.h"
#include "ai/ai_texts.h"
#include "ai/chat_protocol.h"
#include "ai/error_question.h"
#include "ai/model_list.h"
#include "ai/send_size.h"
#include "ai/wav.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <memory>

namespace {

// "(none)" for null.
std::string Taken(char* text) {
    const std::string copy = text != nullptr ? text : "(none)";
    std::free(text);
    return copy;
}

std::string Narrow(const wchar_t* text) {
    return text != nullptr ? std::string(text, text + std::wcslen(text)) : "(none)";
}

TEST(AiProtocol, RequestsAreTheSameByteForByte) {
    EXPECT_EQ(ChatRequestJson("m", "be \"brief\"\n", "h\xC3\xA9\t"),
              "{\"model\":\"m\",\"messages\":[{\"role\":\"system\",\"content\":\"be \\\"brief\\\"\\n\"},"
              "{\"role\":\"user\",\"content\":\"h\xC3\xA9\\t\"}],\"max_tokens\":2048,\"temperature\":0.7}");
    EXPECT_EQ(ChatRequestJson(nullptr, "", "x"),
              "{\"model\":\"gpt-4o-mini\",\"messages\":[{\"role\":\"user\",\"content\":\"x\"}],\"max_tokens\":2048,"
              "\"temperature\":0.7}");
    EXPECT_EQ(ChatHeaders(L"k"), L"Content-Type: application/json\r\nAuthorization: Bearer k\r\n");
    EXPECT_EQ(ChatHeaders(L""), L"Content-Type: application/json\r\n");
    EXPECT_EQ(ModelListHeaders(nullptr), L"");
    EXPECT_EQ(ChatHeaders(std::wstring(2000, L'k').c_str()).size(), 1023U);
}

TEST(AiTexts, QuestionsAboutADiagnostic) {
    const struct {
        int line, lines;
        std::size_t bytes;
        int first, end;
    } cases[] = {{0, 1, 5, 0, 1},  {30, 100, 5, 10, 51},    {98, 100, 5, 78, 100}, {3, 3, 5, 0, 0},
                 {-1, 3, 5, 0, 0}, {30, 100, 3000, 28, 33}, {1, 3, 16001, 0, 0}};
    for (const auto& c : cases) {
        const LinesToSend range = LinesAroundError(c.line, c.lines, [&](int) { return c.bytes; });
        EXPECT_EQ(range.first, c.first) << c.line << " of " << c.lines;
        EXPECT_EQ(range.end, c.end) << c.line << " of " << c.lines;
    }
    const AskedError error = {.compiler = "KVXA64", .file = "x.bas", .line = 10, .message = "bad"};
    EXPECT_EQ(ExplainQuestion(error, "a\r\n\r\nc", 9),
              "Explain this error of the KVXA64 compiler, and say how to correct it:\nx.bas(10): error: bad\n\n"
              "The source around it (> marks the line):\n  9: a\n> 10: \n  11: c\n");
    EXPECT_TRUE(ExplainQuestion(error, "", 1).ends_with("bad\n")) << "no source, no heading";
    EXPECT_EQ(
        FixQuestion({.compiler = "C", .file = "y", .line = 2, .message = "odd", .warning = true}, "a\nb\n", 1),
        "Correct this warning of the C compiler:\ny(2): warning: odd\n\nLine 2 is:\nb\n\nThe code below is lines 1 "
        "to 2 of the file. Return ONLY these lines with the error corrected, all of them, in one fenced code block. "
        "No explanations, no line numbers.\n\nCode:\na\nb\n");
}

TEST(AiProtocol, RepliesOfEveryShape) {
    const struct {
        const char *body, *text, *error;
    } cases[] = {
        {R"({"choices":[{"message":{"content":"a\nb"}},{"message":{"content":"second"}}]})", "a\nb", ""},
        {R"({"choices":[{"message":{"content":""}}]})", "", ""},
        {R"({"choices":[{"message":{"content":7}}]})", "(none)", ""},
        {R"({"choices":[{"message":{"Content":"case"}}]})", "(none)", ""},
        {R"({"choices":[{"message":"content"}]})", "(none)", ""},
        {R"({"choices":[{}]})", "(none)", ""},
        {R"({"choices":["x"]})", "(none)", ""},
        {R"({"choices":[]})", "(none)", ""},
        {R"({"choices":{"message":{"content":"x"}}})", "(none)", ""},
        {R"([{"message":{"content":"x"}}])", "(none)", ""},
        {R"({"error":{"message":"no key","type":"x"}})", "(none)", "no key"},
        {R"({"error":"plain"})", "(none)", "plain"},
        {R"({"error":[1]})", "(none)", ""},
        {R"({"choices":[{"message":{"content":"a\ud800b\udc00\ud83d\ude00\\ud800\ud83d"}}]})",
         "a\xEF\xBF\xBD"
         "b\xEF\xBF\xBD\xF0\x9F\x98\x80\\ud800\xEF\xBF\xBD",
         ""},
        {R"({"choices":[{"message":{"content":"\ud8"}}]})", "(none)", ""},
        {"null", "(none)", ""},
        {"{\"choices\":[{\"mess", "(none)", ""},
        {"", "(none)", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Taken(ChatReplyText(c.body)), c.text) << c.body;
        EXPECT_EQ(ChatErrorText(c.body), c.error) << c.body;
    }
    EXPECT_EQ(ChatReplyText(nullptr), nullptr);
}

TEST(AiProtocol, ModelListsAreFilteredAndSorted) {
    const char* body = R"({"data":[{"id":"o3-mini"},{"id":"gpt-4"},{"id":"o1"},{"id":"o4-mini"},{"id":"Zeta"},{"id":3},
        {"id":"dall-e-3"},{"name":"x"},{"id":"whisper-1"},"text",{"id":"o3"},{"id":"o1-x"},{"id":"text-a"},{"id":"o12"}]})";
    const auto names = [body](bool filter) {
        AiModelList list;
        EXPECT_EQ(ModelListRead(body, filter, &list), 1);
        std::string text;
        for (int i = 0; i < list.count; ++i) text += std::string(list.names[i]) + " ";
        AiApiFreeModelList(&list);
        EXPECT_TRUE(list.names == nullptr && list.count == 0 && list.capacity == 0);
        return text;
    };
    EXPECT_EQ(names(true), "gpt-4 o1 o1-x o3 o3-mini text-a whisper-1 ");
    EXPECT_EQ(names(false), "Zeta dall-e-3 gpt-4 o1 o1-x o12 o3 o3-mini o4-mini text-a whisper-1 ");
    AiModelList list;
    for (const char* bad : {"", "[]", "{\"data\":{}}", "{\"data\":[{\"id\":\"a\"}", "{}"})
        EXPECT_EQ(ModelListRead(bad, false, &list), 0) << bad;
    EXPECT_EQ(ModelListRead("{\"data\":[]}", true, &list), 1);
    EXPECT_EQ(list.count, 0);
}

TEST(AiTexts, CodeIsTakenFromTheFirstBlock) {
    const struct {
        const char *reply, *code;
    } cases[] = {
        {"Sure:\n```basic\n  PRINT 1\r\n\n```\nand\n```\nPRINT 2\n```", "  PRINT 1"},
        {"```PRINT 1```", "PRINT 1"},
        {"```PRINT 1", "```PRINT 1"},
        {" ```basic\nPRINT 1\n ", "```basic\nPRINT 1"},
        {"\r\n\t PRINT 1 \n", "PRINT 1"},
        {"```\n```", ""},
        {" \n\t", "(none)"},
        {"", "(none)"},
    };
    for (const auto& c : cases) EXPECT_EQ(Taken(AiApiExtractCode(c.reply)), c.code) << c.reply;
    EXPECT_EQ(AiApiExtractCode(nullptr), nullptr);
    EXPECT_EQ(CodeInPlaceOf("a\n \r\n", "b"), "b\n \r\n");
    EXPECT_EQ(CodeInPlaceOf("a \t", "b") + CodeInPlaceOf("a\n", "b\n"), "bb\n");
    EXPECT_EQ(WithoutLineNumbers("  9: a\n> 10:  b\r\n11 |", "a\n b\n\n", 9), "a\n b\n");
    for (const auto& [code, sent, first] : {std::tuple{"9: a\n10: b", "a", 0},
                                            {"9: a\n10: b", "a", 8},
                                            {"9: a\n11: b", "a", 9},
                                            {"10 a", "a", 10},
                                            {"10: a\n11: b", "10: x\n11: b", 10}})
        EXPECT_EQ(WithoutLineNumbers(code, sent, first), code);
    EXPECT_EQ(WithLineEnds("a\nb\r\nc\rd\n\n", "\r\n"), "a\r\nb\r\nc\r\nd\r\n\r\n");
}

TEST(AiTexts, PromptsAndAddresses) {
    EXPECT_EQ(SystemPromptText({.compiler = 3}), kBasePrompt);
    EXPECT_EQ(
        SystemPromptText({.compiler = 9, .description = L"D"}),
        "You are a helpful coding assistant.\n\nYou are assisting with the KVXA64 compiler.\nHere is the detailed "
        "syntax description for this compiler:\nD");
    EXPECT_EQ(AiDoSystemPrompt(""), "");
    EXPECT_TRUE(AiDoSystemPrompt("D").starts_with("D\n\nYou are a coding assistant. Modify the provided code"));
    EXPECT_EQ(AiDoMessage("i", "", "c"), "Instruction: i\n\nCode:\nc");
    EXPECT_EQ(AiDoMessage("i", "e", "c"),
              "Instruction: i\n\nLast compiler error for the selected compiler:\ne\n\nCode:\nc");
    for (const auto& [url, base] : {std::pair{L"http://h:1/v1/chat/completions", L"http://h:1/v1"},
                                    {L"http://h/chat/completions/chat/completions?x", L"http://h"},
                                    {L"http://h/v1//", L"http://h/v1/"},
                                    {L"http://h//chat/completions", L"http://h"},
                                    {L"", L""},
                                    {L"/", L""}}) {
        wchar_t edited[100] = {};
        std::wcscpy(edited, url);
        StripChatEndpoint(edited);
        EXPECT_STREQ(edited, base);
    }
}

TEST(AiTexts, TheSizeIsToldOfDocumentsAndLargeParts) {
    EXPECT_EQ(
        SizeQuestion({.document = L"a.bas", .whole = true, .source = 1000000, .message = 1234567, .host = L"h:1"}),
        L"a.bas is about to be sent as a whole to h:1: 1,234,567 bytes with the instructions, about 308,600 "
        L"tokens.\n\nUntil the program ends you are asked only once for this server.");
    EXPECT_TRUE(SizeQuestion({.document = L"a.bas", .source = 20001, .message = 999, .host = L"h"})
                    .starts_with(L"20,001 bytes of a.bas are about to be sent to h. The message has 999 bytes with the "
                                 L"instructions, about 250 tokens."));
    EXPECT_TRUE(IsSizeTold({.whole = true, .source = 1}));
    EXPECT_TRUE(IsSizeTold({.source = kLargePart + 1}));
    EXPECT_FALSE(IsSizeTold({.source = kLargePart}));
}

TEST(AiSound, IsSentAsAWavFileInAForm) {
    const std::int16_t samples[] = {1, -2};
    const std::string wav = WavFile(samples);
    EXPECT_EQ(
        wav,
        std::string("RIFF\x28\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\x3E\0\0\0\x7D\0\0\2\0\x10\0data\4\0\0\0\1\0\xFE\xFF",
                    48));
    EXPECT_EQ(
        TranscriptionForm("W", "m", "B"),
        "--B\r\nContent-Disposition: form-data; name=\"model\"\r\n\r\nm\r\n--B\r\nContent-Disposition: form-data; "
        "name=\"file\"; filename=\"audio.wav\"\r\nContent-Type: audio/wav\r\n\r\nW\r\n--B--\r\n");
    EXPECT_EQ(FormBoundary("x KVX-Editor-form-").find("KVX-Editor-form--"), 0U);
    for (const auto& [sample, level] : {std::pair<std::int16_t, int>{0, 0}, {1, 0}, {1036, 49}, {-32768, 100}})
        EXPECT_EQ(SoundLevel(std::vector<std::int16_t>(100, sample)), level);
    EXPECT_EQ(TranscriptionText(R"({"text":"\u00C4"})"), L"\u00C4");
    for (const char* bad : {"", "{}", R"({"text":""})", R"({"text":[]})"})
        EXPECT_FALSE(IsTranscription(TranscriptionText(bad))) << bad;
}

TEST(AiRules, TheServiceAndWhatIsMissing) {
    const auto settings = std::make_unique<Settings>();
    const struct {
        int openAi, local, primary;
        bool key;
        const char *askOpenAi, *askLocal, *aiDo;
        AiService send, doService;
    } cases[] = {
        {0, 0, 0, true, "OpenAI is not enabled. Enable it in Settings > AI.",
         "LM-Studio is not enabled. Enable it in Settings > AI.",
         "Selected primary AI is not enabled. Enable it in Settings > AI.", AiService::None, AiService::LmStudio},
        {1, 0, 0, false, "OpenAI API key is missing. Set it in Settings > OAI.",
         "LM-Studio is not enabled. Enable it in Settings > AI.", "(none)", AiService::None, AiService::LmStudio},
        {1, 1, 0, true, "(none)", "(none)", "(none)", AiService::OpenAi, AiService::OpenAi},
        {1, 1, 0, false, "OpenAI API key is missing. Set it in Settings > OAI.", "(none)", "(none)",
         AiService::LmStudio, AiService::LmStudio},
        {1, 1, 1, true, "(none)", "(none)", "(none)", AiService::LmStudio, AiService::LmStudio},
        {1, 0, 1, true, "(none)", "LM-Studio is not enabled. Enable it in Settings > AI.",
         "Selected primary AI is not enabled. Enable it in Settings > AI.", AiService::None, AiService::LmStudio},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        settings->openAIEnabled = c.openAi, settings->lmStudioEnabled = c.local, settings->primaryAi = c.primary;
        settings->openAIKey[0] = c.key ? L'k' : L'\0';
        EXPECT_EQ(Narrow(AskProblem(AiService::OpenAi, *settings, true)), c.askOpenAi);
        EXPECT_EQ(Narrow(AskProblem(AiService::LmStudio, *settings, true)), c.askLocal);
        EXPECT_EQ(Narrow(AiDoProblem(*settings)), c.aiDo);
        EXPECT_EQ(SendService(*settings), c.send);
        EXPECT_EQ(AiDoService(*settings), c.doService);
    }
    settings->lmStudioEnabled = 1;
    EXPECT_EQ(Narrow(AskProblem(AiService::LmStudio, *settings, false)),
              "Please select some text in the editor first.");
}

TEST(AiRules, RepliesGoByTheLowHalfOfTheirStatus) {
    EXPECT_EQ(AiReplyPathOf(kAiStatusOk, true), AiReplyPath::Chat);
    EXPECT_EQ(AiReplyPathOf(kAiStatusFailed, false), AiReplyPath::Result);
    EXPECT_EQ(AiReplyPathOf(1, true), AiReplyPath::Result);
    EXPECT_EQ(AiReplyPathOf(1LL << 32, true), AiReplyPath::Chat);
    EXPECT_EQ(AiReplyPathOf(1LL << 32, false), AiReplyPath::Failure);
    EXPECT_EQ(AiReplyPathOf(0, false), AiReplyPath::Nothing);
    EXPECT_EQ(AiEndText(AiService::OpenAi, 0, {.httpStatus = 200, .error = 12030}),
              L"OpenAI: the request failed: the connection was closed");
    const AiEnd refused = {.httpStatus = 401, .serviceText = "bad\nkey"};
    EXPECT_EQ(AiEndText(AiService::OpenAi, 75, refused),
              L"OpenAI: the request failed: HTTP 401, the API key was not accepted: bad key");
    EXPECT_EQ(AiReplyEndLine({.outcome = AiOutcome::Answered, .blank = true}), L"[AI]: The reply is empty.\r\n");
    EXPECT_EQ(AiEndText(AiService::LmStudio, 75, {.outcome = AiOutcome::Answered}), L"LM-Studio answered after 1:15");
    EXPECT_EQ(AiProgressText(AiService::OpenAi, {5, 2048, false, 0}), L"OpenAI: waiting, 0:05, 2 KB received");
    EXPECT_EQ(AiProgressText(AiService::OpenAi, {5, 3, true, 1}), L"OpenAI: replying, 0:05 (and 1 more)");
    constexpr auto kAnswered = AiOutcome::Answered, kFailed = AiOutcome::Failed;
    const struct {
        AiEnded ended;
        int held;
        AiReplyState state;
    } ends[] = {
        {{2, true, kAnswered, true}, 1, AiReplyState::Whole},  {{1, true, kAnswered, true}, 2, AiReplyState::Whole},
        {{2, true, kAnswered, false}, 1, AiReplyState::Cut},   {{2, true, kFailed, false}, 1, AiReplyState::Missing},
        {{2, false, kAnswered, true}, 1, AiReplyState::Whole}, {{1, false, kAnswered, true}, 2, AiReplyState::None},
        {{2, false, kFailed, false}, 1, AiReplyState::None}};
    for (const auto& c : ends) EXPECT_EQ(AiReplyStateAfter(c.ended, c.held), c.state) << &c - ends;
    EXPECT_EQ(WithoutKey("a sk-1 b sk-1", "sk-1"), "a  b ");
}

}  // namespace
