#include "results.h"

#include <cJSON.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

struct JsonDelete {
    void operator()(cJSON* json) const { cJSON_Delete(json); }
};
using Json = std::unique_ptr<cJSON, JsonDelete>;

void AddValues(cJSON* object, const char* name, const std::vector<double>& values) {
    cJSON* array = cJSON_AddArrayToObject(object, name);
    for (const double value : values) cJSON_AddItemToArray(array, cJSON_CreateNumber(std::round(value * 1e3) / 1e3));
}

std::vector<double> ValuesOf(const cJSON* object, const char* name) {
    std::vector<double> values;
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, cJSON_GetObjectItem(object, name)) {
        if (cJSON_IsNumber(item)) values.push_back(item->valuedouble);
    }
    return values;
}

std::string TextOf(const cJSON* object, const char* name) {
    const cJSON* item = cJSON_GetObjectItem(object, name);
    return cJSON_IsString(item) ? item->valuestring : "";
}

double NumberOf(const cJSON* object, const char* name) {
    const cJSON* item = cJSON_GetObjectItem(object, name);
    return cJSON_IsNumber(item) ? item->valuedouble : 0;
}

cJSON* JsonOf(const Row& row) {
    cJSON* object = cJSON_CreateObject();
    cJSON_AddStringToObject(object, "group", row.group.c_str());
    cJSON_AddStringToObject(object, "work", row.work.c_str());
    cJSON_AddStringToObject(object, "unit", row.unit.c_str());
    cJSON_AddStringToObject(object, "figure", row.figure == Figure::Most ? "most" : "median");
    if (!row.floor.empty()) AddValues(object, "floor", row.floor);
    AddValues(object, "editor", row.program);
    if (row.maxRatio > 0) cJSON_AddNumberToObject(object, "maxRatio", row.maxRatio);
    if (row.maxValue > 0) cJSON_AddNumberToObject(object, "maxValue", std::round(row.maxValue * 1e3) / 1e3);
    cJSON_AddStringToObject(object, "note", row.note.c_str());
    if (row.headline) cJSON_AddTrueToObject(object, "headline");
    return object;
}

Row RowOf(const cJSON* object) {
    return {.work = TextOf(object, "work"),
            .floor = ValuesOf(object, "floor"),
            .program = ValuesOf(object, "editor"),
            .unit = TextOf(object, "unit"),
            .figure = TextOf(object, "figure") == "most" ? Figure::Most : Figure::Median,
            .maxRatio = NumberOf(object, "maxRatio"),
            .maxValue = NumberOf(object, "maxValue"),
            .note = TextOf(object, "note"),
            .headline = cJSON_IsTrue(cJSON_GetObjectItem(object, "headline")) != 0,
            .group = TextOf(object, "group")};
}

}  // namespace

double Quantile(std::vector<double> values, double share) {
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

double FigureOf(const Row& row) { return Quantile(row.program, row.figure == Figure::Most ? 1 : 0.5); }
double RatioOf(const Row& row) { return row.floor.empty() ? 0 : FigureOf(row) / Median(row.floor); }
bool HasGoal(const Row& row) { return row.maxRatio > 0 || row.maxValue > 0; }

bool MeetsGoal(const Row& row) {
    return (row.maxRatio <= 0 || RatioOf(row) <= row.maxRatio) && (row.maxValue <= 0 || FigureOf(row) <= row.maxValue);
}

std::string ResultsToJson(const Results& results) {
    const Json json{cJSON_CreateObject()};
    cJSON_AddStringToObject(json.get(), "machine", results.machine.c_str());
    cJSON_AddStringToObject(json.get(), "commit", results.commit.c_str());
    cJSON_AddStringToObject(json.get(), "date", results.date.c_str());
    if (results.quick) cJSON_AddTrueToObject(json.get(), "quick");
    cJSON* rows = cJSON_AddArrayToObject(json.get(), "rows");
    for (const Row& row : results.rows) cJSON_AddItemToArray(rows, JsonOf(row));
    char* text = cJSON_Print(json.get());
    std::string copy = text != nullptr ? text : "";
    cJSON_free(text);
    return copy + "\n";
}

bool ResultsFromJson(const std::string& json, Results* results) {
    const Json read{cJSON_Parse(json.c_str())};
    const cJSON* rows = cJSON_GetObjectItem(read.get(), "rows");
    if (cJSON_IsArray(rows) == 0) return false;
    *results = {.machine = TextOf(read.get(), "machine"),
                .commit = TextOf(read.get(), "commit"),
                .date = TextOf(read.get(), "date"),
                .quick = cJSON_IsTrue(cJSON_GetObjectItem(read.get(), "quick")) != 0};
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, rows) {
        Row row = RowOf(item);
        if (row.work.empty() || row.program.empty()) return false;
        results->rows.push_back(std::move(row));
    }
    return true;
}
