// The settings that a chat request depends on, copied when it is started, so that its worker reads no setting while the
// user changes one. Pure.
#pragma once

#include <cstdint>
#include <string>

struct AiPromptSettings {
    std::wstring codeModel;      // of OpenAI
    std::wstring localModel;     // of LM Studio
    std::uint32_t compiler = 0;  // CompilerId
    std::wstring description;    // of that compiler's dialect; may be empty
};
