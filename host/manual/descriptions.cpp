#include "host/manual/description.h"

#include "host/manual/groups.h"

namespace host {

std::span<const RecipeGroup> recipeGroups() {
  static const RecipeGroup kGroups[] = {
      {"Tone", toneRecipes()},        {"Color", colorRecipes()},
      {"Channels", channelRecipes()}, {"Masks", maskRecipes()},
      {"Search", searchRecipes()},    {"Scrolling", scrollRecipes()},
      {"Filters", filterRecipes()},   {"Waveform", waveformRecipes()},
      {"Data", dataRecipes()},        {"Other systems", otherRecipes()},
  };
  return kGroups;
}

}  // namespace host
