// The buffers are looked at by the reader instead of being announced, so that no other thread and no message is needed.
#include "ai/sound_input.h"

#include "ai/wav.h"
#include "base/log.h"

#include <windows.h>

#include <mmsystem.h>

#include <array>

namespace {

constexpr std::size_t kBlockSamples = kSamplesPerSecond / 10;
constexpr std::size_t kBlocks = 20;  // two seconds, the longest time between two reads that loses nothing

struct Microphone {
    HWAVEIN device = nullptr;
    std::array<std::array<std::int16_t, kBlockSamples>, kBlocks> samples;
    std::array<WAVEHDR, kBlocks> headers;
    std::size_t next = 0;  // the block that is filled next
};
Microphone g_microphone;

void StopMicrophone() {
    if (g_microphone.device == nullptr) return;
    waveInReset(g_microphone.device);
    for (WAVEHDR& header : g_microphone.headers) waveInUnprepareHeader(g_microphone.device, &header, sizeof(header));
    waveInClose(g_microphone.device);
    g_microphone.device = nullptr;
}

bool StartBlocks() {
    for (std::size_t i = 0; i < kBlocks; ++i) {
        WAVEHDR& header = g_microphone.headers[i];
        header = {};
        header.lpData = reinterpret_cast<LPSTR>(g_microphone.samples[i].data());
        header.dwBufferLength = sizeof(g_microphone.samples[i]);
        if (waveInPrepareHeader(g_microphone.device, &header, sizeof(header)) != MMSYSERR_NOERROR ||
            waveInAddBuffer(g_microphone.device, &header, sizeof(header)) != MMSYSERR_NOERROR)
            return false;
    }
    g_microphone.next = 0;
    return waveInStart(g_microphone.device) == MMSYSERR_NOERROR;
}

bool StartMicrophone(std::wstring* problem) {
    if (waveInGetNumDevs() == 0) {
        *problem =
            L"No microphone was found. Connect one, or type the instruction into the AI sidebar and choose Tools > "
            L"Edit Code as Typed in AI Sidebar.";
        return false;
    }
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 1;
    format.nSamplesPerSec = kSamplesPerSecond;
    format.wBitsPerSample = 16;
    format.nBlockAlign = sizeof(std::int16_t);
    format.nAvgBytesPerSec = kSamplesPerSecond * sizeof(std::int16_t);
    const MMRESULT opened = waveInOpen(&g_microphone.device, WAVE_MAPPER, &format, 0, 0, CALLBACK_NULL);
    if (opened == MMSYSERR_NOERROR && StartBlocks()) return true;
    AppLogMsg(L"FAIL: StartMicrophone error=%u", opened);
    if (opened != MMSYSERR_NOERROR) g_microphone.device = nullptr;
    StopMicrophone();
    *problem =
        L"The microphone cannot be used. Another program may be using it, or the system's privacy settings may "
        L"keep programs from it.";
    return false;
}

void ReadMicrophone(std::vector<std::int16_t>* out) {
    for (std::size_t looked = 0; looked < kBlocks && g_microphone.device != nullptr; ++looked) {
        WAVEHDR& header = g_microphone.headers[g_microphone.next];
        if ((header.dwFlags & WHDR_DONE) == 0) return;
        const auto& block = g_microphone.samples[g_microphone.next];
        out->insert(out->end(), block.begin(), block.begin() + header.dwBytesRecorded / sizeof(std::int16_t));
        waveInAddBuffer(g_microphone.device, &header, sizeof(header));
        g_microphone.next = (g_microphone.next + 1) % kBlocks;
    }
}

constexpr SoundInput kMicrophone = {StartMicrophone, ReadMicrophone, StopMicrophone};

}  // namespace

const SoundInput* g_soundInput = &kMicrophone;
