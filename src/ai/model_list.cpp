#include "ai/model_list.h"

#include "base/heap_text.h"

#include <cJSON.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::int32_t kFirstCapacity = 16;

bool IsCloudModel(std::string_view id) {
    for (const std::string_view family : {"gpt-", "text-", "whisper-", "o1-", "o3-"})
        if (id.starts_with(family)) return true;
    return id == "o1" || id == "o3";
}

bool AppendModelName(AiModelList& list, const char* name) {
    if (list.count == list.capacity) {
        const std::int32_t capacity = list.capacity == 0 ? kFirstCapacity : list.capacity * 2;
        void* grown = std::realloc(list.names, static_cast<std::size_t>(capacity) * sizeof(char*));
        if (grown == nullptr) return false;
        list.names = static_cast<char**>(grown);
        list.capacity = capacity;
    }
    list.names[list.count] = HeapText(name);
    if (list.names[list.count] == nullptr) return false;
    ++list.count;
    return true;
}

bool ReadModelNames(const cJSON* data, bool filter, AiModelList& list) {
    if (cJSON_IsArray(data) == 0) return false;
    const cJSON* element = nullptr;
    cJSON_ArrayForEach(element, data) {
        const cJSON* id = cJSON_GetObjectItemCaseSensitive(element, "id");
        if (cJSON_IsString(id) == 0 || id->valuestring == nullptr) continue;
        if ((!filter || IsCloudModel(id->valuestring)) && !AppendModelName(list, id->valuestring)) return false;
    }
    return true;
}

}  // namespace

int ModelListRead(const char* body, bool filter, AiModelList* list) {
    *list = {};
    cJSON* root = body != nullptr ? cJSON_Parse(body) : nullptr;
    const bool read = ReadModelNames(cJSON_GetObjectItemCaseSensitive(root, "data"), filter, *list);
    cJSON_Delete(root);
    if (!read) {
        AiApiFreeModelList(list);
        return 0;
    }
    if (list->count > 1)
        std::qsort(list->names, static_cast<std::size_t>(list->count), sizeof(char*), ModelNameCompare);
    return 1;
}

int ModelNameCompare(const void* left, const void* right) {
    return std::strcmp(*static_cast<const char* const*>(left), *static_cast<const char* const*>(right));
}

void AiApiFreeModelList(AiModelList* list) {
    if (list == nullptr) return;
    for (std::int32_t i = 0; i < list->count; ++i) std::free(list->names[i]);
    std::free(list->names);
    *list = {};
}
