#pragma once

#include "imaging/KLWatermark.h"

class SettingsStore;

// The watermark panel's settings as the stamp takes them, read from the store by control name.
WatermarkSettings watermarkSettingsFrom(const SettingsStore& store);
