#include "host/samples/samples.h"

#include "host/samples/sample_pictures.h"

namespace host {

std::span<const Sample> samples() {
  static constexpr Sample kSamples[] = {
      {"landscape", "Evening at the lake", &drawLandscape},
      {"gradients", "Silk and ramps", &drawGradients},
      {"colors", "Coloured balls", &drawColors},
      {"greys", "Greys among colours", &drawGreys},
      {"edges", "Sharp edges", &drawEdges},
      {"alpha", "Flower on nothing", &drawAlpha},
  };
  return kSamples;
}

}  // namespace host
