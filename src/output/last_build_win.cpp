#include "output/last_build.h"

#include <utility>

static BuildPlaces g_places;

const BuildPlaces& BuildLastPlaces() { return g_places; }

void BuildSetLastPlaces(BuildPlaces places) { g_places = std::move(places); }
