// The recipes of each group; recipes.cpp puts the groups in order.
#pragma once

#include "host/manual/description.h"

namespace host {

std::span<const Recipe> toneRecipes();
std::span<const Recipe> colorRecipes();
std::span<const Recipe> channelRecipes();
std::span<const Recipe> maskRecipes();
std::span<const Recipe> searchRecipes();
std::span<const Recipe> scrollRecipes();
std::span<const Recipe> filterRecipes();
std::span<const Recipe> waveformRecipes();
std::span<const Recipe> dataRecipes();
std::span<const Recipe> otherRecipes();

}  // namespace host
