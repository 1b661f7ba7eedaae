// The buffers are looked at by the reader instead of being announced, so that no other thread and no message is needed.
#include "ai/sound_input.h"

#include "ai/wav.h"
#include "base/texts.h"

#include <windows.h>

#include <mmsystem.h>

#include <array>
#include <memory>

namespace {

constexpr std::size_t kBlockSamples = kSamplesPerSecond / 10;
constexpr std::size_t kBlocks = 20;  // two seconds, the longest time between two reads that loses nothing

struct Microphone {
    HWAVEIN device = nullptr;
    std::array<std::array<std::int16_t, kBlockSamples>, kBlocks> samples = {};
    std::array<WAVEHDR, kBlocks> headers = {};
    std::size_t next = 0;  // the block that is filled next
};

// Appends the next block if it has been handed back by the driver.
bool TakeBlock(Microphone& microphone, std::vector<std::int16_t>* out) {
    WAVEHDR& header = microphone.headers[microphone.next];
    if ((header.dwFlags & WHDR_DONE) == 0) return false;
    const auto& block = microphone.samples[microphone.next];
    out->insert(out->end(), block.begin(), block.begin() + header.dwBytesRecorded / sizeof(std::int16_t));
    header.dwBytesRecorded = 0;  // because a block that the driver does not take again keeps WHDR_DONE
    microphone.next = (microphone.next + 1) % kBlocks;
    return true;
}

void StopMicrophone(void* input, std::vector<std::int16_t>* out) {
    const std::unique_ptr<Microphone> microphone(static_cast<Microphone*>(input));
    waveInReset(microphone->device);  // hands back the block that is half full, too
    for (std::size_t looked = 0; looked < kBlocks && TakeBlock(*microphone, out); ++looked) {}
    for (WAVEHDR& header : microphone->headers) waveInUnprepareHeader(microphone->device, &header, sizeof(header));
    waveInClose(microphone->device);
}

bool GiveBlock(Microphone& microphone, WAVEHDR& header) {
    return waveInAddBuffer(microphone.device, &header, sizeof(header)) == MMSYSERR_NOERROR;
}

bool StartBlocks(Microphone& microphone) {
    for (std::size_t i = 0; i < kBlocks; ++i) {
        WAVEHDR& header = microphone.headers[i];
        header.lpData = reinterpret_cast<LPSTR>(microphone.samples[i].data());
        header.dwBufferLength = sizeof(microphone.samples[i]);
        if (waveInPrepareHeader(microphone.device, &header, sizeof(header)) != MMSYSERR_NOERROR ||
            !GiveBlock(microphone, header))
            return false;
    }
    return waveInStart(microphone.device) == MMSYSERR_NOERROR;
}

void* StartMicrophone(std::wstring* problem) {
    if (waveInGetNumDevs() == 0) {
        *problem = Text(
            L"No microphone was found. Connect one, or type the instruction into the AI sidebar and choose Tools > "
            L"Edit Code as Typed in AI Sidebar.");
        return nullptr;
    }
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 1;
    format.nSamplesPerSec = kSamplesPerSecond;
    format.wBitsPerSample = 16;
    format.nBlockAlign = sizeof(std::int16_t);
    format.nAvgBytesPerSec = kSamplesPerSecond * sizeof(std::int16_t);
    auto microphone = std::make_unique<Microphone>();
    const MMRESULT opened = waveInOpen(&microphone->device, WAVE_MAPPER, &format, 0, 0, CALLBACK_NULL);
    if (opened == MMSYSERR_NOERROR && StartBlocks(*microphone)) return microphone.release();
    if (opened == MMSYSERR_NOERROR) {
        std::vector<std::int16_t> unused;
        StopMicrophone(microphone.release(), &unused);
    }
    *problem = Text(
        L"The microphone cannot be used. Another program may be using it, or the system's privacy settings may "
        L"keep programs from it.");
    return nullptr;
}

bool ReadMicrophone(void* input, std::vector<std::int16_t>* out) {
    auto& microphone = *static_cast<Microphone*>(input);
    for (std::size_t looked = 0; looked < kBlocks; ++looked) {
        WAVEHDR& header = microphone.headers[microphone.next];
        if (!TakeBlock(microphone, out)) return true;
        if (!GiveBlock(microphone, header)) return false;  // the device was removed
    }
    return true;
}

constexpr SoundInput kMicrophone = {StartMicrophone, ReadMicrophone, StopMicrophone};

}  // namespace

const SoundInput* g_soundInput = &kMicrophone;
