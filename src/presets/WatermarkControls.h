#pragma once

#include "imaging/KLWatermark.h"

class ControlRegistry;
class SettingsStore;

// The controls of the watermark panel, of kind "watermark".
void registerWatermarkControls(ControlRegistry& registry);

// The watermark panel's settings as the stamp takes them, read from the store by control name.
WatermarkSettings watermarkSettingsFrom(const SettingsStore& store);
