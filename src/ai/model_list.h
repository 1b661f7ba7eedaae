// The names of the models that a service offers. Texts are UTF-8. Pure; any thread.
#pragma once

#include <cstdint>

// The caller owns the list and releases it with AiApiFreeModelList.
struct AiModelList {
    char** names = nullptr;  // blocks from malloc()
    std::int32_t count = 0;
    std::int32_t capacity = 0;
};
void AiApiFreeModelList(AiModelList* list);

// Replaces the list by the sorted names of a service's reply. `filter` keeps only the families of the cloud service
// that chat or transcribe. Returns 1, also for an empty list, or 0 and an empty list when the body is no model list or
// memory runs out.
int ModelListRead(const char* body, bool filter, AiModelList* list);

// strcmp of the two names, for qsort(): the arguments point to pointers to names.
int ModelNameCompare(const void* left, const void* right);
