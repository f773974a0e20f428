#include "presets/ControlRegistry.h"

void registerGalleryControls(ControlRegistry& registry) { (void)registry; }
