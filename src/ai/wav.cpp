#include "ai/wav.h"

#include "ai/chat_protocol.h"
#include "base/utf8.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kSampleBytes = 2;
constexpr std::size_t kWavHeaderBytes = 44;
constexpr std::size_t kFormTextBytes = 1024;  // enough for what surrounds the file
constexpr double kQuietest = -60;             // dB

template <typename Number>
void AppendLe(std::string& out, Number value) {
    for (std::size_t i = 0; i < sizeof(value); ++i) out += static_cast<char>(value >> (8 * i));
}

}  // namespace

std::string WavFile(std::span<const std::int16_t> samples) {
    const auto bytes = static_cast<std::uint32_t>(samples.size() * kSampleBytes);
    std::string wav;
    wav.reserve(kWavHeaderBytes + bytes);
    wav += "RIFF";
    AppendLe(wav, bytes + 36U);
    wav += "WAVEfmt ";
    AppendLe(wav, std::uint32_t{16});
    AppendLe(wav, kPcm);
    AppendLe(wav, std::uint16_t{1});
    AppendLe(wav, kSamplesPerSecond);
    AppendLe(wav, kSamplesPerSecond * kSampleBytes);
    AppendLe(wav, kSampleBytes);
    AppendLe(wav, static_cast<std::uint16_t>(8 * kSampleBytes));
    wav += "data";
    AppendLe(wav, bytes);
    for (const std::int16_t sample : samples) AppendLe(wav, static_cast<std::uint16_t>(sample));
    return wav;
}

int SoundLevel(std::span<const std::int16_t> samples) {
    if (samples.empty()) return 0;
    double power = 0;
    for (const std::int16_t sample : samples) power += double{static_cast<double>(sample)} * sample;
    const double loudness = std::sqrt(power / static_cast<double>(samples.size())) / 32768;
    if (loudness <= 0) return 0;
    return static_cast<int>(std::clamp(100 * (1 - 20 * std::log10(loudness) / kQuietest), 0.0, 100.0));
}

std::string TranscriptionForm(std::string_view wav, std::string_view model, std::string_view boundary) {
    const std::string line = std::string("--").append(boundary);
    std::string form;
    form.reserve(wav.size() + kFormTextBytes);
    form.append(line).append("\r\nContent-Disposition: form-data; name=\"model\"\r\n\r\n");
    form.append(model).append("\r\n" + line);
    form +=
        "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\nContent-Type: audio/wav\r\n\r\n";
    return form.append(wav).append("\r\n" + line + "--\r\n");
}

std::string FormBoundary(std::string_view wav) {
    std::string boundary = "KVX-Editor-form";
    while (wav.find(boundary) != std::string_view::npos) boundary += '-';
    return boundary;
}

std::wstring TranscriptionHeaders(std::string_view boundary, const wchar_t* apiKey) {
    return L"Content-Type: multipart/form-data; boundary=" + std::wstring(boundary.begin(), boundary.end()) + L"\r\n" +
           ModelListHeaders(apiKey);
}

bool IsTranscription(std::wstring_view text) {
    return text.find_first_not_of(L" \t\r\n") != std::wstring_view::npos && text != kTranscriptionFailed &&
           text != kTranscriptionEmpty;
}

std::wstring TranscriptionText(const char* body) {
    std::wstring text = Utf8ToWideText(SpokenText(body));
    return IsTranscription(text) ? text : kTranscriptionFailed;
}
