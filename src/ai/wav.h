// Recorded sound: its level, its WAV file and the form in which it is sent. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The form of all recordings: one channel of 16-bit samples.
inline constexpr std::uint32_t kSamplesPerSecond = 16000;
// Ten minutes stay below the 25 MB that services accept.
inline constexpr std::size_t kMostSamples = std::size_t{kSamplesPerSecond} * 600;

// A complete WAV file in memory.
std::string WavFile(std::span<const std::int16_t> samples);
// Loudness for a meter, 0 to 100: 0 at -60 dB and below, 100 at full scale.
int SoundLevel(std::span<const std::int16_t> samples);

// A multipart form with the file "audio.wav" and the model. `boundary` must not occur in the file.
std::string TranscriptionForm(std::string_view wav, std::string_view model, std::string_view boundary);
// A boundary that does not occur in the file.
std::string FormBoundary(std::string_view wav);
std::wstring TranscriptionHeaders(std::string_view boundary, const wchar_t* apiKey);

// What the dialog leaves when it has no text.
inline constexpr wchar_t kTranscriptionFailed[] = L"[Transcription failed]";
inline constexpr wchar_t kTranscriptionEmpty[] = L"[Transcription failed - no response]";
bool IsTranscription(std::wstring_view text);  // neither blank nor one of these
// The spoken text of a reply; kTranscriptionFailed when the body has none.
std::wstring TranscriptionText(const char* body);
